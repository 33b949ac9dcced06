// Files read whole within a bound, and files replaced in one step.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <ios>
#include <istream>
#include <iterator>
#include <streambuf>
#include <string>
#include <system_error>
#include <vector>

#include "HPAParamMgr.h"
#include "base/FileReading.h"
#include "base/FileReplacement.h"
#include "input/InputFile.h"
#include "support/support.h"

namespace {

namespace fs = std::filesystem;
using base::FileReplacement;
using base::ReadOutcome;

std::size_t entriesOf(const support::TempDir& folder) {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder.path()), {}));
}

TEST(FileReading, TellsWhyAFileIsNotWhole) {
    const support::TempDir folder;
    const std::string ten = folder.write("ten", "0123456789");
    ASSERT_EQ(0, mkfifo(folder.file("fifo").c_str(), 0600));
    struct Case {
        std::string path;
        ReadOutcome outcome;
        const char* reason;
    };
    for (const auto& [path, outcome, reason] :
         std::vector<Case>{{ten, ReadOutcome::Whole, ""},
                           {folder.file("none"), ReadOutcome::Missing, "No such file or directory"},
                           {ten + "/below", ReadOutcome::Missing, "Not a directory"},
                           {folder.path().string(), ReadOutcome::Unopened, "it is a folder"},
                           {folder.file("fifo"), ReadOutcome::Unopened, "it isn't a file"},
                           {ten + std::string("\0x", 2), ReadOutcome::Unopened, "Invalid argument"},
                           {"/proc/self/mem", ReadOutcome::Failed, "Input/output error"}}) {
        const base::FileContent content = base::readFile(path, 10);
        EXPECT_EQ(outcome, content.outcome) << path;
        EXPECT_EQ(reason, content.reason) << path;
    }
    EXPECT_EQ("0123456789", base::readFile(ten, 10).text);
    EXPECT_EQ("it holds more than 9 bytes", base::readFile(ten, 9).reason);
}

/// Gives two blocks, then fails.
class FailingBuffer : public std::streambuf {
public:
    explicit FailingBuffer(const std::ios_base::failure& failure) : m_failure(failure) {}

protected:
    int_type underflow() override {
        if (++m_reads > 2)
            throw m_failure;
        setg(m_block.data(), m_block.data(), m_block.data() + m_block.size());
        return 'x';
    }

private:
    std::ios_base::failure m_failure;
    int m_reads = 0;
    std::string m_block = std::string(1000, 'x');
};

TEST(FileReading, TakesNoFailureForTheEndOfAStream) {
    FailingBuffer device(std::ios_base::failure("", std::make_error_code(std::errc::io_error)));
    std::istream stream(&device);
    EXPECT_EQ(ReadOutcome::Failed, base::readStream(stream, 1 << 20).outcome);
    FailingBuffer filter(std::ios_base::failure("gzip"));
    stream.rdbuf(&filter);
    EXPECT_EQ(ReadOutcome::Damaged, base::readStream(stream, 1 << 20).outcome);
}

TEST(InputFile, BoundsWhatIsUnpackedAndNamesTheParameter) {
    const support::TempDir folder;
    const std::string packed = support::gzip(std::string(2U << 20U, ' '));
    const std::string path = folder.write("f", packed);
    EXPECT_EQ(2U << 20U, input::readFile(path).text.size());
    HPAParamMgr::getParamMgr()->setValue("general.maxInputMiB", "1");
    EXPECT_EQ("it holds more than 1 MiB, the limit set by the parameter general.maxInputMiB",
              input::readFile(path).reason);
    HPAParamMgr::getParamMgr()->unsetValue("general.maxInputMiB");
    EXPECT_EQ(256U << 20U, input::limit());

    std::string damaged = packed;
    damaged[packed.size() - 6] ^= 1;
    for (const std::string& bytes : {packed.substr(0, packed.size() / 2), damaged})
        EXPECT_EQ("what it is stored in is damaged or cut short",
                  input::readFile(folder.write("f", bytes)).reason);
}

TEST(FileReplacement, FollowsLinksAndKeepsTheRights) {
    const support::TempDir folder;
    const std::string path = folder.write("old", "old");
    fs::permissions(path, fs::perms(0640));
    fs::create_symlink("old", folder.file("link"));
    fs::create_symlink("new", folder.file("dangling"));
    for (const char* name : {"link", "dangling"}) {
        FileReplacement file(folder.file(name));
        EXPECT_TRUE(file.write("new") && file.commit()) << file.reason();
        EXPECT_FALSE(file.commit());
        EXPECT_TRUE(fs::is_symlink(folder.file(name)));
    }
    EXPECT_EQ("new", support::readFile(path));
    EXPECT_EQ("new", support::readFile(folder.file("new")));
    EXPECT_EQ(fs::perms(0640), fs::status(path).permissions());
    EXPECT_EQ(4U, entriesOf(folder));
    FileReplacement kept(path, FileReplacement::Special::Refuse, FileReplacement::Existing::Keep);
    EXPECT_EQ("File exists", kept.reason());
}

TEST(FileReplacement, LeavesTheOldFileUnlessTheNewOneIsWhole) {
    const support::TempDir folder;
    const std::string path = folder.write("f", "old");
    {
        FileReplacement dropped(path);
        dropped.write("half");
    }
    const auto before = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    const rlimit small{100, limit.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    FileReplacement full(path);
    EXPECT_FALSE(full.write(std::string(1 << 20, 'x')) && full.commit());
    EXPECT_EQ("File too large", full.reason());
    setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, before);
    EXPECT_FALSE(full.write("more") || full.commit());
    EXPECT_EQ("old", support::readFile(path));
}

/// Starts a replacement of `path` in a process of its own, which is killed.
void abandon(const std::string& path) {
    const pid_t child = fork();
    if (child == 0) {
        FileReplacement file(path);
        file.write(std::string(1 << 20, 'x'));
        ::kill(::getpid(), SIGKILL);
    }
    int status = 0;
    ASSERT_EQ(child, waitpid(child, &status, 0));
    ASSERT_TRUE(WIFSIGNALED(status));
}

TEST(FileReplacement, RemovesWhatDeadProcessesLeftAndNothingElse) {
    const support::TempDir folder;
    const std::string path = folder.write("f", "old");
    abandon(path);
    EXPECT_EQ(2U, entriesOf(folder));
    FileReplacement living(path);
    living.write("first");
    abandon(path);
    EXPECT_EQ(3U, entriesOf(folder));
    FileReplacement second(path);
    EXPECT_TRUE(second.write("second") && second.commit());
    EXPECT_EQ("second", support::readFile(path));
    EXPECT_EQ(2U, entriesOf(folder));
    EXPECT_TRUE(living.commit());
    EXPECT_EQ("first", support::readFile(path));
    EXPECT_EQ(1U, entriesOf(folder));

    const std::string longest(255, 'n');
    EXPECT_EQ("", base::writeOutputFile(folder.file(longest), "x"));
}

TEST(FileReplacement, WritesThroughToWhatIsNoFile) {
    const support::TempDir folder;
    const std::string fifo = folder.file("fifo");
    ASSERT_EQ(0, mkfifo(fifo.c_str(), 0600));
    EXPECT_EQ("Not a regular file", FileReplacement(fifo).reason());
    const int reader = ::open(fifo.c_str(), O_RDONLY | O_NONBLOCK);
    EXPECT_EQ("", base::writeOutputFile(fifo, "through"));
    std::string got(10, ' ');
    EXPECT_EQ(7, ::read(reader, got.data(), got.size()));
    ::close(reader);
    EXPECT_EQ("No space left on device", base::writeOutputFile("/dev/full", "x"));
    EXPECT_EQ("Is a directory", base::writeOutputFile(folder.path().string(), "x"));

    support::CapturedOutput output;
    EXPECT_EQ("", base::writeOutputFile("/dev/stdout", "one "));
    EXPECT_EQ("", base::writeOutputFile("/dev/stdout", "two"));
    EXPECT_EQ("one two", output.text());
}

} // namespace
