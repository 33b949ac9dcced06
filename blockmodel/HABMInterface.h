// An interface of a block: a bundle of ports through which it reaches others or is reached.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "blockmodel/HABMAddrAperture.h"
#include "tq_export.h"

class HABMBlock;
class HABMInterfaceConnection;
class HABMPortMap;

/// Made by `HABMBlock::createInterface`, owned by its block. A fresh one has an unknown mode. An
/// initiator refers to an address space of its block, a target to a memory map. A reference is a
/// name; an object of that name needn't exist.
class TQ_EXPORT HABMInterface {
public:
    /// The part that an interface has on its bus.
    enum class InterfaceMode {
        Unknown,
        Master,
        Slave,
        MirroredMaster,
        MirroredSlave,
        System,
        Monitor
    };

    HABMInterface(const HABMInterface&) = delete;
    HABMInterface& operator=(const HABMInterface&) = delete;

    /// Unique within the block, never empty.
    [[nodiscard]] const std::string& getInterfaceName() const { return m_name; }
    /// The block that owns it, never null.
    [[nodiscard]] HABMBlock* getParent() { return m_parent; }
    [[nodiscard]] const HABMBlock* getParent() const { return m_parent; }

    /// VLNV of the interface's definition.
    [[nodiscard]] const std::string& getInterfaceVlnv() const { return m_fields.vlnv; }
    void setInterfaceVlnv(const std::string& vlnv) { m_fields.vlnv = vlnv; }

    /// Texts: "master" (or "initiator"), "slave" (or "target"), "mirrored_master",
    /// "mirrored_slave", "system", "monitor"; any other is an unknown mode, which shows as
    /// "unknown".
    [[nodiscard]] static InterfaceMode encodeInterfaceMode(std::string text);
    [[nodiscard]] static std::string decodeInterfaceMode(InterfaceMode mode);
    [[nodiscard]] InterfaceMode getInterfaceMode() const { return m_fields.mode; }
    void setInterfaceMode(const InterfaceMode& mode) { m_fields.mode = mode; }
    /// True for an initiator, that is in the mode "master" alone.
    [[nodiscard]] bool isSourceInterface() const { return m_fields.mode == InterfaceMode::Master; }

    /// Expression that says whether a design has this interface; empty if it always has.
    [[nodiscard]] const std::string& getEnablement() const { return m_fields.enablement; }
    void setEnablement(const std::string& expression) { m_fields.enablement = expression; }

    /// Name of a memory map of the same block.
    [[nodiscard]] const std::string& getMemoryMapRef() const { return m_fields.memoryMapRef; }
    void setMemoryMapRef(const std::string& name) { m_fields.memoryMapRef = name; }
    /// Name of an address space of the same block.
    [[nodiscard]] const std::string& getAddrSpaceRef() const { return m_fields.addrSpaceRef; }
    void setAddrSpaceRef(const std::string& name) { m_fields.addrSpaceRef = name; }

    /// The ranges of memory maps or address spaces that the interface reaches, joined where they
    /// touch by whoever sets them; empty unless set.
    [[nodiscard]] const std::set<HABMAddrAperture>& getApertures() const {
        return m_fields.apertures;
    }
    /// Replaces the apertures; with the flag, adds to them.
    void setApertures(const std::set<HABMAddrAperture>& apertures, const bool& flag);

    /// A new line of the port map; null if the logical port is empty or has one already.
    HABMPortMap* createPortMap(const std::string& logicalPort, const std::string& physicalPort);
    /// The lines of the port map in creation order.
    [[nodiscard]] std::vector<HABMPortMap*> getPortMaps() const;

    /// True if an interface connection anywhere in the design names this interface as source or
    /// target.
    [[nodiscard]] bool hasConnections() const;
    /// The interfaces that lead to this one: the sources of the connections whose target it is, and
    /// so on from each of them. As an interface on the edge of a block is the target of a
    /// connection on one side and the source of one on the other, this walks up and down the
    /// hierarchy. Nearest first; at the same distance in the order of those that they were reached
    /// from, and from the same one by the age of the connections, which starts anew in a copy, in
    /// what is merged in and in a block that was read. Each once, never this one itself. Unresolved
    /// paths are skipped.
    [[nodiscard]] std::vector<HABMInterface*> getSourceInterfaces();
    /// The interfaces that this one leads to, in the same manner.
    [[nodiscard]] std::vector<HABMInterface*> getTargetInterfaces();

private:
    friend class HABMObjectAccess;
    struct Fields {
        std::string vlnv;
        InterfaceMode mode = InterfaceMode::Unknown;
        std::string enablement;
        std::string memoryMapRef;
        std::string addrSpaceRef;
        std::set<HABMAddrAperture> apertures;
    };
    struct Children;

    HABMInterface(HABMBlock* parent, const std::string& name) : m_parent(parent), m_name(name) {}

    HABMBlock* const m_parent;
    const std::string m_name;
    Fields m_fields;
};
