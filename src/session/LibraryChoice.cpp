#include "session/LibraryChoice.h"

#include <fmt/format.h>

#include <fstream>

#include "platform/foundation/FileReplacement.h"
#include "platform/foundation/JsonText.h"

namespace tavrion {
namespace {

const std::string* textOfMember(const Value& value, const char* name) {
    const auto* members = value.get<Value::Dictionary>();
    const auto found =
        members != nullptr ? members->find(name) : Value::Dictionary::const_iterator();
    return members != nullptr && found != members->end() ? found->second.get<std::string>()
                                                         : nullptr;
}

}  // namespace

Result<std::optional<LibraryChoice>> readLibraryChoice(const std::filesystem::path& file) {
    std::ifstream stream(file);
    if (!stream) {
        return std::optional<LibraryChoice>();
    }
    const std::string text(std::istreambuf_iterator<char>(stream), {});
    const Value choice = JsonText::valueOf(text).value_or(Value());
    const auto* kind = textOfMember(choice, "kind");
    const auto* location = textOfMember(choice, "location");
    if (kind == nullptr || location == nullptr) {
        return NSError{
            fmt::format("{}: the choice of the library can't be read; choose it again with "
                        "tavrionctl library use KIND LOCATION",
                        file.string()),
            {}};
    }
    return std::optional<LibraryChoice>({*kind, *location});
}

Result<void> writeLibraryChoice(const std::filesystem::path& file, const LibraryChoice& choice) {
    const Value::Dictionary members{{"kind", choice.kind}, {"location", choice.location}};
    const std::string text = JsonText::textOf(members, 2) + "\n";
    if (const auto failure = FileReplacement::replace(file, text)) {
        return NSError{
            fmt::format("{}: the file can't be written ({}); check the disk and the permissions",
                        file.string(), failure.message()),
            {}};
    }
    return {};
}

}  // namespace tavrion
