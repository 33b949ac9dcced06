#include "support/support.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <boost/iostreams/filter/gzip.hpp>
#include <boost/iostreams/filtering_stream.hpp>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>
#include <utility>

namespace support {

namespace {

void flushAll() {
    std::cout.flush();
    std::cerr.flush();
    std::fflush(nullptr);
}

} // namespace

CapturedStream::CapturedStream(Which which) : m_which(which) {
    flushAll();
    std::string path = (std::filesystem::temp_directory_path() / "tq_capture_XXXXXX").string();
    m_file = mkstemp(path.data());
    unlink(path.c_str());
    m_saved = dup(static_cast<int>(which));
    dup2(m_file, static_cast<int>(which));
}

CapturedStream::~CapturedStream() {
    text();
}

std::string CapturedStream::text() {
    if (m_file >= 0) {
        flushAll();
        m_text = readFile("/proc/self/fd/" + std::to_string(m_file)); // from its start
        dup2(m_saved, static_cast<int>(m_which));
        close(m_saved);
        close(std::exchange(m_file, -1));
    }
    return m_text;
}

CapturedMessages::CapturedMessages()
    : m_before(
          ComMsgMgr::setSink([this](const ComMsg& message) { m_messages.push_back(message); })) {}

CapturedMessages::~CapturedMessages() {
    ComMsgMgr::setSink(std::move(m_before));
}

std::vector<std::string> CapturedMessages::lines() const {
    std::vector<std::string> lines;
    for (const auto& message : m_messages) {
        std::string line = message.format;
        for (const auto& argument : message.arguments)
            line += "|" + argument;
        lines.push_back(std::move(line));
    }
    return lines;
}

std::string gzip(const std::string& content) {
    std::ostringstream bytes;
    boost::iostreams::filtering_ostream stream;
    stream.push(boost::iostreams::gzip_compressor());
    stream.push(bytes);
    stream << content;
    stream.reset();
    return bytes.str();
}

std::string readFile(const std::filesystem::path& path) {
    std::ifstream stream(path, std::ios::binary);
    EXPECT_TRUE(stream.is_open()) << path;
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

RunResult run(const std::string& commandLine) {
    const TempDir folder;
    const std::string out = folder.file("out");
    const std::string err = folder.file("err");
    const int status =
        std::system(("{ " + commandLine + "\n} >'" + out + "' 2>'" + err + "'").c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, readFile(out), readFile(err)};
}

} // namespace support
