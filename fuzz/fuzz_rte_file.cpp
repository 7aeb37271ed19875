// The native route file reader (RTE; OziExplorer route files go through the
// same entry). Whatever it reads must write and read back.
#include "formats/rte_file.h"
#include "fuzz/native_round_trip.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace velantis;
  return fuzz::NativeRoundTrip<TRuta>(data, size, "rte", ReadRte, WriteRteFile, ReadRteFile);
}
