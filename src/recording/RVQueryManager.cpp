#include "recording/RVQueryManager.h"

namespace tavrion::RVQueryManager {

MPMediaQuery defaultQuery() {
    MPMediaQuery query = MPMediaQuery::songsQuery();
    query.addFilterPredicate(
        MPMediaPropertyPredicate::predicateWithValue(Value(1), MPMediaItemPropertyMediaType));
    return query;
}

}  // namespace tavrion::RVQueryManager
