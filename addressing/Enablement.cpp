#include "addressing/Enablement.h"

#include <boost/algorithm/string/replace.hpp>

#include <utility>
#include <vector>

#include "ComMsgMgr.h"
#include "HUTFile.h"
#include "addressing/DataArea.h"
#include "addressing/RegisterReferences.h"
#include "addressing/TclGuard.h"
#include "addressing/TclWords.h"
#include "blockmodel/HABMRegister.h"
#include "blockmodel/HABMUtils.h"

namespace hbs_addressing {

namespace {

constexpr unsigned kTclMask = 0x1000000;

void sendTclError(const std::string& text) {
    ComMsgMgr::sendScopedMsg::eval(1, __FILE__, __LINE__, "hbs", "HBS.TCL", kTclMask,
                                   "Caught unexpected Tcl error: %s\n", text);
}

void sendUnusableName(const std::string& name) {
    sendTclError("the name \"" + name + "\" can't be used as one word of a script");
}

/// Runs the scripts of one block and keeps the result of the last one, which is empty if it failed.
class BlockScripts {
public:
    BlockScripts(Tcl_Interp* interp, std::string blockNamespace)
        : m_interp(interp), m_namespace(std::move(blockNamespace)) {}

    [[nodiscard]] const std::optional<std::string>& result() const { return m_result; }

    bool createNamespace() {
        if (!isPlainWord(m_namespace))
            return refuse(m_namespace);
        return run("namespace eval " + m_namespace + " {}");
    }

    /// Sets the dict of all registers, then one variable per register.
    bool setRegisters(const std::vector<HABMRegister*>& registers, const std::string& place) {
        const std::string variable = "variable " + place + "::";
        std::string dict = variable + "registers [dict create ";
        std::string variables;
        for (HABMRegister* reg : registers) {
            const std::string& name = reg->getName();
            if (!isPlainBracketedWord(name))
                return refuse(name);
            const std::string value = reg->getValue().getPrettyHexStringValue(0);
            dict.append(name).append(" ").append(value).append(" ");
            variables.append(variable).append(name).append(" ").append(value).append("\n");
        }
        return run(dict + "]") && run(variables);
    }

    bool source(const std::string& path) {
        const std::string script = "source " + quotePath(path);
        return run(m_namespace.empty() ? script
                                       : "namespace eval " + m_namespace + " { " + script + " }");
    }

private:
    bool run(const std::string& script) { return evalTcl(m_interp, script, m_result.emplace()); }

    /// Fails in place of the script that would have used the name.
    bool refuse(const std::string& name) {
        sendUnusableName(name);
        m_result.emplace();
        return false;
    }

    Tcl_Interp* m_interp;
    std::string m_namespace;
    std::optional<std::string> m_result;
};

/// The expression with its register references replaced by values. The first register without a
/// valid value ends the replacing.
std::string substituteRegisterValues(HABMBlock& subBlock, const std::string& expression) {
    if (expression.find("register_value") == std::string::npos)
        return expression;
    RegisterReferences references(expression);
    while (references.next()) {
        HABMRegister* const reg = subBlock.findRegister(references.name(), true);
        if (reg == nullptr)
            continue;
        HABMAddrValue value = reg->getValue();
        if (!value.isValid())
            break;
        references.replace(value.getHexStringValue(0));
    }
    return references.text();
}

/// The expression with the values of its variables put in, for people: an unknown variable leaves
/// it as it is, without a message.
std::string substituteVariables(Tcl_Interp* interp, const std::string& text) {
    std::string result;
    const bool isDone = evalTcl(interp,
                                "apply {{} {if {[catch {uplevel #0 {subst -nocommands "
                                "-nobackslashes {" +
                                    text + "}}} text]} {return {}}; return $text}}",
                                result);
    return isDone && !result.empty() ? result : text;
}

} // namespace

bool evalTcl(Tcl_Interp* interp, const std::string& script, std::string& result) {
    result.clear();
    if (script.empty())
        return true;
    TclGuard::beginScript(interp);
    if (Tcl_Eval(interp, script.c_str()) != TCL_OK) {
        // A script may have unset the trace.
        const char* trace = Tcl_GetVar2(interp, "errorInfo", nullptr, TCL_GLOBAL_ONLY);
        sendTclError(trace != nullptr ? trace : Tcl_GetStringResult(interp));
        return false;
    }
    result = Tcl_GetStringResult(interp);
    return true;
}

std::optional<std::string> loadBlockNamespace(Tcl_Interp* interp, HABMBlock* block,
                                              const std::string& parentNamespace) {
    static const std::string directory = findHardblockDirectory();
    std::string vendor, library, name, version;
    if (!HABMUtils::splitVLNV(block->getModuleVlnv(), vendor, library, name, version))
        return std::nullopt;
    const std::string script = hardblockFile(directory, name, ".tcl");

    const std::string& instance = block->getInstanceName();
    const std::string blockNamespace = instance.empty() ? "" : parentNamespace + "::" + instance;
    BlockScripts scripts(interp, blockNamespace);
    if (!instance.empty() && !scripts.createNamespace())
        return scripts.result();

    const std::string path = block->getInstancePath();
    const auto registers = block->findRegisters(path + "*", false);
    const std::string registerNamespace = boost::replace_all_copy(path, "/", "::");
    if (!registers.empty() && !scripts.setRegisters(registers, registerNamespace))
        return scripts.result();

    for (HABMBlock* child : block->getSubBlocks())
        loadBlockNamespace(interp, child, blockNamespace);
    // The load goes on if the block's own script fails.
    if (HUTFile(script).exists())
        scripts.source(script);
    return scripts.result();
}

void evalHelper(Tcl_Interp* interp, const std::string& path) {
    std::string result;
    evalTcl(interp, "[source " + quotePath(path) + "]", result);
}

bool evalEnablement(Tcl_Interp* interp, HABMBlock* top, const std::string& subBlockName,
                    const std::string& expression, HBSDecision* decision) {
    if (expression.empty())
        return true;
    HABMBlock* const subBlock = top->getSubBlock(subBlockName);
    if (subBlock == nullptr || expression.starts_with("get_"))
        return true;

    const std::string text = substituteRegisterValues(*subBlock, expression);
    if (const std::string fault = findExpressionFault(text); !fault.empty()) {
        sendTclError(fault);
        return true;
    }
    if (decision != nullptr)
        decision->evaluated = substituteVariables(interp, text);
    std::string result;
    const bool isEnabled = !evalTcl(interp, "expr {" + text + "}", result) || result == "1";
    if (decision != nullptr)
        decision->result = result;
    return isEnabled;
}

} // namespace hbs_addressing
