// What a search looks for, and whether a text has it.
//
// Queue: any. Stateless; the order and the letters are those of the plugged region's locale. Absent
// and empty texts and terms find nothing.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/mediaplayer/MPMediaEntity.h"

namespace tavrion {

/// The term without blanks and line breaks around it; what the user typed is not the term yet.
std::string_view trimmedTerm(std::string_view typed);
/// The term cut at every blank and line break. Two in a row have an empty part between them, which
/// no text contains.
std::vector<std::string_view> partsOfTerm(std::string_view term);

/// A term made ready to be looked for in many texts.
class FoldedTerm {
  public:
    explicit FoldedTerm(std::string_view term);
    bool isIn(std::string_view text) const;
    /// Of a text that went through foldedForSearch().
    bool isInFolded(std::string_view folded) const;
    /// Empty when the term can't be found in any text.
    const std::vector<std::string>& parts() const { return parts_; }
    /// The whole term as one part, whatever blanks are in it.
    static FoldedTerm whole(std::string_view term);

  private:
    FoldedTerm() = default;
    std::vector<std::string> parts_;
};

/// Whether the text has every part of the term somewhere, in any order, without regard to case and
/// accents.
bool stringContainsSubstringsOfString(std::string_view string, std::string_view term);

/// The value of the song that stands for the entity; of a playlist its own. Absent is empty.
std::string stringOfEntity(const MPMediaEntity& entity, std::string_view key);

/// Whether the song that stands for an entity has a value at the key path which contains the parts
/// of the term. The term is prepared once.
using EntityTest = std::function<bool(const MPMediaEntity&)>;
EntityTest substringPredicateForKeyPath(std::string_view keyPath, std::string_view term);

}  // namespace tavrion
