#include "cli/map_info.h"

#include <algorithm>
#include <iostream>
#include <optional>

#include "cli/command.h"
#include "cli/text_output.h"
#include "maps/calibrated_map.h"
#include "maps/map_file.h"

namespace velantis::cli {

namespace {

constexpr int kDegreeDecimals = 9;

struct TBounds {
  double minLat, minLon, maxLat, maxLon;
};

size_t PointCount(const TMapCalibration& calibration) {
  return std::count_if(calibration.points.begin(), calibration.points.end(),
                       [](const TCalibrationPoint& point) { return !point.Empty(); });
}

// The WGS 84 box of the image's corners; none when the image size is unknown
// or the map does not geo-reference.
std::optional<TBounds> ImageBounds(const TMapCalibration& calibration, TRuntime& runtime) {
  TCalibratedMap map;
  std::string error;
  if (calibration.bitmapWidth <= 0 || calibration.bitmapHeight <= 0 ||
      !map.Open(calibration, runtime.datums, runtime.folders.dataDir, error))
    return std::nullopt;
  const double w = calibration.bitmapWidth;
  const double h = calibration.bitmapHeight;
  std::optional<TBounds> bounds;
  for (const TPlanePoint corner : {TPlanePoint{0, 0}, {w, 0}, {w, h}, {0, h}}) {
    TLonLat geo;
    if (!map.PixelToCoord(corner, 0, geo, error)) return std::nullopt;
    if (!bounds) bounds = TBounds{geo.lat, geo.lon, geo.lat, geo.lon};
    bounds->minLat = std::min(bounds->minLat, geo.lat);
    bounds->minLon = std::min(bounds->minLon, geo.lon);
    bounds->maxLat = std::max(bounds->maxLat, geo.lat);
    bounds->maxLon = std::max(bounds->maxLon, geo.lon);
  }
  return bounds;
}

std::string BoundsText(const std::optional<TBounds>& b, const char* separator) {
  if (!b) return "";
  return Fixed(b->minLat, kDegreeDecimals) + separator + Fixed(b->minLon, kDegreeDecimals) +
         separator + Fixed(b->maxLat, kDegreeDecimals) + separator +
         Fixed(b->maxLon, kDegreeDecimals);
}

}  // namespace

int PrintMapInfo(const std::string& file, bool json, TRuntime& runtime) {
  TMapCalibration calibration;
  std::string error;
  if (!ReadMapFile(file, runtime.datums, calibration, error)) {
    PrintError(error);
    return kExitRefused;
  }
  const std::optional<TBounds> bounds = ImageBounds(calibration, runtime);
  const std::string projection = FormatMapProjection(calibration.projection);
  if (json) {
    std::cout << "{\"kind\":\"map\",\"name\":" << JsonString(calibration.name)
              << ",\"count\":" << PointCount(calibration)
              << ",\"datum\":" << JsonString(calibration.datum)
              << ",\"projection\":" << JsonString(projection)
              << ",\"image\":" << JsonString(calibration.bitmap)
              << ",\"width\":" << calibration.bitmapWidth
              << ",\"height\":" << calibration.bitmapHeight
              << ",\"bounds\":" << (bounds ? "[" + BoundsText(bounds, ",") + "]" : "null") << "}\n";
    return kExitOk;
  }
  std::cout << "kind: map\nname: " << calibration.name << "\ncount: " << PointCount(calibration)
            << "\ndatum: " << calibration.datum << "\nprojection: " << projection
            << "\nimage: " << calibration.bitmap << " " << calibration.bitmapWidth << "x"
            << calibration.bitmapHeight
            << "\nbounds: " << (bounds ? BoundsText(bounds, " ") : "none") << "\n";
  return kExitOk;
}

}  // namespace velantis::cli
