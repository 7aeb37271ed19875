// The ".imp" calibration reader (fuzz/calibration_round_trip.h); the first
// write may round reals to eight decimals, so only the bytes are compared from
// the second write on. Sub-maps are looked for in a folder that does not
// exist: a <Layers> entry is refused unless it names an absolute path.
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz/calibration_round_trip.h"
#include "fuzz/fuzz_datums.h"
#include "maps/imp_file.h"

constexpr const char* kNoFolder = "/nonexistent-velantis-fuzz";

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace velantis;
  const auto read = [](std::string_view text, TMapCalibration& map, std::string& error) {
    return ReadImpText(text, kNoFolder, fuzz::Datums(), map, error);
  };
  const auto write = [](const TMapCalibration& map, std::string& text) {
    text = ImpText(map);
    return true;
  };
  return fuzz::CalibrationRoundTrip(std::string_view(reinterpret_cast<const char*>(data), size),
                                    read, write, false);
}
