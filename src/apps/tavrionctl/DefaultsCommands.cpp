#include "apps/tavrionctl/DefaultsCommands.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <charconv>
#include <nlohmann/json.hpp>

#include "apps/tavrionctl/JsonWriter.h"
#include "apps/tavrionctl/Session.h"

namespace tavrion::ctl {
namespace {

/// The value that a piece of JSON stands for; null has none.
Value valueOfJson(const nlohmann::json& json) {
    if (json.is_boolean()) {
        return json.get<bool>();
    }
    if (json.is_number_integer()) {
        return json.get<std::int64_t>();
    }
    if (json.is_number()) {
        return json.get<double>();
    }
    if (json.is_string()) {
        return json.get<std::string>();
    }
    if (json.is_array()) {
        Value::Array array;
        for (const nlohmann::json& element : json) {
            array.push_back(valueOfJson(element));
        }
        return array;
    }
    if (json.is_object()) {
        Value::Dictionary dictionary;
        for (const auto& [name, element] : json.items()) {
            dictionary[name] = valueOfJson(element);
        }
        return dictionary;
    }
    return {};
}

std::optional<Value> boolOf(const std::string& text) {
    if (text == "true" || text == "yes" || text == "YES" || text == "1") {
        return Value(true);
    }
    if (text == "false" || text == "no" || text == "NO" || text == "0") {
        return Value(false);
    }
    return std::nullopt;
}

std::optional<Value> integerOf(const std::string& text) {
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(Value(number))
                                                                    : std::nullopt;
}

std::optional<Value> arrayOf(const std::vector<std::string>& texts) {
    if (texts.size() == 1 && texts.front().starts_with('[')) {
        const nlohmann::json json = nlohmann::json::parse(texts.front(), nullptr, false);
        return json.is_array() ? std::optional(valueOfJson(json)) : std::nullopt;
    }
    return Value(Value::Array(texts.begin(), texts.end()));
}

/// The value of a type and its texts; absent when they do not fit.
std::optional<Value> parsedValue(const std::string& type, const std::vector<std::string>& texts) {
    if (type == "-array") {
        return arrayOf(texts);
    }
    if (texts.size() != 1) {
        return std::nullopt;
    }
    const std::string& text = texts.front();
    if (type == "-bool") {
        return boolOf(text);
    }
    if (type == "-int") {
        return integerOf(text);
    }
    if (type == "-string") {
        return Value(text);
    }
    if (type == "-date") {
        const std::optional<NSDate> date = dateFromIsoText(text);
        return date ? std::optional(Value(*date)) : std::nullopt;
    }
    if (type == "-data") {
        auto bytes = bytesOfBase64(text);
        return bytes ? std::optional(Value(NSData{std::move(*bytes)})) : std::nullopt;
    }
    if (type == "-dict") {
        const nlohmann::json json = nlohmann::json::parse(text, nullptr, false);
        return json.is_object() ? std::optional(valueOfJson(json)) : std::nullopt;
    }
    return std::nullopt;
}

Outcome synchronized(Session& session) {
    const Result<void> written = session.defaults().synchronize();
    return written ? Outcome() : Outcome::failure(written.error().localizedDescription);
}

void printValue(const Value& value) {
    JsonWriter(stdout).value(value).finish();
}

}  // namespace

void DefaultsReadCommand::describe(CLI::App& parent) {
    described_ = parent.add_subcommand("read", "Print one value, or all");
    described_->add_option("KEY", key_, "The key; without it all of them");
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

void DefaultsWriteCommand::describe(CLI::App& parent) {
    described_ = parent.add_subcommand("write",
                                       "KEY TYPE VALUE: store a value; TYPE is -bool, -int, -date, "
                                       "-string, -array, -data (base64) or -dict (JSON)");
    // The types look like options and are none, so that nothing here may be taken for one.
    described_->fallthrough(false);
    described_->prefix_command();
}

Outcome DefaultsWriteCommand::execute(Session& session) {
    const std::vector<std::string> arguments = described_->remaining();
    constexpr std::size_t beforeValue = 2;
    if (arguments.size() < beforeValue) {
        return Outcome::usage("defaults write wants KEY TYPE VALUE");
    }
    const std::optional<Value> value =
        parsedValue(arguments[1], {arguments.begin() + beforeValue, arguments.end()});
    if (!value) {
        return Outcome::usage(fmt::format(
            "'{}' is not a value of type {}; types are -bool, -int, -date, -string, -array, -data "
            "(base64), -dict (JSON)",
            fmt::join(arguments.begin() + beforeValue, arguments.end(), " "), arguments[1]));
    }
    session.defaults().setObject(arguments[0], *value);
    if (session.options().json) {
        printValue(*value);
    }
    return synchronized(session);
}

void DefaultsDeleteCommand::describe(CLI::App& parent) {
    described_ = parent.add_subcommand("delete", "Remove a value");
    described_->add_option("KEY", key_, "The key")->required();
}

Outcome DefaultsDeleteCommand::execute(Session& session) {
    session.defaults().removeObject(key_);
    if (session.options().json) {
        printValue({});
    }
    return synchronized(session);
}

}  // namespace tavrion::ctl
