#include "app/config_value.h"

#include <gtest/gtest.h>

#include <cctype>
#include <string>
#include <vector>

namespace velantis {
namespace {

struct TIntegerCase {
  const char* text;
  bool converts;
  int value;
};

TEST(ConfigValueTest, Integers) {
  const std::vector<TIntegerCase> cases = {
      {"2000", true, 2000},        {"-5", true, -5},           {"+7", true, 7},
      {"0", true, 0},              {"2147483647", true, 2147483647}, {"-2147483648", true, -2147483647 - 1},
      {"2147483648", false, 0},    {"", false, 0},             {"12abc", false, 0},
      {"1.5", false, 0},           {"+-3", false, 0},          {"0x10", false, 0},
      {"abc", false, 0},           {"+", false, 0},
  };
  for (const TIntegerCase& c : cases) {
    int value = 12345;
    EXPECT_EQ(ParseConfigInteger(c.text, value), c.converts) << c.text;
    EXPECT_EQ(value, c.converts ? c.value : 12345) << c.text;  // untouched on failure
  }
  for (int value : {0, 1, -1, 2000, 2147483647, -2147483647 - 1}) {
    int back = 0;
    ASSERT_TRUE(ParseConfigInteger(FormatConfigInteger(value), back));
    EXPECT_EQ(back, value);
  }
  EXPECT_EQ(FormatConfigInteger(-42), "-42");
}

TEST(ConfigValueTest, Booleans) {
  const std::vector<TIntegerCase> cases = {
      {"0", true, 0}, {"1", true, 1}, {"2", true, 1}, {"-1", true, 1}, {"true", false, 0}, {"", false, 0}};
  for (const TIntegerCase& c : cases) {
    bool value = false;
    EXPECT_EQ(ParseConfigBoolean(c.text, value), c.converts) << c.text;
    if (c.converts) {
      EXPECT_EQ(value, c.value != 0) << c.text;
    }
  }
  EXPECT_EQ(FormatConfigBoolean(true), "1");
  EXPECT_EQ(FormatConfigBoolean(false), "0");
}

TEST(ConfigValueTest, Reals) {
  struct TCase {
    const char* text;
    bool converts;
    float value;
  };
  const std::vector<TCase> cases = {
      {"10", true, 10.0f},     {"10.0", true, 10.0f},   {"10.000000", true, 10.0f}, {"+2.5", true, 2.5f},
      {"-0.25", true, -0.25f}, {"1e3", true, 1000.0f},  {".5", true, 0.5f},        {"10,5", false, 0},
      {"", false, 0},          {"abc", false, 0},       {"inf", false, 0},         {"nan", false, 0},
      {"1e60", false, 0},      {"3.5x", false, 0},
  };
  for (const TCase& c : cases) {
    float value = 99.0f;
    EXPECT_EQ(ParseConfigReal(c.text, value), c.converts) << c.text;
    EXPECT_EQ(value, c.converts ? c.value : 99.0f) << c.text;
  }
  EXPECT_EQ(FormatConfigReal(10.0f), "10");
  EXPECT_EQ(FormatConfigReal(0.1f), "0.1");
  EXPECT_EQ(FormatConfigReal(-2.5f), "-2.5");
  // Every float comes back bit for bit, however many digits it needs.
  for (float value : {0.1f, 1.0f / 3.0f, 50.0f, 1e-7f, 3.4028235e38f, -123456.79f, 1.17549435e-38f}) {
    float back = 0.0f;
    ASSERT_TRUE(ParseConfigReal(FormatConfigReal(value), back)) << FormatConfigReal(value);
    EXPECT_EQ(back, value) << FormatConfigReal(value);
  }
}

TEST(ConfigValueTest, Colours) {
  struct TCase {
    const char* text;
    bool converts;
    uint32_t value;
  };
  const std::vector<TCase> cases = {
      {"0", true, 0x000000u},          {"16777215", true, 0xFFFFFFu},   {"4294967295", true, 0xFFFFFFFFu},
      {"-1", true, 0xFFFFFFFFu},       {"-16777201", true, 0xFF00000Fu}, {"-2147483648", true, 0x80000000u},
      {"4294967296", false, 0},        {"-2147483649", false, 0},      {"#FFFFFF", false, 0},
      {"", false, 0},
  };
  for (const TCase& c : cases) {
    uint32_t value = 7;
    EXPECT_EQ(ParseConfigColour(c.text, value), c.converts) << c.text;
    EXPECT_EQ(value, c.converts ? c.value : 7u) << c.text;
  }
  EXPECT_EQ(FormatConfigColour(0xFFFFFFu), "16777215");
  EXPECT_EQ(FormatConfigColour(0xFFFFFFFFu), "4294967295");
}

TEST(ConfigValueTest, RecentListTextForm) {
  struct TCase {
    std::vector<std::string> entries;
    const char* text;
  };
  const std::vector<TCase> cases = {
      {{}, ""},
      {{"WGS 84"}, "WGS 84"},
      {{"WGS 84", "European 1950", "NAD27 CONUS"}, "WGS 84|European 1950|NAD27 CONUS"},
      {{"a|b", "c"}, "a%7Cb|c"},
      {{"http://x/?q=a%20b&l=%7C"}, "http://x/?q=a%20b&l=%257C"},
      {{"100%"}, "100%"},
      {{"%25", "%"}, "%2525|%"},
      {{"%|"}, "%%7C"},
      {{"C:\\maps\\a.map"}, "C:\\maps\\a.map"},
  };
  for (const TCase& c : cases) {
    EXPECT_EQ(FormatConfigRecentList(c.entries), c.text);
    std::vector<std::string> back = {"stale"};
    ASSERT_TRUE(ParseConfigRecentList(c.text, back));
    EXPECT_EQ(back, c.entries) << c.text;
  }
}

TEST(ConfigValueTest, RecentListDropsEmptyEntries) {
  std::vector<std::string> entries;
  ASSERT_TRUE(ParseConfigRecentList("|a||b|", entries));
  EXPECT_EQ(entries, (std::vector<std::string>{"a", "b"}));
  EXPECT_EQ(FormatConfigRecentList({"", "a", ""}), "a");
  ASSERT_TRUE(ParseConfigRecentList("x%7cy", entries));  // the escape read in either case
  EXPECT_EQ(entries, (std::vector<std::string>{"x|y"}));
}

TEST(ConfigValueTest, RecentListRoundTripsAwkwardEntries) {
  // Every entry over a small alphabet of the characters that matter, up to 4 long.
  const std::string alphabet = "%|27Cc5";
  std::vector<std::string> entries = {""};
  for (int length = 1; length <= 4; ++length) {
    std::vector<std::string> longer;
    for (const std::string& e : entries)
      if (static_cast<int>(e.size()) == length - 1)
        for (char c : alphabet) longer.push_back(e + c);
    entries.insert(entries.end(), longer.begin(), longer.end());
  }
  for (const std::string& entry : entries) {
    if (entry.empty()) continue;
    std::vector<std::string> back;
    ASSERT_TRUE(ParseConfigRecentList(FormatConfigRecentList({entry, "tail"}), back));
    EXPECT_EQ(back, (std::vector<std::string>{entry, "tail"})) << entry;
  }
}

TEST(ConfigValueTest, SecretsAreNotStoredInClearAndComeBack) {
  const std::vector<std::string> secrets = {"password", "p4ss word|=;", std::string("\0\xFF\x80", 3),
                                            "a much longer token, longer than the fixed key it is mixed with"};
  for (const std::string& secret : secrets) {
    const std::string stored = FormatConfigSecret(secret);
    EXPECT_EQ(stored.front(), '~');
    EXPECT_EQ(stored.size(), 1 + 2 * secret.size());
    EXPECT_EQ(stored.find(secret), std::string::npos);
    EXPECT_EQ(stored.find_first_not_of("~0123456789ABCDEF"), std::string::npos);
    std::string back;
    ASSERT_TRUE(ParseConfigSecret(stored, back));
    EXPECT_EQ(back, secret);
  }
  EXPECT_EQ(FormatConfigSecret(""), "");
  std::string back = "x";
  ASSERT_TRUE(ParseConfigSecret("", back));
  EXPECT_EQ(back, "");
}

TEST(ConfigValueTest, SecretsRejectWhatIsNotTheirForm) {
  for (const char* text : {"password", "~A", "~GG", "~12 4", "12"}) {
    std::string back = "kept";
    EXPECT_FALSE(ParseConfigSecret(text, back)) << text;
    EXPECT_EQ(back, "kept");
  }
  // Hex digits read in either case.
  std::string stored = FormatConfigSecret("token");
  for (char& c : stored) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  std::string back;
  ASSERT_TRUE(ParseConfigSecret(stored, back));
  EXPECT_EQ(back, "token");
}

}  // namespace
}  // namespace velantis
