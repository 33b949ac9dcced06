// An interface of a hard block: the module of its access point, its parameters, its port maps.
#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "hardblock/PortMap.h"
#include "tq_export.h"

namespace hardblock {

struct MetadataSource;

/// Owns its port maps; pointers to them stay valid as long as it lives. The order of iteration is
/// not defined.
///
/// The parameters and port maps of the metadata are read when they are first needed, by any
/// operation below that deals with them; operations on a const interface may run on several threads
/// at once all the same. Exhausted memory raises `std::bad_alloc`, and the next call tries again.
///
///     Interface axi("S_AXI");
///     axi.addPortMap("A[7:4]", "X[3:0]");
///     axi.getPortMapByName("A[6]"); // "X[2]"
class TQ_EXPORT Interface {
public:
    /// By the name of the port.
    using PortMaps = std::unordered_map<std::string, std::unique_ptr<PortMap>>;
    /// Values by name.
    using Parameters = std::unordered_map<std::string, std::string>;

    /// An interface without parameters and port maps.
    explicit Interface(const std::string& name);
    ~Interface();
    Interface(const Interface&) = delete;
    Interface& operator=(const Interface&) = delete;

    /// As constructed.
    [[nodiscard]] std::string getName() const;
    /// The module of the access point; empty when none is given.
    [[nodiscard]] std::string getApModuleName() const;
    /// A hard block still finds the interface by the name under which it was created.
    void setName(const std::string& name);
    void setApModuleName(const std::string& name);

    /// Where the parameter is there already, its first value stays.
    void addParameter(const std::string& name, const std::string& value);
    /// The empty text for an unknown parameter.
    [[nodiscard]] std::string getParameterByName(const std::string& name) const;
    [[nodiscard]] Parameters::iterator getParameterStartIterator();
    [[nodiscard]] Parameters::iterator getParameterEndIterator();

    /// Adds one mapping to the port map of the port's bare name. Both texts are "name[L:R]",
    /// "name[N]" or "name".
    void addPortMap(const std::string& port, const std::string& mapped);
    /// The pin bit that one bit of a port is mapped to: A[7:4] asks for bit 4 alone, and A for the
    /// port whole. The empty text for an unknown port and for a bit that no mapping holds.
    [[nodiscard]] std::string getPortMapByName(const std::string& port) const;
    [[nodiscard]] PortMaps::iterator getPortMapStartIterator();
    [[nodiscard]] PortMaps::iterator getPortMapEndIterator();

private:
    friend struct MetadataSource;

    struct Contents {
        PortMaps portMaps; ///< by the port's bare name
        Parameters parameters;
    };

    void addSource(MetadataSource source);
    Contents& contents() const;

    std::string m_name;
    std::string m_apModuleName;
    mutable std::atomic<Contents*> m_contents{nullptr}; ///< owned; made at the first use
    std::vector<MetadataSource> m_sources;              ///< of the contents, in order
};

} // namespace hardblock
