#include "lab/core/output/FigureText.h"
#include "lab/core/output/JsonObject.h"
#include "lab/core/output/Texts.h"
#include "practice/Check.h"

#include <limits>

using namespace lab;

TEST_CASE("times are ISO 8601 in UTC with milliseconds, before 1970 too")
{
    CHECK_EQ(isoTime(0), "1970-01-01T00:00:00.000Z");
    CHECK_EQ(isoTime(1'709'251'199'999), "2024-02-29T23:59:59.999Z");
    CHECK_EQ(isoTime(-1), "1969-12-31T23:59:59.999Z");
    CHECK_EQ(minuteText(-1), "1969-12-31 23:59");
    CHECK_EQ(isoDate(19'782), "2024-02-29");
}

TEST_CASE("numbers are the shortest that read the same")
{
    CHECK_EQ(shortestText(0.1), "0.1");
    CHECK_EQ(shortestText(1.0 / 3), "0.3333333333333333");
    CHECK_EQ(shortestText(100'000), "100000");
    CHECK_EQ(shortestText(-0.0), "0");
    CHECK_EQ(shortestText(1e-7), "1e-07");
    CHECK_EQ(shortestText(std::numeric_limits<double>::infinity()), "null");
    CHECK_EQ(shortestText(std::numeric_limits<double>::quiet_NaN()), "null");
}

TEST_CASE("fixed numbers have no minus before nothing")
{
    CHECK_EQ(fixedText(-0.001, 2), "0.00");
    CHECK_EQ(fixedText(-0.006, 2), "-0.01");
    CHECK_EQ(fixedText(1.10605, 5), "1.10605");
    CHECK_EQ(fixedText(65'000, 0), "65000");
}

TEST_CASE("thousands are grouped by commas")
{
    CHECK_EQ(groupedText(1'234'567.891, 2), "1,234,567.89");
    CHECK_EQ(groupedText(-999, 0), "-999");
    CHECK_EQ(groupedText(-1'000, 0), "-1,000");
    CHECK_EQ(groupedText(100'000, 2), "100,000.00");
}

TEST_CASE("any bytes become one line of UTF-8")
{
    CHECK_EQ(oneLine("a\r\nb\tc\x1B[0m\x7F"), "a  b c [0m ");
    CHECK_EQ(oneLine("\xC3\xA4 \xE2\x82\xAC \xF0\x9F\x98\x80"), "\xC3\xA4 \xE2\x82\xAC \xF0\x9F\x98\x80");
    CHECK_EQ(oneLine("\xC0\x80"), "\xEF\xBF\xBD\xEF\xBF\xBD");
    CHECK_EQ(oneLine("\xED\xA0\x80"), "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD");
    CHECK_EQ(oneLine("cut \xE2\x82"), "cut \xEF\xBF\xBD\xEF\xBF\xBD");
    CHECK_EQ(oneLine("a\xC2\x85z"), "a z");
    CHECK_EQ(oneLine("a\xE2\x80\xA8z"), "a z");
}

TEST_CASE("what is too long ends in an ellipsis, never in half a character")
{
    CHECK_EQ(shortened("abcdef", 6), "abcdef");
    CHECK_EQ(shortened("abcdefg", 6), "abc\xE2\x80\xA6");
    CHECK_EQ(shortened("a\xE2\x82\xAC\xE2\x82\xAC", 6), "a\xE2\x80\xA6");
    CHECK_EQ(shortened("", 6), "");
    for (std::size_t most = 3; most < 40; ++most) {
        const std::string text
            = shortened("\xE2\x82\xAC\xE2\x82\xAC\xE2\x82\xAC\xE2\x82\xAC\xE2\x82\xAC\xE2\x82\xAC", most);
        CHECK(text.size() <= most);
        CHECK_EQ(oneLine(text), text);
        CHECK_EQ(text.find("\xEF\xBF\xBD"), std::string::npos);
    }
}

TEST_CASE("what a script says is no markup")
{
    CHECK_EQ(escaped("</script><img src=x onerror=\"a('&')\">"),
        "&lt;/script&gt;&lt;img src=x onerror=&quot;a(&#39;&amp;&#39;)&quot;&gt;");
}

TEST_CASE("a JSON string is safe within a script element")
{
    CHECK_EQ(jsonString("</script><!-- & \"\\ \n"), "\"\\u003c/script\\u003e\\u003c!-- \\u0026 \\\"\\\\  \"");
}

TEST_CASE("a number of days has its unit, but not in files")
{
    CHECK_EQ(lab::figureText(lab::FigureKind::Days, 361), "361 d");
    CHECK_EQ(lab::figureText(lab::FigureKind::Days, 0), "0 d");
    CHECK_EQ(lab::figureData(lab::FigureKind::Days, 361), "361");
}

TEST_CASE("an object is written in the order of its additions")
{
    JsonObject inner;
    inner.text("b", "x");
    JsonObject object;
    object.number("z", std::nullopt);
    object.money("a", -5);
    object.flag("yes", true);
    object.texts("list", {"one", "two"});
    object.raw("inner", inner.value(1));
    object.raw("empty", JsonObject().value(1));
    CHECK_EQ(object.document(),
        "{\n  \"z\": null,\n  \"a\": -0.05,\n  \"yes\": true,\n  \"list\": [\"one\", \"two\"],\n"
        "  \"inner\": {\n    \"b\": \"x\"\n  },\n  \"empty\": {}\n}\n");
}

CHECK_MAIN()
