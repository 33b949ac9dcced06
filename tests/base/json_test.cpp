// JSON documents: hostile texts, numbers, and the places of values.

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "HCRapidJsonReadWriteUtils.h"
#include "base/JsonDocument.h"

// AddressSanitizer would end the process where a null pointer is asked for on purpose.
// NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" const char* __asan_default_options();
// NOLINTNEXTLINE(bugprone-reserved-identifier)
const char* __asan_default_options() {
    return "allocator_may_return_null=1";
}

namespace {

using Utils = HCRapidJsonReadWriteUtils;

std::string errorOf(const std::string& text) {
    JsonDocument document;
    document.Parse(text);
    return document.HasParseError() ? Utils::GetErrorMsgFromDocument(document) : "";
}

TEST(JsonDocument, ReadsNumbersAsAPlainDocumentDoes) {
    const std::string text = ("[0, -0, 2147483647, -2147483648, 4294967295, 9223372036854775807,"
                              "-9223372036854775808, 18446744073709551615, 18446744073709551616,"
                              "-9223372036854775809, 1.0, -2e3, 0.5E-1]");
    JsonDocument document;
    document.Parse(text);
    rapidjson::Document plain;
    plain.Parse(text.c_str());
    ASSERT_EQ(plain.Size(), document.Size());
    for (rapidjson::SizeType i = 0; i < plain.Size(); ++i) {
        const auto kinds = [i](const auto& values) {
            return std::array{values[i].IsInt(), values[i].IsUint(), values[i].IsInt64(),
                              values[i].IsUint64()};
        };
        EXPECT_EQ(kinds(plain), kinds(document)) << i;
        EXPECT_DOUBLE_EQ(plain[i].GetDouble(), document[i].GetDouble()) << i;
    }
}

TEST(JsonDocument, SurvivesHostileTexts) {
    EXPECT_EQ("", errorOf("[0." + std::string(400, '0') + "1e-2147483600]"));
    EXPECT_EQ("", errorOf(std::string(1000, '[') + std::string(1000, ']')));
    EXPECT_EQ("The values are nested too deeply. (at byte 1000)",
              errorOf(std::string(5000000, '[')));
    EXPECT_EQ("Missing a comma or '}' after an object member. (at byte 6)", errorOf("{\"a\":1"));
    EXPECT_EQ("The document is empty. (at byte 0)", errorOf(""));
    EXPECT_EQ("Number too big to be stored in double. (at byte 0)", errorOf("1e999"));
}

TEST(JsonDocument, CountsItsValuesAndNames) {
    for (const std::size_t most : {8U, 9U}) {
        JsonDocument document;
        document.Parse(R"({"a": [1, null, true, "x", {}], "b": 2})", {.mostValues = most + 1});
        EXPECT_EQ(most == 8, document.hasTooManyValues());
        EXPECT_EQ(most == 8, document.HasParseError());
    }
}

TEST(JsonDocument, TakesOnlyWhiteSpaceBehindItsRoot) {
    using namespace std::string_literals;
    EXPECT_EQ("", errorOf("{} \t\r\n"));
    const std::string error = "The document root must not be followed by other values. (at byte ";
    EXPECT_EQ(error + "3)", errorOf("{} {}"));
    EXPECT_EQ(error + "2)", errorOf("{}\0{\"a\": 1}"s));
    EXPECT_EQ(error + "3)", errorOf("{} \0"s));
    EXPECT_NE("", errorOf("[1,\0 2]"s));
}

TEST(JsonDocument, ReadsAZeroWithAnyExponent) {
    const std::string text = R"(["\"0e9", 0e99999999999, -0.00E+4000, 0e1, 100E+02, {"0e999": 7}])";
    JsonDocument document;
    document.Parse(text, {.keepsPlaces = true});
    ASSERT_FALSE(document.HasParseError());
    EXPECT_STREQ("\"0e9", document[0].GetString());
    EXPECT_EQ(0.0, document[1].GetDouble());
    EXPECT_EQ(0.0, document[2].GetDouble());
    EXPECT_EQ(10000.0, document[4].GetDouble());
    EXPECT_EQ(7, document[5]["0e999"].GetInt());
    EXPECT_EQ(text.find('7'), document.offsets().back());
    EXPECT_EQ("Number too big to be stored in double. (at byte 7)", errorOf("[0e999,1e999]"));
}

TEST(JsonDocument, KnowsWhereItsValuesAndNamesStart) {
    const std::string text = R"( {"a\"b": [true, false, null, -1.5e3, "x\\" ], "c":{}} )";
    JsonDocument document;
    document.Parse(text, {.keepsPlaces = true});
    ASSERT_FALSE(document.HasParseError());
    std::vector<std::string> starts;
    for (const std::uint32_t offset : document.offsets())
        starts.push_back(text.substr(offset, 3));
    EXPECT_EQ((std::vector<std::string>{R"({"a)", R"("a\)", "[tr", "tru", "fal", "nul", "-1.",
                                        R"("x\)", R"("c")", "{}}"}),
              starts);
    document.Parse("[1,]", {.keepsPlaces = true});
    EXPECT_TRUE(document.offsets().empty());
}

TEST(JsonDocument, RefusesLevelsAndBytesThatItsReaderDoesNotTake) {
    JsonDocument document;
    EXPECT_TRUE(document.Parse("[[[]]]", {.mostLevels = 2}).HasParseError());
    EXPECT_FALSE(document.Parse("[[]]", {.mostLevels = 2}).HasParseError());
    EXPECT_FALSE(document.Parse("[\"\xff\"]").HasParseError());
    EXPECT_TRUE(document.Parse("[\"\xff\"]", {.validatesEncoding = true}).HasParseError());
}

TEST(JsonAllocator, RaisesWhereMemoryIsExhausted) {
    EXPECT_THROW(JsonAllocator().Malloc(std::numeric_limits<std::size_t>::max() / 2),
                 std::bad_alloc);
}

} // namespace
