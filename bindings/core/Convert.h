// How the types of the library's functions become values of scripts, and back.
#pragma once

#include <concepts>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

#include "bindings/core/ClassInfo.h"
#include "blockmodel/HABMAddrValue.h"

namespace tq::bindings {

/// The description of a class of the library; filled in once, by the file that describes it.
template <class T>
ClassInfo& infoOf() {
    static ClassInfo info;
    return info;
}

/// A plain structure as a record: specialised with `name` and `fields`, a tuple of `field(…)`.
template <class T>
struct RecordOf;
template <class T>
concept IsRecord = requires {
    RecordOf<T>::name;
};

/// An enumeration as texts: specialised with `table`, an array of pairs.
template <class T>
struct TextsOf;
template <class T>
concept HasTexts = requires {
    TextsOf<T>::table;
};

template <class Owner, class T>
struct Field {
    const char* name;
    T Owner::*place;
};
template <class Owner, class T>
constexpr Field<Owner, T> field(const char* name, T Owner::*place) {
    return {name, place};
}

/// A document of values of any shape.
struct Json {
    Value value;
};

/// Each has `type()`, and `to` (a value for the script) or `from` (what the script gave, checked
/// for its type already) or both.
template <class T>
struct Convert;

[[noreturn]] TQ_BINDINGS_EXPORT void raiseArgument(const std::string& text);
/// The shortest decimal text that reads back as the same single-precision number, as a double: the
/// script sees 33.333 and not 33.333000183105469.
[[nodiscard]] TQ_BINDINGS_EXPORT double asWritten(float number);

template <Type::Kind Kind>
const Type& plainType() {
    static const Type type{.kind = Kind, .fields = {}};
    return type;
}

template <>
struct Convert<bool> {
    static const Type& type() { return plainType<Type::Kind::Bool>(); }
    static Value to(bool value, Call&) { return {value}; }
    static bool from(const Value& value) { return std::get<bool>(value.content); }
};

template <std::integral T>
struct Convert<T> {
    static const Type& type() { return plainType<Type::Kind::Int>(); }
    static Value to(T value, Call&) {
        if constexpr (std::is_signed_v<T>)
            return {static_cast<std::int64_t>(value)};
        else
            return {static_cast<std::uint64_t>(value)};
    }
    static T from(const Value& value) {
        if (const auto* wide = std::get_if<std::int64_t>(&value.content))
            return checked(*wide);
        return checked(std::get<std::uint64_t>(value.content));
    }
    static T checked(std::integral auto number) {
        if (!std::in_range<T>(number))
            raiseArgument("expected a whole number from " +
                          std::to_string(std::numeric_limits<T>::min()) + " to " +
                          std::to_string(std::numeric_limits<T>::max()));
        return static_cast<T>(number);
    }
};

template <>
struct Convert<double> {
    static const Type& type() { return plainType<Type::Kind::Float>(); }
    static Value to(double value, Call&) { return {value}; }
    static double from(const Value& value) { return std::get<double>(value.content); }
};

template <>
struct Convert<float> {
    static const Type& type() { return plainType<Type::Kind::Float>(); }
    static Value to(float value, Call&) { return {asWritten(value)}; }
    static float from(const Value& value) {
        const double number = std::get<double>(value.content);
        constexpr auto most = static_cast<double>(std::numeric_limits<float>::max());
        constexpr double infinity = std::numeric_limits<double>::infinity();
        if ((number > most && number != infinity) || (number < -most && number != -infinity))
            raiseArgument("the number is beyond single precision");
        return static_cast<float>(number);
    }
};

template <>
struct Convert<std::string> {
    static const Type& type() { return plainType<Type::Kind::Text>(); }
    static Value to(std::string value, Call&) { return {std::move(value)}; }
    static const std::string& from(const Value& value) {
        return std::get<std::string>(value.content);
    }
};
template <>
struct Convert<const char*> : Convert<std::string> {};
template <>
struct Convert<std::string_view> {
    static const Type& type() { return plainType<Type::Kind::Text>(); }
    static Value to(std::string_view value, Call&) { return {std::string(value)}; }
};

template <HasTexts T>
struct Convert<T> {
    static const Type& type() { return plainType<Type::Kind::Text>(); }
    static Value to(T value, Call&) {
        for (const auto& [known, text] : TextsOf<T>::table)
            if (known == value)
                return {std::string(text)};
        return {std::string("unknown")};
    }
    static T from(const Value& value) {
        const auto& wanted = std::get<std::string>(value.content);
        std::string all;
        for (const auto& [known, text] : TextsOf<T>::table) {
            if (wanted == text)
                return known;
            all += (all.empty() ? "" : ", ") + std::string(text);
        }
        raiseArgument("unknown value \"" + wanted + "\", expected one of: " + all);
    }
};

template <>
struct Convert<HABMAddrValue> {
    static const Type& type() { return plainType<Type::Kind::Address>(); }
    static Value to(const HABMAddrValue& value, Call&) {
        return {Address{value.isValid() ? value.getHexStringValue(0) : std::string()}};
    }
    static HABMAddrValue from(const Value& value) {
        const auto& text = std::get<Address>(value.content).hex;
        const HABMAddrValue address(text);
        if (!address.isValid())
            raiseArgument("\"" + text + "\" is no address or size such as 0xFF00, 4096 or 64K");
        return address;
    }
};

template <>
struct Convert<Json> {
    static const Type& type() { return plainType<Type::Kind::Json>(); }
    static Value to(Json value, Call&) { return std::move(value.value); }
};

/// Objects go as pointers, owned ones as `std::unique_ptr`; they come as references.
template <class T>
requires std::is_class_v<T>
struct Convert<T*> {
    static const Type& type() {
        static const Type type{.kind = Type::Kind::Object,
                               .object = &infoOf<std::remove_const_t<T>>(),
                               .fields = {},
                               .isOptional = true};
        return type;
    }
    static Value to(T* native, Call& call) {
        if (native == nullptr)
            return {};
        using Plain = std::remove_const_t<T>;
        return {Registry::get().wrap(infoOf<Plain>(), const_cast<Plain*>(native), call.root())};
    }
    static T* from(const Value& value) requires std::is_const_v<T> {
        return value.isNone() ? nullptr : &Convert<std::remove_const_t<T>>::from(value);
    }
};

template <class T>
struct Convert<std::unique_ptr<T>> {
    static const Type& type() {
        static const Type type{.kind = Type::Kind::Object, .object = &infoOf<T>(), .fields = {}};
        return type;
    }
    static Value to(std::unique_ptr<T> native, Call& call) {
        if (native == nullptr)
            return {};
        return {Registry::get().adopt(infoOf<T>(), native.release(), std::move(call.needs))};
    }
};

template <class T>
requires std::is_class_v<T> &&(!IsRecord<T>)struct Convert<T> {
    static const Type& type() {
        static const Type type{.kind = Type::Kind::Object, .object = &infoOf<T>(), .fields = {}};
        return type;
    }
    /// A reference to what the root owns, which is never copied.
    static Value to(T& native, Call& call) { return Convert<T*>::to(&native, call); }
    static T& from(const Value& value) {
        const ObjectRef& object = std::get<ObjectRef>(value.content);
        expectUsable(*object);
        return *static_cast<T*>(object->native);
    }
};

template <IsRecord T>
struct Convert<T> {
    static const Type& type() {
        static const Type type = describe();
        return type;
    }
    static Value to(const T& record, Call& call) {
        Dict dict;
        std::apply(
            [&](const auto&... fields) {
                (dict.emplace_back(fields.name, convert(record.*(fields.place), call)), ...);
            },
            RecordOf<T>::fields);
        return {std::move(dict)};
    }

private:
    template <class F>
    static Value convert(const F& value, Call& call) {
        return Convert<F>::to(value, call);
    }
    /// The owner may be a base of the record.
    template <class Owner, class F>
    static Type::Field describeField(const Field<Owner, F>& field) {
        return {field.name, &Convert<F>::type()};
    }
    static Type describe() {
        Type type{.kind = Type::Kind::Record, .record = RecordOf<T>::name, .fields = {}};
        std::apply(
            [&](const auto&... fields) { (type.fields.push_back(describeField(fields)), ...); },
            RecordOf<T>::fields);
        return type;
    }
};

template <class T>
struct ConvertList {
    static const Type& type() {
        using Item = std::remove_cv_t<typename T::value_type>;
        static const Type item = [] {
            Type type = Convert<Item>::type();
            type.isOptional = false; // lists hold no null pointers
            return type;
        }();
        static const Type type{.kind = Type::Kind::Sequence, .element = &item, .fields = {}};
        return type;
    }
    static Value to(const T& items, Call& call) {
        List list;
        list.reserve(items.size());
        for (const auto& item : items) {
            Value value = Convert<typename T::value_type>::to(item, call);
            if constexpr (std::is_pointer_v<typename T::value_type>)
                if (value.isNone())
                    continue;
            list.push_back(std::move(value));
        }
        return {std::move(list)};
    }
    static T from(const Value& value) {
        T items;
        for (const Value& item : std::get<List>(value.content))
            items.insert(items.end(), Convert<typename T::value_type>::from(item));
        return items;
    }
};
template <class T>
struct Convert<std::vector<T>> : ConvertList<std::vector<T>> {};
template <class T>
struct Convert<std::set<T>> : ConvertList<std::set<T>> {};

template <class T>
struct Convert<std::map<std::string, T>> {
    static const Type& type() {
        static const Type type{
            .kind = Type::Kind::Mapping, .element = &Convert<T>::type(), .fields = {}};
        return type;
    }
    static Value to(const std::map<std::string, T>& items, Call& call) {
        Dict dict;
        for (const auto& [key, item] : items)
            dict.emplace_back(key, Convert<T>::to(item, call));
        return {std::move(dict)};
    }
    static std::map<std::string, T> from(const Value& value) {
        std::map<std::string, T> items;
        for (const auto& [key, item] : std::get<Dict>(value.content))
            items.insert_or_assign(key, Convert<T>::from(item));
        return items;
    }
};

template <class T>
struct Convert<std::optional<T>> {
    static const Type& type() {
        static const Type type = [] {
            Type optional = Convert<T>::type();
            optional.isOptional = true;
            return optional;
        }();
        return type;
    }
    static Value to(const std::optional<T>& value, Call& call) {
        return value ? Convert<T>::to(*value, call) : Value();
    }
    static std::optional<T> from(const Value& value) {
        if (value.isNone())
            return std::nullopt;
        return Convert<T>::from(value);
    }
};

} // namespace tq::bindings
