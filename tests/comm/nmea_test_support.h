// What the NMEA tests share: sentences made from a body, a fixed clock, the
// lines of a capture.
#pragma once

#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "comm/nmea_clock.h"
#include "comm/nmea_sentence.h"
#include "comm/posicion_nmea.h"
#include "tests/support/testdata.h"

namespace velantis::test {

// "$" body "*" checksum CR LF. The checksum is the plain NMEA definition,
// written out here so that test inputs do not depend on the code under test.
inline std::string Nmea(std::string_view body) {
  unsigned char sum = 0;
  for (const char c : body) sum ^= static_cast<unsigned char>(c);
  char digits[3];
  std::snprintf(digits, sizeof digits, "%02X", sum);
  return "$" + std::string(body) + "*" + digits + "\r\n";
}

// 17 May 2024, 12:00 UTC: "today" of the tests.
inline TDateTime TestNow() { return TDateTime::FromCalendar(2024, 5, 17, 12, 0, 0); }

inline TPosicionNMEA RecordAtTestNow() {
  TPosicionNMEA record;
  record.clock = TNmeaClock::Fixed(TestNow());
  return record;
}

inline TComandaNMEA Parsed(std::string_view line) {
  TComandaNMEA sentence;
  TErrorSink sink;
  sentence.Parse(line, sink);
  return sentence;
}

// The lines of a gpsd capture: the "#" lines of its header skipped, each
// line with its own line end (CR LF, or LF alone) kept as received.
inline std::vector<std::string> CaptureLines(const std::filesystem::path& path) {
  const std::string bytes = FileBytes(path);
  std::vector<std::string> lines;
  bool header = true;
  size_t start = 0;
  while (start < bytes.size()) {
    size_t end = bytes.find('\n', start);
    end = end == std::string::npos ? bytes.size() : end + 1;
    std::string line = bytes.substr(start, end - start);
    start = end;
    if (header && line.starts_with("#")) continue;
    header = false;
    lines.push_back(std::move(line));
  }
  return lines;
}

// The calendar fields of a time, for comparisons with a readable message.
inline std::string IsoMillis(TDateTime time) {
  TCalendarTime c;
  if (!time.ToCalendar(c)) return "null";
  char text[40];
  std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%06.3f", c.year, c.month, c.day,
                c.hour, c.minute, c.second);
  return text;
}

}  // namespace velantis::test
