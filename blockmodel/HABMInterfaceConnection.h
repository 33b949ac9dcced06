// A connection from one interface to another.
#pragma once

#include <cstdint>
#include <string>

#include "tq_export.h"

class HABMBlock;
class HABMInterface;

/// Made by `HABMBlock::createInterfaceConnection`, owned by its block. It keeps the paths that it
/// was given, resolved or not, and looks them up when asked. A path that begins
/// with "/" starts at the top block ("/cpu0/M_AXI", "/S_AXI" for an interface of the top block);
/// any other starts at the block that owns the connection. The last name is that of the interface.
class TQ_EXPORT HABMInterfaceConnection {
public:
    /// Whether the design may change the connection; a fresh one is soft.
    enum class ConnectionType { Soft, Hard };

    HABMInterfaceConnection(const HABMInterfaceConnection&) = delete;
    HABMInterfaceConnection& operator=(const HABMInterfaceConnection&) = delete;

    /// Name under which `HABMBlock::removeInterfaceConnection` finds it.
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
    [[nodiscard]] const std::string& getTargetPath() const { return m_fields.targetPath; }
    /// True if the path is that of an interface now; it is kept either way.
    bool setSourcePath(const std::string& path);
    bool setTargetPath(const std::string& path);
    /// The interfaces at the two ends now; null for an unresolved path.
    [[nodiscard]] HABMInterface* getSourceInterface() const {
        return interfaceAt(m_fields.sourcePath);
    }
    [[nodiscard]] HABMInterface* getTargetInterface() const {
        return interfaceAt(m_fields.targetPath);
    }

    /// True if both ends exist.
    [[nodiscard]] bool isValid() const;

private:
    friend class HABMBlock;
    friend class HABMConnectionIndex;
    friend class HABMObjectAccess;
    struct Fields {
        ConnectionType type = ConnectionType::Soft;
        std::string sourcePath;
        std::string targetPath;
    };

    HABMInterfaceConnection(HABMBlock* parent, const std::string& name);
    bool setPath(std::string& end, std::string path);
    [[nodiscard]] HABMInterface* interfaceAt(const std::string& path) const;
    void moveEnds(const std::string& before, const std::string& after);

    HABMBlock* const m_parent;
    const std::string m_name;
    const std::uint64_t m_age; ///< grows from each connection to the next that is made
    Fields m_fields;
};
