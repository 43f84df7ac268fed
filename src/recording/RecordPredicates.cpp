#include "recording/RecordPredicates.h"

namespace tavrion::RecordPredicates {
namespace {

using Operator = NSPredicate::Operator;

NSPredicate equals(const char* key, Value value) {
    return NSPredicate::comparison(key, Operator::equal, std::move(value));
}

}  // namespace

NSPredicate eventDateBetween(NSDate start, NSDate end) {
    return NSPredicate::andPredicateWithSubpredicates(
        {NSPredicate::comparison("eventDate", Operator::greater, start),
         NSPredicate::comparison("eventDate", Operator::less, end)});
}

NSPredicate eventDateEquals(NSDate date) {
    return equals("eventDate", date);
}

NSPredicate isInterpolated(bool interpolated) {
    return NSPredicate::comparison("isInterpolated",
                                   interpolated ? Operator::equal : Operator::notEqual, true);
}

NSPredicate parentHistory(NSManagedObjectID history) {
    return equals("parentHistory", history.reference());
}

NSPredicate identifier(std::string_view identifier) {
    return equals("identifier", std::string(identifier));
}

NSPredicate titleAndDuration(const std::optional<std::string_view>& title, double duration) {
    return NSPredicate::andPredicateWithSubpredicates(
        {equals("title", title ? Value(std::string(*title)) : Value()),
         equals("duration", duration)});
}

NSPredicate storeID(std::string_view storeID) {
    return equals("storeID", std::string(storeID));
}

NSPredicate libraryID(std::string_view libraryID) {
    return equals("libraryID", std::string(libraryID));
}

NSPredicate notExcludedFromTrends() {
    return NSPredicate::comparison("excludeFromTrends", Operator::notEqual, true);
}

}  // namespace tavrion::RecordPredicates
