#include "platform/foundation/PropertyListKeys.h"

#include <cstdint>
#include <optional>

namespace tavrion::PropertyList {

namespace {

constexpr std::string_view binaryMagic = "bplist00";
constexpr std::size_t trailerBytes = 32;

/// A binary list: objects, a table of where they are, and a trailer that says where the table is.
/// Whatever points out of the list reads as nothing.
class BinaryList {
  public:
    explicit BinaryList(std::string_view data) : data_(data) {
        const std::size_t trailer = data.size() - trailerBytes;
        offsetBytes_ = static_cast<unsigned char>(data[trailer + 6]);
        referenceBytes_ = static_cast<unsigned char>(data[trailer + 7]);
        objects_ = number(trailer + 8, 8).value_or(0);
        table_ = number(trailer + 24, 8).value_or(0);
    }

    bool hasKeyWithNul() const {
        // Each takes a byte at least; a larger number is a lie.
        for (std::uint64_t object = 0; object < objects_ && object < data_.size(); ++object) {
            if (isDictionaryWithSuchAKey(object)) {
                return true;
            }
        }
        return false;
    }

  private:
    enum Kind : unsigned { integer = 1, ascii = 5, utf16 = 6, dictionary = 0xD };
    struct Object {
        unsigned kind = 0;
        std::uint64_t count = 0;
        /// Of what is counted.
        std::uint64_t begin = 0;
    };

    std::optional<std::uint64_t> number(std::uint64_t at, std::uint64_t bytes) const {
        if (bytes == 0 || bytes > 8 || at > data_.size() || bytes > data_.size() - at) {
            return std::nullopt;
        }
        std::uint64_t value = 0;
        for (std::uint64_t i = 0; i < bytes; ++i) {
            value = value << 8U | static_cast<unsigned char>(data_[at + i]);
        }
        return value;
    }

    std::optional<Object> objectAt(std::uint64_t index) const {
        const auto at = number(table_ + index * offsetBytes_, offsetBytes_);
        const auto marker = at ? number(*at, 1) : std::nullopt;
        if (!marker) {
            return std::nullopt;
        }
        Object object{static_cast<unsigned>(*marker >> 4U), *marker & 0xFU, *at + 1};
        // A large count is an integer of its own.
        if (object.count == 0xF) {
            const auto size = number(object.begin, 1);
            const std::uint64_t bytes = size ? std::uint64_t{1} << (*size & 0x7U) : 0;
            const auto count = number(object.begin + 1, bytes);
            if (!count || *size >> 4U != integer) {
                return std::nullopt;
            }
            object.count = *count;
            object.begin += 1 + bytes;
        }
        return object;
    }

    bool isDictionaryWithSuchAKey(std::uint64_t index) const {
        const auto object = objectAt(index);
        if (!object || object->kind != dictionary) {
            return false;
        }
        // The references to the keys come first.
        for (std::uint64_t i = 0; i < object->count; ++i) {
            const auto key = number(object->begin + i * referenceBytes_, referenceBytes_);
            if (!key) {
                return false;
            }
            if (hasNul(*key)) {
                return true;
            }
        }
        return false;
    }

    bool hasNul(std::uint64_t index) const {
        const auto text = objectAt(index);
        const std::uint64_t unit = text && text->kind == utf16 ? 2 : 1;
        if (!text || (text->kind != ascii && text->kind != utf16) ||
            text->count > data_.size() / unit) {
            return false;
        }
        for (std::uint64_t i = 0; i < text->count; ++i) {
            if (number(text->begin + i * unit, unit) == 0) {
                return true;
            }
        }
        return false;
    }

    std::string_view data_;
    std::uint64_t offsetBytes_ = 0;
    std::uint64_t referenceBytes_ = 0;
    std::uint64_t objects_ = 0;
    std::uint64_t table_ = 0;
};

/// In XML no text may have it, be it written out or as a number.
bool xmlHasNul(std::string_view xml) {
    constexpr std::string_view reference = "&#";
    for (std::size_t at = xml.find(reference); at != std::string_view::npos;
         at = xml.find(reference, at)) {
        at += reference.size();
        const std::size_t digits = at < xml.size() && (xml[at] | 0x20) == 'x' ? at + 1 : at;
        const std::size_t end = xml.find_first_not_of('0', digits);
        if (end > digits && end != std::string_view::npos && xml[end] == ';') {
            return true;
        }
    }
    return xml.find('\0') != std::string_view::npos;
}

}  // namespace

bool hasKeyWithNul(std::string_view data) {
    if (!data.starts_with(binaryMagic)) {
        return xmlHasNul(data);
    }
    return data.size() >= binaryMagic.size() + trailerBytes && BinaryList(data).hasKeyWithNul();
}

}  // namespace tavrion::PropertyList
