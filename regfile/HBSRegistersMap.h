// The registers of one register description file, by name.
#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "regfile/HBSRegister.h"
#include "tq_export.h"

namespace hbs {

/// What `HBSRegFileParser::parseFile` gives. The registers outlive the map: they are never freed.
class HBSRegistersMap {
public:
    HBSRegistersMap(const HBSRegistersMap&) = delete;
    HBSRegistersMap& operator=(const HBSRegistersMap&) = delete;

    /// The register of exactly that name, as written in the file, or null.
    [[nodiscard]] TQ_EXPORT HBSRegister* getRegister(const std::string& name);

    /// Those that `getRegister` finds, each once, in file order.
    [[nodiscard]] const std::vector<HBSRegister*>& getRegisters() const { return m_inFileOrder; }

private:
    friend class HBSRegFileParser;

    explicit HBSRegistersMap(const std::string& fileName) : m_fileName(fileName) {}

    std::string m_fileName;
    std::unordered_map<std::string, HBSRegister*> m_registers;
    std::vector<HBSRegister*> m_inFileOrder;
};

} // namespace hbs
