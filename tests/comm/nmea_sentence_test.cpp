#include "comm/nmea_sentence.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "comm/nmea_checksum.h"
#include "tests/comm/nmea_test_support.h"

namespace velantis {
namespace {

using test::Nmea;

// Published NMEA 0183 examples with the checksums they were published with.
constexpr std::string_view kGga =
    "$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47\r\n";
constexpr std::string_view kRmc =
    "$GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W*6A\r\n";

TEST(NmeaChecksum, PublishedSentencesCarryTheirChecksum) {
  const std::pair<std::string_view, int> cases[] = {
      {"GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,", 0x47},
      {"GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W", 0x6A},
      {"GPGLL,4916.45,N,12311.12,W,225444,A,", 0x1D},
      {"GPVTG,054.7,T,034.4,M,005.5,N,010.2,K", 0x48},
      {"GPGSA,A,3,04,05,,09,12,,,24,,,,,2.5,1.3,2.1", 0x39},
      {"GPWPL,4917.16,N,12310.64,W,003", 0x65},
  };
  for (const auto& [body, expected] : cases) {
    EXPECT_EQ(NmeaChecksum(body), expected) << body;
    EXPECT_EQ(NmeaChecksum(std::string(body).c_str(), -1), expected) << body;
  }
}

TEST(NmeaChecksum, BytesCountAsSigned8BitValues) {
  struct TCase {
    std::string bytes;
    int length;
    int32_t expected;
  };
  const TCase cases[] = {
      {"\x80", 1, -128},           // 0xFFFFFF80: one high byte sign-extends
      {"\x80\x80", 2, 0},          // two cancel
      {"\xC3\x41", 2, -126},       // 0xC3 ^ 0x41 = 0x82 -> -126
      {"A", 1, 0x41},
      {"", 0, 0},
      {std::string("AB\0C", 4), -1, 'A' ^ 'B'},  // negative length: up to the zero byte
      {std::string("AB\0C", 4), 4, 'A' ^ 'B' ^ 'C'},
      {"ABCD", 2, 'A' ^ 'B'},
  };
  for (const TCase& c : cases) EXPECT_EQ(NmeaChecksum(c.bytes.data(), c.length), c.expected);
}

// The eight-bytes-at-a-time fold against the byte loop it replaces, over
// every length up to 40 and bytes of every value.
TEST(NmeaChecksum, WordFoldEqualsTheByteLoop) {
  std::mt19937 random(7);
  for (int length = 0; length <= 40; ++length) {
    for (int round = 0; round < 50; ++round) {
      std::string bytes(static_cast<size_t>(length), '\0');
      for (char& c : bytes) c = static_cast<char>(random());
      int32_t byteLoop = 0;
      for (const char c : bytes) byteLoop ^= static_cast<int8_t>(c);
      ASSERT_EQ(NmeaChecksum(bytes), byteLoop) << "length " << length;
    }
  }
}

struct TParseCase {
  const char* what;
  std::string line;
  bool ok;
  std::string_view message;  // on failure
  std::string_view identifier;
  std::string_view complete;
  size_t fields;
  const char* checksumText;  // null: not checked (a checksum made by Nmea())
  bool matches;
};

TEST(NmeaSentence, ParseTable) {
  const TParseCase cases[] = {
      {"published GGA", std::string(kGga), true, "", "GGA", "GPGGA", 15, "47", true},
      {"GGA without its dollar sign", std::string(kGga.substr(1)), false, kNmeaErrorNoDollar, "",
       "", 0, nullptr, false},
      {"two characters of noise before the dollar", "x\x07" + std::string(kGga), true, "", "GGA",
       "GPGGA", 15, "47", true},
      {"RMC whose checksum has one hex digit",
       "$GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W*6\r\n", false,
       kNmeaErrorChecksumSection, "", "", 0, nullptr, false},
      {"RMC without asterisk",
       "$GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W\r\n", true, "", "RMC",
       "GPRMC", 12, "", false},
      {"asterisk with nothing after it", "$GPBOD,,T,,M,,*\r\n", false, kNmeaErrorChecksumSection,
       "", "", 0, nullptr, false},
      {"checksum text cut to two characters",
       "$GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W*6A7\r\n", true, "", "RMC",
       "GPRMC", 12, "6A", true},
      {"proprietary sentence of four characters", Nmea("PFEC,GPint,RMC05"), true, "", "FEC",
       "PFEC", 3, nullptr, true},
      {"lower-case hex digits",
       "$GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W*6a", true, "", "RMC",
       "GPRMC", 12, "6a", true},
      {"wrong checksum", "$GPVTG,054.7,T,034.4,M,005.5,N,010.2,K*49\r\n", true, "", "VTG", "GPVTG",
       9, "49", false},
      {"checksum digits that are no hex", "$GPVTG,054.7,T,034.4,M,005.5,N,010.2,K*\x1b[\r\n", true,
       "", "VTG", "GPVTG", 9, "\x1b[", false},
      {"proprietary: only the P goes", Nmea("PMGNWPL,4917.16,N,12310.64,W,0,M,X"),
       true, "", "MGNWPL", "PMGNWPL", 8, nullptr, true},
      {"three-letter field 0 kept whole", Nmea("TUA,1,2"), true, "", "TUA", "TUA", 3, nullptr,
       true},
      {"one-letter field 0", Nmea("D,1"), true, "", "D", "D", 2, nullptr, true},
      {"empty fields keep their numbers", Nmea("GPGSA,A,1,,,,,,,,,,,,,,,"), true, "", "GSA",
       "GPGSA", 18, nullptr, true},
      {"line feeds and returns inside the body are dropped",
       "$GPVTG,054.7,T,034\r\n.4,M,005.5,N,010.2,K*48\n", true, "", "VTG", "GPVTG", 9, "48", true},
      {"dollar alone", "$\r\n", true, "", "", "", 1, "", false},
      {"asterisk right after the dollar is text", "$*00\r\n", true, "", "*00", "*00", 1, "",
       false},
      {"empty line", "", false, kNmeaErrorNoDollar, "", "", 0, nullptr, false},
  };
  for (const TParseCase& c : cases) {
    SCOPED_TRACE(c.what);
    TComandaNMEA sentence;
    TErrorSink sink;
    ASSERT_EQ(sentence.Parse(c.line, sink), c.ok);
    if (!c.ok) {
      ASSERT_EQ(sink.Records().size(), 1u);
      EXPECT_EQ(sink.Records()[0].message, c.message);
      EXPECT_EQ(sink.Records()[0].detail, c.line);
      EXPECT_EQ(sentence.FieldCount(), 0u);
      continue;
    }
    EXPECT_TRUE(sink.Records().empty());
    EXPECT_EQ(sentence.Identifier(), c.identifier);
    EXPECT_EQ(sentence.CompleteIdentifier(), c.complete);
    EXPECT_EQ(sentence.FieldCount(), c.fields);
    if (c.checksumText != nullptr) {
      EXPECT_EQ(sentence.ChecksumText(), c.checksumText);
    }
    EXPECT_EQ(sentence.ChecksumMatches(), c.matches);
  }
}

TEST(NmeaSentence, BodyAndFieldsOfAPublishedRmc) {
  const TComandaNMEA rmc = test::Parsed(kRmc);
  EXPECT_EQ(rmc.Body(), "GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W*6A");
  EXPECT_EQ(rmc.BodyWithoutChecksum(),
            "GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W");
  const std::vector<std::string_view> expected = {"GPRMC", "123519", "A", "4807.038", "N",
                                                  "01131.000", "E", "022.4", "084.4", "230394",
                                                  "003.1", "W"};
  EXPECT_EQ(rmc.Fields(), expected);
  EXPECT_EQ(rmc.ComputedChecksum(), 0x6A);
  EXPECT_EQ(rmc.Field(12), "");  // past the last field
  double knots = 0;
  EXPECT_TRUE(rmc.FieldReal(7, knots));
  EXPECT_DOUBLE_EQ(knots, 22.4);
  EXPECT_FALSE(rmc.FieldReal(2, knots));  // "A"
  EXPECT_FALSE(rmc.FieldReal(20, knots));
}

TEST(NmeaSentence, ParseWithoutSinkOnlyReturns) {
  TComandaNMEA sentence;
  EXPECT_FALSE(sentence.Parse("no dollar here", nullptr));
  EXPECT_TRUE(sentence.Parse(kGga, nullptr));
}

TEST(NmeaSentence, AFailedParseEmptiesTheSentence) {
  TComandaNMEA sentence;
  ASSERT_TRUE(sentence.Parse(kGga, nullptr));
  EXPECT_FALSE(sentence.Parse("$GPGGA,1*4", nullptr));
  EXPECT_EQ(sentence.FieldCount(), 0u);
  EXPECT_EQ(sentence.Identifier(), "");
  EXPECT_FALSE(sentence.ChecksumMatches());
}

// A long sentence and then a short one into the same object: nothing of
// the first is left, and the short one's fields are its own.
TEST(NmeaSentence, ReparsingLeavesNothingBehind) {
  TComandaNMEA sentence;
  ASSERT_TRUE(sentence.Parse(kGga, nullptr));
  ASSERT_TRUE(sentence.Parse(Nmea("GPHDT,274.07,T"), nullptr));
  const std::vector<std::string_view> expected = {"GPHDT", "274.07", "T"};
  EXPECT_EQ(sentence.Fields(), expected);
  EXPECT_EQ(sentence.Identifier(), "HDT");
}

// Copies and moves, short bodies (held inside the string) and long ones.
TEST(NmeaSentence, CopiesAndMovesKeepTheirOwnFields) {
  for (const std::string& line : {Nmea("D,1,2"), std::string(kRmc)}) {
    TComandaNMEA original;
    ASSERT_TRUE(original.Parse(line, nullptr));
    const std::vector<std::string> fields(original.Fields().begin(), original.Fields().end());
    const std::string identifier(original.Identifier());

    TComandaNMEA copy(original);
    TComandaNMEA assigned;
    assigned = original;
    TComandaNMEA moved(std::move(original));
    original.Parse(Nmea("GPXXX,overwritten,and,longer,than,before,to,force,new,storage"), nullptr);
    for (const TComandaNMEA* s : {&copy, &assigned, &moved}) {
      ASSERT_EQ(s->FieldCount(), fields.size());
      for (size_t i = 0; i < fields.size(); ++i) EXPECT_EQ(s->Field(i), fields[i]);
      EXPECT_EQ(s->Identifier(), identifier);
      EXPECT_TRUE(s->ChecksumMatches());
    }
    TComandaNMEA moveAssigned;
    moveAssigned = std::move(copy);
    EXPECT_EQ(moveAssigned.Field(fields.size() - 1), fields.back());
    EXPECT_EQ(copy.FieldCount(), 0u);
  }
}

}  // namespace
}  // namespace velantis
