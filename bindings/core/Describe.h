// Writes a class into the description of the interface, from the library's own functions.
#pragma once

#include <array>
#include <functional>
#include <initializer_list>

#include "bindings/core/Convert.h"

namespace tq::bindings {

[[nodiscard]] inline Parameter required(const char* name) {
    return {name, false, {}, nullptr};
}
[[nodiscard]] inline Parameter optional(const char* name, Value fallback) {
    return {name, true, std::move(fallback), nullptr};
}

namespace detail {

template <class... T>
struct Types {};

template <class F>
struct Signature;
template <class R, class... A>
struct Signature<R (*)(A...)> {
    using Result = R;
    using Arguments = Types<A...>;
};
template <class R, class C, class... A>
struct Signature<R (C::*)(A...)> : Signature<R (*)(C&, A...)> {};
template <class R, class C, class... A>
struct Signature<R (C::*)(A...) const> : Signature<R (*)(const C&, A...)> {};

/// How a thunk gets an argument: `Call&` as it is, anything else from the script in order.
template <class A>
inline constexpr bool isCall = std::is_same_v<A, Call&>;

template <class A>
decltype(auto) argumentOf(Call& call, std::size_t index) {
    using Plain = std::remove_cvref_t<A>;
    if constexpr (isCall<A>)
        return static_cast<Call&>(call);
    else if constexpr (std::is_same_v<A, Plain&> && std::is_class_v<Plain>) {
        expectChangeable(*std::get<ObjectRef>(call.argument(index).content));
        return Convert<Plain>::from(call.argument(index));
    } else
        return Convert<std::remove_cvref_t<A>>::from(call.argument(index));
}

/// The position of each among those that come from the script.
template <class... A>
constexpr std::array<std::size_t, sizeof...(A) + 1> positions() {
    std::array<std::size_t, sizeof...(A) + 1> result{};
    const bool fromScript[] = {!isCall<A>..., false};
    for (std::size_t i = 0; i < sizeof...(A); ++i)
        result[i + 1] = result[i] + (fromScript[i] ? 1 : 0);
    return result;
}

template <auto F, class R, class... Self>
struct Invoke {
    template <class... A, std::size_t... I>
    static void run(Call& call, Types<A...>, std::index_sequence<I...>, Self&... self) {
        constexpr auto at = positions<A...>();
        if constexpr (std::is_void_v<R>)
            std::invoke(F, self..., argumentOf<A>(call, at[I])...);
        else
            call.result = Convert<std::remove_cvref_t<R>>::to(
                std::invoke(F, self..., argumentOf<A>(call, at[I])...), call);
    }
};

template <auto F, class R, class... A>
void callFunction(Call& call, Types<A...> arguments) {
    Invoke<F, R>::run(call, arguments, std::index_sequence_for<A...>());
}

template <class T, auto F, class R, class Self, class... A>
void callMethod(Call& call, Types<Self, A...>) {
    T& self = *static_cast<T*>(call.self().native);
    Invoke<F, R, T>::run(call, Types<A...>(), std::index_sequence_for<A...>(), self);
}

template <class... A>
void setTypes(Member& member, Types<A...>) {
    auto parameter = member.parameters.begin();
    [[maybe_unused]] const auto set = [&](const Type* type) {
        if (type != nullptr && parameter != member.parameters.end())
            (parameter++)->type = type;
    };
    [[maybe_unused]] const auto typeOf = []<class B>(std::type_identity<B>) -> const Type* {
        if constexpr (isCall<B>)
            return nullptr;
        else
            return &Convert<std::remove_cvref_t<B>>::type();
    };
    (set(typeOf(std::type_identity<A>())), ...);
}

template <class Self, class... A>
Types<A...> withoutSelf(Types<Self, A...>) {
    return {};
}

template <class Self, class... A>
constexpr bool takesToChange(Types<Self, A...>) {
    return !std::is_const_v<std::remove_reference_t<Self>>;
}

template <class R>
const Type* resultType() {
    if constexpr (std::is_void_v<R>)
        return &plainType<Type::Kind::None>();
    else
        return &Convert<std::remove_cvref_t<R>>::type();
}

} // namespace detail

/// A function that belongs to no object.
template <auto F>
[[nodiscard]] Member function(const char* name, std::initializer_list<Parameter> parameters,
                              const char* doc, Mode mode = Mode::Quick) {
    using Signature = detail::Signature<decltype(F)>;
    Member member;
    member.name = name;
    member.doc = doc;
    member.kind = Member::Kind::Static;
    member.mode = mode;
    member.parameters = parameters;
    member.result = detail::resultType<typename Signature::Result>();
    member.call = [](Call& call) {
        detail::callFunction<F, typename Signature::Result>(call, typename Signature::Arguments());
    };
    detail::setTypes(member, typename Signature::Arguments());
    return member;
}

/// Describes the class `T`:
///
///     Describe<HBSPll>("HBSPll", "clock pll", "PLL", "One PLL of a clock tree.")
///         .property<&HBSPll::getVcoMul>("vcoMul", "Feedback multiplier.")
///         .method<&addPll>("addPll", {required("name")}, "…");
///
/// Functions are members of `T` or take a `T&` first; a `Call&` behind it gets the call. `add`
/// collects the members in their order.
template <class T>
class Describe {
public:
    Describe(const char* name, const char* ensemble, const char* noun, const char* doc)
        : m_info(infoOf<T>()) {
        m_info.name = name;
        m_info.ensemble = ensemble;
        m_info.noun = noun;
        m_info.doc = doc;
    }

    /// "the NOUN …" for messages: `Text` gives the rest.
    template <auto Text>
    Describe& called() {
        m_info.describe = [](const Object& object) {
            if (object.native == nullptr)
                return object.was;
            return "the " + object.type->noun + " " + Text(*static_cast<T*>(object.native));
        };
        return *this;
    }
    /// Scripts may delete it; objects that they made are deleted with the last handle.
    Describe& deletable() {
        m_info.destroy = [](void* native) { delete static_cast<T*>(native); };
        return *this;
    }
    /// `Expect` raises `ScriptError` for one that can't be deleted now.
    template <auto Destroy, auto Expect>
    Describe& deletableBy() {
        m_info.expectDeletable = [](const void* native) { Expect(*static_cast<const T*>(native)); };
        m_info.destroy = [](void* native) { Destroy(static_cast<T*>(native)); };
        return *this;
    }
    Describe& tables(const ScriptTables& tables) {
        m_info.tables = &tables;
        return *this;
    }
    Describe& iterates(const char* items, const char* lookup) {
        m_info.items = items;
        m_info.lookup = lookup;
        return *this;
    }

    template <auto F>
    Describe& constructor(std::initializer_list<Parameter> parameters, const char* doc,
                          Mode mode = Mode::Quick) {
        m_info.constructor = std::make_unique<Member>(function<F>("create", parameters, doc, mode));
        m_info.constructor->owner = &m_info;
        return *this;
    }
    template <auto Get>
    Describe& property(const char* name, const char* doc, Mode mode = Mode::Quick) {
        Member& member = add<Get>(name, {}, doc, mode);
        member.kind = Member::Kind::Property;
        return *this;
    }
    template <auto Get, auto Set>
    Describe& property(const char* name, const char* doc) {
        Member& member = add<Get>(name, {}, doc, Mode::Quick);
        member.kind = Member::Kind::Property;
        member.parameters = {required("value")};
        detail::setTypes(
            member, detail::withoutSelf(typename detail::Signature<decltype(Set)>::Arguments()));
        member.set = [](Call& call) {
            detail::callMethod<T, Set, void>(
                call, typename detail::Signature<decltype(Set)>::Arguments());
        };
        return *this;
    }
    template <auto F>
    Describe& method(const char* name, std::initializer_list<Parameter> parameters, const char* doc,
                     Mode mode = Mode::Quick) {
        add<F>(name, parameters, doc, mode);
        return *this;
    }
    /// The same for a function whose pointer is never null.
    template <auto F>
    Describe& maker(const char* name, std::initializer_list<Parameter> parameters,
                    const char* doc) {
        using Result = typename detail::Signature<decltype(F)>::Result;
        add<F>(name, parameters, doc, Mode::Quick).result =
            &Convert<std::remove_pointer_t<Result>>::type();
        return *this;
    }
    template <auto F>
    Describe& staticMethod(const char* name, std::initializer_list<Parameter> parameters,
                           const char* doc, Mode mode = Mode::Quick) {
        m_info.members.push_back(function<F>(name, parameters, doc, mode));
        m_info.members.back().owner = &m_info;
        return *this;
    }

private:
    template <auto F>
    Member& add(const char* name, std::initializer_list<Parameter> parameters, const char* doc,
                Mode mode) {
        using Signature = detail::Signature<decltype(F)>;
        Member member;
        member.name = name;
        member.doc = doc;
        member.mode = mode;
        member.owner = &m_info;
        member.isChange = detail::takesToChange(typename Signature::Arguments());
        member.parameters = parameters;
        member.result = detail::resultType<typename Signature::Result>();
        member.call = [](Call& call) {
            detail::callMethod<T, F, typename Signature::Result>(call,
                                                                 typename Signature::Arguments());
        };
        detail::setTypes(member, detail::withoutSelf(typename Signature::Arguments()));
        m_info.members.push_back(std::move(member));
        return m_info.members.back();
    }

    ClassInfo& m_info;
};

} // namespace tq::bindings
