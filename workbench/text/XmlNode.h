// Builds XML documents with pugixml, which leaves out what it finds no memory for.
#pragma once

#include <new>
#include <pugixml.hpp>

namespace tq {

inline void expectMemory(bool isDone) {
    if (!isDone)
        throw std::bad_alloc();
}

/// Adds a child element. Raises `std::bad_alloc`.
inline pugi::xml_node append(pugi::xml_node parent, const char* name) {
    pugi::xml_node child = parent.append_child(name);
    expectMemory(*child.name() != '\0');
    return child;
}

/// Adds an attribute. Raises `std::bad_alloc`.
template <class Value>
pugi::xml_attribute set(pugi::xml_node node, const char* name, const Value& value) {
    pugi::xml_attribute attribute = node.append_attribute(name);
    expectMemory(*attribute.name() != '\0' && attribute.set_value(value));
    return attribute;
}

} // namespace tq
