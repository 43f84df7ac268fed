// The outcome of a platform operation that can fail: a value, or an error that says what went wrong
// and what to do.
//
// Queue: any; a value like others. A Result may not be dropped unread: `.ignore()` marks the places
// where the failure is meant to be ignored.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <variant>

#include "platform/foundation/Precondition.h"

namespace tavrion {

/// What went wrong. `localizedDescription` is one line for people; `userInfo` is the detail for the
/// log, possibly empty.
struct NSError {
    std::string localizedDescription;
    std::string userInfo;
};

/// A value of T, or an NSError.
template <class T>
class [[nodiscard]] Result {
  public:
    Result(T value)
        : outcome_(std::in_place_index<0>, std::move(value)) {}  // NOLINT: implicit by design
    Result(NSError error)
        : outcome_(std::in_place_index<1>, std::move(error)) {}  // NOLINT: implicit by design

    bool ok() const { return outcome_.index() == 0; }
    explicit operator bool() const { return ok(); }

    /// Only when ok().
    T& value() & {
        precondition(ok(), "the value of a failed Result was read");
        return std::get<0>(outcome_);
    }
    const T& value() const& {
        precondition(ok(), "the value of a failed Result was read");
        return std::get<0>(outcome_);
    }
    /// By value, so that a loop over the value of a temporary Result does not outlive it.
    T value() && {
        precondition(ok(), "the value of a failed Result was read");
        return std::get<0>(std::move(outcome_));
    }
    /// Only when not ok().
    const NSError& error() const {
        precondition(!ok(), "the error of a good Result was read");
        return std::get<1>(outcome_);
    }
    void ignore() const {}

  private:
    std::variant<T, NSError> outcome_;
};

/// Done, or an NSError.
template <>
class [[nodiscard]] Result<void> {
  public:
    Result() = default;
    Result(NSError error) : error_(std::move(error)) {}  // NOLINT: implicit by design

    bool ok() const { return !error_; }
    explicit operator bool() const { return ok(); }
    const NSError& error() const {
        precondition(error_.has_value(), "the error of a good Result was read");
        return *error_;
    }
    void ignore() const {}

  private:
    std::optional<NSError> error_;
};

}  // namespace tavrion
