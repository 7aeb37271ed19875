// The OziExplorer map file reader. Whatever it reads must write, read back to
// an equal calibration and write again to the same bytes; the only refusal
// allowed is a calibration with more points than the file's thirty lines.
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz/calibration_round_trip.h"
#include "fuzz/fuzz_datums.h"
#include "maps/ozi_map_file.h"

constexpr size_t kOziPointLines = 30;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace velantis;
  const auto read = [](std::string_view text, TMapCalibration& map, std::string& error) {
    return ReadOziMapText(text, fuzz::Datums(), map, error);
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
