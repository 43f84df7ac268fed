// The one place where a song, a collection, a number or a date becomes something a user reads.
//
// Queue: any; stateless, without a lock. What walks the songs of a collection
// (sortPropertyForMediaEntity) and what reads the disk (artworkForEntity) stays off the main queue.
// Units: seconds. Texts are in the user's language, numbers and dates in the plugged region's
// locale, zone and calendar; the present is the plugged clock's. Absent input reads as "—" or gives
// an absent result; nothing here fails. The user default "TimeListenedFormatExpanded" is read at
// each call that depends on it.
#pragma once

#include <concepts>
#include <cstdint>
#include <optional>
#include <string>

#include "kit/NSAttributedString.h"
#include "library/RVSortType.h"
#include "platform/foundation/NSDate.h"
#include "platform/mediaplayer/MPMediaEntity.h"

namespace tavrion {

class RVMetadataManager {
  public:
    RVMetadataManager() = delete;

    /// Stands for a value that does not exist.
    static constexpr const char* placeholder = "—";
    /// Whether times listened are told in hours, minutes and seconds instead of minutes.
    static constexpr const char* expandedTimeKey = "TimeListenedFormatExpanded";

    // Entities.

    /// With the mark of explicit songs if a font is given, whose size the mark follows. Absent for
    /// the empty entity and for collections that have no title of their own.
    static std::optional<NSAttributedString> titleForMediaEntity(
        const MPMediaEntity& entity, const std::optional<UIFont>& withFont);
    static std::optional<std::string> subtitleForMediaEntity(const MPMediaEntity& entity);
    /// The value at the right of a row: what the list is sorted by.
    static NSAttributedString sortPropertyForMediaEntity(const MPMediaEntity& entity,
                                                         RVSortType forType);
    static UIImage artworkForEntity(const MPMediaEntity& entity);
    /// Marks for favourite, explicit and on this device; possibly empty.
    static NSAttributedString iconsForMediaItem(const MPMediaItem& item);
    static std::string titleForMediaItem(const MPMediaItem& item);
    static std::string albumTitleForMediaItem(const MPMediaItem& item);
    static std::string artistForMediaItem(const MPMediaItem& item);
    static std::string albumArtistForMediaItem(const MPMediaItem& item);
    static std::string genreForMediaItem(const MPMediaItem& item);
    static std::string lastPlayedDateForMediaEntity(const MPMediaEntity& entity);
    static std::string songCountForCollection(const MPMediaItemCollection& collection);
    /// Whether lists of that sort show a rank beside each row.
    static bool sortTypeIsRanked(RVSortType sortType);

    // Numbers and dates.

    /// "Today", "Yesterday", a weekday for the last days and the future, or a date: with its year,
    /// or without it when `compact`.
    static std::string formattedDate(std::optional<NSDate> date, bool compact);
    /// A date with its time of the day.
    static std::string formattedEventDate(std::optional<NSDate> date);
    static std::string formattedTimeFromDate(NSDate date);
    /// An hour of the day, 0 to 23.
    static std::string formattedHour(std::uint64_t hour);
    /// A month with its year.
    static std::string formattedMonth(NSDate date);
    static std::string formattedCount(double number);
    template <std::integral Integer>
    static std::string formattedCount(Integer number) {
        return formattedWholeCount(static_cast<std::int64_t>(number));
    }
    /// How often something was played: "12x".
    static std::string formattedPlays(std::uint64_t count);
    /// Of a fraction: 0.25 is 25%.
    static std::string formattedPercentage(double number);
    /// A time listened, in minutes or, expanded, in its two largest units.
    static std::string formattedDuration(double seconds);
    /// As the clock of a player shows it; hours alone from 100 hours on.
    static std::string formattedPlaybackDuration(double seconds);
    /// Minutes without their unit or, expanded, as the clock of a player.
    static std::string formattedMinutesForDuration(double seconds);

    // Building blocks.

    /// The icon, a blank, the text.
    static NSAttributedString attributedString(const std::string& string, const UIImage& withIcon);
    static UIImage imageWithImage(const UIImage& image, CGSize scaledToSize);

  private:
    static std::string formattedWholeCount(std::int64_t number);
};

}  // namespace tavrion
