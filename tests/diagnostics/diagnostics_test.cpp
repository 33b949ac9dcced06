// Findings: places in texts, how they are shown, the nearest known name.

#include <gmock/gmock.h>

#include "diagnostics/NearestName.h"
#include "diagnostics/SourceText.h"
#include "workbench/text/DiagnosticText.h"
#include "workbench/text/Text.h"

namespace {

using tq::Diagnostic;
using tq::Severity;
using tq::SourceText;

Diagnostic findingAt(const tq::Place& place) {
    return tq::makeDiagnostic(Severity::Warning, "unknown-key", place, "unknown key",
                              "one of: a, b");
}

TEST(SourceText, GivesTheLineAndColumnOfAByte) {
    const SourceText text("f", "ab\ncd\r\n\nx");
    const std::vector<std::tuple<std::size_t, std::size_t, std::size_t, std::string>> cases{
        {0, 1, 1, "ab"}, {2, 1, 3, "ab"}, {3, 2, 1, "cd"}, {5, 2, 3, "cd"},
        {7, 3, 1, ""},   {8, 4, 1, "x"},  {99, 4, 2, "x"}};
    for (const auto& [offset, line, column, shown] : cases) {
        const tq::Place place = text.placeOf(offset);
        EXPECT_EQ(std::tie(place.line, place.column, place.lineText), std::tie(line, column, shown))
            << offset;
    }
    EXPECT_EQ(SourceText("f", "").placeOf(5).column, 1U);
}

TEST(Diagnostics, ShowTheLineWithACaretBelowTheColumn) {
    const SourceText text("f.json", "{\n\t\"\u00E4\": \x1B[2J}\n");
    EXPECT_EQ(tq::describe(findingAt(text.placeOf(9))),
              "f.json:2:8: warning: unknown key, expected one of: a, b [unknown-key]\n"
              " \"\u00E4\": \\x1B[2J}\n"
              "      ^\n");
}

TEST(Diagnostics, CutLongLinesAroundTheColumn) {
    const std::string line(1'000'000, 'x');
    const SourceText text("f", line);
    const std::string shown = tq::describe(findingAt(text.placeOf(500'000)));
    EXPECT_LT(shown.size(), 500U);
    EXPECT_THAT(shown, testing::HasSubstr("\n..." + std::string(160, 'x') + "\n" +
                                          std::string(63, ' ') + "^\n"));
}

TEST(NearestName, IsOfferedAfterTheFirstOfManyKnown) {
    const std::vector<std::string_view> few{"open", "close"};
    EXPECT_EQ("one of: open, close; did you mean \"open\"?", tq::oneOfNames("opn", few));
    EXPECT_EQ("one of: open, close", tq::oneOfNames("zzz", few));
    EXPECT_EQ("", tq::oneOfNames("opn", {}));
    std::vector<std::string> names;
    for (int i = 0; i < 1000; ++i)
        names.push_back("register" + std::to_string(i));
    const std::vector<std::string_view> many(names.begin(), names.end());
    EXPECT_THAT(tq::oneOfNames("registr999", many),
                testing::EndsWith("register39, and 960 more; did you mean \"register999\"?"));
}

TEST(Diagnostics, LeaveOutWhatIsUnknown) {
    Diagnostic finding{Severity::Error, "", {"f", 0, 0, "", 0}, "can't be read", "", {}};
    finding.notes.push_back({{"g", 7, 0, "", 0}, "first defined here"});
    EXPECT_EQ(tq::describe(finding), "f: error: can't be read\ng:7: note: first defined here\n");
}

TEST(Diagnostics, JsonHoldsNoInvalidText) {
    Diagnostic finding{Severity::Remark, "id", {"f\xFF", 1, 2, "", 0}, "a\xC0\x80z", "", {}};
    EXPECT_THAT(tq::diagnosticsJson({finding}),
                testing::AllOf(testing::HasSubstr("\"file\": \"f\uFFFD\""),
                               testing::HasSubstr("\"text\": \"a\uFFFD\uFFFDz\""),
                               testing::HasSubstr("\"column\": 2")));
}

TEST(Diagnostics, AreCountedBeyondTheLimit) {
    tq::DiagnosticList list(2);
    const tq::DiagnosticSink sink = list.sink();
    for (int i = 0; i < 5; ++i)
        sink(findingAt({}));
    EXPECT_EQ(list.all().size(), 2U);
    EXPECT_EQ(list.count(Severity::Warning), 5U);
    EXPECT_FALSE(list.hasErrors());
}

TEST(Texts, AreSafeForTerminals) {
    const std::vector<std::pair<std::string, std::string>> cases{
        {"a\x1B[0m\n", "a\\x1B[0m\\x0A"},
        {"\u0085", "\\xC2\\x85"},
        {"\u202Ex", "\\xE2\\x80\\xAEx"},
        {"\xED\xA0\x80", "\\xED\\xA0\\x80"},
        {"\xF4\x90\x80\x80", "\\xF4\\x90\\x80\\x80"},
        {"\xE2\x82", "\\xE2\\x82"},
        {"\u20AC\U0001F600", "\u20AC\U0001F600"}};
    for (const auto& [raw, shown] : cases)
        EXPECT_EQ(tq::printable(raw), shown);
    EXPECT_EQ(tq::displayWidth("e\u0301\u6F22\U0001F600x"), 6U);
}

TEST(NearestName, FindsSlipsAndNothingElse) {
    const std::vector<std::string_view> known{"register", "offset", "access", "width"};
    const std::vector<std::pair<std::string_view, std::string_view>> cases{
        {"acess", "access"}, {"Offset", "offset"}, {"ofsfet", "offset"},
        {"with", "width"},   {"reset", ""},        {"", ""},
        {"wdt", ""},         {"OFFSET", "offset"}};
    for (const auto& [typed, expected] : cases)
        EXPECT_EQ(tq::nearestName(typed, known), expected) << typed;
}

} // namespace
