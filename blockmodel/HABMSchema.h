// The fields and the owned objects of each class of the block model, listed once: writing and
// reading files, copying and comparing follow these lists.
//
// To add a field: add it to `Fields` of the class, with its value in a fresh object, and to the
// schema below, at the place that it is to have in a file. A list with a missing entry doesn't
// compile. A new key, which earlier versions refuse, needs a new version of the format.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

#include "blockmodel/HABMBlockParts.h"
#include "blockmodel/HABMObjectAccess.h"

namespace habm {

template <class Object>
using FieldsOf =
    std::remove_reference_t<decltype(HABMObjectAccess::fieldsOf(std::declval<Object&>()))>;
template <class Object>
using ChildrenOf =
    std::remove_cvref_t<decltype(HABMObjectAccess::childrenOf(std::declval<const Object&>()))>;

/// A field: its key in a file, and its place.
template <class Fields, class Value>
struct Field {
    std::string_view key;
    Value Fields::*place;
};
template <class Fields, class Value>
Field(const char*, Value Fields::*) -> Field<Fields, Value>;

/// A field of an enumeration, with the functions for its texts.
template <class Fields, class Value>
struct Choice {
    std::string_view key;
    Value Fields::*place;
    Value (*encode)(std::string);
    std::string (*decode)(Value);
};
template <class Fields, class Value>
Choice(const char*, Value Fields::*, Value (*)(std::string), std::string (*)(Value))
    -> Choice<Fields, Value>;

/// A store of owned objects: its key, its place, and how the owner creates one of a name; where
/// the objects have no fields, of a name and a value.
template <class Children, class Store, class Create>
struct Owned {
    std::string_view key;
    Store Children::*place;
    Create create;
};
template <class Children, class Store, class Create>
Owned(const char*, Store Children::*, Create) -> Owned<Children, Store, Create>;

/// The fields and the stores of a class, in the order in which a file holds them. A class without
/// a schema is a pair of a name and a value.
template <class Object>
struct Schema;

template <>
struct Schema<HABMPort> {
    using F = FieldsOf<HABMPort>;
    static constexpr std::tuple fields{
        Choice{"type", &F::type, HABMPort::encodePortType, HABMPort::decodePortType},
        Choice{"direction", &F::direction, HABMPort::encodePortDirection,
               HABMPort::decodePortDirection},
        Field{"left", &F::left},
        Field{"right", &F::right},
    };
    static constexpr std::tuple children{};
};

template <>
struct Schema<HABMRegister> {
    using F = FieldsOf<HABMRegister>;
    static constexpr std::tuple fields{
        Field{"offset", &F::offset},
        Field{"width", &F::width},
        Field{"reset", &F::reset},
        Choice{"access", &F::access, HABMRegister::encodeRegisterAccess,
               HABMRegister::decodeRegisterAccess},
        Field{"value", &F::value},
    };
    static constexpr std::tuple children{};
};

template <>
struct Schema<HABMAddrBlock> {
    using F = FieldsOf<HABMAddrBlock>;
    using C = ChildrenOf<HABMAddrBlock>;
    static constexpr std::tuple fields{
        Choice{"type", &F::memoryType, HABMAddrBlock::encodeMemoryType,
               HABMAddrBlock::decodeMemoryType},
        Field{"aperture", &F::aperture},
    };
    static constexpr std::tuple children{
        Owned{"registers", &C::registers,
              [](HABMAddrBlock& owner, const std::string& name) {
                  return owner.createRegister(name);
              }},
    };
};

template <>
struct Schema<HABMMemoryMap> {
    using F = FieldsOf<HABMMemoryMap>;
    using C = ChildrenOf<HABMMemoryMap>;
    static constexpr std::tuple fields{Field{"range", &F::range}};
    static constexpr std::tuple children{
        Owned{"blocks", &C::blocks,
              [](HABMMemoryMap& owner, const std::string& name) {
                  return owner.createAddrBlock(name);
              }},
    };
};

template <>
struct Schema<HABMAddrSegment> {
    using F = FieldsOf<HABMAddrSegment>;
    static constexpr std::tuple fields{
        Choice{"type", &F::memoryType, HABMAddrSegment::encodeMemoryType,
               HABMAddrSegment::decodeMemoryType},
        Field{"aperture", &F::aperture},
    };
    static constexpr std::tuple children{};
};

template <>
struct Schema<HABMAddrSpace> {
    using F = FieldsOf<HABMAddrSpace>;
    using C = ChildrenOf<HABMAddrSpace>;
    static constexpr std::tuple fields{Field{"range", &F::range}};
    static constexpr std::tuple children{
        Owned{"segments", &C::segments,
              [](HABMAddrSpace& owner, const std::string& name) {
                  return owner.createAddrSegment(name);
              }},
    };
};

template <>
struct Schema<HABMInterface> {
    using F = FieldsOf<HABMInterface>;
    using C = ChildrenOf<HABMInterface>;
    static constexpr std::tuple fields{
        Field{"vlnv", &F::vlnv},
        Choice{"mode", &F::mode, HABMInterface::encodeInterfaceMode,
               HABMInterface::decodeInterfaceMode},
        Field{"enable", &F::enablement},
        Field{"memory_map", &F::memoryMapRef},
        Field{"address_space", &F::addrSpaceRef},
        Field{"apertures", &F::apertures},
    };
    static constexpr std::tuple children{
        Owned{"port_maps", &C::portMaps,
              [](HABMInterface& owner, const std::string& name, const std::string& value) {
                  return owner.createPortMap(name, value);
              }},
    };
};

template <>
struct Schema<HABMPortConnection> {
    using F = FieldsOf<HABMPortConnection>;
    static constexpr std::tuple fields{
        Choice{"type", &F::type, HABMPortConnection::encodeConnectionType,
               HABMPortConnection::decodeConnectionType},
        Field{"source", &F::sourcePath},
        Field{"targets", &F::targetPaths},
    };
    static constexpr std::tuple children{};
};

template <>
struct Schema<HABMInterfaceConnection> {
    using F = FieldsOf<HABMInterfaceConnection>;
    static constexpr std::tuple fields{
        Choice{"type", &F::type, HABMInterfaceConnection::encodeConnectionType,
               HABMInterfaceConnection::decodeConnectionType},
        Field{"source", &F::sourcePath},
        Field{"target", &F::targetPath},
    };
    static constexpr std::tuple children{};
};

template <>
struct Schema<HABMAddrAssign> {
    using F = FieldsOf<HABMAddrAssign>;
    static constexpr std::tuple fields{
        Choice{"type", &F::type, HABMAddrAssign::encodeAssignType,
               HABMAddrAssign::decodeAssignType},
        Field{"offset", &F::offset},
        Field{"range", &F::range},
        Field{"source", &F::sourcePath},
        Field{"target", &F::targetPath},
    };
    static constexpr std::tuple children{};
};

template <>
struct Schema<HABMBlock> {
    using F = FieldsOf<HABMBlock>;
    using C = ChildrenOf<HABMBlock>;
    static constexpr std::tuple fields{
        Field{"module", &F::moduleName}, Field{"vlnv", &F::moduleVlnv},
        Field{"enable", &F::enablement}, Field{"base", &F::baseAddress},
        Field{"stub", &F::isStub},
    };
    static constexpr std::tuple children{
        Owned{"parameters", &C::parameters,
              [](HABMBlock& owner, const std::string& name, const std::string& value) {
                  return owner.setParameter(name, value, false);
              }},
        Owned{"attributes", &C::attributes,
              [](HABMBlock& owner, const std::string& name, const std::string& value) {
                  return owner.setAttribute(name, value, false);
              }},
        Owned{"ports", &C::ports,
              [](HABMBlock& owner, const std::string& name) {
                  return owner.createPort(name, false);
              }},
        Owned{
            "memory_maps", &C::memoryMaps,
            [](HABMBlock& owner, const std::string& name) { return owner.createMemoryMap(name); }},
        Owned{
            "address_spaces", &C::addrSpaces,
            [](HABMBlock& owner, const std::string& name) { return owner.createAddrSpace(name); }},
        Owned{"interfaces", &C::interfaces,
              [](HABMBlock& owner, const std::string& name) {
                  return owner.createInterface(name, false);
              }},
        // For an empty name the model would choose one.
        Owned{"port_connections", &C::portConnections,
              [](HABMBlock& owner, const std::string& name) {
                  return name.empty() ? nullptr : owner.createPortConnection(name, false);
              }},
        Owned{"interface_connections", &C::interfaceConnections,
              [](HABMBlock& owner, const std::string& name) {
                  return name.empty() ? nullptr : owner.createInterfaceConnection(name, false);
              }},
        Owned{
            "assigns", &C::addrAssigns,
            [](HABMBlock& owner, const std::string& name) { return owner.createAddrAssign(name); }},
        Owned{"blocks", &C::subBlocks,
              [](HABMBlock& owner, const std::string& name) {
                  return owner.createSubBlock(name, "", false);
              }},
    };
};

/// Converts to every type; see `countMembers`.
struct Anything {
    template <class Type>
    operator Type() const; // never defined, as nothing is evaluated
};

/// The number of members of an aggregate: the most that it can be initialised with.
template <class Aggregate, class... Members>
constexpr std::size_t countMembers() {
    if constexpr (requires { Aggregate{Members{}..., Anything{}}; })
        return countMembers<Aggregate, Members..., Anything>();
    else
        return sizeof...(Members);
}

/// True if the schema of a class lists all that it consists of.
template <class Object>
constexpr bool isComplete() {
    using S = Schema<Object>;
    bool isComplete = std::tuple_size_v<decltype(S::fields)> == countMembers<FieldsOf<Object>>();
    if constexpr (requires { typename ChildrenOf<Object>; })
        isComplete = isComplete &&
                     std::tuple_size_v<decltype(S::children)> == countMembers<ChildrenOf<Object>>();
    return isComplete;
}

/// The second text of a pair.
template <class Pair>
const std::string& valueOf(const Pair& pair) {
    if constexpr (requires { pair.getPhysicalPort(); })
        return pair.getPhysicalPort();
    else
        return pair.getValue();
}

/// False for a pair of a name and a value.
template <class Object>
concept HasFields = requires {
    Schema<Object>::fields;
};

/// The key of the name, where an object has fields.
template <class Object>
constexpr std::string_view kNameKey = std::is_same_v<Object, HABMBlock> ? "instance" : "name";

/// Calls `visit` for each field of a class, in order.
template <class Object, class Visit>
void forEachField(const Visit& visit) {
    static_assert(isComplete<Object>(), "a field or a store is missing in the schema");
    std::apply([&](const auto&... field) { (visit(field), ...); }, Schema<Object>::fields);
}

/// Calls `visit` for each store of owned objects, in order: with its entry, and with the store in
/// each of the given objects of one class.
template <class Visit, class Object, class... Others>
void forEachStore(const Visit& visit, const Object& object, const Others&... others) {
    if constexpr (requires { typename ChildrenOf<Object>; }) {
        const auto visitOne = [&](const auto& owned) {
            visit(owned, HABMObjectAccess::childrenOf(object).*owned.place,
                  HABMObjectAccess::childrenOf(others).*owned.place...);
        };
        std::apply([&](const auto&... owned) { (visitOne(owned), ...); }, Schema<Object>::children);
    }
}

} // namespace habm
