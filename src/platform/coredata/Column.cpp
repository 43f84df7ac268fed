#include "platform/coredata/Column.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <iterator>
#include <limits>

namespace tavrion {
namespace {

constexpr double absentDate = std::numeric_limits<double>::quiet_NaN();

template <class T>
const T* alternative(const FieldView& field) {
    return std::get_if<T>(&field);
}

}  // namespace

Column::Column(NSAttributeType type) : type_(type) {
    switch (type) {
        case NSAttributeType::boolean:
            values_ = std::vector<std::uint8_t>();
            break;
        case NSAttributeType::integer:
            values_ = std::vector<std::int64_t>();
            break;
        case NSAttributeType::real:
        case NSAttributeType::date:
            values_ = std::vector<double>();
            break;
        case NSAttributeType::reference:
            values_ = std::vector<RecordCounter>();
            break;
        case NSAttributeType::string:
        case NSAttributeType::binaryData:
            values_ = Texts();
            break;
    }
}

std::size_t Column::size() const {
    return std::visit(
        [](const auto& values) {
            if constexpr (requires { values.ends; }) {
                return values.ends.size();
            } else {
                return values.size();
            }
        },
        values_);
}

std::string_view Column::textAt(const Texts& texts, std::size_t row) const {
    const std::size_t start = row == 0 ? 0 : texts.ends[row - 1];
    return std::string_view(texts.bytes).substr(start, texts.ends[row] - start);
}

FieldView Column::at(std::size_t row) const {
    switch (type_) {
        case NSAttributeType::boolean:
            return std::get<std::vector<std::uint8_t>>(values_)[row] != 0;
        case NSAttributeType::integer:
            return std::get<std::vector<std::int64_t>>(values_)[row];
        case NSAttributeType::real:
            return std::get<std::vector<double>>(values_)[row];
        case NSAttributeType::date: {
            const double seconds = std::get<std::vector<double>>(values_)[row];
            return std::isnan(seconds) ? FieldView()
                                       : NSDate::dateWithTimeIntervalSinceReferenceDate(seconds);
        }
        case NSAttributeType::reference: {
            const RecordCounter counter = std::get<std::vector<RecordCounter>>(values_)[row];
            return counter == 0 ? FieldView() : Link{counter};
        }
        case NSAttributeType::string:
        case NSAttributeType::binaryData: {
            const Texts& texts = std::get<Texts>(values_);
            return texts.absent[row] != 0 ? FieldView() : textAt(texts, row);
        }
    }
    return {};
}

void Column::reserve(std::size_t rows) {
    std::visit(
        [rows](auto& values) {
            if constexpr (requires { values.ends; }) {
                values.ends.reserve(rows);
                values.absent.reserve(rows);
            } else {
                values.reserve(rows);
            }
        },
        values_);
}

void Column::append(const FieldView& field) {
    switch (type_) {
        case NSAttributeType::boolean: {
            const bool* value = alternative<bool>(field);
            std::get<std::vector<std::uint8_t>>(values_).push_back(value != nullptr && *value ? 1
                                                                                              : 0);
            break;
        }
        case NSAttributeType::integer: {
            const std::int64_t* value = alternative<std::int64_t>(field);
            std::get<std::vector<std::int64_t>>(values_).push_back(value != nullptr ? *value : 0);
            break;
        }
        case NSAttributeType::real: {
            const double* value = alternative<double>(field);
            std::get<std::vector<double>>(values_).push_back(value != nullptr ? *value : 0);
            break;
        }
        case NSAttributeType::date: {
            const NSDate* value = alternative<NSDate>(field);
            std::get<std::vector<double>>(values_).push_back(
                value != nullptr ? value->timeIntervalSinceReferenceDate() : absentDate);
            break;
        }
        case NSAttributeType::reference: {
            const Link* value = alternative<Link>(field);
            std::get<std::vector<RecordCounter>>(values_).push_back(
                value != nullptr ? value->counter : 0);
            break;
        }
        case NSAttributeType::string:
        case NSAttributeType::binaryData: {
            const std::string_view* value = alternative<std::string_view>(field);
            appendText(value != nullptr ? std::optional(*value) : std::nullopt);
            break;
        }
    }
}

void Column::appendText(const std::optional<std::string_view>& value) {
    auto& texts = std::get<Texts>(values_);
    if (value) {
        texts.bytes.append(*value);
    }
    texts.ends.push_back(static_cast<std::uint32_t>(texts.bytes.size()));
    texts.absent.push_back(value ? 0 : 1);
}

void Column::appendDrafts(const DraftColumn& drafts, std::size_t first, std::size_t last) {
    const std::span<const std::uint64_t> cells = drafts.cells().subspan(first, last - first);
    std::visit(
        [&](auto& values) {
            using Values = std::decay_t<decltype(values)>;
            if constexpr (std::is_same_v<Values, Texts>) {
                for (const std::uint64_t cell : cells) {
                    appendText(drafts.textOf(cell));
                }
            } else if constexpr (std::is_same_v<Values, std::vector<double>>) {
                std::transform(cells.begin(), cells.end(), std::back_inserter(values),
                               [](std::uint64_t cell) { return std::bit_cast<double>(cell); });
            } else {
                std::transform(cells.begin(), cells.end(), std::back_inserter(values),
                               [](std::uint64_t cell) {
                                   return static_cast<typename Values::value_type>(cell);
                               });
            }
        },
        values_);
}

void Column::appendRange(const Column& other, std::size_t first, std::size_t last) {
    if (const Texts* from = std::get_if<Texts>(&other.values_)) {
        auto& texts = std::get<Texts>(values_);
        const std::size_t start = first == 0 ? 0 : from->ends[first - 1];
        const std::size_t shift = texts.bytes.size() - start;
        const std::size_t end = last == 0 ? 0 : from->ends[last - 1];
        texts.bytes.append(from->bytes, start, end - start);
        for (std::size_t row = first; row < last; ++row) {
            texts.ends.push_back(static_cast<std::uint32_t>(from->ends[row] + shift));
            texts.absent.push_back(from->absent[row]);
        }
        return;
    }
    std::visit(
        [&](auto& values) {
            using Values = std::decay_t<decltype(values)>;
            if constexpr (!std::is_same_v<Values, Texts>) {
                const auto& from = std::get<Values>(other.values_);
                values.insert(values.end(), from.begin() + static_cast<std::ptrdiff_t>(first),
                              from.begin() + static_cast<std::ptrdiff_t>(last));
            }
        },
        values_);
}

}  // namespace tavrion
