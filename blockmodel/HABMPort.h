// A port of a block: a wire or a vector of wires.
#pragma once

#include <string>

#include "tq_export.h"

class HABMBlock;

/// Made by `HABMBlock::createPort`, owned by its block. A fresh port is a wire that goes in.
class TQ_EXPORT HABMPort {
public:
    /// A single wire, or a vector with bounds; a fresh port is a wire.
    enum class PortType { Wire, Vector };
    /// As seen from the block; a fresh port is an input.
    enum class PortDirection { In, Out, InOut };

    HABMPort(const HABMPort&) = delete;
    HABMPort& operator=(const HABMPort&) = delete;

    /// Unique within the block, never empty.
    [[nodiscard]] const std::string& getPortName() const { return m_name; }
    /// The block that owns it, never null.
    [[nodiscard]] HABMBlock* getParent() { return m_parent; }
    [[nodiscard]] const HABMBlock* getParent() const { return m_parent; }

    /// Texts: "wire", "vector"; any other is read as the first.
    [[nodiscard]] static PortType encodePortType(std::string text);
    [[nodiscard]] static std::string decodePortType(PortType type);
    [[nodiscard]] PortType getPortType() const { return m_fields.type; }
    void setPortType(const PortType& type) { m_fields.type = type; }
    [[nodiscard]] bool isWirePort() const { return m_fields.type == PortType::Wire; }

    /// Texts: "in", "out", "inout"; any other is read as the first.
    [[nodiscard]] static PortDirection encodePortDirection(std::string text);
    [[nodiscard]] static std::string decodePortDirection(PortDirection direction);
    [[nodiscard]] PortDirection getPortDirection() const { return m_fields.direction; }
    void setPortDirection(const PortDirection& direction) { m_fields.direction = direction; }

    /// Bounds of a vector; 0 unless set.
    [[nodiscard]] unsigned int getPortLeft() const { return m_fields.left; }
    void setPortLeft(const unsigned int& left) { m_fields.left = left; }
    [[nodiscard]] unsigned int getPortRight() const { return m_fields.right; }
    void setPortRight(const unsigned int& right) { m_fields.right = right; }

    /// True if a port connection anywhere in the design names this port as source or target.
    [[nodiscard]] bool hasConnections() const;

private:
    friend class HABMObjectAccess;
    struct Fields {
        PortType type = PortType::Wire;
        PortDirection direction = PortDirection::In;
        unsigned int left = 0;
        unsigned int right = 0;
    };

    HABMPort(HABMBlock* parent, const std::string& name) : m_parent(parent), m_name(name) {}

    HABMBlock* const m_parent;
    const std::string m_name;
    Fields m_fields;
};
