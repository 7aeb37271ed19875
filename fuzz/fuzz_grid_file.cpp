// The NTv2 grid reader: the overview at open, the sub-grids on first shift,
// and shifts through whatever loaded.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <string>

#include "geodesy/ntv2.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const std::string path = "/tmp/velantis-fuzz-grid-" + std::to_string(getpid()) + ".gsb";
  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (!file) return 0;
  std::fwrite(data, 1, size, file);
  std::fclose(file);
  velantis::TDatumFileNTV2 grid;
  std::string error;
  if (!grid.Open(path, error)) return 0;
  for (const auto& sub : grid.SubGrids()) {
    // Probe the corners and the middle of every sub-grid, both directions.
    const double xs[] = {sub.eLong, sub.wLong, (sub.eLong + sub.wLong) / 2};
    const double ys[] = {sub.sLat, sub.nLat, (sub.sLat + sub.nLat) / 2};
    for (double x : xs) {
      for (double y : ys) {
        double lon = -x / 3600, lat = y / 3600;
        grid.Shift(lon, lat, false);
        grid.Shift(lon, lat, true);
      }
    }
  }
  return 0;
}
