// The native waypoint file reader (WPT; OziExplorer waypoint files go through
// the same entry). Whatever it reads must write and read back.
#include "formats/wpt_file.h"
#include "fuzz/native_round_trip.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace velantis;
  return fuzz::NativeRoundTrip<TWaypoints>(data, size, "wpt", ReadWpt, WriteWptFile, ReadWptFile);
}
