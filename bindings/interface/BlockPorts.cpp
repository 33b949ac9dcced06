// The block model: ports, interfaces and what connects them.

#include "bindings/core/Describe.h"
#include "bindings/interface/BlockParts.h"

namespace tq::bindings {

template <>
struct TextsOf<HABMPort::PortType> {
    static constexpr std::array table = {std::pair{HABMPort::PortType::Wire, "wire"},
                                         std::pair{HABMPort::PortType::Vector, "vector"}};
};
template <>
struct TextsOf<HABMPort::PortDirection> {
    static constexpr std::array table = {std::pair{HABMPort::PortDirection::In, "in"},
                                         std::pair{HABMPort::PortDirection::Out, "out"},
                                         std::pair{HABMPort::PortDirection::InOut, "inout"}};
};
template <>
struct TextsOf<HABMInterface::InterfaceMode> {
    using Mode = HABMInterface::InterfaceMode;
    static constexpr std::array table = {std::pair{Mode::Unknown, "unknown"},
                                         std::pair{Mode::Master, "master"},
                                         std::pair{Mode::Slave, "slave"},
                                         std::pair{Mode::MirroredMaster, "mirrored_master"},
                                         std::pair{Mode::MirroredSlave, "mirrored_slave"},
                                         std::pair{Mode::System, "system"},
                                         std::pair{Mode::Monitor, "monitor"}};
};

struct PortMapLine {
    std::string logicalPort;
    std::string physicalPort;
};
template <>
struct RecordOf<PortMapLine> {
    static constexpr const char* name = "PortMapLine";
    static constexpr auto fields = std::tuple{field("logicalPort", &PortMapLine::logicalPort),
                                              field("physicalPort", &PortMapLine::physicalPort)};
};

struct Aperture {
    HABMAddrValue start;
    HABMAddrValue size;
};
template <>
struct RecordOf<Aperture> {
    static constexpr const char* name = "Aperture";
    static constexpr auto fields =
        std::tuple{field("start", &Aperture::start), field("size", &Aperture::size)};
};

namespace {

std::string textOfPort(const HABMPort& port) {
    return pathIn(port.getParent(), port.getPortName());
}
std::string textOfInterface(const HABMInterface& interface) {
    return pathIn(interface.getParent(), interface.getInterfaceName());
}

std::vector<PortMapLine> portMaps(const HABMInterface& interface) {
    const std::vector<HABMPortMap*> map = interface.getPortMaps();
    std::vector<PortMapLine> lines;
    lines.reserve(map.size());
    for (const HABMPortMap* line : map)
        lines.push_back({line->getLogicalPort(), line->getPhysicalPort()});
    return lines;
}
std::vector<Aperture> apertures(const HABMInterface& interface) {
    std::vector<Aperture> all;
    all.reserve(interface.getApertures().size());
    for (const HABMAddrAperture& aperture : interface.getApertures())
        all.push_back({aperture.getStart(), aperture.getSize()});
    return all;
}

} // namespace

void describeBlockPorts(Interface& interface) {
    using P = HABMPort;
    Describe<P>("HABMPort", "model port", "port", "A port of a block.")
        .called<&textOfPort>()
        .property<&P::getPortName>("portName", "The port's name.")
        .property<&P::getPortType, &P::setPortType>("portType", "wire or vector.")
        .property<&P::getPortDirection, &P::setPortDirection>("portDirection", "in, out or inout.")
        .property<&P::getPortLeft, &P::setPortLeft>("portLeft", "Left bound of a vector.")
        .property<&P::getPortRight, &P::setPortRight>("portRight", "Right bound of a vector.")
        .method<&P::hasConnections>("hasConnections", {}, "Whether any connection names it.");
    interface.add(infoOf<P>());

    using I = HABMInterface;
    Describe<I>("HABMInterface", "model interface", "interface", "An interface of a block.")
        .called<&textOfInterface>()
        .property<&I::getInterfaceName>("interfaceName", "The interface's name.")
        .property<&I::getInterfaceVlnv, &I::setInterfaceVlnv>("interfaceVlnv",
                                                              "VLNV of its definition.")
        .property<&I::getInterfaceMode, &I::setInterfaceMode>("interfaceMode",
                                                              "master, slave, and so on.")
        .property<&I::getEnablement, &I::setEnablement>(
            "enablement", "Expression that says whether a design has it.")
        .property<&I::getMemoryMapRef, &I::setMemoryMapRef>("memoryMapRef",
                                                            "Name of a memory map of its block.")
        .property<&I::getAddrSpaceRef, &I::setAddrSpaceRef>(
            "addrSpaceRef", "Name of an address space of its block.")
        .property<&apertures>("apertures", "Its apertures by start.")
        .property<&portMaps>("portMaps", "The lines of its port map.")
        .method<&I::isSourceInterface>("isSourceInterface", {}, "Whether it is an initiator.")
        .method<&I::hasConnections>("hasConnections", {}, "Whether any connection names it.");
    interface.add(infoOf<I>());

    using C = HABMPortConnection;
    Describe<C>("HABMPortConnection", "model portconnection", "port connection",
                "A connection of ports.")
        .called<&nameBelow<C>>()
        .property<&C::getName>("name", "The connection's name.")
        .property<&C::getSourcePath, &C::setSourcePath>("sourcePath", "Path of the source port.")
        .property<&C::getTargetPaths, &C::setTargetPaths>("targetPaths", "Paths of the targets.");
    interface.add(infoOf<C>());

    using D = HABMInterfaceConnection;
    Describe<D>("HABMInterfaceConnection", "model interfaceconnection", "interface connection",
                "A connection of two interfaces.")
        .called<&nameBelow<D>>()
        .property<&D::getName>("name", "The connection's name.")
        .property<&D::getSourcePath, &D::setSourcePath>("sourcePath", "Path of the source.")
        .property<&D::getTargetPath, &D::setTargetPath>("targetPath", "Path of the target.")
        .method<&D::isValid>("isValid", {}, "Whether both ends exist.");
    interface.add(infoOf<D>());
}

} // namespace tq::bindings
