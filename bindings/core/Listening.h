// Keeps what the library sends and prints during a call from the streams of the process.
#pragma once

#include <string>
#include <vector>

#include "diagnostics/Diagnostic.h"

namespace tq::bindings {

/// As long as one of these lives on some thread, the messages of that thread, and what it writes
/// to the C++ standard streams, are collected; other threads' go where they went before. At the end
/// all is as it was.
class Listening {
public:
    Listening();
    ~Listening();
    Listening(const Listening&) = delete;
    Listening& operator=(const Listening&) = delete;

    /// What was heard so far, in order.
    [[nodiscard]] std::vector<Diagnostic> take();
    void add(Diagnostic message);
    void addText(const char* text, std::size_t size);

    // Handlers of forks.
    static void beforeFork();
    static void afterForkInParent();
    static void afterForkInChild();

    /// That of this thread, or null.
    static Listening* current();

private:
    void addLine();

    /// A search may print a line for each of millions of settings.
    static constexpr std::size_t kMost = 1000;

    Listening* m_outer;
    std::size_t m_leftOut = 0;
    std::vector<Diagnostic> m_messages;
    std::string m_line;
};

} // namespace tq::bindings
