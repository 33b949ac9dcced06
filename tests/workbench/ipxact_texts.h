// Small component descriptions of every edition, and what a reading of one gives.
#pragma once

#include <string>
#include <vector>

#include "support/support.h"
#include "workbench/ipxact/RegisterDescription.h"

namespace ipxact_texts {

inline const char* const kSpirit14 = "http://www.spiritconsortium.org/XMLSchema/SPIRIT/1.4";
inline const char* const kSpirit15 = "http://www.spiritconsortium.org/XMLSchema/SPIRIT/1.5";
inline const char* const k2009 = "http://www.spiritconsortium.org/XMLSchema/SPIRIT/1685-2009";
inline const char* const k2014 = "http://www.accellera.org/XMLSchema/IPXACT/1685-2014";
inline const char* const k2022 = "http://www.accellera.org/XMLSchema/IPXACT/1685-2022";

/// A component in the default namespace, its identification on the first line.
inline std::string component(const std::string& content, const std::string& name = k2014) {
    return "<component xmlns=\"" + name +
           "\"><vendor>v</vendor><library>l</library><name>c</name><version>1</version>\n" +
           content + "</component>\n";
}

/// A memory map with one block of 4 KiB at 0x1000.
inline std::string inBlock(const std::string& registers, const std::string& name = k2014) {
    return component("<memoryMaps><memoryMap><name>m</name><addressBlock><name>b</name>"
                     "<baseAddress>0x1000</baseAddress><range>4096</range><width>32</width>\n" +
                         registers + "</addressBlock></memoryMap></memoryMaps>\n",
                     name);
}

struct Reading {
    tq::ipxact::Component component;
    std::vector<tq::ipxact::ListedRegister> registers;
    tq::DiagnosticList findings;

    [[nodiscard]] std::vector<std::string> ids() const {
        std::vector<std::string> ids;
        for (const tq::Diagnostic& finding : findings.all())
            ids.push_back(finding.id);
        return ids;
    }
    /// "path address" of each register; "?" where it is unknown.
    [[nodiscard]] std::vector<std::string> addresses() const {
        std::vector<std::string> lines;
        for (const auto& entry : registers)
            lines.push_back(entry.path + " " +
                            (entry.address ? tq::ipxact::hexText(*entry.address) : "?"));
        return lines;
    }
};

/// Fills `reading` in place, as its registers point into its component.
inline void read(Reading& reading, const std::string& text) {
    const support::TempDir folder;
    const std::string path = folder.write("r.xml", text);
    reading.component = tq::ipxact::readDescription(path, {}, reading.findings.sink());
    reading.registers = tq::ipxact::listRegisters(reading.component);
}

} // namespace ipxact_texts
