#include "library/EntityRows.h"

#include <unordered_map>
#include <utility>

#include "library/RVMetadataManager.h"
#include "platform/foundation/Mutex.h"
#include "platform/foundation/NSCalendar.h"
#include "platform/foundation/NSDate+Extended.h"
#include "platform/foundation/NSUserDefaults.h"

namespace tavrion {

namespace {

constexpr std::size_t mostKeptRows = 1000;

/// What the texts of a row depend on besides its entity.
struct Reading {
    NSDate today;
    std::string locale;
    bool isTimeExpanded = false;
    bool operator==(const Reading&) const = default;

    static Reading current() {
        return {
            Extended::startOfDay(NSDate::date()), Port<Regional>::current().locale(),
            NSUserDefaults::standardUserDefaults().boolForKey(RVMetadataManager::expandedTimeKey)};
    }
};

}  // namespace

class EntityRows::KeptRows {
  public:
    template <class Make>
    EntityRow row(std::size_t place, const Make& make) {
        const Reading reading = Reading::current();
        {
            MutexLock lock(mutex_);
            if (reading != reading_ || rows_.size() >= mostKeptRows) {
                rows_.clear();
                reading_ = reading;
            }
            if (const auto found = rows_.find(place); found != rows_.end()) {
                return found->second;
            }
        }
        EntityRow made = make();
        MutexLock lock(mutex_);
        if (reading == reading_) {
            rows_.emplace(place, made);
        }
        return made;
    }

  private:
    Mutex mutex_;
    Reading reading_ TAVRION_GUARDED_BY(mutex_);
    std::unordered_map<std::size_t, EntityRow> rows_ TAVRION_GUARDED_BY(mutex_);
};

EntityRows::EntityRows(std::vector<MPMediaEntity> entities, RVSortType sortType, RowNumbers numbers)
    : entities_(std::make_shared<const std::vector<MPMediaEntity>>(std::move(entities))),
      sortType_(sortType),
      numbers_(numbers),
      kept_(std::make_shared<KeptRows>()) {}

EntityRows EntityRows::ranked(std::vector<MPMediaEntity> entities, RVSortType sortType) {
    const bool isRanked = RVMetadataManager::sortTypeIsRanked(sortType);
    return {std::move(entities), sortType, isRanked ? RowNumbers::places : RowNumbers::none};
}

EntityRows EntityRows::asHits() const {
    EntityRows hits;
    hits.entities_ = entities_;
    return hits;
}

std::optional<std::uint64_t> EntityRows::number(std::size_t place) const {
    const MPMediaItem* song = (*this)[place].item();
    switch (numbers_) {
        case RowNumbers::places:
            return place + 1;
        case RowNumbers::tracks:
            return song == nullptr ? std::nullopt
                                   : std::optional<std::uint64_t>(song->albumTrackNumber());
        case RowNumbers::none:
            break;
    }
    return std::nullopt;
}

EntityRow EntityRows::beginningOfRow(std::size_t place) const {
    const MPMediaEntity& entity = (*this)[place];
    return {entity, RVMetadataManager::titleForMediaEntity(entity, UIFont{1}),
            RVMetadataManager::subtitleForMediaEntity(entity), number(place), NSAttributedString()};
}

EntityRow EntityRows::row(std::size_t place) const {
    EntityRow row = beginningOfRow(place);
    row.property = RVMetadataManager::sortPropertyForMediaEntity(row.entity, sortType_);
    return row;
}

EntityRow EntityRows::keptRow(std::size_t place) const {
    return kept_->row(place, [&] { return row(place); });
}

PicturedRow EntityRows::picturedRow(std::size_t place) const {
    return {keptRow(place), RVMetadataManager::artworkForEntity((*this)[place])};
}

}  // namespace tavrion
