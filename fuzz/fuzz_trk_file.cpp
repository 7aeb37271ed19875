// The native track file reader (TRK), from bytes and, for the written file,
// piece by piece from the file. Whatever it reads must write and read back.
#include "formats/trk_file.h"
#include "fuzz/native_round_trip.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace velantis;
  return fuzz::NativeRoundTrip<TTrack>(data, size, "trk", ReadTrk, WriteTrkFile, ReadTrkFile);
}
