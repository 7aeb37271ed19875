// The parser and the live handling allocate nothing per line once their
// buffers have grown: counted by replacing the global operator new in this
// test program (every other test runs through it too, unaffected).
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

#include "comm/nmea_live_handler.h"
#include "tests/comm/comm_test_support.h"

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

namespace velantis {
namespace {

TEST(NmeaAllocation, NoneOnceWarmedUp) {
  VELANTIS_TESTDATA_OR_SKIP(m9n, "nmea/ublox-neo-m9n-nmea.log");
  VELANTIS_TESTDATA_OR_SKIP(m8n, "nmea/neo-m8n.log");
  VELANTIS_TESTDATA_OR_SKIP(zeus, "nmea/bundg_zeus_9.log");
  std::vector<std::string> lines;
  for (const auto& path : {m9n, m8n, zeus})
    for (std::string& line : test::CaptureLines(path)) lines.push_back(std::move(line));

  TNmeaLiveHandler handler;
  TPosicionNMEA record = test::RecordAtTestNow();
  TComandaNMEA sentence;
  size_t marked = 0;
  for (const std::string& line : lines) {
    marked += handler.Handle(line, record);
    sentence.Parse(line, nullptr);
  }
  const long before = g_allocations.load();
  size_t markedAgain = 0;
  for (const std::string& line : lines) {
    markedAgain += handler.Handle(line, record);
    sentence.Parse(line, nullptr);
  }
  EXPECT_EQ(g_allocations.load() - before, 0);
  const long counted = g_allocations.load();
  const std::string longText(1000, 'x');  // the counter counts
  EXPECT_GT(g_allocations.load() - counted, 0);
  EXPECT_EQ(longText.size(), 1000u);
  EXPECT_GT(marked, 100u);  // the handling did its work
  EXPECT_EQ(markedAgain, marked);
}

}  // namespace
}  // namespace velantis
