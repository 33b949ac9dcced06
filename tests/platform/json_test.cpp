// JSON documents of the common library: hostile texts, properties and error reports.

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <sstream>
#include <string>

#include "HCRapidJsonReadWriteUtils.h"
#include "JsonDocument.h"

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
    std::istringstream stream(text);
    JsonDocument document;
    document.ParseStream(stream);
    return document.HasParseError() ? Utils::GetErrorMsgFromDocument(document) : "";
}

TEST(JsonDocument, ReadsNumbersAsAPlainDocumentDoes) {
    std::istringstream stream("[0, -0, 2147483647, -2147483648, 4294967295, 9223372036854775807,"
                              "-9223372036854775808, 18446744073709551615, 18446744073709551616,"
                              "-9223372036854775809, 1.0, -2e3, 0.5E-1]");
    JsonDocument document;
    document.ParseStream(stream);
    rapidjson::Document plain;
    plain.Parse(stream.str().c_str());
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

TEST(JsonAllocator, RaisesWhereMemoryIsExhausted) {
    EXPECT_THROW(JsonAllocator().Malloc(std::numeric_limits<std::size_t>::max() / 2),
                 std::bad_alloc);
}

} // namespace
