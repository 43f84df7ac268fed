#include "platform/coredata/DraftColumn.h"

#include <bit>
#include <cmath>
#include <limits>

#include "platform/foundation/Precondition.h"

namespace tavrion {
namespace {

constexpr std::uint64_t absentText = std::numeric_limits<std::uint64_t>::max();
constexpr std::uint64_t lengthMask = std::numeric_limits<std::uint32_t>::max();

std::uint64_t unsetCell(NSAttributeType type) {
    switch (type) {
        case NSAttributeType::date:
            return std::bit_cast<std::uint64_t>(std::numeric_limits<double>::quiet_NaN());
        case NSAttributeType::string:
        case NSAttributeType::binaryData:
            return absentText;
        default:
            return 0;
    }
}

}  // namespace

DraftColumn::DraftColumn(NSAttributeType type) : type_(type), unset_(unsetCell(type)) {}

void DraftColumn::set(std::size_t row, const FieldView& value) {
    cells_[row] = cellOf(value);
}

std::uint64_t DraftColumn::cellOf(const FieldView& value) {
    switch (type_) {
        case NSAttributeType::boolean: {
            const bool* flag = std::get_if<bool>(&value);
            return flag != nullptr && *flag ? 1 : 0;
        }
        case NSAttributeType::integer: {
            const auto* number = std::get_if<std::int64_t>(&value);
            return number != nullptr ? static_cast<std::uint64_t>(*number) : unset_;
        }
        case NSAttributeType::real: {
            const auto* number = std::get_if<double>(&value);
            return number != nullptr ? std::bit_cast<std::uint64_t>(*number) : unset_;
        }
        case NSAttributeType::date: {
            const auto* date = std::get_if<NSDate>(&value);
            return date != nullptr
                       ? std::bit_cast<std::uint64_t>(date->timeIntervalSinceReferenceDate())
                       : unset_;
        }
        case NSAttributeType::reference: {
            const auto* link = std::get_if<Link>(&value);
            return link != nullptr ? link->counter : unset_;
        }
        case NSAttributeType::string:
        case NSAttributeType::binaryData: {
            const auto* text = std::get_if<std::string_view>(&value);
            if (text == nullptr) {
                return unset_;
            }
            precondition(bytes_.size() + text->size() < lengthMask,
                         "the texts of one unsaved property stay under four gigabytes");
            const std::uint64_t offset = bytes_.size();
            bytes_.append(*text);
            return offset << 32U | text->size();
        }
    }
    return unset_;
}

FieldView DraftColumn::at(std::size_t row) const {
    const std::uint64_t cell = cells_[row];
    switch (type_) {
        case NSAttributeType::boolean:
            return cell != 0;
        case NSAttributeType::integer:
            return static_cast<std::int64_t>(cell);
        case NSAttributeType::real:
            return std::bit_cast<double>(cell);
        case NSAttributeType::date: {
            const auto seconds = std::bit_cast<double>(cell);
            return std::isnan(seconds) ? FieldView()
                                       : NSDate::dateWithTimeIntervalSinceReferenceDate(seconds);
        }
        case NSAttributeType::reference:
            return cell == 0 ? FieldView() : Link{static_cast<RecordCounter>(cell)};
        case NSAttributeType::string:
        case NSAttributeType::binaryData: {
            const std::optional<std::string_view> text = textOf(cell);
            return text ? FieldView(*text) : FieldView();
        }
    }
    return {};
}

std::optional<std::string_view> DraftColumn::textOf(std::uint64_t cell) const {
    return cell == absentText
               ? std::nullopt
               : std::optional(std::string_view(bytes_).substr(cell >> 32U, cell & lengthMask));
}

}  // namespace tavrion
