#include "maps/map_file.h"

#include "formats/file_dispatch.h"
#include "geodesy/projection_file_lines.h"
#include "maps/imp_file.h"
#include "maps/ozi_map_file.h"

namespace velantis {

namespace {

using projection_file::SameKey;

constexpr std::string_view kImpExtension = "imp";
constexpr std::string_view kOziMapExtension = "map";

}  // namespace

bool IsCalibrationExtension(std::string_view extension) {
  return SameKey(extension, kImpExtension) || SameKey(extension, kOziMapExtension);
}

bool ReadMapFile(const std::string& path, const TListaDatums& datums, TMapCalibration& map,
                 std::string& error, int depth) {
  const std::string extension = FileExtension(path);
  if (SameKey(extension, kImpExtension)) return ReadImpFile(path, datums, map, error, depth);
  if (SameKey(extension, kOziMapExtension)) return ReadOziMapFile(path, datums, map, error);
  error = std::string(kUnknownFileFormat) + extension;
  return false;
}

}  // namespace velantis
