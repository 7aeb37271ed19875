// The binary datum file reader ("datumsb.dat", "datumsbp.dat").
#include <cstdint>
#include <string_view>
#include <vector>

#include "geodesy/datum_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::vector<velantis::TDatum> datums;
  std::string error;
  velantis::ReadDatumFile(std::string_view(reinterpret_cast<const char*>(data), size), datums, error);
  for (const auto& d : datums) (void)d.ShortLabel();
  return 0;
}
