// JSON files of the host: values with their places, and complaints that name them.

#include <gtest/gtest.h>

#include <string>

#include "host/JsonTree.h"
#include "host/Table.h"
#include "support/support.h"

namespace {

using host::JsonFile;

TEST(JsonTree, ComplainsWithThePlace) {
    using Case = std::pair<const char*, const char*>;
    for (const auto& [content, text] :
         {Case{"", "f:1:1: The document is empty."},
          Case{"{\n\"k\" 1}", "f:2:5: Missing a colon after a name of object member."},
          Case{"{\"k\":\n \"1\"}", "f:2:2: expected a number, found a text"},
          Case{"{\"m\":1}", "f:1:2: unknown key \"m\", expected one of: k, l"},
          Case{"{\"k\":1,\n\"k\":2}", "f:2:1: the key \"k\" stands here a second time"},
          Case{"{\"\\u001b[\":1}", "f:1:2: unknown key \"\\x1B[\", expected one of: k, l"},
          Case{" {}", "f:1:2: the key \"k\" is missing"},
          Case{"[]", "f:1:1: expected an object, found an array"}})
        support::expectThrows<host::BadInput>(text, [json = content] {
            const JsonFile file = JsonFile::parse("f", json);
            file.expectKeys(file.root(), {"k", "l"});
            (void)file.number(file.require(file.root(), "k"));
        });
}

TEST(JsonTree, RefusesWhatIsNestedTooDeep) {
    EXPECT_NO_THROW(JsonFile::parse("f", std::string(200, '[') + std::string(200, ']')));
    support::expectThrows<host::BadInput>("f:1:201: nested deeper than 200 levels",
                                          [] { JsonFile::parse("f", std::string(1000000, '[')); });
}

TEST(JsonTree, ReadsNumbersTooSmallForADoubleAndRefusesTooLarge) {
    const std::string tiny = "0." + std::string(400, '0') + "1";
    const JsonFile file = JsonFile::parse("f", "[1e-999, -1.5, " + tiny + "]");
    const auto& items = file.array(file.root());
    EXPECT_EQ(0.0, file.number(items[0]));
    EXPECT_EQ(-1.5, file.number(items[1]));
    EXPECT_EQ(0.0, file.number(items[2]));
    EXPECT_THROW(JsonFile::parse("f", "[1e999]"), host::BadInput);
}

TEST(Program, FailsWhenItsOutputCantBeWritten) {
    const auto result = support::run(HBS_PROGRAM " --version >/dev/full");
    EXPECT_EQ(1, result.status);
    EXPECT_EQ("hbs: the output can't be written\n", result.error);
}

TEST(Table, AlignsByCharactersAndNumbersKeepThePoint) {
    host::Table table({{"name"}, {"MHz", host::Table::Align::Right}});
    table.addRow({"µ", "1.5"});
    table.addRow({"longer", "12.25"});
    std::ostringstream out;
    table.print(out);
    EXPECT_EQ("name      MHz\n------  -----\nµ         1.5\nlonger  12.25\n", out.str());
}

} // namespace
