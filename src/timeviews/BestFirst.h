// The best of many, without sorting them all.
//
// Queue: its owner's. `isWorse(a, b)` is a strict order without equal elements. Who owns: the
// caller owns what elements refer to.
#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace tavrion {

/// Keeps the best elements of those that it is offered.
template <class Element, class IsWorse>
class BestElements {
  public:
    BestElements(std::size_t most, IsWorse isWorse) : most_(most), isWorse_(std::move(isWorse)) {
        kept_.reserve(most);
    }

    bool isFull() const { return kept_.size() == most_; }
    /// Whoever is worse than this one need not be offered; only when full.
    const Element& worst() const { return kept_.front(); }
    void offer(const Element& element) {
        const auto isBetter = [this](const Element& a, const Element& b) { return isWorse_(b, a); };
        if (isFull()) {
            if (!isBetter(element, kept_.front())) {
                return;
            }
            std::pop_heap(kept_.begin(), kept_.end(), isBetter);
            kept_.pop_back();
        }
        kept_.push_back(element);
        std::push_heap(kept_.begin(), kept_.end(), isBetter);
    }
    /// Best first; nothing is left.
    std::vector<Element> take() {
        std::sort(kept_.begin(), kept_.end(),
                  [this](const Element& a, const Element& b) { return isWorse_(b, a); });
        return std::move(kept_);
    }

  private:
    std::size_t most_;
    IsWorse isWorse_;
    /// A heap with the worst in front.
    std::vector<Element> kept_;
};

/// Hands out the best of what is left, one after the other. `pick(most, after)` finds the next few
/// after the last one; as a rule its first call is the only one.
template <class Element, class Pick>
class BestFirst {
  public:
    BestFirst(std::size_t most, Pick pick) : most_(most), pick_(std::move(pick)) {}

    /// Null when nothing is left. Valid until the next call.
    const Element* next() {
        if (place_ == batch_.size() && !isAtEnd_) {
            std::vector<Element> more = pick_(most_, batch_.empty() ? nullptr : &batch_.back());
            isAtEnd_ = more.size() < most_;
            batch_ = std::move(more);
            place_ = 0;
            most_ *= 4;
        }
        return place_ < batch_.size() ? &batch_[place_++] : nullptr;
    }

  private:
    std::size_t most_;
    Pick pick_;
    std::vector<Element> batch_;
    std::size_t place_ = 0;
    bool isAtEnd_ = false;
};

template <class Element, class Pick>
BestFirst<Element, Pick> bestFirst(std::size_t most, Pick pick) {
    return BestFirst<Element, Pick>(most, std::move(pick));
}

}  // namespace tavrion
