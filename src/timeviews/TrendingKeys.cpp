#include "timeviews/TrendingKeys.h"

#include <functional>
#include <utility>

#include "recording/NerindaModel.h"

namespace tavrion {
namespace {

PropertyIndex propertyOf(TrendingLevel level) {
    switch (level) {
        case TrendingLevel::artist:
            return PlaybackHistoryKey::artist;
        case TrendingLevel::album:
            return PlaybackHistoryKey::albumID;
        case TrendingLevel::genre:
            break;
    }
    return PlaybackHistoryKey::genre;
}

}  // namespace

std::uint32_t TextNumbers::numberOf(std::string_view text) {
    if (entries_.size() * 2 >= slots_.size()) {
        grow();
    }
    const std::size_t hash = std::hash<std::string_view>{}(text);
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t slot = hash & mask;; slot = (slot + 1) & mask) {
        const std::uint32_t place = slots_[slot];
        if (place == 0) {
            entries_.push_back({hash, bytes_.size(), text.size()});
            bytes_ += text;
            slots_[slot] = static_cast<std::uint32_t>(entries_.size());
            return slots_[slot] - 1;
        }
        if (entries_[place - 1].hash == hash && this->text(place - 1) == text) {
            return place - 1;
        }
    }
}

void TextNumbers::grow() {
    constexpr std::size_t smallest = 64;
    slots_.assign(slots_.empty() ? smallest : slots_.size() * 2, 0);
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        std::size_t slot = entries_[i].hash & mask;
        while (slots_[slot] != 0) {
            slot = (slot + 1) & mask;
        }
        slots_[slot] = static_cast<std::uint32_t>(i + 1);
    }
}

void TrendingKeys::follow(const TableVersion& songs) {
    std::unordered_map<const TableLeaf*, Leaf*> known;
    for (Leaf& leaf : leaves_) {
        known.emplace(leaf.current, &leaf);
    }
    std::vector<Leaf> leaves(songs.leaves().size());
    for (std::size_t i = 0; i < leaves.size(); ++i) {
        const std::shared_ptr<const TableLeaf>& leaf = songs.leaves()[i];
        const auto found = known.find(leaf.get());
        if (found != known.end() && found->second->leaf.lock() == leaf) {
            leaves[i] = std::move(*found->second);
        } else {
            leaves[i] = {leaf, leaf.get(), {}};
            leaves[i].rows.resize(leaf->size(), {unknown, unknown, unknown});
        }
    }
    leaves_ = std::move(leaves);
}

std::uint32_t TrendingKeys::read(const TableLeaf& leaf, std::size_t row, TrendingLevel level) {
    const FieldView field = leaf.columns[propertyOf(level)]->at(row);
    const auto* text = std::get_if<std::string_view>(&field);
    return text == nullptr ? none : texts_.numberOf(*text) + firstText;
}

}  // namespace tavrion
