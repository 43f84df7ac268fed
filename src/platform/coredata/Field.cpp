#include "platform/coredata/Field.h"

#include <type_traits>

namespace tavrion {
namespace {

template <class... Handlers>
struct Overloaded : Handlers... {
    using Handlers::operator()...;
};
template <class... Handlers>
Overloaded(Handlers...) -> Overloaded<Handlers...>;

}  // namespace

FieldView viewOf(const Field& field) {
    return std::visit(
        [](const auto& value) -> FieldView {
            if constexpr (std::is_same_v<std::decay_t<decltype(value)>, std::string>) {
                return std::string_view(value);
            } else {
                return value;
            }
        },
        field);
}

Field fieldOf(const FieldView& view) {
    return std::visit(
        [](const auto& value) -> Field {
            if constexpr (std::is_same_v<std::decay_t<decltype(value)>, std::string_view>) {
                return std::string(value);
            } else {
                return value;
            }
        },
        view);
}

bool readsAsZero(NSAttributeType type) {
    return type == NSAttributeType::boolean || type == NSAttributeType::integer ||
           type == NSAttributeType::real;
}

FieldView unsetView(NSAttributeType type) {
    switch (type) {
        case NSAttributeType::boolean:
            return false;
        case NSAttributeType::integer:
            return std::int64_t{0};
        case NSAttributeType::real:
            return 0.0;
        default:
            return std::monostate();
    }
}

Value valueOf(const FieldView& view, NSAttributeType type, EntityIndex destination) {
    return std::visit(
        Overloaded{
            [](std::monostate) { return Value(); }, [](bool value) { return Value(value); },
            [](std::int64_t value) { return Value(value); },
            [](double value) { return Value(value); }, [](NSDate value) { return Value(value); },
            [type](std::string_view value) {
                return type == NSAttributeType::binaryData ? Value(NSData{std::string(value)})
                                                           : Value(std::string(value));
            },
            [destination](Link link) {
                return Value(NSManagedObjectID{destination, link.counter}.reference());
            }},
        view);
}

bool fieldEquals(const FieldView& view, const Value& value, EntityIndex destination) {
    // The common cases without a copy of the text; everything else by the general rule.
    if (const auto* text = std::get_if<std::string_view>(&view)) {
        if (const auto* wanted = value.get<std::string>()) {
            return *text == *wanted;
        }
        if (const auto* wanted = value.get<NSData>()) {
            return *text == wanted->bytes;
        }
        return false;
    }
    if (std::holds_alternative<std::monostate>(view)) {
        return value.isAbsent();
    }
    return valueOf(view, NSAttributeType::string, destination) == value;
}

}  // namespace tavrion
