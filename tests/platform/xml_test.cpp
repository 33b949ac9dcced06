// The XML writer: the text form, attributes in order, and a file that is whole or not there.

#include <gmock/gmock.h>

#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <memory>

#include "HEXError.h"
#include "HXMLWInterface.h"
#include "HXMLWStream.h"
#include "support/support.h"

namespace {

namespace fs = std::filesystem;

const std::string kHead = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

std::string written(const std::shared_ptr<HXMLWElement>& root) {
    const support::TempDir folder;
    HXMLWInterface::writeToFile(root, folder.file("f"));
    return support::readFile(folder.file("f")).substr(kHead.size());
}

TEST(XmlElement, DividesATextAtTheFirstEqualsSign) {
    using Case = std::pair<std::string, std::string>;
    for (const auto& [text, attribute] :
         {Case{"@K=v", "K=\"v\""}, Case{"@K = v", "K=\"v\""}, Case{"@K=", "K=\"\""},
          Case{"@K = ", "K=\"\""}, Case{"@K= v ", "K=\" v \""}, Case{"@K =  v", "K=\" v\""},
          Case{"@K=a=b = c,d", "K=\"a=b = c,d\""}, Case{"K=v", "K=\"v\""}, Case{"@K", "K=\"\""},
          Case{"", "_=\"\""}, Case{"@=v", "_=\"v\""}, Case{"@1<K=v", "_1_K=\"v\""},
          Case{"@K=\t\n\r", "K=\"&#09;&#10;&#13;\""},
          Case{std::string("@K=a\0b\x1b", 7), "K=\"a\uFFFDb\uFFFD\""},
          Case{"@K=é\xC3(\xF4\x90\x80\x80\xC0\xAF\xE2\x82",
               "K=\"é\uFFFD(\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\""},
          Case{"@K=<\"&'", "K=\"&lt;&quot;&amp;'\""}}) {
        const auto root = HXMLWInterface::createRoot("R");
        root->addProperty(text);
        EXPECT_EQ("<R " + attribute + " />\n", written(root));
    }
}

TEST(XmlElement, KeepsTheFirstPlaceAndTheLastValueOfAnAttribute) {
    const auto root = HXMLWInterface::createRoot("R");
    root->addProperty("@A=1");
    root->addAttribute("B", "@2 = ");
    root->addAttribute("A", "3");
    root->addAttribute("C", nullptr);
    EXPECT_EQ("<R A=\"3\" B=\"@2 = \" C=\"\" />\n", written(root));
}

TEST(XmlElement, TellsItsChildrenAndKeepsTheTreeAlive) {
    auto root = HXMLWInterface::createRoot("R");
    root->addChild("a")->addChild("b");
    EXPECT_EQ(nullptr, root->addChild(""));
    EXPECT_TRUE(root->hasChild("a"));
    EXPECT_FALSE(root->hasChild("b"));
    std::vector<std::shared_ptr<HXMLWElement>> children{root};
    root->getChildren(children);
    root.reset();
    ASSERT_EQ(1U, children.size());
    EXPECT_EQ("<a>\n\t<b />\n</a>\n", written(children[0]));
}

TEST(XmlStream, WritesTheBytesOfATree) {
    const support::TempDir folder;
    const auto root = HXMLWInterface::createRoot("ROOT");
    HXMLWStream stream(folder.file("stream"));
    stream.text().start("ROOT");
    HXMLWText rendered(1);
    for (int byte = 0; byte < 256; ++byte) {
        const std::string value = {'a', static_cast<char>(byte), 'b'};
        HXMLWElement* child = root->addChild("CHILD");
        child->addProperty("@V=" + value);
        child->addAttribute("W", "");
        child->addChild("INNER");
        HXMLWText& text = byte % 2 == 0 ? stream.text() : rendered;
        text.start("CHILD");
        text.attribute("V", value);
        text.attribute("W", "");
        text.start("INNER");
        text.end();
        text.end();
        stream.text().append(rendered.bytes());
        rendered.clearBytes();
        stream.flush();
    }
    stream.text().end();
    EXPECT_FALSE(std::filesystem::exists(folder.file("stream")));
    stream.finish();
    HXMLWInterface::writeToFile(root, folder.file("tree"));
    EXPECT_EQ(support::readFile(folder.file("tree")), support::readFile(folder.file("stream")));
}

TEST(XmlFile, TakesThePlaceOfAnOldOneThroughLinksAndKeepsItsRights) {
    const support::TempDir folder;
    const std::string file = folder.write("old", "old");
    fs::permissions(file, fs::perms(0640));
    fs::create_symlink("old", folder.file("link"));
    fs::create_symlink("link", folder.file("second"));
    HXMLWInterface::writeToFile(HXMLWInterface::createRoot("R"), folder.file("second"));
    EXPECT_EQ(kHead + "<R />\n", support::readFile(file));
    EXPECT_TRUE(fs::is_symlink(folder.file("second")));
    EXPECT_EQ(fs::perms(0640), fs::status(file).permissions());
    EXPECT_EQ(3, std::distance(fs::directory_iterator(folder.path()), {}));
}

TEST(XmlFile, IsLeftAloneWhereWritingFails) {
    const support::TempDir folder;
    const auto root = HXMLWInterface::createRoot("R");
    fs::create_directory(folder.file("d"));
    ASSERT_EQ(0, mkfifo(folder.file("fifo").c_str(), 0600));
    fs::create_symlink("loop", folder.file("loop"));
    using Case = std::pair<const char*, const char*>;
    for (const auto& [name, cause] :
         {Case{"d", "Is a directory"}, Case{"fifo", "Not a regular file"},
          Case{"none/f", "No such file or directory"},
          Case{"loop", "Too many levels of symbolic links"}}) {
        const std::string path = folder.file(name);
        support::expectThrows<HEXError>("can't write '" + path + "': " + cause,
                                        [&] { HXMLWInterface::writeToFile(root, path); });
    }
    support::expectThrows<HEXError>("can't write 'f': there is no document",
                                    [] { HXMLWInterface::writeToFile(nullptr, "f"); });
    EXPECT_EQ(3, std::distance(fs::directory_iterator(folder.path()), {}));
}

/// A limit on the size of files fails a write as a full disk does. Ends the process with 7 where
/// that was raised.
[[noreturn]] void writeWithinAThousandBytes(const std::shared_ptr<HXMLWElement>& root,
                                            const std::string& file) {
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{1000, 1000};
    setrlimit(RLIMIT_FSIZE, &limit);
    try {
        HXMLWInterface::writeToFile(root, file);
    } catch (const HEXError&) {
        std::_Exit(7);
    }
    std::_Exit(0);
}

TEST(XmlFile, StaysAsItWasOnAFullDisk) {
    const support::TempDir folder;
    const std::string file = folder.write("f", "old");
    const auto root = HXMLWInterface::createRoot("R");
    root->addAttribute("A", std::string(1 << 20, 'x').c_str());
    EXPECT_EXIT(writeWithinAThousandBytes(root, file), testing::ExitedWithCode(7), "");
    EXPECT_EQ("old", support::readFile(file));
    EXPECT_EQ(1, std::distance(fs::directory_iterator(folder.path()), {}));
}

} // namespace
