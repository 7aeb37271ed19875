// The IGC flight log reader. Whatever it reads must write, read back to the
// same track (points, their kept extensions, the kept lines, the bad-record
// count) and write again to the same text.
#include <string>
#include <string_view>
#include <tuple>

#include "formats/igc_file.h"
#include "fuzz/fuzz_failure.h"

namespace {

using namespace velantis;

auto Fields(const TrkPnt& p) {
  return std::tuple(p.lat, p.lon, p.time, p.altitude, p.altitudeBarometric, p.accuracyM, p.satellites);
}

bool SameProperties(const TPropertyList* a, const TPropertyList* b) {
  return (a == nullptr || a->Empty()) ? (b == nullptr || b->Empty()) : (b != nullptr && *a == *b);
}

std::string Differences(const TTrack& a, const TTrack& b, size_t badA, size_t badB) {
  if (a.Count() != b.Count()) return std::to_string(a.Count()) + " points written, " + std::to_string(b.Count()) + " read back";
  if (badA != badB) return "bad records " + std::to_string(badA) + ", read back " + std::to_string(badB);
  if (!(a.KeptRecords() == b.KeptRecords())) return "the kept lines differ";
  for (size_t i = 0; i < a.Count(); ++i)
    if (Fields(a.Point(i)) != Fields(b.Point(i)) || !SameProperties(a.PointProperties(i), b.PointProperties(i)))
      return "point " + std::to_string(i) + " or its extensions differ";
  return "";
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  TNativeOptions options;
  TNativeHeader header;
  options.header = &header;
  TTrack track;
  std::string error, text, again;
  if (!ReadIgc(std::string_view(reinterpret_cast<const char*>(data), size), options, track, error)) return 0;
  const size_t bad = header.badRecords;
  if (!WriteIgc(track, options, text, error)) fuzz::Fail("the track does not write: " + error, "");
  TTrack back;
  if (!ReadIgc(text, options, back, error)) fuzz::Fail("the written log does not read back: " + error, text);
  const std::string differences = Differences(track, back, bad, header.badRecords);
  if (!differences.empty()) fuzz::Fail(differences, text);
  if (!WriteIgc(back, options, again, error) || again != text) fuzz::Fail("the log read back writes otherwise", text);
  return 0;
}
