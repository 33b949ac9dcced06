// A port of a block: a wire or a vector of wires.
#pragma once

#include <string>

#include "tq_export.h"

class HABMBlock;

/// Made by `HABMBlock::createPort`, owned by its block. A fresh port is a wire that goes in.
class TQ_EXPORT HABMPort {
public:
    enum class PortType { Wire, Vector };
    enum class PortDirection { In, Out, InOut };

    HABMPort(const HABMPort&) = delete;
    HABMPort& operator=(const HABMPort&) = delete;

    [[nodiscard]] const std::string& getPortName() const { return m_name; }
    [[nodiscard]] HABMBlock* getParent() { return m_parent; }
    [[nodiscard]] const HABMBlock* getParent() const { return m_parent; }

    /// Texts: "wire", "vector"; any other is read as the first.
    [[nodiscard]] static PortType encodePortType(std::string text);
    [[nodiscard]] static std::string decodePortType(PortType type);
    [[nodiscard]] PortType getPortType() const { return m_type; }
    void setPortType(const PortType& type) { m_type = type; }
    [[nodiscard]] bool isWirePort() const { return m_type == PortType::Wire; }

    /// Texts: "in", "out", "inout"; any other is read as the first.
    [[nodiscard]] static PortDirection encodePortDirection(std::string text);
    [[nodiscard]] static std::string decodePortDirection(PortDirection direction);
    [[nodiscard]] PortDirection getPortDirection() const { return m_direction; }
    void setPortDirection(const PortDirection& direction) { m_direction = direction; }

    /// Bounds of a vector; 0 unless set.
    [[nodiscard]] unsigned int getPortLeft() const { return m_left; }
    void setPortLeft(const unsigned int& left) { m_left = left; }
    [[nodiscard]] unsigned int getPortRight() const { return m_right; }
    void setPortRight(const unsigned int& right) { m_right = right; }

    /// True if a port connection anywhere in the design names this port as source or target.
    [[nodiscard]] bool hasConnections() const;

private:
    friend class HABMObjectMaker;
    HABMPort(HABMBlock* parent, const std::string& name) : m_parent(parent), m_name(name) {}

    HABMBlock* const m_parent;
    const std::string m_name;
    PortType m_type = PortType::Wire;
    PortDirection m_direction = PortDirection::In;
    unsigned int m_left = 0;
    unsigned int m_right = 0;
};
