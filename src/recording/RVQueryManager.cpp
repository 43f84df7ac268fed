#include "recording/RVQueryManager.h"

namespace tavrion {

MPMediaQuery RVQueryManager::defaultQuery() {
    MPMediaQuery query = MPMediaQuery::songsQuery();
    query.addFilterPredicate(
        MPMediaPropertyPredicate::predicateWithValue(Value(1), MPMediaItemPropertyMediaType));
    return query;
}

}  // namespace tavrion
