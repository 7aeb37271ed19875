// Over real captures the parser and the live handling allocate nothing per
// line once their buffers have grown: counted by replacing the global
// operator new in this test program (every other test runs through it too).
#include <atomic>
#include <cstdlib>
#include <new>

#include "comm/nmea_live_handler.h"
#include "tests/comm/comm_test_support.h"

// The replacements below pair operator new with malloc and operator delete
// with free on purpose; GCC, seeing the two inlined into a caller, takes
// that for a mismatch.
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
// The nothrow pair too: a library that allocates with new (std::nothrow) and
// frees with delete (libproj does, for its PJ objects) would otherwise meet
// the runtime's nothrow new and this program's delete, and AddressSanitizer
// rightly reports the block freed by free() as an alloc-dealloc mismatch.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  g_allocations.fetch_add(1, std::memory_order_relaxed);
  return std::malloc(size == 0 ? 1 : size);
}
void operator delete(void* p, const std::nothrow_t&) noexcept { std::free(p); }

namespace velantis {
namespace {

TEST(NmeaAllocation, NoneOnceWarmedUp) {
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
