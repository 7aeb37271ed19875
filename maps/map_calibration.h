// The calibration of an image map: which picture, in which projection and
// datum, and the calibration points (or an explicit matrix) that tie its
// pixels to coordinates. This is what a ".imp" file holds and what an
// OziExplorer ".map" file is read into; geo-referencing a map from it is
// TCalibratedMap's work (maps/calibrated_map.h).
//
// Informational keys the system does not interpret are kept as the texts the
// file gave, so that a file reads back and writes out unchanged; an empty
// text means the key was absent.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "geodesy/projection.h"
#include "maps/map_projection.h"
#include "maps/pixel_transform.h"

namespace velantis {

// How the coordinates of the calibration points are given.
enum class TCoordinateMode : int {
  Plane = -1,  // plane x, y of the map's projection
  Utm = 0,     // UTM zone text, easting, northing
  LatLon = 1,  // longitude, latitude in degrees on the map's datum
};

inline constexpr double kEmptyPointPixel = -1;
inline constexpr double kEmptyPointLongitude = 200;  // beyond any longitude

struct TCalibrationPoint {
  double pixelX = kEmptyPointPixel;
  double pixelY = kEmptyPointPixel;
  // The third field of a point line: the UTM zone text ("31T") in UTM mode,
  // "A" by convention otherwise.
  std::string zone = "A";
  // Plane x, y; or longitude, latitude; or easting, northing.
  double x = kEmptyPointLongitude;
  double y = 0;

  // A point line kept as a place holder: both pixel coordinates at -1.
  bool Empty() const { return pixelX == kEmptyPointPixel && pixelY == kEmptyPointPixel; }
  bool operator==(const TCalibrationPoint&) const = default;
};

// One layer of a multi-layer map.
struct THipermapLayer {
  std::string file;
  std::string maxZoomLevel;
  std::string minZoomLevel;
  bool visible = true;
  bool operator==(const THipermapLayer&) const = default;
};

struct TMapCalibration {
  // <Header>
  TMapProjection projection;
  TCoordinateMode coordinates = TCoordinateMode::LatLon;
  std::string datum = "WGS 84";
  // The "Type" key: the calibration mode that chooses between the two-point
  // and four-point solutions (maps/pixel_transform.h).
  int calibrationMode = kCalibrationModeAffine;
  std::string projectionToView;
  std::string copyright;
  std::string maxZoomLevel;
  std::string minZoomLevel;
  std::string mapScale;
  std::string reqVersion;
  std::string name;
  std::string description;

  // <Map>
  std::string bitmap;  // image file name, relative to the calibration file
  int bitmapWidth = -1;  // pixels, -1 when unknown
  int bitmapHeight = -1;
  std::string bitsPerPixel;
  std::string memoryUse;
  std::string remote;
  std::string vectorMap;
  std::string scaleMpix;
  std::string transparentColor;
  std::string tolTransparentColor;
  std::string reloadTime;
  std::string poiImages;
  std::string orientation;
  std::string orientationRange;

  // <Calibration>
  std::vector<TCalibrationPoint> points;  // place holders included
  std::optional<TPlanePoint> offset;      // added to a pixel before the transform
  // An explicit transform instead of points, in the file's order A D B E C F
  // (X = A·px + B·py + C, Y = D·px + E·py + F), rows counted downwards.
  std::optional<std::array<double, 6>> matrix;

  // <MainPolygonBitmap>, <MainPolygonCoords>: the useful part of the image,
  // in pixels and in the coordinates of the calibration points' mode.
  std::vector<TPlanePoint> polygonBitmap;
  std::vector<TPlanePoint> polygonCoords;

  // <Layers>: sub-map file names; the loaded sub-maps in the same order.
  std::vector<std::string> layers;
  std::vector<TMapCalibration> subMaps;

  std::optional<std::vector<std::string>> bitmapData;  // lines of <BitmapData>
  std::vector<THipermapLayer> hipermapLayers;
  std::vector<std::string> properties;   // lines of <Properties>
  std::vector<std::string> contextMenu;  // lines of <ContextMenu>

  bool IsMultiLayer() const { return !hipermapLayers.empty(); }
  // True when the main polygon has a point at or beyond the last column or
  // row of the image.
  bool ReachesImageEdge() const;
  bool operator==(const TMapCalibration&) const = default;
};

}  // namespace velantis
