// Instances: a definition with a config applied and without what the config disables.

#include "addressing/HBSAddressing.h"

#include "HUTFile.h"
#include "addressing/DataArea.h"
#include "addressing/Enablement.h"
#include "addressing/TclInterpreter.h"
#include "blockmodel/HABM.h"

namespace {

using namespace hbs_addressing;

void writeDebugBlock(const std::string& name, const HABMBlock& block) {
    if (isDebugOn())
        HABMBlock::writeTopBlock(HUTFile(workingFile(name)), block, true);
}

void copyParameters(const HABMBlock& from, HABMBlock& to) {
    for (const HABMGeneric* parameter : from.getGenerics())
        to.setParameter(parameter->getName(), parameter->getValue(), true);
}

void copyRegisterValues(const HABMBlock& from, HABMBlock& to) {
    for (const HABMRegister* reg : from.findRegisters("", true)) {
        const std::string path = HABMPath::get_relative_path(from, reg->getPath());
        if (HABMRegister* const target = to.findRegister(path, true))
            target->setValue(reg->getValue());
    }
}

/// Only the config itself and the direct sub-blocks of its "inst" are looked at.
void applyConfig(const HABMBlock& config, HABMBlock& instance) {
    copyParameters(config, instance);
    const HABMBlock* const settings = config.getSubBlock("inst");
    if (settings == nullptr)
        return;
    for (const HABMBlock* from : settings->getSubBlocks()) {
        HABMBlock* const to = instance.getSubBlock(from->getInstanceName());
        if (to == nullptr)
            continue;
        copyParameters(*from, *to);
        copyRegisterValues(*from, *to);
    }
}

/// Removes what an instance's enablement expressions disable.
class Enabler {
public:
    Enabler(Tcl_Interp* interp, HABMBlock& instance) : m_interp(interp), m_instance(instance) {}

    /// Level by level, down to the second below the top. All expressions of a branch are decided
    /// under the name of its first-level sub-block, which is where they find their registers.
    void walk() {
        removeInterfaces(m_instance, "");
        for (HABMBlock* first : m_instance.getSubBlocks()) {
            const std::string name = first->getInstanceName();
            if (!isEnabled(name, first->getEnablement())) {
                m_instance.removeSubBlock(name);
                continue;
            }
            removeInterfaces(*first, name);
            walkSecondLevel(*first, name);
        }
    }

private:
    bool isEnabled(const std::string& name, const std::string& expression) {
        return evalEnablement(m_interp, &m_instance, name, expression);
    }

    void removeInterfaces(HABMBlock& block, const std::string& name) {
        for (HABMInterface* interface : block.getInterfaces())
            if (!isEnabled(name, interface->getEnablement()))
                block.removeInterface(std::string(interface->getInterfaceName()));
    }

    void walkSecondLevel(HABMBlock& first, const std::string& name) {
        for (HABMBlock* second : first.getSubBlocks()) {
            if (isEnabled(name, second->getEnablement()))
                removeInterfaces(*second, name);
            else
                first.removeSubBlock(std::string(second->getInstanceName()));
        }
    }

    Tcl_Interp* m_interp;
    HABMBlock& m_instance;
};

/// Removes connections and interfaces that lost their ends. Unconnected ports stay: a port's name
/// is used to remove a port connection of the same name.
void prune(HABMBlock& instance) {
    for (HABMInterfaceConnection* connection : instance.findInterfaceConnections("", true))
        if (const std::string name = connection->getName(); !connection->isValid())
            connection->getParent()->removeInterfaceConnection(name);
    for (HABMInterface* interface : instance.getInterfaces())
        if (!interface->hasConnections())
            interface->getParent()->removeInterface(std::string(interface->getInterfaceName()));
    for (HABMPortConnection* connection : instance.findPortConnections("", true))
        if (const std::string name = connection->getName(); !connection->isValid(true))
            connection->getParent()->removePortConnection(name);
    for (HABMPort* port : instance.getPorts())
        if (!port->hasConnections())
            port->getParent()->removePortConnection(port->getPortName());
}

} // namespace

std::unique_ptr<HABMBlock> HBSAddressing::createSubsystemInstance(const HABMBlock& definition,
                                                                  const HABMBlock& config) {
    const std::string& module = config.getModuleName();
    writeDebugBlock(module + "_hbs_config.bmj", config);
    std::unique_ptr<HABMBlock> instance = HABMBlock::cloneTopBlock(definition);
    if (!instance)
        return instance;
    if (const TclInterpreter tcl; tcl.get() != nullptr) {
        applyConfig(config, *instance);
        loadBlockNamespace(tcl.get(), instance.get(), "");
        Enabler(tcl.get(), *instance).walk();
        prune(*instance);
        if (isDebugOn())
            evalHelper(tcl.get(), workingFile("helper.tcl"));
    }
    writeDebugBlock(module + "_hbs_instance.bmj", *instance);
    return instance;
}
