// Tests of text for HTML.
#include "report/html_escape.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using kxhost::htmlEscape;

const std::string kReplaced = "\xEF\xBF\xBD";

TEST(HtmlEscape, MarkupBecomesText)
{
    EXPECT_EQ(htmlEscape("<script>alert(\"a\" & 'b')</script>"),
              "&lt;script&gt;alert(&quot;a&quot; &amp; &#39;b&#39;)&lt;/script&gt;");
}

TEST(HtmlEscape, AReferenceIsShownAsItIsWritten)
{
    EXPECT_EQ(htmlEscape("&lt;"), "&amp;lt;");
}

TEST(HtmlEscape, OtherTextStaysAsItIs)
{
    const std::string text = "Grüße aus 日本 \xF0\x9F\x93\xB7\tzwei\nZeilen /a-b_c=d;";
    EXPECT_EQ(htmlEscape(text), text);
    EXPECT_EQ(htmlEscape(""), "");
}

TEST(HtmlEscape, ControlCharactersAreReplaced)
{
    using namespace std::string_literals;
    EXPECT_EQ(htmlEscape("a\0b\x1F\x7F"s), "a" + kReplaced + "b" + kReplaced + kReplaced);
    EXPECT_EQ(htmlEscape("\xC2\x80\xC2\x9F\xC2\xA0"),
              kReplaced + kReplaced + kReplaced + kReplaced + "\xC2\xA0");
}

TEST(HtmlEscape, BytesThatAreNoUtf8AreReplaced)
{
    EXPECT_EQ(htmlEscape("a\x80z"), "a" + kReplaced + "z") << "none begins so";
    EXPECT_EQ(htmlEscape("\xFFz"), kReplaced + "z");
    EXPECT_EQ(htmlEscape("\xC3z"), kReplaced + "z") << "cut short by another character";
    EXPECT_EQ(htmlEscape("z\xE2\x82"), "z" + kReplaced + kReplaced) << "cut short by the end";
    EXPECT_EQ(htmlEscape("\xC3<"), kReplaced + "&lt;") << "must not hide what follows";
}

TEST(HtmlEscape, NoCharacterIsTakenInAFormThatIsTooLong)
{
    EXPECT_EQ(htmlEscape("\xC0\xBC"), kReplaced + kReplaced); // <
    EXPECT_EQ(htmlEscape("\xC1\xBF"), kReplaced + kReplaced); // 0x7F, the last that is refused
    EXPECT_EQ(htmlEscape("\xE0\x9F\xBF"), kReplaced + kReplaced + kReplaced);
    EXPECT_EQ(htmlEscape("\xE0\xA0\x80"), "\xE0\xA0\x80");
    EXPECT_EQ(htmlEscape("\xF0\x8F\xBF\xBF"), kReplaced + kReplaced + kReplaced + kReplaced);
    EXPECT_EQ(htmlEscape("\xF0\x90\x80\x80"), "\xF0\x90\x80\x80");
}

TEST(HtmlEscape, SurrogatesAndWhatIsBehindTheLastCharacterAreReplaced)
{
    const std::string three = kReplaced + kReplaced + kReplaced;
    EXPECT_EQ(htmlEscape("\xED\x9F\xBF"), "\xED\x9F\xBF");
    EXPECT_EQ(htmlEscape("\xED\xA0\x80"), three);
    EXPECT_EQ(htmlEscape("\xED\xBF\xBF"), three);
    EXPECT_EQ(htmlEscape("\xEE\x80\x80"), "\xEE\x80\x80");
    EXPECT_EQ(htmlEscape("\xF4\x8F\xBF\xBF"), "\xF4\x8F\xBF\xBF");
    EXPECT_EQ(htmlEscape("\xF4\x90\x80\x80"), three + kReplaced);
}

} // namespace
