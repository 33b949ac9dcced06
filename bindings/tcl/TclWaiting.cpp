#include "bindings/tcl/TclWaiting.h"

#include <csignal>
#include <mutex>

namespace tq::bindings::tcl {

namespace {

volatile std::sig_atomic_t g_isInterrupted = 0;

void noteInterrupt(int /*signal*/) {
    g_isInterrupted = 1;
}

/// The process's disposition of Ctrl-C while threads wait.
struct Watch {
    std::mutex mutex;
    unsigned waiting = 0;
    bool isOurs = false;
    struct sigaction before {};
};

Watch& watch() {
    static auto* const instance = new Watch;
    return *instance;
}

} // namespace

void TclWaiting::letOthersRun() {
    const std::lock_guard lock(watch().mutex);
    if (watch().waiting++ > 0)
        return;
    g_isInterrupted = 0;
    sigaction(SIGINT, nullptr, &watch().before);
    const struct sigaction& before = watch().before;
    watch().isOurs = (before.sa_flags & SA_SIGINFO) == 0 && before.sa_handler == SIG_DFL;
    if (!watch().isOurs)
        return;
    struct sigaction ours {};
    ours.sa_handler = noteInterrupt;
    ours.sa_flags = SA_RESTART;
    sigaction(SIGINT, &ours, nullptr);
}

void TclWaiting::stopOthers() {
    const std::lock_guard lock(watch().mutex);
    if (--watch().waiting == 0 && watch().isOurs)
        sigaction(SIGINT, &watch().before, nullptr);
}

bool TclWaiting::isInterrupted() {
    if (g_isInterrupted != 0 || Tcl_Canceled(m_interp, 0) == TCL_ERROR)
        return true;
    if (Tcl_AsyncReady() != 0 && Tcl_AsyncInvoke(m_interp, TCL_OK) == TCL_ERROR)
        return true;
    return Tcl_LimitReady(m_interp) != 0 && Tcl_LimitCheck(m_interp) == TCL_ERROR;
}

} // namespace tq::bindings::tcl
