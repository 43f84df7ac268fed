#include "recording/NerindaModel.h"

namespace tavrion {
namespace {

using Type = NSAttributeType;

NSEntityDescription playbackHistoryEntity() {
    namespace Key = PlaybackHistoryKey;
    return {.name = "PlaybackHistory",
            .properties = {{"albumID", Type::string},
                           {"artist", Type::string},
                           {"duration", Type::real},
                           {"excludeFromTrends", Type::boolean},
                           {"genre", Type::string},
                           {"lastEventDate", Type::date},
                           {"libraryID", Type::string},
                           {"playCount", Type::integer},
                           {"skipCount", Type::integer},
                           {"storeID", Type::string},
                           {"title", Type::string}},
            .indexes = {{{Key::title, Key::duration}}, {{Key::storeID}}, {{Key::libraryID}}}};
}

std::vector<NSPropertyDescription> eventProperties() {
    return {{"eventDate", Type::date},
            {"isInterpolated", Type::boolean},
            {"parentHistory", Type::reference, "PlaybackHistory"}};
}

}  // namespace

std::shared_ptr<const NSManagedObjectModel> nerindaModel() {
    static const auto model = std::make_shared<const NSManagedObjectModel>(
        "Nerinda",
        std::vector<NSEntityDescription>{
            playbackHistoryEntity(),
            {.name = "PlaybackHistoryEvent", .isAbstract = true, .properties = eventProperties()},
            {.name = "PlayEvent",
             .superentity = "PlaybackHistoryEvent",
             .properties = eventProperties(),
             .indexes = {{{PlayEventKey::eventDate}}, {{PlayEventKey::parentHistory}}}},
            {.name = "Achievement",
             .properties = {{"dates", Type::binaryData},
                            {"identifier", Type::string},
                            {"tier", Type::integer}},
             .indexes = {{{AchievementKey::identifier}}}}});
    return model;
}

StoreFormat nerindaStoreFormat() {
    // "Tavr" as four bytes.
    return {.applicationID = 0x54617672,
            .version = 1,
            .programName = "Tavrion",
            .safetyCopies = "backups"};
}

}  // namespace tavrion
