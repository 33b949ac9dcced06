// Paths, folders, environment, written files and strings of the common library.

#include <gmock/gmock.h>

#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "HUTEnv.h"
#include "HUTFile.h"
#include "HUTFileWriteStream.h"
#include "support/support.h"

namespace {

namespace fs = std::filesystem;

std::vector<std::string> entriesOf(const std::string& path) {
    std::vector<std::string> entries;
    const std::unique_ptr<HSTFwdIter<std::string>> it(HUTFile(path).createFileIter());
    while (it->isValid())
        entries.push_back(it->next());
    return entries;
}

TEST(File, TellsWhatStandsAtAPath) {
    const support::TempDir folder;
    fs::create_symlink(folder.write("file", "x"), folder.file("link"));
    fs::create_symlink(folder.file("none"), folder.file("broken"));
    mkfifo(folder.file("fifo").c_str(), 0600);
    const auto kind = [&](const std::string& name) {
        const HUTFile file(folder.file(name));
        return std::vector<bool>{file.exists(), file.isFile(), file.isDir()};
    };
    EXPECT_EQ((std::vector<bool>{true, true, false}), kind("file"));
    EXPECT_EQ((std::vector<bool>{true, true, false}), kind("link"));
    EXPECT_EQ((std::vector<bool>{true, false, false}), kind("fifo"));
    EXPECT_EQ((std::vector<bool>{true, false, true}), kind("."));
    for (const std::string& name : {std::string("none"), std::string("broken"),
                                    std::string("file/x"), std::string("file\0x", 6)})
        EXPECT_EQ((std::vector<bool>{false, false, false}), kind(name)) << name;
}

TEST(File, GivesEveryEntrySortedByBytes) {
    const support::TempDir folder;
    for (const char* name : {"b", "B", ".hidden", "a~", "a/inner"})
        (void)folder.write(name, "");
    EXPECT_THAT(entriesOf(folder.path().string() + "/"),
                testing::ElementsAre(folder.file(".hidden"), folder.file("B"), folder.file("a"),
                                     folder.file("a~"), folder.file("b")));
    EXPECT_THAT(entriesOf(folder.file("b")), testing::IsEmpty());
    EXPECT_THAT(entriesOf(""), testing::IsEmpty());
}

TEST(File, NamesAreAbsoluteAndCanonicalOnDemand) {
    const support::TempDir folder;
    (void)folder.write("a/file", "");
    fs::create_symlink("a", folder.file("l"));
    const std::string real = fs::canonical(folder.path()).string();
    std::string full;
    HUTFile(folder.file("l/../a/./file")).getFullPath(full);
    EXPECT_EQ(folder.file("l/../a/./file"), full);
    EXPECT_EQ(real + "/a/new", HUTFile(folder.file("l/../a/./new")).getCanonicalName());
    EXPECT_EQ(HUTEnv::getPWD() + HUTFile::getDirSeparator() + "x", HUTFile("x").getFullPath());
    EXPECT_EQ("", HUTFile("").getFullPath());
}

TEST(Env, TakesTheFirstDataDirectoryThatHoldsThePath) {
    const support::TempDir folder;
    (void)folder.write("one/other", "");
    (void)folder.write("two/sce/x", "");
    (void)folder.write("three/sce/x", "");
    std::string list;
    for (const char* name : {"one", "two", "three"})
        list += ":" + folder.file(name);
    setenv("TQ_DATA_PATH", list.c_str(), 1);
    EXPECT_EQ(folder.file("two"), HUTEnv::getOBLDataDir("sce/x"));
    EXPECT_EQ("", HUTEnv::getOBLDataDir("mirrel"));
    unsetenv("TQ_DATA_PATH");
    EXPECT_EQ("", HUTEnv::getOBLDataDir("sce/x"));
}

TEST(WriteStream, ReplacesAFileAndTellsOfFailure) {
    const support::TempDir folder;
    const std::string path = folder.write("file", "something longer");
    HUTFileWriteStream stream(path, 2);
    stream << "a\r\n";
    EXPECT_TRUE(stream.close());
    EXPECT_FALSE(stream.close());
    EXPECT_EQ("a\r\n", support::readFile(path));

    HUTFileWriteStream full("/dev/full", 2);
    full << "lost";
    EXPECT_FALSE(full.close());
    mkfifo(folder.file("fifo").c_str(), 0600);
    EXPECT_FALSE(HUTFileWriteStream(folder.file("fifo"), 2).good());
    EXPECT_FALSE(HUTFileWriteStream(folder.file("none/file"), 2).good());
    EXPECT_FALSE(HUTFileWriteStream(path, 1).good());
}

} // namespace
