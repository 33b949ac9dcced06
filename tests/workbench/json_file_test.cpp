// JSON files that people write: values with their places, and errors that name them.

#include <gtest/gtest.h>

#include <string>

#include "support/support.h"
#include "workbench/files/JsonFile.h"
#include "workbench/text/Table.h"

namespace {

using tq::JsonFile;

TEST(JsonFile, RaisesErrorsWithThePlace) {
    using Case = std::pair<const char*, const char*>;
    for (const auto& [content, text] :
         {Case{"", "f:1:1: error: The document is empty."},
          Case{"{\n\"k\" 1}", "f:2:5: error: Missing a colon after a name of object member."},
          Case{"{\"k\":\n \"1\"}", "f:2:2: error: expected a number, found a text"},
          Case{"{\"m\":1}", "f:1:2: error: unknown key \"m\", expected one of: k, l [unknown-key]"},
          Case{"{\"k\":1,\n\"k\":2}", "f:2:1: error: a second key \"k\" [duplicate-key]"},
          Case{"{\"\\u001b[\":1}",
               "f:1:2: error: unknown key \"\\x1B[\", expected one of: k, l [unknown-key]"},
          Case{" {}", "f:1:2: error: the key \"k\" is missing"},
          Case{"[]", "f:1:1: error: expected an object, found an array"},
          Case{"{\"k\": tru}", "f:1:10: error: Invalid value."}})
        support::expectThrows<tq::InputError>(text, [json = content] {
            const JsonFile file = JsonFile::parse("f", json);
            file.expectKeys(file.root(), {"k", "l"});
            (void)file.number(file.require(file.root(), "k"));
        });
}

TEST(JsonFile, TellsKindsApart) {
    using Ask = void (*)(const JsonFile&);
    struct Case {
        const char* content;
        Ask ask;
        const char* complaint;
    };
    const Ask text = [](const JsonFile& file) { (void)file.string(file.root()); };
    const Ask truth = [](const JsonFile& file) { (void)file.boolean(file.root()); };
    const Ask array = [](const JsonFile& file) { (void)file.array(file.root()); };
    const Ask object = [](const JsonFile& file) { (void)file.object(file.root()); };
    const Ask number = [](const JsonFile& file) { (void)file.number(file.root()); };
    for (const auto& [content, ask, complaint] : std::initializer_list<Case>{
             {"-1.5", text, "f:1:1: error: expected a text, found a number"},
             {" null", truth, "f:1:2: error: expected true or false, found null"},
             {"\n{}", array, "f:2:1: error: expected an array, found an object"},
             {"false", object, "f:1:1: error: expected an object, found true or false"},
             {"true", number, "f:1:1: error: expected a number, found true or false"},
             {"\"\\\\\"", number, "f:1:1: error: expected a number, found a text"}})
        support::expectThrows<tq::InputError>(
            complaint, [&, json = content, use = ask] { use(JsonFile::parse("f", json)); });
}

TEST(JsonFile, KeepsThePlaceOfEachValue) {
    const JsonFile file =
        JsonFile::parse("f", R"([null,true,false,-1.5e3,"a\"b\\","\u0022",[],{"\\":""}])");
    std::string places;
    for (const auto& item : file.array(file.root()))
        places += std::to_string(file.placeOf(item.offset).column) + " ";
    EXPECT_EQ("2 7 12 18 25 34 43 46 ", places);
    const auto& member = file.object(file.array(file.root()).back()).front();
    EXPECT_EQ(47U, file.placeOf(member.offset).column);
    EXPECT_EQ(52U, file.placeOf(member.value.offset).column);
    EXPECT_EQ("a\"b\\", file.string(file.array(file.root())[4]));
    EXPECT_TRUE(file.boolean(file.array(file.root())[1]));
}

TEST(JsonFile, RefusesWhatIsNestedTooDeep) {
    EXPECT_NO_THROW(JsonFile::parse("f", std::string(200, '[') + std::string(200, ']')));
    support::expectThrows<tq::InputError>("f:1:201: error: nested deeper than 200 levels",
                                          [] { JsonFile::parse("f", std::string(1000000, '[')); });
}

TEST(JsonFile, ReadsNumbersTooSmallForADoubleAndRefusesTooLarge) {
    const std::string tiny = "0." + std::string(400, '0') + "1";
    const JsonFile file = JsonFile::parse("f", "[1e-999, -1.5, " + tiny + "]");
    const auto& items = file.array(file.root());
    EXPECT_EQ(0.0, file.number(items[0]));
    EXPECT_EQ(-1.5, file.number(items[1]));
    EXPECT_EQ(0.0, file.number(items[2]));
    EXPECT_THROW(JsonFile::parse("f", "[1e999]"), tq::InputError);
    EXPECT_EQ("-0e9999", JsonFile::parse("f", "-0e9999").root().text);
    EXPECT_THROW(JsonFile::parse("f", std::string("1\0 2", 4)), tq::InputError);
    EXPECT_THROW(JsonFile::parse("f", "\"\xff\""), tq::InputError);
}

TEST(Table, AlignsByCharactersAndNumbersKeepThePoint) {
    tq::Table table({{"name"}, {"MHz", tq::Table::Align::Right}});
    table.addRow({"µ", "1.5"});
    table.addRow({"longer", "12.25"});
    std::ostringstream out;
    table.print(out);
    EXPECT_EQ("name      MHz\n------  -----\nµ         1.5\nlonger  12.25\n", out.str());
}

} // namespace
