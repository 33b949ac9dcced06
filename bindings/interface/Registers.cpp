// Register description files.

#include <memory>

#include "bindings/core/Describe.h"
#include "bindings/core/Invoke.h"
#include "bindings/interface/Parts.h"
#include "regfile/HBSRegistersMap.h"
#include "workbench/registers/RegisterReport.h"

namespace tq::bindings {

using hbs::HBSRegister;
using hbs::HBSRegistersMap;

namespace {

std::unique_ptr<HBSRegistersMap> parseFile(const std::string& path) {
    return listRegisters(path, "*", messageSink()).map;
}

std::string countOf(const HBSRegistersMap& map) {
    return "of " + std::to_string(map.getRegisters().size()) + " registers";
}

std::string nameOfRegister(const HBSRegister& hbsRegister) {
    return hbsRegister.getName();
}

HBSRegister* getRegister(HBSRegistersMap& map, const std::string& name) {
    HBSRegister* const found = map.getRegister(name);
    if (found == nullptr)
        throw ScriptError(Failure::Kind::NotFound, "there is no register \"" + name + "\"");
    return found;
}

/// The library writes "0X" in front of the digits, and nothing else for 0.
HABMAddrValue addressOf(const HBSRegister& hbsRegister) {
    const std::string& offset = hbsRegister.getOffset();
    return HABMAddrValue(offset == "0X" ? "0" : offset);
}

} // namespace

void describeRegisters(Interface& interface) {
    Describe<HBSRegistersMap>("HBSRegistersMap", "registers map", "table",
                              "The registers of one register description file.")
        .called<&countOf>()
        .deletable()
        .iterates("registers", "getRegister")
        .property<&HBSRegistersMap::getRegisters>("registers", "The registers in file order.")
        .maker<&getRegister>("getRegister", {required("name")}, "The register of that name.");
    interface.add(infoOf<HBSRegistersMap>());

    using T = HBSRegister;
    Describe<T>("HBSRegister", "registers register", "register",
                "One register of a register description file.")
        .called<&nameOfRegister>()
        .property<&T::getName>("name", "The name as written in the file.")
        .property<&T::getDesc>("desc", "Its description.")
        .property<&T::getFullName>("fullName",
                                   "The memory map's name, \"_\" and its own, in upper case.")
        .property<&T::getOffset>("offset", "The low 32 bits of its address, as text: 0XF1000000.")
        .property<&addressOf>("address", "The same as a number.")
        .property<&T::getAccess>("access", "rw, ro or wo, or empty.")
        .property<&T::getDim>("dim", "How many times it repeats; 0 when it doesn't.");
    interface.add(infoOf<T>());

    Island island{"registers", "Register description files.", {}};
    island.functions.push_back(function<&parseFile>(
        "parseFile", {required("path")},
        "The registers of an IP-XACT file. Messages tell where the reader stopped.", Mode::Slow));
    interface.add(std::move(island));
}

} // namespace tq::bindings
