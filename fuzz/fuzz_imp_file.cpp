// The ".imp" calibration reader. Whatever it reads must write and read back,
// and the second write must give the bytes of the first. Sub-maps are looked
// for in a folder that does not exist, so a <Layers> entry is refused unless
// it names an absolute path.
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz/fuzz_failure.h"
#include "geodesy/lista_datums.h"
#include "maps/imp_file.h"

namespace {

constexpr const char* kNoFolder = "/nonexistent-velantis-fuzz";

const velantis::TListaDatums& Datums() {
  static int configured = 0;
  static const velantis::TListaDatums datums(configured);
  return datums;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace velantis;
  using fuzz::Fail;
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  TMapCalibration map;
  std::string error;
  if (!ReadImpText(input, kNoFolder, Datums(), map, error)) return 0;
  const std::string text = ImpText(map);
  TMapCalibration back;
  if (!ReadImpText(text, kNoFolder, Datums(), back, error)) Fail("does not read back: " + error, text);
  const std::string again = ImpText(back);
  if (again != text) Fail("the second write differs", again);
  return 0;
}
