#include "apps/tavrionctl/DefaultsCommands.h"

#include <fmt/format.h>

#include "apps/tavrionctl/DefaultsValue.h"
#include "apps/tavrionctl/JsonWriter.h"
#include "apps/tavrionctl/Session.h"
#include "platform/foundation/DisplayWidth.h"

namespace tavrion::ctl {
namespace {

Outcome synchronized(Session& session) {
    const Result<void> written = session.defaults().synchronize();
    return written ? Outcome() : Outcome::failure(written.error().localizedDescription);
}

void printValue(const Value& value) {
    JsonWriter(stdout).value(value).finish();
}

}  // namespace

void DefaultsReadCommand::describe(const CommandSyntax& parent) {
    described_ = parent.command("read", "Print one value, or all");
    described_.text("KEY", key_, "The key; without it all of them");
}

Outcome DefaultsReadCommand::execute(Session& session) {
    if (key_.empty()) {
        printValue(session.defaults().dictionaryRepresentation());
        return {};
    }
    const Value value = session.defaults().objectForKey(key_);
    if (value.isAbsent() && !session.options().json) {
        return Outcome::failure("there is no default " + key_ +
                                "; tavrionctl defaults read lists all");
    }
    const auto* text = value.get<std::string>();
    if (text != nullptr && !session.options().json) {
        fmt::print("{}\n", *text);
    } else {
        printValue(value);
    }
    return {};
}

void DefaultsWriteCommand::describe(const CommandSyntax& parent) {
    described_ = parent.command("write",
                                "KEY TYPE VALUE: store a value; TYPE is -bool, -int, -date, "
                                "-string, -array, -data (base64) or -dict (JSON)");
    // The types look like options and are none, so that nothing here may be taken for one.
    described_.takesAllWords();
}

Outcome DefaultsWriteCommand::execute(Session& session) {
    const std::vector<std::string> arguments = described_.allWords();
    constexpr std::size_t beforeValue = 2;
    if (arguments.size() < beforeValue) {
        return Outcome::usage("defaults write wants KEY TYPE VALUE");
    }
    const std::optional<Value> value =
        defaultsValue(arguments[1], {arguments.begin() + beforeValue, arguments.end()});
    if (!value) {
        const std::string text =
            fmt::format("{}", fmt::join(arguments.begin() + beforeValue, arguments.end(), " "));
        return Outcome::usage(fmt::format(
            "'{}' is not a value of type {}; types are -bool, -int, -date, -string, -array, -data "
            "(base64), -dict (JSON)",
            startOfWidth(text.substr(0, text.find('\n')), 60), arguments[1]));
    }
    session.defaults().setObject(arguments[0], *value);
    if (session.options().json) {
        printValue(*value);
    }
    return synchronized(session);
}

void DefaultsDeleteCommand::describe(const CommandSyntax& parent) {
    described_ = parent.command("delete", "Remove a value");
    described_.text("KEY", key_, "The key").required();
}

Outcome DefaultsDeleteCommand::execute(Session& session) {
    session.defaults().removeObject(key_);
    if (session.options().json) {
        printValue({});
    }
    return synchronized(session);
}

}  // namespace tavrion::ctl
