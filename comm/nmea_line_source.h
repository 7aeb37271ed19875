// What the NMEA protocol reads lines from and writes lines to, so that the
// live reading cycle and the moving-map test run on a serial port, a
// network source, a file replay or, in tests, a list of lines in memory.
//
// TNmeaLineSource::ReadLine is the serial link's line reader: it puts the
// next line, from its "$" to its line feed both included, into line (which
// keeps its capacity) and returns a value above 0; 0 or less when no line
// arrived. wait selects the waiting form (up to the configured time-out,
// Comm_NNEA_Timeout) or the single-read form (what has already arrived).
// The reader reports its own failures (time-out, non-NMEA bytes) to its
// error sink; the caller only sees that no line came.
//
// TNmeaLineSink::WriteLine sends a line as it stands (sentences carry their
// CR LF); a failure throws TXErrorRScom like every port write.
#pragma once

#include <string>
#include <string_view>

namespace velantis {

class TNmeaLineSource {
public:
  virtual ~TNmeaLineSource() = default;
  virtual int ReadLine(std::string& line, bool wait) = 0;
};

class TNmeaLineSink {
public:
  virtual ~TNmeaLineSink() = default;
  virtual void WriteLine(std::string_view line) = 0;
};

}  // namespace velantis
