#include "addressing/ProcessState.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>

namespace hbs_addressing {

namespace {

std::vector<std::string> readEnvironment() {
    std::vector<std::string> entries;
    for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry)
        entries.emplace_back(*entry);
    return entries;
}

std::string nameOf(const std::string& entry) {
    return entry.substr(0, entry.find('='));
}

bool contains(const std::vector<std::string>& entries, const std::string& entry) {
    return std::find(entries.begin(), entries.end(), entry) != entries.end();
}

} // namespace

ProcessState::ProcessState()
    : m_environment(readEnvironment()),
      m_workingDirectory(open(".", O_PATH | O_DIRECTORY | O_CLOEXEC)) {
    struct sigaction ignore {};
    ignore.sa_handler = SIG_IGN;
    sigaction(SIGPIPE, &ignore, &m_sigpipe);
}

ProcessState::~ProcessState() {
    sigaction(SIGPIPE, &m_sigpipe, nullptr);
    restoreWorkingDirectory();
    try {
        restoreEnvironment();
    } catch (...) {
        // Out of memory: the rest of the environment stays as the scripts left it.
    }
}

void ProcessState::restoreWorkingDirectory() const {
    if (m_workingDirectory < 0)
        return;
    // Fails only if the folder can't be entered any more; then there is no way back.
    static_cast<void>(fchdir(m_workingDirectory) == 0);
    close(m_workingDirectory);
}

void ProcessState::restoreEnvironment() const {
    const std::vector<std::string> now = readEnvironment();
    if (now == m_environment)
        return;
    for (const std::string& entry : now)
        if (!contains(m_environment, entry))
            unsetenv(nameOf(entry).c_str());
    for (const std::string& entry : m_environment)
        if (const std::size_t equals = entry.find('=');
            equals != std::string::npos && !contains(now, entry))
            setenv(nameOf(entry).c_str(), entry.c_str() + equals + 1, 1);
}

} // namespace hbs_addressing
