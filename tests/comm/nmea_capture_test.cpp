// The real captures of the test data (gpsd's regression logs): their lines
// through the parser against the counts of the data's manifest, three replayed
// into a pseudo-terminal in uneven pieces, and no allocation per line once
// warmed up (every fix is compared with a live gpsd in the cli tests).
#include <atomic>
#include <cstdlib>
#include <new>

#include "comm/nmea_live_handler.h"
#include "comm/port_line_source.h"
#include "tests/support/nmea_link.h"

// Counts the allocations of this whole test program. The replacements pair
// new with malloc on purpose (GCC takes that for a mismatch once inlined);
// the nothrow pair too, or a library allocating with new (std::nothrow), as
// libproj does, would meet this program's delete.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
#endif

namespace {
std::atomic<long> g_allocations{0};
}  // namespace

void* operator new(std::size_t size) {
  g_allocations.fetch_add(1, std::memory_order_relaxed);
  if (void* p = std::malloc(size == 0 ? 1 : size)) return p;
  throw std::bad_alloc();
}
void operator delete(void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  g_allocations.fetch_add(1, std::memory_order_relaxed);
  return std::malloc(size == 0 ? 1 : size);
}
void operator delete(void* p, const std::nothrow_t&) noexcept { std::free(p); }

namespace velantis {
namespace {

TEST(NmeaCaptures, CountsOfTheManifest) {
  struct TCase {
    const char* capture;
    size_t lines, noDollar, checksumSection, mismatched;  // lines 0: not stated
  };
  const TCase cases[] = {
      {"nmea/ais-nmea.log", 1313 + 183, 183, 0, 0},  // 1313 sentences, 183 AIS lines
      {"nmea/et-332.log", 0, 34, 0, 1},  // 34 lines from the host, one GSA with escape codes
      {"nmea/firefly-II.log", 0, 0, 0, 23},     // all 23 GGA
      {"nmea/garmin-geko201.log", 0, 0, 1, 0},  // "$GPBOD,,T,,M,,*"
      {"nmea/bundg_zeus_9.log", 4999, 0, 0, 0},
      {"nmea/saab-r4.log", 0, 14 + 1, 0, 0},  // 14 AIS lines and one empty line
  };
  for (const TCase& c : cases) {
    SCOPED_TRACE(c.capture);
    VELANTIS_TESTDATA_OR_SKIP(path, c.capture);
    const std::vector<std::string> lines = test::CaptureLines(path);
    size_t counts[3] = {0, 0, 0};
    TComandaNMEA sentence;
    for (const std::string& line : lines) {
      TErrorSink sink;
      const bool parsed = sentence.Parse(line, sink);
      const std::string refusal = parsed ? "" : sink.Records().at(0).message;
      counts[0] += refusal == kNmeaErrorNoDollar;
      counts[1] += refusal == kNmeaErrorChecksumSection;
      counts[2] += parsed && !sentence.ChecksumMatches();
    }
    EXPECT_EQ(lines.size(), c.lines ? c.lines : lines.size());
    EXPECT_EQ(std::tuple(counts[0], counts[1], counts[2]), std::tuple(c.noDollar, c.checksumSection, c.mismatched));
  }
}

// The fixes the handling marks new, one text each.
std::vector<std::string> Fixes(const std::vector<std::string>& lines) {
  TNmeaLiveHandler handler;
  TPosicionNMEA fix;
  fix.clock = TNmeaClock::Fixed(TDateTime::FromCalendar(2024, 6, 5));
  std::vector<std::string> fixes;
  for (const std::string& line : lines)
    if (handler.Handle(line, fix))
      fixes.push_back(std::to_string(fix.lat) + " " + std::to_string(fix.lon) + " " +
                      fix.time.ToIsoText() + (fix.valid ? " valid" : " invalid"));
  return fixes;
}

class CaptureReplay : public ::testing::TestWithParam<const char*> {};

TEST_P(CaptureReplay, ThroughAPseudoTerminalAsFromTheFile) {
  VELANTIS_TESTDATA_OR_SKIP(capture, std::string("nmea/") + GetParam());
  const std::string bytes = test::FileBytes(capture);
  std::vector<test::TChunk> pieces;  // 1 to 300 bytes, as a UART hands them over
  for (size_t at = 0, n = 1; at < bytes.size(); at += n, n = n * 7 % 300 + 1)
    pieces.push_back({1, bytes.substr(at, n)});
  test::TPtyPair pty;
  const std::unique_ptr<TSerialPort> port = OpenSerialPort(pty.SlaveName(), 4800);
  test::TReceiver receiver(pty.Master(), pieces);
  TErrorSink errors;
  TPortLineSource source(*port, errors, 500);
  std::vector<std::string> lines;
  for (std::string line; source.ReadLine(line, true) > 0;) lines.push_back(line);
  const std::vector<std::string> fromFile = Fixes(test::CaptureLines(capture));
  ASSERT_FALSE(fromFile.empty());
  EXPECT_EQ(Fixes(lines), fromFile);
}

INSTANTIATE_TEST_SUITE_P(Captures, CaptureReplay,
                         ::testing::Values("neo-m8n.log", "humminbird-M37.log", "triton400.log"),
                         test::TFileParamName());

TEST(NmeaCaptures, NoAllocationOnceWarmedUp) {
  VELANTIS_TESTDATA_OR_SKIP(m9n, "nmea/ublox-neo-m9n-nmea.log");
  VELANTIS_TESTDATA_OR_SKIP(zeus, "nmea/bundg_zeus_9.log");
  std::vector<std::string> lines = test::CaptureLines(m9n), more = test::CaptureLines(zeus);
  lines.insert(lines.end(), more.begin(), more.end());
  TNmeaLiveHandler handler;
  TPosicionNMEA record = test::RecordAtTestNow();
  TComandaNMEA sentence;
  size_t marked[2] = {0, 0};
  long allocations[2] = {0, 0};
  for (int pass = 0; pass < 2; ++pass) {
    const long before = g_allocations.load();
    for (const std::string& line : lines) marked[pass] += handler.Handle(line, record), sentence.Parse(line, nullptr);
    allocations[pass] = g_allocations.load() - before;
  }
  EXPECT_GT(allocations[0], 0);  // the counter counts
  EXPECT_EQ(allocations[1], 0);
  EXPECT_GT(marked[0], 100u);  // the handling did its work
  EXPECT_EQ(marked[1], marked[0]);
}

}  // namespace
}  // namespace velantis
