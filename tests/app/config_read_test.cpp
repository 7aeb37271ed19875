// The growing-buffer read of one key from the key file.
#include <gtest/gtest.h>

#include <string>

#include "app/config_reader.h"
#include "app/key_file.h"

namespace velantis {
namespace {

TEST(ConfigReadTest, ValueLongerThanTheFirstBufferComesBackWhole) {
  const std::string value = "0123456789abcdefghijklmnopqrstuvwxy";  // 35 characters
  ASSERT_EQ(value.size(), 35u);
  TKeyFile file;
  file.LoadText("[General]\r\nActivatedLanguages=" + value + "\r\n");
  std::string text;
  ASSERT_TRUE(ReadKeyFileSetting(file, "General", "ActivatedLanguages", text));
  EXPECT_EQ(text, value);
}

TEST(ConfigReadTest, EveryLengthAroundTheBufferStepsComesBackWhole) {
  // Lengths on both sides of every size the passes try (20, 30, 40 ...).
  for (size_t length = 0; length <= 125; ++length) {
    std::string value;
    for (size_t i = 0; i < length; ++i) value += static_cast<char>('a' + i % 26);
    TKeyFile file;
    file.LoadText("[s]\r\nk=" + value + "\r\n");
    std::string text = "stale";
    ASSERT_TRUE(ReadKeyFileSetting(file, "s", "k", text)) << length;
    EXPECT_EQ(text, value) << length;
  }
}

TEST(ConfigReadTest, EmptyValueIsPresent) {
  TKeyFile file;
  file.LoadText("[Com]\r\nComanda_NMEA_MovingMap=\r\n");
  std::string text = "stale";
  ASSERT_TRUE(ReadKeyFileSetting(file, "Com", "Comanda_NMEA_MovingMap", text));
  EXPECT_EQ(text, "");
}

TEST(ConfigReadTest, MissingKeyIsAbsentAndLeavesTheText) {
  TKeyFile file;
  file.LoadText("[Com]\r\nOther=1\r\n");
  std::string text = "stale";
  EXPECT_FALSE(ReadKeyFileSetting(file, "Com", "Comm_NNEA_Timeout", text));
  EXPECT_FALSE(ReadKeyFileSetting(file, "Nowhere", "Other", text));
  EXPECT_EQ(text, "stale");
}

TEST(ConfigReadTest, NamesIgnoreLetterCase) {
  TKeyFile file;
  file.LoadText("[COM]\r\ncomm_nnea_timeout=1500\r\n");
  std::string text;
  ASSERT_TRUE(ReadKeyFileSetting(file, "Com", "Comm_NNEA_Timeout", text));
  EXPECT_EQ(text, "1500");
}

TEST(ConfigReadTest, TheSentinelItselfReadsAsAbsent) {
  // A deliberate oddity of the sentinel read: a stored "foca_noE" cannot be
  // told from a missing key. Anything longer or shorter is present.
  TKeyFile file;
  file.LoadText("[s]\r\na=foca_noE\r\nb=foca_noEx\r\nc=foca_no\r\n");
  std::string text;
  EXPECT_FALSE(ReadKeyFileSetting(file, "s", "a", text));
  ASSERT_TRUE(ReadKeyFileSetting(file, "s", "b", text));
  EXPECT_EQ(text, "foca_noEx");
  ASSERT_TRUE(ReadKeyFileSetting(file, "s", "c", text));
  EXPECT_EQ(text, "foca_no");
}

}  // namespace
}  // namespace velantis
