#include "platform/coredata/IndexRun.h"

#include <algorithm>
#include <array>
#include <limits>
#include <span>
#include <utility>

namespace tavrion {
namespace {

/// Leaves are filled up to here when an index is built, and split above the limit when it changes.
constexpr std::size_t filledLeaf = 1536;
constexpr std::size_t largestLeaf = 2048;
/// A rebuilt leaf below this goes together with the one after it.
constexpr std::size_t smallLeaf = 256;
/// From here on counting digits is quicker than comparing.
constexpr std::size_t worthCounting = 4096;

/// By key, digit by digit; entries of one key keep their order.
void sortByKeyDigits(std::vector<IndexRun::Entry>& entries) {
    constexpr unsigned digitBits = 11;
    constexpr std::size_t digits = std::size_t{1} << digitBits;
    constexpr unsigned passes = (64 + digitBits - 1) / digitBits;
    // Digits in which all keys agree need no pass.
    std::uint64_t differing = 0;
    for (const IndexRun::Entry& entry : entries) {
        differing |= entry.key ^ entries.front().key;
    }
    std::vector<IndexRun::Entry> sorted(entries.size());
    std::array<std::uint32_t, digits> places{};
    for (unsigned pass = 0; pass < passes; ++pass) {
        const unsigned shift = pass * digitBits;
        if (((differing >> shift) & (digits - 1)) == 0) {
            continue;
        }
        places.fill(0);
        for (const IndexRun::Entry& entry : entries) {
            ++places[(entry.key >> shift) & (digits - 1)];
        }
        std::uint32_t place = 0;
        for (std::uint32_t& count : places) {
            place += std::exchange(count, place);
        }
        for (const IndexRun::Entry& entry : entries) {
            sorted[places[(entry.key >> shift) & (digits - 1)]++] = entry;
        }
        entries.swap(sorted);
    }
}

void sortEntries(std::vector<IndexRun::Entry>& entries) {
    if (std::is_sorted(entries.begin(), entries.end())) {
        return;
    }
    if (entries.size() >= worthCounting) {
        sortByKeyDigits(entries);
    }
    // Mostly the records of one key came in order.
    if (!std::is_sorted(entries.begin(), entries.end())) {
        std::sort(entries.begin(), entries.end());
    }
}

}  // namespace

/// Collects entries in order and cuts them into leaves.
class IndexRun::LeafWriter {
  public:
    explicit LeafWriter(IndexRun& index) : index_(index) {}

    void add(const Entry& entry) {
        open();
        open_->keys.push_back(entry.key);
        open_->records.push_back(entry.record);
        if (open_->keys.size() == largestLeaf) {
            splitOpen();
        }
    }
    void addRange(const Leaf& leaf, std::size_t first, std::size_t last) {
        while (first < last) {
            open();
            const std::size_t count = std::min(last - first, largestLeaf - open_->keys.size());
            const auto from = static_cast<std::ptrdiff_t>(first);
            const auto to = static_cast<std::ptrdiff_t>(first + count);
            open_->keys.insert(open_->keys.end(), leaf.keys.begin() + from, leaf.keys.begin() + to);
            open_->records.insert(open_->records.end(), leaf.records.begin() + from,
                                  leaf.records.begin() + to);
            first += count;
            if (open_->keys.size() == largestLeaf) {
                splitOpen();
            }
        }
    }
    void share(const std::shared_ptr<const Leaf>& leaf) {
        if (open_ && open_->keys.size() < smallLeaf) {
            addRange(*leaf, 0, leaf->keys.size());
            return;
        }
        close();
        push(leaf);
    }
    /// A leaf of these entries.
    void pushFilled(std::span<const Entry> entries) {
        auto leaf = std::make_shared<Leaf>();
        leaf->keys.reserve(entries.size());
        leaf->records.reserve(entries.size());
        for (const Entry& entry : entries) {
            leaf->keys.push_back(entry.key);
            leaf->records.push_back(entry.record);
        }
        push(std::move(leaf));
    }
    void close() {
        if (open_) {
            push(std::move(open_));
            open_ = nullptr;
        }
    }

  private:
    void open() {
        if (!open_) {
            open_ = std::make_shared<Leaf>();
            open_->keys.reserve(largestLeaf);
            open_->records.reserve(largestLeaf);
        }
    }
    /// Keeps the last part open, so that the next leaf is not a sliver.
    void splitOpen() {
        auto rest = std::make_shared<Leaf>();
        rest->keys.reserve(largestLeaf);
        rest->records.reserve(largestLeaf);
        const auto cut = static_cast<std::ptrdiff_t>(filledLeaf);
        rest->keys.assign(open_->keys.begin() + cut, open_->keys.end());
        rest->records.assign(open_->records.begin() + cut, open_->records.end());
        open_->keys.resize(filledLeaf);
        open_->records.resize(filledLeaf);
        push(std::move(open_));
        open_ = std::move(rest);
    }
    void push(std::shared_ptr<const Leaf> leaf) {
        index_.firsts_.push_back(leaf->at(0));
        index_.size_ += leaf->keys.size();
        index_.leaves_.push_back(std::move(leaf));
    }

    IndexRun& index_;
    std::shared_ptr<Leaf> open_;
};

std::shared_ptr<const IndexRun> IndexRun::build(std::vector<Entry> entries) {
    sortEntries(entries);
    auto index = std::make_shared<IndexRun>();
    LeafWriter writer(*index);
    for (std::size_t first = 0; first < entries.size(); first += filledLeaf) {
        writer.pushFilled(
            std::span(entries).subspan(first, std::min(filledLeaf, entries.size() - first)));
    }
    return index;
}

std::shared_ptr<const IndexRun> IndexRun::changed(std::vector<Entry> removed,
                                                  std::vector<Entry> added) const {
    sortEntries(removed);
    sortEntries(added);
    auto next = std::make_shared<IndexRun>();
    next->leaves_.reserve(leaves_.size() + 1);
    next->firsts_.reserve(leaves_.size() + 1);
    LeafWriter writer(*next);
    auto remove = removed.begin();
    auto add = added.begin();
    constexpr Entry last{std::numeric_limits<std::uint64_t>::max(),
                         std::numeric_limits<RecordCounter>::max()};
    for (std::size_t i = 0; i < leaves_.size(); ++i) {
        const bool isLast = i + 1 == leaves_.size();
        const Entry bound = isLast ? last : firsts_[i + 1];
        const auto concerns = [&](auto position, auto end) {
            return position != end && (isLast || *position < bound);
        };
        const Leaf& leaf = *leaves_[i];
        if (!concerns(remove, removed.end()) && !concerns(add, added.end())) {
            writer.share(leaves_[i]);
            continue;
        }
        // Runs without a change are copied whole.
        std::size_t copied = 0;
        while (concerns(remove, removed.end()) || concerns(add, added.end())) {
            const bool adds =
                concerns(add, added.end()) && (!concerns(remove, removed.end()) || *add < *remove);
            const std::size_t place = lowerBound(leaf, adds ? *add : *remove, copied);
            writer.addRange(leaf, copied, place);
            copied = place;
            if (adds) {
                writer.add(*add++);
            } else {
                if (place < leaf.keys.size() && leaf.at(place) == *remove) {
                    copied = place + 1;
                }
                ++remove;
            }
        }
        writer.addRange(leaf, copied, leaf.keys.size());
    }
    for (; add != added.end(); ++add) {
        writer.add(*add);
    }
    writer.close();
    return next;
}

std::size_t IndexRun::leafOf(const Entry& entry) const {
    const auto after = std::upper_bound(firsts_.begin(), firsts_.end(), entry);
    return after == firsts_.begin() ? 0 : static_cast<std::size_t>(after - firsts_.begin()) - 1;
}

std::size_t IndexRun::lowerBound(const Leaf& leaf, const Entry& entry, std::size_t from) {
    const auto keys = leaf.keys.begin();
    const auto first =
        std::lower_bound(keys + static_cast<std::ptrdiff_t>(from), leaf.keys.end(), entry.key);
    if (first == leaf.keys.end() || *first != entry.key) {
        return static_cast<std::size_t>(first - keys);
    }
    // A key can have thousands of records: the plays of a favourite.
    const auto last = std::upper_bound(first, leaf.keys.end(), entry.key);
    const auto records = leaf.records.begin();
    return static_cast<std::size_t>(
        std::lower_bound(records + (first - keys), records + (last - keys), entry.record) -
        records);
}

std::size_t IndexRun::rankOf(const Entry& entry) const {
    if (leaves_.empty()) {
        return 0;
    }
    const std::size_t leaf = leafOf(entry);
    std::size_t rank = lowerBound(*leaves_[leaf], entry);
    for (std::size_t i = 0; i < leaf; ++i) {
        rank += leaves_[i]->keys.size();
    }
    return rank;
}

std::vector<IndexEntry> IndexRun::entries() const {
    std::vector<Entry> all;
    all.reserve(size_);
    for (const auto& leaf : leaves_) {
        for (std::size_t row = 0; row < leaf->keys.size(); ++row) {
            all.push_back(leaf->at(row));
        }
    }
    return all;
}

IndexRun::Cursor::Cursor(const IndexRun& run, const Entry& entry)
    : run_(run), leaf_(run.leafOf(entry)) {
    if (!isAtEnd()) {
        row_ = lowerBound(*run.leaves_[leaf_], entry);
        skipToLeaf();
    }
}

}  // namespace tavrion
