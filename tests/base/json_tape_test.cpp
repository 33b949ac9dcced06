// Tapes: what a value tells, where it is, and the same verdicts as a document's.

#include <gtest/gtest.h>

#include <string>

#include "HCRapidJsonReadWriteUtils.h"
#include "base/JsonDocument.h"
#include "base/JsonTape.h"

namespace {

using base::JsonNode;
using base::JsonTape;
using Utils = HCRapidJsonReadWriteUtils;

/// A value and all below it: "line:column text" each, containers in brackets.
std::string described(const JsonTape& tape, const JsonNode& value) {
    const auto [line, column] = tape.position(value.offset());
    std::string text = std::to_string(line) + ":" + std::to_string(column) + " ";
    if (value.isArray()) {
        text += "[";
        value.forEachElement([&](JsonNode element) { text += described(tape, element) + ";"; });
        return text + "]";
    }
    if (value.isObject()) {
        text += "{";
        value.forEachMember([&](JsonNode name, JsonNode member) {
            text += described(tape, name) + "=" + described(tape, member) + ";";
        });
        return text + "}";
    }
    return text.append(value.text());
}

TEST(JsonTape, TellsValuesAndTheirPlaces) {
    const JsonTape tape(std::string("{\"a\\n\\n\": [1.5e3,\n  true, null, false],\n"
                                    " \"\\u00e9\" : {}, \"x\\u0000y\": \"\"}\n"));
    ASSERT_FALSE(tape.HasParseError());
    EXPECT_EQ("1:1 {1:2 a\n\n=1:11 [1:12 1.5e3;2:3 true;2:9 null;2:15 false;];"
              "3:2 \xC3\xA9=3:13 {};3:17 x" +
                  std::string(1, '\0') + "y=3:29 ;}",
              described(tape, tape.root()));
    EXPECT_EQ(JsonNode::Kind::Number, tape.node(3).kind());
    EXPECT_EQ(3U, tape.node(3).index());
}

TEST(JsonTape, HoldsMoreValuesThanOneChunk) {
    std::string text = "[";
    for (int i = 0; i < 50'000; ++i)
        text += (i == 0 ? "[" : ",[") + std::to_string(i) + "]";
    const JsonTape tape(text + "]");
    int next = 0;
    tape.root().forEachElement([&](JsonNode element) {
        element.forEachElement(
            [&](JsonNode number) { EXPECT_EQ(std::to_string(next++), number.text()); });
    });
    EXPECT_EQ(50'000, next);
}

TEST(JsonTape, JudgesTextsAsADocumentDoes) {
    const std::string deep(JsonTape::kMostLevels, '[');
    for (const std::string& text :
         {std::string(), std::string("{\"a\": 1,}"), std::string("{} x"), std::string("\"a"),
          std::string("[\"\\q\"]"), std::string("{}\0{}", 5), std::string("[1e999]"),
          std::string("[\"\\n\", 0e999, -0.00E+12345]"), std::string("[0e999, 1e999]"),
          std::string("[-]"), deep + std::string(JsonTape::kMostLevels, ']'), deep + "[",
          std::string("\"\x01\""), std::string("nul")}) {
        JsonDocument document;
        document.Parse(text);
        const JsonTape tape(text);
        EXPECT_EQ(document.HasParseError(), tape.HasParseError()) << text;
        EXPECT_EQ(document.HasParseError() ? Utils::GetErrorMsgFromDocument(document) : "",
                  tape.HasParseError() ? Utils::GetErrorMsgFromDocument(tape) : "")
            << text;
    }
}

} // namespace
