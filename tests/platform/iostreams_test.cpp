// Files opened whichever way they are stored: plain, protected, cut short, damaged, not files.

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <boost/iostreams/filtering_stream.hpp>
#include <boost/iostreams/stream.hpp>

#include <iterator>
#include <string>
#include <vector>

#include "basic_file.h"
#include "support/support.h"
#include "xp.h"
#include "xp_autodetect.h"

namespace {

namespace io = boost::iostreams;

using support::gzip;

/// The content, or "bad" where the stream doesn't vouch for it.
std::string readThroughAutodetect(const std::string& path) {
    io::filtering_istream stream;
    isl::iostreams::xp_autodetect()(path, stream);
    if (!stream.good())
        return "not opened";
    std::string content;
    for (int c = stream.get(); c != EOF; c = stream.get())
        content += static_cast<char>(c);
    return stream.bad() ? "bad" : content;
}

std::string longContent() {
    std::string content;
    for (int i = 0; i < 20000; ++i)
        content += std::to_string(i * 7919) + "\r\n";
    return content;
}

TEST(Autodetect, DeliversPlainAndProtectedFiles) {
    const support::TempDir folder;
    for (const std::string& content :
         {std::string(), std::string("a\0\r\n\x1f", 5), longContent()}) {
        EXPECT_EQ(content, readThroughAutodetect(folder.write("plain", content)));
        const std::string path = folder.write("protected", gzip(content));
        EXPECT_TRUE(isl::iostreams::xp::is_encrypted(path.c_str()));
        EXPECT_EQ(content, readThroughAutodetect(path));
    }
    EXPECT_EQ("twice", readThroughAutodetect(folder.write("two", gzip("twi") + gzip("ce"))));
}

TEST(Autodetect, NeverPassesDamageAsGood) {
    const support::TempDir folder;
    for (const std::string& content : {std::string("short"), longContent()}) {
        const std::string whole = gzip(content);
        std::vector<std::string> damaged = {whole + "behind"};
        for (std::size_t length = 2; length < whole.size();
             length += length + 30 < whole.size() ? 1 + length / 20 : 1)
            damaged.push_back(whole.substr(0, length));
        // The checksum is 8 to 5 bytes from the end.
        for (const std::size_t fromEnd : {5U, 8U, 9U, 12U}) {
            damaged.push_back(whole);
            damaged.back()[whole.size() - fromEnd] ^= '\x55';
        }
        for (const std::string& bytes : damaged)
            EXPECT_EQ("bad", readThroughAutodetect(folder.write("f", bytes))) << bytes.size();
    }
}

TEST(Autodetect, LeavesTheStreamBadForWhatIsNoFile) {
    const support::TempDir folder;
    mkfifo(folder.file("fifo").c_str(), 0600);
    for (const std::string& path : {folder.file("none"), folder.path().string(),
                                    folder.file("fifo"), std::string("/dev/zero"), std::string()})
        EXPECT_EQ("not opened", readThroughAutodetect(path)) << path;
}

TEST(BasicFile, GivesTheStoredBytes) {
    const support::TempDir folder;
    const std::string bytes = gzip("x");
    io::stream<isl::iostreams::basic_file> stream(
        isl::iostreams::basic_file(folder.write("f", bytes)));
    EXPECT_EQ(bytes, std::string(std::istreambuf_iterator<char>(stream), {}));
    EXPECT_FALSE(isl::iostreams::basic_file(folder.file("none")).is_open());
}

} // namespace
