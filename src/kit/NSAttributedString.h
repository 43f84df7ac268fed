// Text with symbols in it, as a value that a screen and a terminal can both show.
//
// Queue: any; a value that one owner changes. It is a list of runs: a text, or a picture that
// stands in the line like a letter. Neighbouring texts are one run, and no run is an empty text.
#pragma once

#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "kit/UIImage.h"

namespace tavrion {

class NSAttributedString {
  public:
    using Run = std::variant<std::string, UIImage>;

    NSAttributedString() = default;
    explicit NSAttributedString(std::string_view text) { appendString(text); }
    /// A picture alone.
    static NSAttributedString attributedStringWithAttachment(UIImage image);

    void appendString(std::string_view text);
    void appendAttachment(UIImage image);
    void appendAttributedString(const NSAttributedString& other);

    const std::vector<Run>& runs() const { return runs_; }
    bool isEmpty() const { return runs_.empty(); }
    /// The texts alone, without the blanks that part them from pictures: for those who hear the
    /// screen and for machines.
    std::string textWithoutAttachments() const;

    bool operator==(const NSAttributedString&) const = default;

  private:
    std::vector<Run> runs_;
};

}  // namespace tavrion
