#include "addressing/TclGuard.h"

#include <sys/stat.h>

#include <exception>
#include <new>
#include <string>
#include <string_view>

#include "addressing/TclNesting.h"
#include "base/FileReading.h"

namespace hbs_addressing {

namespace {

constexpr const char* kAssocKey = "hbs_addressing::TclGuard";
constexpr std::chrono::milliseconds kLeastTime{100};
constexpr int kMostNestedEvaluations = 1000;
constexpr int kLimitGranularity = 10;
constexpr long kMicrosecondsPerSecond = 1000000;
constexpr std::size_t kMostScriptBytes = std::size_t{64} << 20;
/// Tcl reads a script file up to this character.
constexpr char kEndOfScript = '\x1a';

Tcl_Time now() {
    Tcl_Time time;
    Tcl_GetTime(&time);
    return time;
}

Tcl_Time after(const Tcl_Time& start, std::chrono::milliseconds duration) {
    const long microseconds = start.usec + (duration.count() % 1000) * 1000;
    return {start.sec + static_cast<long>(duration.count() / 1000) +
                microseconds / kMicrosecondsPerSecond,
            microseconds % kMicrosecondsPerSecond};
}

bool isEarlier(const Tcl_Time& a, const Tcl_Time& b) {
    return a.sec != b.sec ? a.sec < b.sec : a.usec < b.usec;
}

/// The replacement of a Tcl command, with the original.
struct GuardedCommand {
    TclGuard& guard;
    Tcl_CmdInfo original;
    Tcl_Interp* child; ///< for the command that a child interpreter is in its parent

    [[nodiscard]] int callOriginal(Tcl_Interp* interp, int count, Tcl_Obj* const words[]) const {
        return original.objProc(original.objClientData, interp, count, words);
    }
};

/// A command may be deleted while it runs.
GuardedCommand copyOf(ClientData data) {
    return *static_cast<const GuardedCommand*>(data);
}

void deleteCommand(ClientData data) {
    const GuardedCommand command = copyOf(data);
    Tcl_Free(static_cast<char*>(data));
    if (command.original.deleteProc != nullptr)
        command.original.deleteProc(command.original.deleteData);
}

void replaceCommand(TclGuard& guard, Tcl_Interp* interp, const char* name,
                    Tcl_ObjCmdProc* procedure, Tcl_Interp* child = nullptr) {
    Tcl_Command token = Tcl_FindCommand(interp, name, nullptr, TCL_GLOBAL_ONLY);
    Tcl_CmdInfo info;
    if (token == nullptr || Tcl_GetCommandInfoFromToken(token, &info) == 0)
        return;
    // Tcl's own memory, as an exception can't pass through Tcl.
    auto* const command =
        new (Tcl_Alloc(sizeof(GuardedCommand))) GuardedCommand{guard, info, child};
    info.objProc = procedure;
    info.objClientData = command;
    info.deleteProc = deleteCommand;
    info.deleteData = command;
    Tcl_SetCommandInfoFromToken(token, &info);
}

/// In a safe interpreter some commands are hidden, from where the parent can still run them.
void replaceBuiltin(TclGuard& guard, Tcl_Interp* interp, const char* name,
                    Tcl_ObjCmdProc* procedure) {
    const bool isHidden = Tcl_ExposeCommand(interp, name, name) == TCL_OK;
    replaceCommand(guard, interp, name, procedure);
    if (isHidden)
        Tcl_HideCommand(interp, name, name);
    Tcl_ResetResult(interp);
}

int fail(Tcl_Interp* interp, const std::string& text) {
    Tcl_SetObjResult(interp, Tcl_NewStringObj(text.c_str(), -1));
    return TCL_ERROR;
}

int callExit(ClientData /*data*/, Tcl_Interp* interp, int /*count*/, Tcl_Obj* const[] /*words*/) {
    return fail(interp, "a hard block's script can't end the process with \"exit\"");
}

/// A script as Tcl decodes it. Without a name the encoding is the system's.
class DecodedScript {
public:
    DecodedScript(std::string_view bytes, const char* encodingName) {
        Tcl_Encoding encoding =
            encodingName == nullptr ? nullptr : Tcl_GetEncoding(nullptr, encodingName);
        Tcl_ExternalToUtfDString(encoding, bytes.data(), static_cast<int>(bytes.size()), &m_text);
        if (encoding != nullptr)
            Tcl_FreeEncoding(encoding);
    }
    ~DecodedScript() { Tcl_DStringFree(&m_text); }
    DecodedScript(const DecodedScript&) = delete;
    DecodedScript& operator=(const DecodedScript&) = delete;

    [[nodiscard]] std::string_view text() const {
        return {Tcl_DStringValue(&m_text), static_cast<std::size_t>(Tcl_DStringLength(&m_text))};
    }

private:
    Tcl_DString m_text{};
};

/// Why a script file isn't read; empty if it may be, and for faults that Tcl reports itself.
std::string findFileFault(const char* path, const char* encodingName) {
    struct stat status {};
    if (path == nullptr || stat(path, &status) != 0 || S_ISDIR(status.st_mode))
        return {};
    if (!S_ISREG(status.st_mode))
        return "not a regular file";
    const base::FileContent script = base::readFile(path, kMostScriptBytes);
    if (script.outcome == base::ReadOutcome::Missing ||
        script.outcome == base::ReadOutcome::Unopened)
        return {};
    if (!script.isWhole())
        return script.reason;
    const DecodedScript decoded(
        std::string_view(script.text).substr(0, script.text.find(kEndOfScript)), encodingName);
    if (isNestedTooDeep(decoded.text()))
        return "more than " + std::to_string(kMostNestedSubstitutions) + " nested substitutions";
    return {};
}

int callSource(ClientData data, Tcl_Interp* interp, int count, Tcl_Obj* const words[]) {
    const GuardedCommand command = copyOf(data);
    try {
        // "source FILE" or "source -encoding NAME FILE"
        if (count == 2 || count == 4) {
            Tcl_Obj* const file = words[count - 1];
            const std::string fault =
                findFileFault(static_cast<const char*>(Tcl_FSGetNativePath(file)),
                              count == 4 ? Tcl_GetString(words[2]) : nullptr);
            if (!fault.empty())
                return fail(interp, "couldn't read file \"" + std::string(Tcl_GetString(file)) +
                                        "\": " + fault);
        }
    } catch (const std::exception&) {
        return fail(interp, "out of memory");
    }
    return command.callOriginal(interp, count, words);
}

/// Tcl takes any unambiguous beginning of a subcommand; ambiguous ones have failed before this is
/// asked.
bool isSubcommand(Tcl_Obj* word, std::string_view subcommand) {
    const std::string_view given = Tcl_GetString(word);
    return !given.empty() && subcommand.starts_with(given);
}

bool changesLimits(Tcl_Obj* word) {
    return isSubcommand(word, "limit") || isSubcommand(word, "recursionlimit");
}

int callChild(ClientData data, Tcl_Interp* interp, int count, Tcl_Obj* const words[]) {
    const GuardedCommand command = copyOf(data);
    const int code = command.callOriginal(interp, count, words);
    if (code == TCL_OK && count > 1 && changesLimits(words[1]))
        command.guard.restoreLimits(command.child);
    return code;
}

void guardNewChild(TclGuard& guard, Tcl_Interp* interp, Tcl_Obj* path) {
    Tcl_Interp* const child = Tcl_GetSlave(interp, Tcl_GetString(path));
    int depth = 0;
    Tcl_Obj* name = nullptr;
    if (child == nullptr || Tcl_ListObjLength(interp, path, &depth) != TCL_OK || depth == 0 ||
        Tcl_ListObjIndex(interp, path, depth - 1, &name) != TCL_OK)
        return;
    guard.guard(child);
    replaceCommand(guard, Tcl_GetMaster(child), Tcl_GetString(name), callChild, child);
}

int callInterp(ClientData data, Tcl_Interp* interp, int count, Tcl_Obj* const words[]) {
    const GuardedCommand command = copyOf(data);
    const int code = command.callOriginal(interp, count, words);
    if (code != TCL_OK || count < 2)
        return code;
    if (isSubcommand(words[1], "create")) {
        Tcl_Obj* const path = Tcl_GetObjResult(interp);
        Tcl_IncrRefCount(path);
        guardNewChild(command.guard, interp, path);
        Tcl_DecrRefCount(path);
    } else if (count > 2 && changesLimits(words[1])) {
        if (Tcl_Interp* const target = Tcl_GetSlave(interp, Tcl_GetString(words[2])))
            command.guard.restoreLimits(target);
    }
    return code;
}

} // namespace

TclGuard::TclGuard(std::optional<std::chrono::milliseconds> time) {
    if (time)
        m_deadline = after(now(), *time);
}

void TclGuard::guard(Tcl_Interp* interp) {
    replaceBuiltin(*this, interp, "exit", callExit);
    replaceBuiltin(*this, interp, "source", callSource);
    replaceBuiltin(*this, interp, "interp", callInterp);
    Tcl_SetAssocData(interp, kAssocKey, nullptr, this);
    restoreLimits(interp);
}

void TclGuard::beginScript(Tcl_Interp* interp) {
    auto* const guard = static_cast<TclGuard*>(Tcl_GetAssocData(interp, kAssocKey, nullptr));
    if (guard == nullptr || !guard->m_deadline)
        return;
    const Tcl_Time least = after(now(), kLeastTime);
    if (!isEarlier(*guard->m_deadline, least))
        return;
    guard->m_deadline = least;
    guard->setDeadline(interp);
}

void TclGuard::restoreLimits(Tcl_Interp* interp) const {
    if (Tcl_SetRecursionLimit(interp, 0) > kMostNestedEvaluations)
        Tcl_SetRecursionLimit(interp, kMostNestedEvaluations);
    if (!m_deadline)
        return;
    Tcl_Time limit;
    Tcl_LimitGetTime(interp, &limit);
    if (!Tcl_LimitTypeEnabled(interp, TCL_LIMIT_TIME) || !isEarlier(limit, *m_deadline))
        setDeadline(interp);
    Tcl_LimitSetGranularity(interp, TCL_LIMIT_TIME, kLimitGranularity);
}

void TclGuard::setDeadline(Tcl_Interp* interp) const {
    Tcl_Time deadline = *m_deadline;
    Tcl_LimitSetTime(interp, &deadline);
    Tcl_LimitTypeSet(interp, TCL_LIMIT_TIME);
}

} // namespace hbs_addressing
