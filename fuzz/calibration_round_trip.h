// What the calibration-file fuzz targets check: whatever the reader accepts
// writes (unless the writer refuses it, which the target's write decides is
// allowed), reads back, and writes again to the same bytes. With sameRecord,
// the calibration read back must also equal the one first read.
#pragma once

#include <string>
#include <string_view>

#include "fuzz/fuzz_failure.h"
#include "maps/map_calibration.h"

namespace velantis::fuzz {

// read(text, map, error) -> bool; write(map, text) -> bool.
template <typename TRead, typename TWrite>
int CalibrationRoundTrip(std::string_view input, TRead read, TWrite write, bool sameRecord) {
  TMapCalibration map;
  std::string error;
  if (!read(input, map, error)) return 0;
  std::string text;
  if (!write(map, text)) return 0;
  TMapCalibration back;
  if (!read(text, back, error)) Fail("does not read back: " + error, text);
  if (sameRecord && !(back == map)) Fail("reads back to another calibration", text);
  std::string again;
  if (!write(back, again) || again != text) Fail("the second write differs", again);
  return 0;
}

}  // namespace velantis::fuzz
