// A connection from one port to others.
#pragma once

#include <set>
#include <string>

#include "tq_export.h"

class HABMBlock;

/// Made by `HABMBlock::createPortConnection`, owned by its block. It keeps the paths that it was
/// given, resolved or not, and looks them up when asked. A path that begins with
/// "/" starts at the top block ("/cpu0/clk", "/clk" for a port of the top block); any other starts
/// at the block that owns the connection.
class TQ_EXPORT HABMPortConnection {
public:
    /// Whether the design may change the connection; a fresh one is soft.
    enum class ConnectionType { Soft, Hard };

    HABMPortConnection(const HABMPortConnection&) = delete;
    HABMPortConnection& operator=(const HABMPortConnection&) = delete;

    /// Name under which `HABMBlock::removePortConnection` finds it.
    [[nodiscard]] const std::string& getName() const { return m_name; }
    [[nodiscard]] HABMBlock* getParent() { return m_parent; }
    [[nodiscard]] const HABMBlock* getParent() const { return m_parent; }

    /// Texts: "soft", "hard"; any other is read as the first.
    [[nodiscard]] static ConnectionType encodeConnectionType(std::string text);
    [[nodiscard]] static std::string decodeConnectionType(ConnectionType type);
    [[nodiscard]] ConnectionType getConnectionType() const { return m_fields.type; }
    void setConnectionType(const ConnectionType& type) { m_fields.type = type; }

    /// As it was set, whether or not it leads to an object; empty unless set.
    [[nodiscard]] const std::string& getSourcePath() const { return m_fields.sourcePath; }
    /// True if the path is that of a port now; it is kept either way.
    bool setSourcePath(const std::string& path);
    [[nodiscard]] const std::set<std::string>& getTargetPaths() const {
        return m_fields.targetPaths;
    }
    /// True if each of the paths is that of a port now; they are kept either way.
    bool setTargetPaths(const std::set<std::string>& paths);

    /// True if source and at least one target exist; without the flag, if all targets do, and there
    /// is one.
    [[nodiscard]] bool isValid(const bool& flag) const;

private:
    friend class HABMBlock;
    friend class HABMConnectionIndex;
    friend class HABMObjectAccess;
    struct Fields {
        ConnectionType type = ConnectionType::Soft;
        std::string sourcePath;
        std::set<std::string> targetPaths;
    };

    HABMPortConnection(HABMBlock* parent, const std::string& name)
        : m_parent(parent), m_name(name) {}
    [[nodiscard]] bool leadsToPort(const std::string& path) const;
    void moveEnds(const std::string& before, const std::string& after);

    HABMBlock* const m_parent;
    const std::string m_name;
    Fields m_fields;
};
