// The key file: the profile-string rules, byte-identical saves, writes in
// place, and the growing-buffer read of one setting.
#include "app/key_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <tuple>
#include <vector>

#include "app/config_reader.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

using test::FileBytes;
using test::ScratchDir;

const char* const kSample =
    "; user's own notes\r\n"
    "[General]\r\n"
    "Path_EXE = C:\\Velantis\\velantis.exe  \r\n"
    "num_idioma=2\r\n"
    "Long=ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789\r\n"
    "Empty=\r\n"
    "Quoted=\"a b\"\r\n"
    "; num_idioma=7\r\n"
    "\r\n"
    "[Com]\r\n"
    "\tComm_NNEA_Timeout\t=\t1500\r\n"
    "num_idioma=9\r\n"
    "[general]\r\n"
    "Second=1\r\n";

TEST(KeyFileTest, GetProfileStringFollowsTheWindowsRules) {
  TKeyFile file;
  file.LoadText(kSample);
  const struct {
    const char* section;
    const char* key;
    const char* defaultText;
    size_t size;
    std::string expected;
    size_t expectedCount;
  } cases[] = {
      {"General", "num_idioma", "x", 10, "2", 1},
      {"GENERAL", "NUM_IDIOMA", "x", 10, "2", 1},             // names ignore letter case
      {"Com", "num_idioma", "x", 10, "9", 1},                 // a key belongs to its own section
      {"General", "Path_EXE", "", 100, "C:\\Velantis\\velantis.exe", 24},  // blanks trimmed
      {"Com", "Comm_NNEA_Timeout", "", 100, "1500", 4},       // tabs trimmed too
      {"General", "Long", "", 36, "ABCDEFGHIJKLMNOPQRSTUVWXYZ012345678", 35},  // truncated to size - 1
      {"General", "Long", "", 37, "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789", 36},
      {"General", "Empty", "dflt", 10, "", 0},                // present and empty
      {"General", "Missing", "foca_noE", 5, "foca", 4},      // the default is truncated too
      {"Nowhere", "num_idioma", "d", 10, "d", 1},
      {"General", "Second", "d", 10, "d", 1},                 // a repeated section: the first wins
      {"General", "Quoted", "", 10, "\"a b\"", 5},            // quotation marks are kept
      {"General", "; num_idioma", "none", 10, "none", 4},     // comment lines are not keys
      {"General", "num_idioma", "x", 1, "", 0},
      {"General", "num_idioma", "x", 0, "###", 0},            // size 0 writes nothing
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.section) + "/" + c.key + " size " + std::to_string(c.size));
    std::vector<char> buffer(c.size + 4, '#');
    buffer.back() = 0;
    const size_t count = file.GetProfileString(c.section, c.key, c.defaultText, buffer.data(), c.size);
    EXPECT_EQ(count, c.expectedCount);
    EXPECT_EQ(std::string(buffer.data()), c.expected);  // zero-terminated at count
    EXPECT_EQ(buffer[c.size], '#');                     // nothing written past the buffer
  }
}

TEST(KeyFileTest, LoadAndSaveUnchangedIsByteIdentical) {
  const auto dir = ScratchDir("keyfile-identity");
  // CR LF, a bare LF, a lone CR, a BOM, no line end at the end of the file.
  const std::vector<std::string> texts = {
      kSample,
      "\xEF\xBB\xBF[A]\r\nx=1\nweird line without equals\r\n\r\n[B]\ry=2",
      "",
      "\r\n\r\n",
  };
  for (size_t i = 0; i < texts.size(); ++i) {
    const auto path = dir / ("file" + std::to_string(i) + ".ini");
    TKeyFile file;
    file.LoadText(texts[i]);
    std::string error;
    ASSERT_TRUE(file.Save(path.string(), error)) << error;
    EXPECT_EQ(FileBytes(path), texts[i]) << "case " << i;
    if (i == 1) {
      EXPECT_EQ(file.Find("a", "X"), "1") << "the byte order mark does not hide the first section";
    }
  }
}

TEST(KeyFileTest, WriteChangesInPlaceOrAppends) {
  const struct {
    const char* name;
    const char* before;
    const char* section;
    const char* key;
    const char* value;
    const char* after;
  } cases[] = {
      {"in place, spelling and blanks kept", "[a]\r\n  Key = old \r\nz=1\r\n", "A", "key", "new",
       "[a]\r\n  Key = new\r\nz=1\r\n"},
      {"same value leaves the line alone", "[a]\r\nk =  5  \r\n", "a", "k", "5", "[a]\r\nk =  5  \r\n"},
      {"missing key after the section's last line", "[a]\r\nx=1\r\n\r\n; b\r\n[b]\r\ny=2\r\n", "a", "k", "v",
       "[a]\r\nx=1\r\n\r\n; b\r\nk=v\r\n[b]\r\ny=2\r\n"},
      {"missing key before trailing blank lines", "[a]\r\nx=1\r\n\r\n\r\n[b]\r\n", "a", "k", "v",
       "[a]\r\nx=1\r\nk=v\r\n\r\n\r\n[b]\r\n"},
      {"missing key in an empty section", "[a]\r\n[b]\r\n", "a", "k", "v", "[a]\r\nk=v\r\n[b]\r\n"},
      {"missing section at the end", "[a]\r\nx=1\r\n", "New", "k", "v", "[a]\r\nx=1\r\n\r\n[New]\r\nk=v\r\n"},
      {"missing section, file without last line end", "[a]\nx=1", "b", "k", "v",
       "[a]\nx=1\r\n\r\n[b]\r\nk=v\r\n"},
      {"missing key, file without last line end", "[a]\nx=1", "a", "k", "", "[a]\nx=1\r\nk=\r\n"},
      {"empty file", "", "a", "k", "v", "[a]\r\nk=v\r\n"},
      {"commented-out key is not the key", "[a]\r\n;k=1\r\n", "a", "k", "2", "[a]\r\n;k=1\r\nk=2\r\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    TKeyFile file;
    file.LoadText(c.before);
    EXPECT_TRUE(file.WriteProfileString(c.section, c.key, c.value));
    EXPECT_EQ(file.Text(), c.after);
    EXPECT_EQ(file.Find(c.section, c.key), std::string(c.value));
  }
}

TEST(KeyFileTest, WriteRefusesWhatWouldBreakTheLines) {
  TKeyFile file;
  file.LoadText("[a]\r\nk=1\r\n");
  for (const auto& [section, key, value] : {std::tuple{"a", "k", "two\r\nlines"}, {"a", "k=x", "1"}, {"a]", "k", "1"},
                                            {"a", "", "1"}, {"a", " k", "1"}, {"a", ";k", "1"}})
    EXPECT_FALSE(file.WriteProfileString(section, key, value)) << section << "/" << key;
  EXPECT_EQ(file.Text(), "[a]\r\nk=1\r\n");
}

// The setting read grows its buffer by steps (20, 30, 40 ...): every length
// on both sides of each comes back whole; a stored "foca_noE", the read's
// own sentinel, cannot be told from a missing key (kept so, deliberately).
TEST(KeyFileTest, SettingReadAcrossTheBufferSteps) {
  for (size_t length = 0; length <= 125; ++length) {
    std::string value;
    for (size_t i = 0; i < length; ++i) value += static_cast<char>('a' + i % 26);
    TKeyFile file;
    file.LoadText("[COM]\r\nk=" + value + "\r\n");
    std::string text = "stale";
    ASSERT_TRUE(ReadKeyFileSetting(file, "Com", "K", text)) << length;
    EXPECT_EQ(text, value) << length;
  }
  TKeyFile file;
  file.LoadText("[s]\r\na=foca_noE\r\nb=foca_noEx\r\nc=foca_no\r\n");
  const std::pair<const char*, const char*> cases[] = {
      {"a", nullptr}, {"b", "foca_noEx"}, {"c", "foca_no"}, {"missing", nullptr}};
  for (const auto& [key, expected] : cases) {
    std::string text = "stale";
    EXPECT_EQ(ReadKeyFileSetting(file, "s", key, text), expected != nullptr) << key;
    EXPECT_EQ(text, expected ? expected : "stale") << key;
  }
}

}  // namespace
}  // namespace velantis
