// Feeds any bytes to the reader of library.json: it answers with a choice that it would write and
// read again, or with one line.
#include <cstdint>

#include "fuzz/ScratchFile.h"
#include "session/LibraryChoice.h"

using tavrion::fuzz::require;
using tavrion::fuzz::requireOneLine;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const tavrion::fuzz::ScratchFile file("library.json");
    file.write(data, size);
    const auto read = tavrion::readLibraryChoice(file.path());
    if (!read) {
        requireOneLine(read.error().localizedDescription);
        return 0;
    }
    require(read.value().has_value());
    require(tavrion::writeLibraryChoice(file.path(), *read.value()).ok());
    const auto again = tavrion::readLibraryChoice(file.path());
    require(again.ok() && again.value() == read.value());
    return 0;
}
