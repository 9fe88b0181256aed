// The streaming JSON writer: the document's layout (a record a line), every kind of value, and
// texts escaped so that nothing a user typed breaks the document.
#include "support/TempFile.h"

#include <Output.h>
#include <json/JsonWriter.h>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

namespace quillon::tool {
namespace {

// The text the writer leaves in a file after write.
std::string Written(const std::function<void(JsonWriter&)>& write) {
    const quillon::testing::TempFile file("written.json");
    Output output(file.Path());
    JsonWriter json(output);
    write(json);
    json.Flush();
    output.Close();
    return file.Read();
}

std::string Text(std::string_view text) {
    return Written([&](JsonWriter& json) { json.Value(text); });
}

TEST(JsonWriterTest, RecordsOnLinesOfTheirOwnWithEveryKindOfValue) {
    const double masses[] = {301.1, 0.0, std::nan("")};
    const int clusters[] = {3, -4, 0, 9, 10, 99, 100};
    const std::string document = Written([&](JsonWriter& json) {
        json.BeginObject();
        json.Put("report", std::string_view("a.txt"));
        json.Key("rows");
        json.BeginArray();
        for (int i = 1; i <= 2; ++i) {
            json.BeginRow();
            json.Field("i", i);
            json.Field("big", 1LL << 60);
            json.Field("f", 100.0f);
            json.Field("d", 0.1);
            json.Field("e", 1e21);
            json.Field("nan", std::nanf(""));
            json.Field("inf", -HUGE_VAL);
            json.FieldNull("none");
            json.Field("yes", i == 1);
            json.Field("masses", std::span<const double>(masses));
            json.Field("clusters", std::span<const int>(clusters));
            json.Field("empty", std::span<const int>());
            json.EndRow();
        }
        json.EndArray();
        json.Key("nested");
        json.BeginArray();
        json.BeginArray();
        json.EndArray();
        json.BeginObject();
        json.EndObject();
        json.EndArray();
        json.EndObject();
    });
    const std::string row = R"("big":1152921504606846976,"f":100.0,"d":0.1,"e":1e+21,"nan":null,)"
                            R"("inf":null,"none":null,)";
    const std::string lists =
        R"("masses":[301.1,0.0,null],"clusters":[3,-4,0,9,10,99,100],"empty":[]})";
    EXPECT_EQ(document, "{\n\"report\":\"a.txt\",\n\"rows\":[\n{\"i\":1," + row + "\"yes\":true," +
                            lists + ",\n{\"i\":2," + row + "\"yes\":false," + lists +
                            "],\n\"nested\":[\n[],\n{}]}");
}

TEST(JsonWriterTest, EscapesQuotesBackslashesAndControlCharacters) {
    EXPECT_EQ(Text("plain ASCII, UTF-8 \xc2\xb5g and \x7f"),
              "\"plain ASCII, UTF-8 \xc2\xb5g and \x7f\"");
    EXPECT_EQ(Text(std::string_view("q\"b\\n\nt\tr\r\x01\x1f\0 ", 14)),
              R"("q\"b\\n\nt\tr\r\u0001\u001f\u0000 ")");
    // Every position of a longer text, so that the characters checked several at a time are
    // escaped as surely as the rest; the neighbours of the escaped characters stay as they are.
    for (size_t at = 0; at < 24; ++at) {
        for (const auto& [raw, escaped] : {std::pair<char, std::string>{'"', "\\\""},
                                           {'\\', "\\\\"},
                                           {'\n', "\\n"},
                                           {'\x1f', "\\u001f"},
                                           {'\x80', "\x80"},
                                           {' ', " "},
                                           {'!', "!"},
                                           {']', "]"}}) {
            std::string text(24, '#');
            text[at] = raw;
            const std::string expected =
                "\"" + std::string(at, '#') + escaped + std::string(23 - at, '#') + "\"";
            EXPECT_EQ(Text(text), expected) << "at " << at << ", character " << int(raw);
        }
    }
}

TEST(JsonWriterTest, TextsLongerThanAnOutputBlockGoOutWholeAndInOrder) {
    std::string text(3 << 20, 'x');
    text[5] = '\t';
    text[text.size() - 2] = '"';
    const std::string document = Written([&](JsonWriter& json) {
        json.BeginArray();
        json.Value(1LL);
        json.Value(std::string_view(text));
        json.Value(2.5f);
        json.EndArray();
    });
    // "[\n1,\n" + the text with its quotes and two escapes + ",\n2.5]"
    ASSERT_EQ(document.size(), 5 + text.size() + 4 + 6);
    EXPECT_EQ(document.substr(0, 13), "[\n1,\n\"xxxxx\\t");
    EXPECT_EQ(document.substr(document.size() - 11), "x\\\"x\",\n2.5]");
}

} // namespace
} // namespace quillon::tool
