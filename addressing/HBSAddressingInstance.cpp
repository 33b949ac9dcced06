// Instances: a definition with a config applied and without what the config disables.

#include "addressing/HBSAddressing.h"

#include <utility>

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
    Enabler(Tcl_Interp* interp, HABMBlock& instance, std::vector<HBSDecision>* decisions)
        : m_interp(interp), m_instance(instance), m_decisions(decisions) {}

    /// Level by level, down to the second below the top. All expressions of a branch are decided
    /// under the name of its first-level sub-block, which is where they find their registers.
    void walk() {
        removeInterfaces(m_instance, "");
        for (HABMBlock* first : m_instance.getSubBlocks()) {
            const std::string name = first->getInstanceName();
            if (!decide(name, *first)) {
                m_instance.removeSubBlock(name);
                continue;
            }
            removeInterfaces(*first, name);
            walkSecondLevel(*first, name);
        }
    }

private:
    /// Evaluates the object's expression, and records how it was decided.
    template <class Object>
    bool decide(const std::string& name, const Object& object) {
        const std::string& expression = object.getEnablement();
        if (m_decisions == nullptr || expression.empty())
            return evalEnablement(m_interp, &m_instance, name, expression);
        HBSDecision decision{pathOf(object), expression, expression, "", true};
        decision.isEnabled = evalEnablement(m_interp, &m_instance, name, expression, &decision);
        m_decisions->push_back(std::move(decision));
        return m_decisions->back().isEnabled;
    }

    static std::string pathOf(const HABMBlock& block) { return block.getInstancePath(); }
    static std::string pathOf(const HABMInterface& interface) {
        return interface.getParent()->getInstancePath() + "/" + interface.getInterfaceName();
    }

    void removeInterfaces(HABMBlock& block, const std::string& name) {
        for (HABMInterface* interface : block.getInterfaces())
            if (!decide(name, *interface)) // a copy: removal destroys the interface's own name
                block.removeInterface(std::string(interface->getInterfaceName()));
    }

    void walkSecondLevel(HABMBlock& first, const std::string& name) {
        for (HABMBlock* second : first.getSubBlocks()) {
            if (decide(name, *second))
                removeInterfaces(*second, name);
            else
                first.removeSubBlock(std::string(second->getInstanceName()));
        }
    }

    Tcl_Interp* m_interp;
    HABMBlock& m_instance;
    std::vector<HBSDecision>* m_decisions; ///< may be null
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

/// `decisions` may be null.
std::unique_ptr<HABMBlock> createInstance(const HABMBlock& definition, const HABMBlock& config,
                                          std::vector<HBSDecision>* decisions) {
    const std::string& module = config.getModuleName();
    writeDebugBlock(module + "_hbs_config.bmj", config);
    std::unique_ptr<HABMBlock> instance = HABMBlock::cloneTopBlock(definition);
    if (!instance)
        return instance;
    if (const TclInterpreter tcl; tcl.get() != nullptr) {
        applyConfig(config, *instance);
        loadBlockNamespace(tcl.get(), instance.get(), "");
        Enabler(tcl.get(), *instance, decisions).walk();
        prune(*instance);
        if (isDebugOn())
            evalHelper(tcl.get(), workingFile("helper.tcl"));
    }
    writeDebugBlock(module + "_hbs_instance.bmj", *instance);
    return instance;
}

} // namespace

std::unique_ptr<HABMBlock> HBSAddressing::createSubsystemInstance(const HABMBlock& definition,
                                                                  const HABMBlock& config) {
    return createInstance(definition, config, nullptr);
}

std::unique_ptr<HABMBlock>
HBSAddressing::createSubsystemInstance(const HABMBlock& definition, const HABMBlock& config,
                                       std::vector<HBSDecision>& decisions) {
    return createInstance(definition, config, &decisions);
}
