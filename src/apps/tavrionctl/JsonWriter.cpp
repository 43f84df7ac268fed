#include "apps/tavrionctl/JsonWriter.h"

#include <fmt/format.h>

#include <array>
#include <cmath>

namespace tavrion::ctl {
namespace {

/// How many bytes of the text from `i` on make one well-formed UTF-8 character; 0 when none do.
std::size_t characterLength(std::string_view text, std::size_t i) {
    const auto byte = [&](std::size_t k) { return static_cast<unsigned char>(text[k]); };
    const unsigned first = byte(i);
    const std::size_t length = first < 0x80                    ? 1
                               : first >= 0xC2 && first < 0xE0 ? 2
                               : first >= 0xE0 && first < 0xF0 ? 3
                               : first >= 0xF0 && first < 0xF5 ? 4
                                                               : 0;
    if (length == 0 || i + length > text.size()) {
        return 0;
    }
    for (std::size_t k = 1; k < length; ++k) {
        if ((byte(i + k) & 0xC0U) != 0x80U) {
            return 0;
        }
    }
    const bool overlong =
        (first == 0xE0 && byte(i + 1) < 0xA0) || (first == 0xF0 && byte(i + 1) < 0x90);
    const bool surrogate = first == 0xED && byte(i + 1) >= 0xA0;
    const bool beyond = first == 0xF4 && byte(i + 1) >= 0x90;
    return overlong || surrogate || beyond ? 0 : length;
}

constexpr std::string_view base64Digits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

}  // namespace

JsonWriter& JsonWriter::open(char bracket) {
    separate();
    buffer_ += bracket;
    needsComma_ = false;
    return *this;
}

JsonWriter& JsonWriter::close(char bracket) {
    buffer_ += bracket;
    needsComma_ = true;
    flushWhenLong();
    return *this;
}

void JsonWriter::separate() {
    if (needsComma_) {
        buffer_ += ',';
    }
    needsComma_ = true;
}

JsonWriter& JsonWriter::key(std::string_view name) {
    separate();
    appendEscaped(name);
    buffer_ += ':';
    needsComma_ = false;
    return *this;
}

JsonWriter& JsonWriter::null() {
    separate();
    buffer_ += "null";
    return *this;
}

JsonWriter& JsonWriter::boolean(bool value) {
    separate();
    buffer_ += value ? "true" : "false";
    return *this;
}

JsonWriter& JsonWriter::integer(std::int64_t value) {
    separate();
    buffer_ += fmt::format_int(value).c_str();
    return *this;
}

JsonWriter& JsonWriter::unsignedInteger(std::uint64_t value) {
    separate();
    buffer_ += fmt::format_int(value).c_str();
    return *this;
}

JsonWriter& JsonWriter::number(double value) {
    if (!std::isfinite(value)) {
        return null();
    }
    separate();
    buffer_ += fmt::format("{:.17g}", value);
    return *this;
}

JsonWriter& JsonWriter::text(std::string_view value) {
    separate();
    appendEscaped(value);
    flushWhenLong();
    return *this;
}

JsonWriter& JsonWriter::instant(NSDate value) {
    beginObject().key("iso").text(isoTextOfDate(value));
    return key("reference").number(value.timeIntervalSinceReferenceDate()).endObject();
}

JsonWriter& JsonWriter::value(const Value& value) {
    if (const auto* flag = value.get<bool>()) {
        return boolean(*flag);
    }
    if (const auto* whole = value.get<std::int64_t>()) {
        return integer(*whole);
    }
    if (const auto* real = value.get<double>()) {
        return number(*real);
    }
    if (const auto* date = value.get<NSDate>()) {
        return instant(*date);
    }
    if (const auto* string = value.get<std::string>()) {
        return text(*string);
    }
    if (const auto* data = value.get<NSData>()) {
        return text(base64(data->bytes));
    }
    if (const auto* array = value.get<Value::Array>()) {
        beginArray();
        for (const Value& element : *array) {
            this->value(element);
        }
        return endArray();
    }
    if (const auto* dictionary = value.get<Value::Dictionary>()) {
        beginObject();
        for (const auto& [name, element] : *dictionary) {
            key(name).value(element);
        }
        return endObject();
    }
    return null();
}

void JsonWriter::appendEscaped(std::string_view text) {
    buffer_ += '"';
    for (std::size_t i = 0; i < text.size();) {
        const char c = text[i];
        if (c == '"' || c == '\\') {
            buffer_ += '\\';
            buffer_ += c;
            ++i;
        } else if (static_cast<unsigned char>(c) < 0x20) {
            buffer_ += fmt::format("\\u{:04x}", static_cast<unsigned>(c));
            ++i;
        } else if (const std::size_t length = characterLength(text, i); length > 0) {
            buffer_.append(text, i, length);
            i += length;
        } else {
            buffer_ += "\xEF\xBF\xBD";
            ++i;
        }
    }
    buffer_ += '"';
}

void JsonWriter::flushWhenLong() {
    constexpr std::size_t longEnough = 1U << 16U;
    if (buffer_.size() >= longEnough) {
        flush();
    }
}

void JsonWriter::flush() {
    std::fwrite(buffer_.data(), 1, buffer_.size(), out_);
    buffer_.clear();
}

void JsonWriter::finish() {
    buffer_ += '\n';
    flush();
    std::fflush(out_);
}

std::string base64(std::string_view bytes) {
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        std::uint32_t group = 0;
        const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
        for (std::size_t k = 0; k < 3; ++k) {
            group = (group << 8U) | (k < count ? static_cast<unsigned char>(bytes[i + k]) : 0U);
        }
        for (std::size_t k = 0; k < 4; ++k) {
            text += k <= count ? base64Digits[(group >> (18U - 6U * k)) & 63U] : '=';
        }
    }
    return text;
}

std::optional<std::string> bytesOfBase64(std::string_view text) {
    if (text.size() % 4 != 0) {
        return std::nullopt;
    }
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); i += 4) {
        const bool isLast = i + 4 == text.size();
        const std::size_t padding = !isLast                                    ? 0
                                    : text[i + 2] == '=' && text[i + 3] == '=' ? 2
                                    : text[i + 3] == '='                       ? 1
                                                                               : 0;
        std::uint32_t group = 0;
        for (std::size_t k = 0; k < 4; ++k) {
            const std::size_t digit = k >= 4 - padding ? 0 : base64Digits.find(text[i + k]);
            if (digit == std::string_view::npos) {
                return std::nullopt;
            }
            group = (group << 6U) | static_cast<std::uint32_t>(digit);
        }
        for (std::size_t k = 0; k < 3 - padding; ++k) {
            bytes += static_cast<char>((group >> (16U - 8U * k)) & 255U);
        }
    }
    return bytes;
}

}  // namespace tavrion::ctl
