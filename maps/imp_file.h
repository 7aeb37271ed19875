// The system's calibration file, ".imp": the first line "Velantis MAP File",
// then sections, each opened by "<Name>" and closed by "</Name>" alone on
// their lines, holding key "=" value lines; lines end in CR LF (LF alone is
// read too). Keys compare without regard to letter case; unknown keys and
// sections are skipped.
//
//   <Header>       Projection (maps/map_projection.h), Coordinates (-1 plane,
//                  0 UTM, 1 latitude/longitude), Datum, Type (the calibration
//                  mode), ProjectionToView, Copyright, MaxZoomLevel,
//                  MinZoomLevel, MapScale, ReqVersion, Name, Description;
//                  written with "Version=2" and "VerVelantis=" + the writer's
//                  version, which the reader does not need
//   <Map>          Bitmap, BitmapWidth, BitmapHeight (-1 unknown), BitsPerPixel,
//                  MemoryUse, Remote, VectorMap, ScaleMpix, TransparentColor,
//                  TolTransparentColor, ReloadTime, PoiImages, Orientation,
//                  OrientationRange
//   <Calibration>  "P" + index + "=" pixel x, pixel y, zone text, x, y (reals
//                  with 8 decimals); "Offset=" x, y; "Matrix=" six numbers
//                  A D B E C F separated by tabs or blanks. A Matrix whose E
//                  is positive counts rows upwards and is turned top-down:
//                  F becomes F + image height × E and E is negated.
//   <MainPolygonBitmap>, <MainPolygonCoords>
//                  "M" + index + "=" x, y
//   <Layers>       "File=" + sub-map file, relative to the calibration file
//   <BitmapData>   kept as it stands; at most one such section
//   <HiperMapLayers>  one "<HLayer>" … "</HLayer>" block per layer with File,
//                  MaxZoomLevel, MinZoomLevel and visible (1 or 0)
//   <Properties>, <ContextMenu>  kept as they stand
//
// A file that names neither an image, a vector map nor sub-maps is refused
// with "Map does not specify a image file name." and logs warning 11002; a
// <Layers> entry without a file name is refused with the same message and
// logs warning 11003. A multi-layer map needs no image of its own.
// Sub-maps are read when the file is (".imp" or ".map"); hipermap layers are
// only checked for a file type that can be read.
// A written file reads back to the same calibration, and writes again to the
// same bytes.
#pragma once

#include <string>
#include <string_view>

#include "geodesy/lista_datums.h"
#include "maps/map_calibration.h"

namespace velantis {

inline constexpr std::string_view kImpFirstLine = "Velantis MAP File";
inline constexpr std::string_view kImpNotImp = "Not a Velantis MAP File";
inline constexpr std::string_view kImpNoImage = "Map does not specify a image file name.";
inline constexpr std::string_view kImpNoImageNoSubmap =
    "Chart Error. Emty name or empty vector name with no submap";
inline constexpr std::string_view kImpNoImageName = "Chart Error. Emty name or empty vector name";
inline constexpr std::string_view kImpBadPoint = "Error reading calibration point IMP2";
inline constexpr std::string_view kImpBadPolygonCoords = "Wrong coordinates in <MainPolygonCoords>";
inline constexpr std::string_view kImpBadPolygonBitmap = "Wrong coordinates in <MainPolygonBitmap>";
inline constexpr std::string_view kImpBitmapDataNotOne = "Error, <BitmapData> elements is not 1";
inline constexpr std::string_view kImpSubmapError = "Error reading submap: ";
inline constexpr std::string_view kImpHipermapLayerError = "Hipermap layer cannot be created: ";
inline constexpr std::string_view kImpHipermapUnknownType = " unknown file type: ";
inline constexpr std::string_view kImpNotMultiLayer =
    "This is not a multi-layer map. Cannot be saved as hmap";
inline constexpr const char* kHipermapFileName = "mainfile.imp";

// folder is where sub-maps named in <Layers> are looked for; datums serves
// the sub-maps in OziExplorer form; depth counts the sub-map levels above
// this file (maps/map_file.h).
bool ReadImpText(std::string_view text, const std::string& folder, const TListaDatums& datums,
                 TMapCalibration& map, std::string& error, int depth = 0);
bool ReadImpFile(const std::string& path, const TListaDatums& datums, TMapCalibration& map,
                 std::string& error, int depth = 0);

std::string ImpText(const TMapCalibration& map);
// Saves through a temporary file renamed over the old one.
bool WriteImpFile(const std::string& path, const TMapCalibration& map, std::string& error);
// A multi-layer map as folder + "/mainfile.imp".
bool WriteHipermapFile(const std::string& folder, const TMapCalibration& map, std::string& error);

}  // namespace velantis
