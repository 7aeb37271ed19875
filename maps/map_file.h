// Calibration files by extension: ".imp" (maps/imp_file.h) and OziExplorer
// ".map" (maps/ozi_map_file.h), letter case ignored. Any other extension is
// refused with "Unknown file format: " + the extension.
#pragma once

#include <string>
#include <string_view>

#include "geodesy/lista_datums.h"
#include "maps/map_calibration.h"

namespace velantis {

// Sub-maps may name further sub-maps; a chain deeper than this is refused, so
// that a map that names itself cannot recurse without end.
inline constexpr int kMaxSubmapDepth = 8;

// Whether the extension (without its dot) is one of a calibration file.
bool IsCalibrationExtension(std::string_view extension);

// depth counts the sub-map levels above this file.
bool ReadMapFile(const std::string& path, const TListaDatums& datums, TMapCalibration& map,
                 std::string& error, int depth = 0);

}  // namespace velantis
