// What the tests of every subsystem share.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "ComMsgMgr.h"
#include "support/temp_dir.h"

namespace support {

/// Collects what is written to a file descriptor, C and C++ streams alike, while it lives.
class CapturedStream {
public:
    enum class Which { Output = 1, Error = 2 };

    explicit CapturedStream(Which which);
    ~CapturedStream();
    CapturedStream(const CapturedStream&) = delete;
    CapturedStream& operator=(const CapturedStream&) = delete;

    /// Ends the capture and gives the text. A second call gives the same text.
    std::string text();

private:
    Which m_which;
    int m_saved = -1;
    int m_file = -1;
    std::string m_text;
};

class CapturedOutput : public CapturedStream {
public:
    CapturedOutput() : CapturedStream(Which::Output) {}
};

class CapturedError : public CapturedStream {
public:
    CapturedError() : CapturedStream(Which::Error) {}
};

/// Collects the messages sent while it lives.
class CapturedMessages {
public:
    CapturedMessages();
    ~CapturedMessages();
    CapturedMessages(const CapturedMessages&) = delete;
    CapturedMessages& operator=(const CapturedMessages&) = delete;

    [[nodiscard]] const std::vector<ComMsg>& all() const { return m_messages; }
    /// Each message as "format|argument|argument…", in order.
    [[nodiscard]] std::vector<std::string> lines() const;

private:
    std::vector<ComMsg> m_messages;
    ComMsgMgr::Sink m_before;
};

/// The content in the protected form of the stream library.
std::string gzip(const std::string& content);

/// The bytes of a file; a file that can't be read fails the test.
std::string readFile(const std::filesystem::path& path);

/// What a program printed and how it ended.
struct RunResult {
    int status = -1;
    std::string output;
    std::string error;
};

/// Runs a command line through the shell.
RunResult run(const std::string& commandLine);

/// Calls `action` and expects it to throw exactly an `Exception` (or something derived from it)
/// whose `what()` is `text`.
template <class Exception, class Action>
void expectThrows(const std::string& text, Action&& action) {
    try {
        action();
    } catch (const Exception& error) {
        EXPECT_EQ(text, error.what());
        return;
    } catch (...) {
        ADD_FAILURE() << "another exception came instead of: " << text;
        return;
    }
    ADD_FAILURE() << "nothing was thrown, expected: " << text;
}

} // namespace support
