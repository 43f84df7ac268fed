#include "kit/NSDiffableDataSourceSnapshot.h"

#include <algorithm>
#include <utility>

namespace tavrion {

SnapshotItems::SnapshotItems(std::uint32_t kind, std::vector<std::uint32_t> numbers) {
    const std::size_t count = numbers.size();
    items_ = References{
        kind, std::make_shared<const std::vector<std::uint32_t>>(std::move(numbers)), 0, count};
}

std::size_t SnapshotItems::size() const {
    const auto* references = std::get_if<References>(&items_);
    return references != nullptr ? references->count : std::get<std::vector<Value>>(items_).size();
}

Value SnapshotItems::at(std::size_t row) const {
    const auto* references = std::get_if<References>(&items_);
    return references != nullptr ? referenceTo(references->kind, references->numbers()[row])
                                 : std::get<std::vector<Value>>(items_)[row];
}

std::optional<std::size_t> SnapshotItems::find(const Value& identifier) const {
    const auto placeIn = [](const auto& list, const auto& wanted) {
        const auto found = std::find(list.begin(), list.end(), wanted);
        return found == list.end() ? std::nullopt
                                   : std::optional(static_cast<std::size_t>(found - list.begin()));
    };
    const auto* references = std::get_if<References>(&items_);
    if (references == nullptr) {
        return placeIn(std::get<std::vector<Value>>(items_), identifier);
    }
    const auto* reference = identifier.get<ObjectReference>();
    if (reference == nullptr || reference->bits >> 32U != references->kind) {
        return std::nullopt;
    }
    return placeIn(references->numbers(), static_cast<std::uint32_t>(reference->bits));
}

SnapshotItems SnapshotItems::without(std::size_t row) const {
    const auto others = [row](const auto& list) {
        std::vector<std::decay_t<decltype(list[0])>> rest(list.begin(), list.end());
        rest.erase(rest.begin() + static_cast<std::ptrdiff_t>(row));
        return rest;
    };
    const auto* references = std::get_if<References>(&items_);
    return references != nullptr ? SnapshotItems(references->kind, others(references->numbers()))
                                 : SnapshotItems(others(std::get<std::vector<Value>>(items_)));
}

std::size_t NSDiffableDataSourceSnapshot::numberOfItems() const {
    std::size_t count = 0;
    for (const Section& section : sections_) {
        count += section.items->size();
    }
    return count;
}

std::size_t NSDiffableDataSourceSnapshot::numberOfItemsInSection(std::size_t section) const {
    return section < sections_.size() ? sections_[section].items->size() : 0;
}

std::vector<Value> NSDiffableDataSourceSnapshot::sectionIdentifiers() const {
    std::vector<Value> identifiers;
    identifiers.reserve(sections_.size());
    for (const Section& section : sections_) {
        identifiers.push_back(section.identifier);
    }
    return identifiers;
}

std::optional<Value> NSDiffableDataSourceSnapshot::itemIdentifierForIndexPath(
    NSIndexPath indexPath) const {
    if (indexPath.row >= numberOfItemsInSection(indexPath.section)) {
        return std::nullopt;
    }
    return std::optional<Value>(std::in_place,
                                sections_[indexPath.section].items->at(indexPath.row));
}

std::optional<NSIndexPath> NSDiffableDataSourceSnapshot::indexPathForItemIdentifier(
    const Value& identifier) const {
    for (std::size_t section = 0; section < sections_.size(); ++section) {
        if (const auto row = sections_[section].items->find(identifier)) {
            return NSIndexPath{section, *row};
        }
    }
    return std::nullopt;
}

std::vector<Value> NSDiffableDataSourceSnapshot::itemIdentifiersInSection(
    std::size_t section) const {
    std::vector<Value> identifiers;
    for (std::size_t row = 0; row < numberOfItemsInSection(section); ++row) {
        identifiers.push_back(sections_[section].items->at(row));
    }
    return identifiers;
}

std::vector<Value> NSDiffableDataSourceSnapshot::itemIdentifiers() const {
    std::vector<Value> identifiers;
    identifiers.reserve(numberOfItems());
    for (const Section& section : sections_) {
        for (std::size_t row = 0; row < section.items->size(); ++row) {
            identifiers.push_back(section.items->at(row));
        }
    }
    return identifiers;
}

void NSDiffableDataSourceSnapshot::appendSection(Value identifier, SnapshotItems items) {
    sections_.push_back(
        {std::move(identifier), std::make_shared<const SnapshotItems>(std::move(items))});
}

void NSDiffableDataSourceSnapshot::deleteItem(const Value& identifier) {
    if (const auto place = indexPathForItemIdentifier(identifier)) {
        Section& section = sections_[place->section];
        section.items = std::make_shared<const SnapshotItems>(section.items->without(place->row));
    }
}

bool NSDiffableDataSourceSnapshot::operator==(const NSDiffableDataSourceSnapshot& other) const {
    return sectionIdentifiers() == other.sectionIdentifiers() &&
           std::equal(sections_.begin(), sections_.end(), other.sections_.begin(),
                      [](const Section& a, const Section& b) {
                          if (a.items == b.items) {
                              return true;
                          }
                          bool same = a.items->size() == b.items->size();
                          for (std::size_t row = 0; same && row < a.items->size(); ++row) {
                              same = a.items->at(row) == b.items->at(row);
                          }
                          return same;
                      });
}

}  // namespace tavrion
