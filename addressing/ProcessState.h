// Saves and restores the state of the process that scripts may change.
#pragma once

#include <csignal>

#include <string>
#include <vector>

namespace hbs_addressing {

/// Saves the working directory, the environment and the handling of SIGPIPE, and restores them in
/// its destructor. Meanwhile SIGPIPE is ignored, as Tcl expects it: a script that writes to a
/// closed pipe gets an error.
class ProcessState {
public:
    ProcessState();
    ~ProcessState();
    ProcessState(const ProcessState&) = delete;
    ProcessState& operator=(const ProcessState&) = delete;

private:
    void restoreWorkingDirectory() const;
    void restoreEnvironment() const;

    std::vector<std::string> m_environment;
    int m_workingDirectory; ///< an open folder, or -1
    struct sigaction m_sigpipe {};
};

} // namespace hbs_addressing
