// The Tcl package tq_hbs: namespaces, ensembles and commands made from the description of the
// interface.

#include <tcl.h>

#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "bindings/core/Invoke.h"
#include "bindings/core/Tables.h"
#include "bindings/tcl/TclHandles.h"
#include "bindings/tcl/TclValues.h"
#include "bindings/tcl/TclWaiting.h"
#include "tq_version.h"
#include "workbench/text/DiagnosticText.h"

namespace tq::bindings::tcl {

namespace {

/// What the package keeps for an interpreter.
struct Session {
    /// Roots that its scripts made: they live until they are deleted, or the interpreter is.
    std::unordered_map<Object*, ObjectRef> owned;
    Tcl_Obj* messageCommand = nullptr;
};

constexpr const char* kSession = "tq_hbs";

/// Interpreters of this thread that have the package.
thread_local unsigned t_sessions = 0;

Session& sessionOf(Tcl_Interp* interp) {
    return *static_cast<Session*>(Tcl_GetAssocData(interp, kSession, nullptr));
}

void endSession(ClientData data, Tcl_Interp* /*interp*/) {
    const std::unique_ptr<Session> session(static_cast<Session*>(data));
    for (const auto& [object, reference] : session->owned) {
        try {
            if (object->native != nullptr)
                Registry::get().destroy(*object);
        } catch (const ScriptError&) { // in a search on another thread, which holds it
        }
    }
    if (--t_sessions == 0)
        forgetTexts();
    if (session->messageCommand != nullptr)
        Tcl_DecrRefCount(session->messageCommand);
    leaveRuntime(false);
}

// --- messages ---

void writeMessage(const Diagnostic& message) {
    Tcl_Channel channel = Tcl_GetStdChannel(TCL_STDERR);
    if (channel == nullptr || message.severity == Severity::Remark)
        return;
    const std::string text = describe(message);
    Tcl_WriteChars(channel, text.data(), static_cast<int>(text.size()));
    Tcl_Flush(channel);
}

void callMessageCommand(Tcl_Interp* interp, Tcl_Obj* command, const Diagnostic& message) {
    Tcl_Obj* const call = Tcl_DuplicateObj(command);
    Tcl_IncrRefCount(call);
    Tcl_ListObjAppendElement(nullptr, call, newFinding(message));
    const int code = Tcl_EvalObjEx(interp, call, TCL_EVAL_GLOBAL | TCL_EVAL_DIRECT);
    if (code != TCL_OK)
        Tcl_BackgroundException(interp, code);
    Tcl_DecrRefCount(call);
}

void deliverMessages(Tcl_Interp* interp) {
    const std::vector<Diagnostic> messages = takeMessages();
    if (messages.empty())
        return;
    Tcl_InterpState state = Tcl_SaveInterpState(interp, TCL_OK);
    for (const Diagnostic& message : messages) {
        // The callback may take itself away.
        Tcl_Obj* const command = sessionOf(interp).messageCommand;
        if (command == nullptr)
            writeMessage(message);
        else
            callMessageCommand(interp, command, message);
    }
    Tcl_RestoreInterpState(interp, state);
}

// --- calls ---

void noteOwned(Tcl_Interp* interp, const Value& value) {
    const auto* const object = std::get_if<ObjectRef>(&value.content);
    if (object == nullptr || (*object)->part == nullptr || !(*object)->part->isOwned)
        return;
    sessionOf(interp).owned.try_emplace(object->get(), *object);
}

int finish(Tcl_Interp* interp, const Member& member, Object* self,
           const std::vector<Value>& arguments) {
    TclWaiting waiting(interp);
    try {
        Call call(self, arguments);
        invoke(member, call, waiting);
        if (member.mode != Mode::Quick)
            deliverMessages(interp);
        noteOwned(interp, call.result);
        Tcl_SetObjResult(interp, toTcl(call.result));
        return TCL_OK;
    } catch (...) {
        const Failure failure = currentFailure();
        deliverMessages(interp);
        return raise(interp, failure);
    }
}

std::string usageOf(const Member& member) {
    std::string usage;
    if (member.kind != Member::Kind::Static)
        usage = "handle";
    for (const Parameter& parameter : member.parameters) {
        usage += usage.empty() ? "" : " ";
        if (member.kind == Member::Kind::Property)
            usage += "?value?";
        else if (parameter.isOptional)
            usage += std::string("?-") + parameter.name + " value?";
        else
            usage += parameter.name;
    }
    return usage;
}

/// Options behind the required arguments: "-enabled 0".
bool takeOptions(Tcl_Interp* interp, const Member& member, std::vector<Value>& arguments, int count,
                 Tcl_Obj* const words[]) {
    for (int i = 0; i + 1 < count; i += 2) {
        const std::string word = Tcl_GetString(words[i]);
        std::string known;
        bool isKnown = false;
        for (std::size_t p = 0; p < member.parameters.size(); ++p) {
            const Parameter& parameter = member.parameters[p];
            if (!parameter.isOptional)
                continue;
            known += (known.empty() ? "-" : ", -") + std::string(parameter.name);
            if (word != "-" + std::string(parameter.name))
                continue;
            auto value = fromTcl(interp, words[i + 1], *parameter.type, parameter.name);
            if (!value)
                return false;
            arguments[p] = std::move(*value);
            isKnown = true;
        }
        if (!isKnown) {
            std::string text = "unknown option \"";
            text.append(word).append("\", expected one of: ").append(known);
            raise(interp, {Failure::Kind::Argument, std::move(text), {}});
            return false;
        }
    }
    return true;
}

bool takeArguments(Tcl_Interp* interp, const Member& member, std::vector<Value>& arguments,
                   int count, Tcl_Obj* const words[]) {
    const auto required = static_cast<int>(member.requiredParameters());
    int next = 0;
    for (const Parameter& parameter : member.parameters) {
        if (parameter.isOptional) {
            arguments.push_back(parameter.fallback);
            continue;
        }
        auto value = fromTcl(interp, words[next++], *parameter.type, parameter.name);
        if (!value)
            return false;
        arguments.push_back(std::move(*value));
    }
    return takeOptions(interp, member, arguments, count - required, words + required);
}

bool hasFittingCount(const Member& member, int count) {
    const auto required = static_cast<int>(member.requiredParameters());
    const auto optionals = static_cast<int>(member.parameters.size()) - required;
    return count == required || (optionals > 0 && count > required && (count - required) % 2 == 0);
}

int callProperty(Tcl_Interp* interp, const Member& property, Object& self, int count,
                 Tcl_Obj* const words[]) {
    if (count == 0)
        return finish(interp, property, &self, {});
    const auto value =
        fromTcl(interp, words[0], *property.parameters[0].type, property.name.c_str());
    if (!value)
        return TCL_ERROR;
    try {
        assign(property, self, *value);
        Tcl_SetObjResult(interp, words[0]);
        return TCL_OK;
    } catch (...) {
        return raise(interp, currentFailure());
    }
}

int callMember(ClientData data, Tcl_Interp* interp, int objc, Tcl_Obj* const objv[]) {
    const Member& member = *static_cast<const Member*>(data);
    const bool isProperty = member.kind == Member::Kind::Property;
    const int skipped = member.kind == Member::Kind::Static ? 1 : 2;
    const int count = objc - skipped;
    const bool fits = isProperty ? count == 0 || (count == 1 && member.set != nullptr)
                                 : count >= 0 && hasFittingCount(member, count);
    if (!fits) {
        Tcl_WrongNumArgs(interp, 1, objv, usageOf(member).c_str());
        return TCL_ERROR;
    }
    ObjectRef self;
    if (skipped == 2) {
        self = handleOf(interp, objv[1], member.owner);
        if (!self)
            return TCL_ERROR;
    }
    if (isProperty)
        return callProperty(interp, member, *self, count, objv + skipped);
    std::vector<Value> arguments;
    if (!takeArguments(interp, member, arguments, count, objv + skipped))
        return TCL_ERROR;
    return finish(interp, member, self.get(), arguments);
}

// --- commands that all classes share ---

int deleteObject(ClientData data, Tcl_Interp* interp, int objc, Tcl_Obj* const objv[]) {
    if (objc != 2) {
        Tcl_WrongNumArgs(interp, 1, objv, "handle");
        return TCL_ERROR;
    }
    const ObjectRef object = handleOf(interp, objv[1], static_cast<const ClassInfo*>(data));
    if (!object)
        return TCL_ERROR;
    try {
        Registry::get().destroy(*object);
    } catch (...) {
        return raise(interp, currentFailure());
    }
    sessionOf(interp).owned.erase(object.get());
    return TCL_OK;
}

int describeObject(ClientData /*data*/, Tcl_Interp* interp, int objc, Tcl_Obj* const objv[]) {
    if (objc != 2) {
        Tcl_WrongNumArgs(interp, 1, objv, "handle");
        return TCL_ERROR;
    }
    const ObjectRef object = handleOf(interp, objv[1], nullptr);
    if (!object)
        return TCL_ERROR;
    const auto held = Registry::get().lock();
    Tcl_SetObjResult(interp, newText(object->native != nullptr ? object->type->describe(*object)
                                                               : object->was + " (deleted)"));
    return TCL_OK;
}

int existsObject(ClientData /*data*/, Tcl_Interp* interp, int objc, Tcl_Obj* const objv[]) {
    if (objc != 2) {
        Tcl_WrongNumArgs(interp, 1, objv, "handle");
        return TCL_ERROR;
    }
    const ObjectRef object = handleOf(nullptr, objv[1], nullptr);
    const auto held = Registry::get().lock();
    Tcl_SetObjResult(interp, Tcl_NewBooleanObj(object && object->native != nullptr ? 1 : 0));
    return TCL_OK;
}

int setMessageCommand(ClientData /*data*/, Tcl_Interp* interp, int objc, Tcl_Obj* const objv[]) {
    if (objc > 2) {
        Tcl_WrongNumArgs(interp, 1, objv, "?commandPrefix?");
        return TCL_ERROR;
    }
    Tcl_Obj*& command = sessionOf(interp).messageCommand;
    if (objc == 2) {
        int length = 0;
        if (Tcl_ListObjLength(interp, objv[1], &length) != TCL_OK)
            return TCL_ERROR;
        if (command != nullptr)
            Tcl_DecrRefCount(command);
        command = length == 0 ? nullptr : objv[1];
        if (command != nullptr)
            Tcl_IncrRefCount(command);
    }
    if (command != nullptr)
        Tcl_SetObjResult(interp, command);
    return TCL_OK;
}

// --- making it all ---

std::string pathOf(const std::string& ensemble) {
    std::string path = "::tq";
    for (std::size_t begin = 0; begin < ensemble.size();) {
        const std::size_t end = std::min(ensemble.find(' ', begin), ensemble.size());
        path += "::" + ensemble.substr(begin, end - begin);
        begin = end + 1;
    }
    return path;
}

/// A namespace whose commands are the words of an ensemble of the same name.
void makeEnsemble(Tcl_Interp* interp, const std::string& path) {
    if (Tcl_FindNamespace(interp, path.c_str(), nullptr, 0) != nullptr)
        return;
    Tcl_Namespace* const space = Tcl_CreateNamespace(interp, path.c_str(), nullptr, nullptr);
    Tcl_Export(interp, space, "[a-z]*", 0);
    if (path != "::tq")
        Tcl_CreateEnsemble(interp, path.c_str(), space, TCL_ENSEMBLE_PREFIX);
}

void makeEnsembles(Tcl_Interp* interp, const std::string& path) {
    for (std::size_t end = path.find("::", 2); end != std::string::npos;
         end = path.find("::", end + 2))
        makeEnsemble(interp, path.substr(0, end));
    makeEnsemble(interp, path);
}

void makeCommand(Tcl_Interp* interp, const std::string& name, Tcl_ObjCmdProc* proc,
                 const void* data = nullptr) {
    Tcl_CreateObjCommand(interp, name.c_str(), proc, const_cast<void*>(data), nullptr);
}

void makeMember(Tcl_Interp* interp, const std::string& path, const Member& member) {
    makeCommand(interp, path + "::" + member.name, callMember, &member);
}

void makeCommands(Tcl_Interp* interp) {
    makeEnsemble(interp, "::tq");
    for (const ClassInfo* type : Interface::get().classes()) {
        const std::string path = pathOf(type->ensemble);
        makeEnsembles(interp, path);
        if (type->constructor)
            makeMember(interp, path, *type->constructor);
        for (const Member& member : type->members)
            makeMember(interp, path, member);
        if (type->destroy != nullptr)
            makeCommand(interp, path + "::delete", deleteObject, type);
    }
    for (const auto& island : Interface::get().islands()) {
        const std::string path = pathOf(island->ensemble);
        makeEnsembles(interp, path);
        for (const Member& member : island->functions)
            makeMember(interp, path, member);
    }
    makeCommand(interp, "::tq::describe", describeObject);
    makeCommand(interp, "::tq::exists", existsObject);
    makeCommand(interp, "::tq::messages", setMessageCommand);
}

} // namespace

} // namespace tq::bindings::tcl

/// Called by Tcl's `load`.
extern "C" DLLEXPORT int Tq_hbs_Init(Tcl_Interp* interp) {
    using namespace tq::bindings;
    if (Tcl_InitStubs(interp, "8.6", 0) == nullptr)
        return TCL_ERROR;
    if (Tcl_GetAssocData(interp, tcl::kSession, nullptr) == nullptr) {
        enterRuntime(false);
        ++tcl::t_sessions;
        Tcl_SetAssocData(interp, tcl::kSession, tcl::endSession, new tcl::Session);
    }
    tcl::makeCommands(interp);
    return Tcl_PkgProvideEx(interp, "tq_hbs", TQ_VERSION_STRING, nullptr);
}
