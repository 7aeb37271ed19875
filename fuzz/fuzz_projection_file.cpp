// Projection definition files, both forms, and project.dat blocks: read,
// write back, and check a written definition reads back to the same record.
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/fuzz_datums.h"
#include "geodesy/project_dat.h"
#include "geodesy/projection_file.h"

namespace {

using velantis::fuzz::Datums;

// A record that was read must write, and read back to itself (the writer adds
// the VERSION bit).
void CheckRoundTrip(const velantis::TDatosProyeccion& read) {
  std::string text, error;
  if (!velantis::ProjectionText(read, &Datums(), text, error)) __builtin_trap();
  velantis::TDatosProyeccion back;
  if (!velantis::ReadProjectionText(text, &Datums(), back, error)) __builtin_trap();
  velantis::TDatosProyeccion expected = read;
  expected.fieldsPresent |= velantis::kFieldVersion;
  if (!(back == expected)) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  velantis::TDatosProyeccion definition;
  std::string error;
  if (velantis::ReadProjectionText(text, &Datums(), definition, error)) CheckRoundTrip(definition);
  velantis::TDatosProyeccion older;
  if (velantis::ReadTransverseMercatorText(text, &Datums(), older, error)) CheckRoundTrip(older);

  std::vector<velantis::TDatosProyeccion> all;
  if (velantis::ReadProjectDat(text, &Datums(), all, error)) {
    for (const auto& d : all) {
      velantis::TDatosProyeccion found;
      bool matched = false;
      if (!d.name.empty() &&
          !velantis::FindInProjectDat(text, d.name, &Datums(), found, matched, error))
        __builtin_trap();  // every block read, so the first one named so must too
    }
  }
  return 0;
}
