// The OziExplorer map file reader. Whatever it reads must write, read back to
// an equal calibration and write again to the same bytes; the only refusal
// allowed is a calibration with more points than the file's thirty lines.
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz/calibration_round_trip.h"
#include "geodesy/lista_datums.h"
#include "maps/ozi_map_file.h"

namespace {

constexpr size_t kOziPointLines = 30;

// Datums in memory, so that the target needs no data folder.
const velantis::TListaDatums& Datums() {
  static int configured = 0;
  static const velantis::TListaDatums datums = [] {
    velantis::TListaDatums list(configured);
    list.Add({.name = "WGS 84", .aliasText = "WGS 1984", .invFlattening = 298.257223563, .a = 6378137});
    list.Add({.name = "Pulkovo 1942", .aliasText = "Pulkovo 1942 (1);Pulkovo 1942 (2)", .invFlattening = 298.3,
              .a = 6378245, .dX = 28, .dY = -130, .dZ = -95});
    return list;
  }();
  return datums;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace velantis;
  const auto read = [](std::string_view text, TMapCalibration& map, std::string& error) {
    return ReadOziMapText(text, Datums(), map, error);
  };
  const auto write = [](const TMapCalibration& map, std::string& text) {
    std::string error;
    if (OziMapText(map, text, error)) return true;
    if (map.points.size() <= kOziPointLines)
      fuzz::Fail("a calibration that was read cannot be written: " + error, "");
    return false;
  };
  return fuzz::CalibrationRoundTrip(std::string_view(reinterpret_cast<const char*>(data), size),
                                    read, write, true);
}
