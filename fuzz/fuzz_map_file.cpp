// The OziExplorer map file reader. Whatever it reads must write, read back to
// an equal calibration and write again to the same bytes; the only refusal
// allowed is a calibration with more points than the file's thirty lines.
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz/fuzz_failure.h"
#include "geodesy/lista_datums.h"
#include "maps/ozi_map_file.h"

namespace {

constexpr size_t kOziPointLines = 30;

// Datums in memory, so that the target needs no data folder.
const velantis::TListaDatums& Datums() {
  static int configured = 0;
  static const velantis::TListaDatums datums = [] {
    velantis::TListaDatums list(configured);
    list.Add({.name = "WGS 84", .aliasText = "WGS 1984", .invFlattening = 298.257223563,
              .a = 6378137});
    list.Add({.name = "Pulkovo 1942",
              .aliasText = "Pulkovo 1942 (1);Pulkovo 1942 (2)",
              .invFlattening = 298.3,
              .a = 6378245,
              .dX = 28,
              .dY = -130,
              .dZ = -95});
    return list;
  }();
  return datums;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace velantis;
  using fuzz::Fail;
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  TMapCalibration map;
  std::string error;
  if (!ReadOziMapText(input, Datums(), map, error)) return 0;
  std::string text;
  if (!OziMapText(map, text, error)) {
    if (map.points.size() > kOziPointLines) return 0;
    Fail("a calibration that was read cannot be written: " + error, "");
  }
  TMapCalibration back;
  if (!ReadOziMapText(text, Datums(), back, error)) Fail("does not read back: " + error, text);
  if (!(back == map)) Fail("reads back to another calibration", text);
  std::string again;
  if (!OziMapText(back, again, error) || again != text) Fail("the second write differs", again);
  return 0;
}
