#include "addressing/TclInterpreter.h"

#include <clocale>
#include <string>

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

TclInterpreter::TclInterpreter() : m_interp(createInterp()) {}

TclInterpreter::~TclInterpreter() {
    if (m_interp != nullptr)
        Tcl_DeleteInterp(m_interp);
}

} // namespace hbs_addressing
