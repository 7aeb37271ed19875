// The text forms of the configuration's value types: what converts, what is
// refused (the value then stays), and what is written back.
#include "app/config_value.h"

#include <gtest/gtest.h>

#include <cctype>
#include <string>
#include <vector>

namespace velantis {
namespace {

// Parses text into a value that starts as a marker and formats the result;
// "refused " and the value, still the marker's, when the parse fails.
template <typename T>
std::string Written(const char* text, T marker, bool (*parse)(std::string_view, T&), std::string (*format)(T)) {
  T value = marker;
  return parse(text, value) ? format(value) : "refused " + format(value);
}

TEST(ConfigValueTest, EveryTypeConvertsOrKeepsTheValue) {
  enum TType { Integer, Boolean, Real, Colour };
  const struct {
    TType type;
    const char* text;
    const char* written;  // nullptr: refused
  } cases[] = {
      {Integer, "2000", "2000"}, {Integer, "-5", "-5"}, {Integer, "+7", "7"},
      {Integer, "2147483647", "2147483647"}, {Integer, "-2147483648", "-2147483648"},
      {Integer, "2147483648", nullptr}, {Integer, "", nullptr}, {Integer, "12abc", nullptr},
      {Integer, "1.5", nullptr}, {Integer, "+-3", nullptr}, {Integer, "0x10", nullptr}, {Integer, "+", nullptr},
      {Boolean, "0", "0"}, {Boolean, "1", "1"}, {Boolean, "2", "1"}, {Boolean, "-1", "1"},
      {Boolean, "true", nullptr}, {Boolean, "", nullptr},
      {Real, "10.000000", "10"}, {Real, "+2.5", "2.5"}, {Real, "-0.25", "-0.25"}, {Real, "1e3", "1000"},
      {Real, ".5", "0.5"}, {Real, "0.1", "0.1"}, {Real, "10,5", nullptr}, {Real, "", nullptr},
      {Real, "inf", nullptr}, {Real, "nan", nullptr}, {Real, "1e60", nullptr}, {Real, "3.5x", nullptr},
      {Colour, "16777215", "16777215"}, {Colour, "4294967295", "4294967295"}, {Colour, "-1", "4294967295"},
      {Colour, "-16777201", "4278190095"}, {Colour, "-2147483648", "2147483648"},
      {Colour, "4294967296", nullptr}, {Colour, "-2147483649", nullptr}, {Colour, "#FFFFFF", nullptr},
  };
  const char* const markers[] = {"12345", "1", "99", "7"};  // the Boolean's true: "0" must turn it off
  for (const auto& c : cases) {
    const std::string written = c.type == Integer ? Written(c.text, 12345, ParseConfigInteger, FormatConfigInteger)
                                : c.type == Boolean ? Written(c.text, true, ParseConfigBoolean, FormatConfigBoolean)
                                : c.type == Real    ? Written(c.text, 99.0f, ParseConfigReal, FormatConfigReal)
                                                    : Written(c.text, 7u, ParseConfigColour, FormatConfigColour);
    EXPECT_EQ(written, c.written ? c.written : std::string("refused ") + markers[c.type]) << c.type << " " << c.text;
  }
  // Every float comes back bit for bit, however many digits it needs.
  for (float value : {1.0f / 3.0f, 1e-7f, 3.4028235e38f, -123456.79f, 1.17549435e-38f}) {
    float back = 0.0f;
    ASSERT_TRUE(ParseConfigReal(FormatConfigReal(value), back)) << FormatConfigReal(value);
    EXPECT_EQ(back, value) << FormatConfigReal(value);
  }
}

TEST(ConfigValueTest, RecentListTextForm) {
  const struct {
    std::vector<std::string> entries;
    const char* text;
  } cases[] = {
      {{}, ""},
      {{"WGS 84", "European 1950", "NAD27 CONUS"}, "WGS 84|European 1950|NAD27 CONUS"},
      {{"a|b", "c"}, "a%7Cb|c"},
      {{"http://x/?q=a%20b&l=%7C"}, "http://x/?q=a%20b&l=%257C"},
      {{"100%"}, "100%"},
      {{"%25", "%"}, "%2525|%"},
      {{"%|"}, "%%7C"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(FormatConfigRecentList(c.entries), c.text);
    std::vector<std::string> back = {"stale"};
    ASSERT_TRUE(ParseConfigRecentList(c.text, back));
    EXPECT_EQ(back, c.entries) << c.text;
  }
  // Empty entries are dropped; the escape reads in either case.
  std::vector<std::string> entries;
  ASSERT_TRUE(ParseConfigRecentList("|a||x%7cy|", entries));
  EXPECT_EQ(entries, (std::vector<std::string>{"a", "x|y"}));
  EXPECT_EQ(FormatConfigRecentList({"", "a", ""}), "a");
  // Every entry up to 4 long over the characters that matter comes back.
  const std::string alphabet = "%|27Cc5";
  std::vector<std::string> all = {""};
  for (size_t from = 0; all.back().size() < 4; ++from)
    for (char c : alphabet) all.push_back(all[from] + c);
  for (const std::string& entry : all) {
    if (entry.empty()) continue;
    std::vector<std::string> back;
    ASSERT_TRUE(ParseConfigRecentList(FormatConfigRecentList({entry, "tail"}), back));
    EXPECT_EQ(back, (std::vector<std::string>{entry, "tail"})) << entry;
  }
}

TEST(ConfigValueTest, SecretsAreNotStoredInClearAndComeBack) {
  for (const std::string& secret : {std::string("p4ss word|=;"), std::string("\0\xFF\x80", 3),
                                    std::string("a much longer token, longer than the fixed key it is mixed with")}) {
    const std::string stored = FormatConfigSecret(secret);
    EXPECT_EQ(stored.front(), '~');
    EXPECT_EQ(stored.size(), 1 + 2 * secret.size());
    EXPECT_EQ(stored.find(secret), std::string::npos);
    EXPECT_EQ(stored.find_first_not_of("~0123456789ABCDEF"), std::string::npos);
    std::string lower = stored, back;  // hex digits read in either case
    for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    for (const std::string& text : {stored, lower}) {
      ASSERT_TRUE(ParseConfigSecret(text, back));
      EXPECT_EQ(back, secret);
    }
  }
  EXPECT_EQ(FormatConfigSecret(""), "");
  std::string back = "x";
  ASSERT_TRUE(ParseConfigSecret("", back));
  EXPECT_EQ(back, "");
  for (const char* text : {"password", "~A", "~GG", "~gg", "~12 4", "12"}) {
    back = "kept";
    EXPECT_FALSE(ParseConfigSecret(text, back)) << text;
    EXPECT_EQ(back, "kept");
  }
}

}  // namespace
}  // namespace velantis
