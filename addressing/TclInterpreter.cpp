#include "addressing/TclInterpreter.h"

#include <clocale>
#include <optional>
#include <string>

#include "addressing/DataArea.h"
#include "addressing/ProcessState.h"
#include "addressing/TclDeletion.h"
#include "addressing/TclGuard.h"
#include "addressing/TclThreadState.h"

namespace hbs_addressing {

namespace {

class LocaleGuard {
public:
    LocaleGuard() : m_locale(std::setlocale(LC_ALL, nullptr)) {}
    ~LocaleGuard() { std::setlocale(LC_ALL, m_locale.c_str()); }
    LocaleGuard(const LocaleGuard&) = delete;
    LocaleGuard& operator=(const LocaleGuard&) = delete;

private:
    std::string m_locale;
};

/// Without this Tcl reads script files as ISO 8859-1. A tool that has Tcl of its own has done it
/// already. Asked after the first interpreter was made: before that the question itself crashes.
void findExecutableOnce() {
    static const bool isDone = [] {
        if (Tcl_GetNameOfExecutable() == nullptr)
            Tcl_FindExecutable(nullptr);
        return true;
    }();
    static_cast<void>(isDone);
}

Tcl_Interp* createInterp() {
    const LocaleGuard guard;
    Tcl_Interp* const interp = Tcl_CreateInterp();
    if (interp != nullptr)
        findExecutableOnce();
    return interp;
}

} // namespace

/// An interpreter, and what is saved around its life. Also taken down when its set-up fails half
/// way.
class TclInterpreter::Run {
public:
    Run() = default;
    ~Run();
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    void setUp();
    [[nodiscard]] Tcl_Interp* interp() const { return m_interp; }

private:
    ProcessState m_process;
    TclGuard m_guard{findScriptTimeLimit()};
    Tcl_Interp* m_interp = createInterp();
    std::optional<TclInspection> m_inspection;
    std::optional<TclThreadState> m_thread;
};

void TclInterpreter::Run::setUp() {
    if (m_interp == nullptr)
        return;
    m_inspection.emplace(m_interp);
    m_thread.emplace(m_interp);
    m_guard.guard(m_interp);
}

TclInterpreter::Run::~Run() {
    if (m_thread)
        m_thread->restore(m_interp);
    if (m_inspection)
        deleteInterpreter(m_interp, *m_inspection);
    if (m_thread)
        m_thread->closeReplacements();
}

TclInterpreter::TclInterpreter() : m_run(std::make_unique<Run>()) {
    m_run->setUp();
}

TclInterpreter::~TclInterpreter() = default;

Tcl_Interp* TclInterpreter::get() const {
    return m_run->interp();
}

} // namespace hbs_addressing
