#include "kit/NSAttributedString.h"

#include <array>

namespace tavrion {

namespace {

/// The ordinary blank and the narrower one (U+2004) that stands before a mark in a title.
constexpr std::array<std::string_view, 2> blanks{" ", "\u2004"};

std::string_view withoutBlanksBefore(std::string_view text) {
    for (const std::string_view blank : blanks) {
        if (text.starts_with(blank)) {
            return withoutBlanksBefore(text.substr(blank.size()));
        }
    }
    return text;
}

std::string_view withoutBlanksBehind(std::string_view text) {
    for (const std::string_view blank : blanks) {
        if (text.ends_with(blank)) {
            return withoutBlanksBehind(text.substr(0, text.size() - blank.size()));
        }
    }
    return text;
}

}  // namespace

NSAttributedString NSAttributedString::attributedStringWithAttachment(UIImage image) {
    NSAttributedString made;
    made.appendAttachment(std::move(image));
    return made;
}

void NSAttributedString::appendString(std::string_view text) {
    if (text.empty()) {
        return;
    }
    if (!runs_.empty()) {
        if (auto* last = std::get_if<std::string>(&runs_.back())) {
            *last += text;
            return;
        }
    }
    runs_.emplace_back(std::string(text));
}

void NSAttributedString::appendAttachment(UIImage image) {
    runs_.emplace_back(std::move(image));
}

void NSAttributedString::appendAttributedString(const NSAttributedString& other) {
    // A copy, because the other may be this one.
    const std::vector<Run> added = other.runs_;
    for (const Run& run : added) {
        if (const auto* text = std::get_if<std::string>(&run)) {
            appendString(*text);
        } else {
            runs_.push_back(run);
        }
    }
}

std::string NSAttributedString::textWithoutAttachments() const {
    std::string texts;
    for (std::size_t i = 0; i < runs_.size(); ++i) {
        const auto* text = std::get_if<std::string>(&runs_[i]);
        if (text == nullptr) {
            continue;
        }
        std::string_view shown = *text;
        if (i > 0) {
            shown = withoutBlanksBefore(shown);
        }
        if (i + 1 < runs_.size()) {
            shown = withoutBlanksBehind(shown);
        }
        if (!texts.empty() && !shown.empty()) {
            texts += ' ';
        }
        texts += shown;
    }
    return texts;
}

}  // namespace tavrion
