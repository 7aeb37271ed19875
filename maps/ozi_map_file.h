// OziExplorer ".map" calibration files, read into and written from a
// TMapCalibration.
//
// Reading: line 2 is the map's name, line 3 its image file, line 5 begins
// with the datum name (looked up in the datum list; the calibration keeps the
// list's own name for it). The "Map Projection," and "Projection Setup,"
// lines give the projection (maps/ozi_projection.h). Every "Point" line
// is a calibration point: pixel x, y, then either latitude and longitude in
// degrees and decimal minutes with their hemisphere letters, or grid
// coordinates (zone, easting, northing, hemisphere); a point with neither, or
// one that does not read, is dropped. The calibration points are in
// latitude/longitude when every point gave them, else in the plane of the
// projection (UTM with its zone for a UTM map). "MMPXY" and "MMPLL" lines give
// the main polygon, "IWH" the image size.
//
// Writing uses the fixed lines of the format with thirty point lines, the
// calibration's points first and empty ones after; a written file reads back
// to the same calibration.
#pragma once

#include <string>
#include <string_view>

#include "geodesy/lista_datums.h"
#include "maps/map_calibration.h"

namespace velantis {

inline constexpr std::string_view kOziMapNotFound = "Map file not found.";
inline constexpr std::string_view kOziMapNotOzi =
    "This .MAP seems not to be an OziExplorer map file";
inline constexpr std::string_view kOziMapFewPoints = "Error: Could not read 2 calibration points.";

bool ReadOziMapText(std::string_view text, const TListaDatums& datums, TMapCalibration& map,
                    std::string& error);
bool ReadOziMapFile(const std::string& path, const TListaDatums& datums, TMapCalibration& map,
                    std::string& error);

// False when the calibration cannot be said in the format (a projection the
// format has no name for, more than thirty points).
bool OziMapText(const TMapCalibration& map, std::string& text, std::string& error);
// Saves through a temporary file renamed over the old one.
bool WriteOziMapFile(const std::string& path, const TMapCalibration& map, std::string& error);

}  // namespace velantis
