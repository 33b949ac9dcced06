// Access to the objects of the block model that their classes grant to the model alone.
#pragma once

#include <memory>
#include <new>
#include <type_traits>
#include <utility>

#include "blockmodel/HABMBlock.h"

/// Creates the objects, whose constructors are for their owners alone, and gives access to what
/// they consist of: the fields, which copying and files transfer, and the stores of the objects
/// that they own.
class HABMObjectAccess {
public:
    /// An object and the stores of what it owns, which its class only declares: side by side, as an
    /// allocation of their own would take time. All objects of these classes are created so.
    template <class Object>
    struct WithChildren : Object {
        template <class... Arguments>
        explicit WithChildren(Arguments&&... arguments)
            : Object(std::forward<Arguments>(arguments)...) {}

        typename Object::Children children;
    };

    template <class Object>
    static auto& fieldsOf(Object& object) {
        return object.m_fields;
    }
    template <class Object>
    static auto childrenOf(Object& object) -> typename Object::Children& {
        return static_cast<WithChildren<Object>&>(object).children;
    }
    template <class Object>
    static auto childrenOf(const Object& object) -> const typename Object::Children& {
        return static_cast<const WithChildren<Object>&>(object).children;
    }
    // A block's are parts of what a merge exchanges.
    static auto fieldsOf(HABMBlock& block) -> HABMBlock::Fields&;
    static auto fieldsOf(const HABMBlock& block) -> const HABMBlock::Fields&;
    static auto childrenOf(const HABMBlock& block) -> const HABMBlock::Children&;

    template <class Stored, class... Arguments>
    static void createAt(Stored* place, Arguments&&... arguments) {
        ::new (static_cast<void*>(place)) Stored(std::forward<Arguments>(arguments)...);
    }
    template <class Stored, class... Arguments>
    static std::unique_ptr<Stored> create(Arguments&&... arguments) {
        return std::unique_ptr<Stored>(new Stored(std::forward<Arguments>(arguments)...));
    }
};

/// The type in which an object is created.
template <class Object>
struct HABMStored {
    using Type = Object;
};
template <class Object>
requires(!std::is_same_v<Object, HABMBlock>) && requires(const Object& object) {
    HABMObjectAccess::childrenOf(object);
}
struct HABMStored<Object> {
    using Type = HABMObjectAccess::WithChildren<Object>;
};
