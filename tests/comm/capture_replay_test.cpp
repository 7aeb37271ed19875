// Real receiver captures replayed into a pseudo-terminal at a receiver's
// pace, in uneven pieces: what the serial link and the live handling make of
// them is what the same handling makes of the file's lines.
#include <gtest/gtest.h>

#include "comm/nmea_live_handler.h"
#include "comm/port_line_source.h"
#include "tests/comm/port_doubles.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

// The fixes the handling marks new, one text each.
class TFixList {
public:
  TFixList() { m_fix.clock = TNmeaClock::Fixed(TDateTime::FromCalendar(2024, 6, 5)); }

  void Line(std::string_view line) {
    if (!m_handler.Handle(line, m_fix)) return;
    m_fixes.push_back(std::to_string(m_fix.lat) + " " + std::to_string(m_fix.lon) + " " +
                      m_fix.time.ToIsoText() + (m_fix.valid ? " valid" : " invalid"));
    m_fix.newData = false;
  }
  const std::vector<std::string>& Fixes() const { return m_fixes; }

private:
  TNmeaLiveHandler m_handler;
  TPosicionNMEA m_fix;
  std::vector<std::string> m_fixes;
};

class CaptureReplay : public ::testing::TestWithParam<const char*> {};

TEST_P(CaptureReplay, ThroughAPseudoTerminalAsFromTheFile) {
  VELANTIS_TESTDATA_OR_SKIP(capture, std::string("nmea/") + GetParam());
  const std::string bytes = test::FileBytes(capture);
  TFixList fromFile;
  for (size_t start = 0; start < bytes.size();) {
    const size_t end = std::min(bytes.find('\n', start), bytes.size() - 1) + 1;
    fromFile.Line(std::string_view(bytes).substr(start, end - start));
    start = end;
  }
  // Pieces of 1 to 300 bytes, as a UART hands them over.
  std::vector<test::TChunk> pieces;
  for (size_t at = 0, n = 1; at < bytes.size(); at += n, n = n * 7 % 300 + 1) {
    pieces.push_back({1, bytes.substr(at, n)});
  }
  test::TPtyPair pty;
  const std::unique_ptr<TSerialPort> port = OpenSerialPort(pty.SlaveName(), 4800);
  test::TReceiver receiver(pty.Master(), pieces);
  TErrorSink errors;
  TPortLineSource source(*port, errors, 500);
  TFixList fromPort;
  std::string line;
  while (source.ReadLine(line, true) > 0) fromPort.Line(line);
  ASSERT_FALSE(fromFile.Fixes().empty());
  EXPECT_EQ(fromPort.Fixes(), fromFile.Fixes());
}

INSTANTIATE_TEST_SUITE_P(Captures, CaptureReplay,
                         ::testing::Values("neo-m8n.log", "humminbird-M37.log", "triton400.log"), test::TFileParamName());

}  // namespace
}  // namespace velantis
