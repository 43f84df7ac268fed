#include "library/EntitySections.h"

#include "kit/RVAlertManager.h"
#include "platform/foundation/NSLocalizedString.h"

namespace tavrion::EntitySections {

namespace {

std::string sortTypeKey(EntitySection section) {
    return sortPreferenceKeyForSection(section) + ".sortType";
}

std::string reverseKey(EntitySection section) {
    return sortPreferenceKeyForSection(section) + ".reverse";
}

}  // namespace

std::string titleForSection(EntitySection section) {
    switch (section) {
        case EntitySection::statistics:
            return {};
        case EntitySection::recentActivity:
            return NSLocalizedString("Recent Activity");
        case EntitySection::artists:
            return NSLocalizedString("Artists");
        case EntitySection::albums:
            return NSLocalizedString("Albums");
        case EntitySection::songs:
            return NSLocalizedString("Songs");
    }
    return {};
}

std::string sortPreferenceKeyForSection(EntitySection section) {
    switch (section) {
        case EntitySection::artists:
            return "artist";
        case EntitySection::albums:
            return "album";
        case EntitySection::songs:
            return "song";
        default:
            return {};
    }
}

std::vector<std::string> sortTitlesForSection(EntitySection /*section*/,
                                              const MPMediaEntity& page) {
    const bool isTrackOrder =
        page.playlist().has_value() || page.groupingType() == MPMediaGrouping::album;
    return {NSLocalizedString(isTrackOrder ? "Track Order" : "Alphabetical"),
            NSLocalizedString("Play Count"),
            NSLocalizedString("Last Played"),
            NSLocalizedString("Time Listened"),
            NSLocalizedString("Date Added"),
            NSLocalizedString("Release Date")};
}

RVSortType sortTypeForSection(EntitySection section) {
    return RVAlertManager::storedValueForKey(sortTypeKey(section));
}

bool reverseForSection(EntitySection section) {
    return RVAlertManager::storedValueForKey(reverseKey(section)) != 0;
}

EntitySort sortForSection(EntitySection section) {
    return {sortTypeForSection(section), reverseForSection(section)};
}

void storeSort(const EntitySort& sort, EntitySection section) {
    RVAlertManager::storeValue(sort.type, sortTypeKey(section));
    RVAlertManager::storeValue(sort.reverse ? 1 : 0, reverseKey(section));
}

EntitySort chosenSort(const EntitySort& current, RVSortType chosen) {
    return {chosen, chosen == current.type && !current.reverse};
}

}  // namespace tavrion::EntitySections
