// What one hard block of the device offers to a design: its pins and its interfaces.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "hardblock/Interface.h"
#include "hardblock/Pin.h"
#include "tq_export.h"

class HBSHardBlockDataMgr;

namespace hardblock {

struct MetadataSource;

/// Owns its interfaces and pins. The pointers that it gives are borrowed and stay valid as long as
/// it lives. Pins, interfaces and port maps refer to each other by name only. Holds no lock: not to
/// be changed from several threads at once.
class TQ_EXPORT HardBlockData {
public:
    /// By name.
    using Interfaces = std::unordered_map<std::string, std::unique_ptr<Interface>>;
    /// In file order.
    using Pins = std::vector<std::unique_ptr<Pin>>;

    /// A hard block without pins and interfaces.
    explicit HardBlockData(const std::string& name);
    ~HardBlockData();
    HardBlockData(const HardBlockData&) = delete;
    HardBlockData& operator=(const HardBlockData&) = delete;

    /// As constructed or set; any text.
    [[nodiscard]] std::string getName() const;
    void setName(const std::string& name);

    /// The interface of that name, made if there is none yet.
    Interface* createInterface(const std::string& name);
    /// The interface created under that name, or null.
    [[nodiscard]] Interface* getInterfaceByName(const std::string& name);
    /// In no defined order.
    [[nodiscard]] Interfaces::iterator getInterfaceStartIterator();
    [[nodiscard]] Interfaces::iterator getInterfaceEndIterator();

    /// Always appends a new pin, even where one of that name exists.
    Pin* createPin(const std::string& name);
    /// In order of creation.
    [[nodiscard]] Pins::iterator getPinsStartIterator();
    [[nodiscard]] Pins::iterator getPinsEndIterator();

private:
    friend class ::HBSHardBlockDataMgr;
    friend struct MetadataSource;

    /// Of all hard blocks. Different ones may be renamed on different threads.
    static std::atomic<std::uint64_t> s_renames;

    std::string m_name;
    Interfaces m_interfaces;
    Pins m_pins;
};

} // namespace hardblock
