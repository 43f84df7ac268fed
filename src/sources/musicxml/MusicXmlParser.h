// Reads the bytes of a Library.xml as they come.
//
// Queue: one caller. Broken input is an error of one line, "FILE, line N: what; what to do"; the
// input may be anything. Declarations of entities are refused, so that a small file cannot unfold
// into a large one.
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "platform/foundation/Result.h"
#include "platform/mediaplayer/MediaSnapshot.h"

namespace tavrion {

class MusicXmlParser {
  public:
    /// `name` stands for the file in errors; `size` is what to expect, in bytes.
    MusicXmlParser(std::string name, std::size_t size);
    ~MusicXmlParser();
    MusicXmlParser(const MusicXmlParser&) = delete;
    MusicXmlParser& operator=(const MusicXmlParser&) = delete;

    /// Room for the next bytes; empty when there is no memory.
    std::span<char> buffer();
    /// Reads the first `count` bytes of the buffer. False once the input is known to be broken.
    bool parseBuffer(std::size_t count);
    /// The end of the input: the library, or what was wrong.
    Result<std::shared_ptr<const MediaSnapshot>> finish();

    /// Reads a whole file that is in memory.
    static Result<std::shared_ptr<const MediaSnapshot>> parse(std::string_view bytes,
                                                              std::string name);

  private:
    struct Reader;
    std::unique_ptr<Reader> reader_;
};

}  // namespace tavrion
