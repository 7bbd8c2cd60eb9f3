// Texts in the spelling of TOML.
#include "config/toml_library.h"
#include "config/toml_text.h"

#include <gtest/gtest.h>

namespace kxhost {
namespace {

TEST(TomlText, EscapesWhatWouldEndOrBreakTheString)
{
    EXPECT_EQ(tomlText(""), R"("")");
    EXPECT_EQ(tomlText("plain"), R"("plain")");
    EXPECT_EQ(tomlText(R"(a "b" c)"), R"("a \"b\" c")");
    EXPECT_EQ(tomlText(R"(C:\pictures)"), R"("C:\\pictures")");
    EXPECT_EQ(tomlText("a\nb\tc\rd"), R"("a\nb\tc\rd")");
    EXPECT_EQ(tomlText(std::string_view("\0\x1f\x7f", 3)), R"("\u0000\u001F\u007F")");
    EXPECT_EQ(tomlText("Gr\u00fc\u00dfe"), "\"Gr\u00fc\u00dfe\"");
}

TEST(TomlText, EveryCharacterReadsBackAsItWas)
{
    std::string all;
    for (char character = 1; character > 0 && character < 0x7F; ++character) {
        all += character;
    }
    all += "\x7f\u00e4";
    const toml::table table = toml::parse("text = " + tomlText(all));
    EXPECT_EQ(table["text"].value<std::string>(), all);
}

TEST(TomlText, MessagesShowControlCharactersAndNothingElseEscaped)
{
    EXPECT_EQ(printable("a\nb\tc\rd\x1b"), R"(a\nb\tc\rd\u001B)");
    EXPECT_EQ(printable(R"("C:\pictures" \u00e4)"), R"("C:\pictures" \u00e4)");
}

TEST(TomlText, ValuesOfMessagesStayOnOneLine)
{
    EXPECT_EQ(onOneLine("[\n    1,\n2 ]"), "[ 1, 2 ]");
    EXPECT_EQ(onOneLine(std::string(60, 'x')), std::string(60, 'x'));
    EXPECT_EQ(onOneLine(std::string(61, 'x')), std::string(60, 'x') + "...");
}

} // namespace
} // namespace kxhost
