// Writes one JSON value piece by piece, so that a long array never stands in memory.
//
// Queue: one caller. Text is UTF-8; bytes that are not are replaced by U+FFFD. Numbers keep all
// their digits; what is not a number is null. The caller nests begin and end calls properly.
#pragma once

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

#include "platform/foundation/NSDate.h"
#include "platform/foundation/Value.h"

namespace tavrion::ctl {

class JsonWriter {
  public:
    explicit JsonWriter(std::FILE* out) : out_(out) {}
    ~JsonWriter() { flush(); }
    JsonWriter(const JsonWriter&) = delete;
    JsonWriter& operator=(const JsonWriter&) = delete;

    JsonWriter& beginObject() { return open('{'); }
    JsonWriter& endObject() { return close('}'); }
    JsonWriter& beginArray() { return open('['); }
    JsonWriter& endArray() { return close(']'); }
    JsonWriter& key(std::string_view name);

    JsonWriter& null();
    JsonWriter& boolean(bool value);
    JsonWriter& integer(std::int64_t value);
    JsonWriter& unsignedInteger(std::uint64_t value);
    JsonWriter& number(double value);
    JsonWriter& text(std::string_view value);
    /// {"iso": ..., "reference": ...}
    JsonWriter& instant(NSDate value);
    JsonWriter& optionalText(const std::optional<std::string_view>& value) {
        return value ? text(*value) : null();
    }
    JsonWriter& optionalInstant(const std::optional<NSDate>& value) {
        return value ? instant(*value) : null();
    }
    /// Data is base64 text.
    JsonWriter& value(const Value& value);

    /// Ends the line after the value and writes out what is held back.
    void finish();

  private:
    JsonWriter& open(char bracket);
    JsonWriter& close(char bracket);
    void separate();
    void appendEscaped(std::string_view text);
    void flush();
    void flushWhenLong();

    std::FILE* out_;
    std::string buffer_;
    bool needsComma_ = false;
};

/// The bytes as base64.
std::string base64(std::string_view bytes);
/// The bytes of a base64 text; absent when it is none.
std::optional<std::string> bytesOfBase64(std::string_view text);

}  // namespace tavrion::ctl
