// A geo-referenced image map: the calibration's projection built on its
// datum, its calibration points brought into the projection's plane, and the
// pixel transform computed from them (or its explicit matrix). Converts
// pixels to latitude/longitude on any datum of the list and back.
//
// Chain: pixel (+ offset) → plane of the map's projection (the pixel
// transform) → latitude/longitude on the map's datum (the projection's
// inverse; a "Lat/Long" map's plane is longitude, latitude itself) → the
// requested datum (TListaDatums::Transforma_Grados_Datum). A UTM map without
// a zone takes the zone of its first calibration point.
//
// Accuracy is that of the calibration: the transform is exact through two or
// three points and a least-squares fit through more; the projections and
// datum shifts add their own (millimetres and the datum table's).
// Failures leave the output untouched and say why in the system's texts:
//   "Map with wrong calibration points"  no transform can be computed
//   "Error calculating coordinate point: " + why   a UTM calibration point
//   "Error calculating projection point: " + why, then "  Projection: " and
//       "  Point: " lines   a coordinate that the projection cannot take
//   "Error in the projection calculations. (proy=>coords)"   a plane point
//       that has no latitude/longitude
// Conversions are const and may run on several threads once the map is
// open, provided the datum list is not changed meanwhile.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "geodesy/lista_datums.h"
#include "geodesy/projection.h"
#include "maps/map_calibration.h"
#include "maps/pixel_transform.h"

namespace velantis {

inline constexpr const char* kWrongCalibrationPoints = "Map with wrong calibration points";
inline constexpr const char* kCoordinatePointError = "Error calculating coordinate point: ";
inline constexpr const char* kProjectionPointError = "Error calculating projection point: ";
inline constexpr const char* kProjectionToCoordsError =
    "Error in the projection calculations. (proy=>coords)";

class TCalibratedMap {
public:
  // dataDir is where "project.dat" is looked up for projections named there.
  // The datum list must outlive the map.
  bool Open(const TMapCalibration& calibration, TListaDatums& datums, const std::string& dataDir,
            std::string& error);

  // datum: an index of the list (-1, the configured one).
  bool PixelToCoord(const TPlanePoint& pixel, int datum, TLonLat& geo, std::string& error) const;
  bool CoordToPixel(const TLonLat& geo, int datum, TPlanePoint& pixel, std::string& error) const;

  int Datum() const { return m_datum; }
  const TPixelTransform& Transform() const { return m_transform; }

private:
  bool BuildProjection(const TMapCalibration& calibration, const std::string& dataDir,
                       std::string& error);
  bool PointToPlane(const TCalibrationPoint& point, TCoordinateMode mode, TPlanePoint& plane,
                    std::string& error) const;
  bool GeoToPlane(const TLonLat& geo, TPlanePoint& plane, std::string& error) const;
  bool PlaneToGeo(const TPlanePoint& plane, TLonLat& geo, std::string& error) const;

  TListaDatums* m_datums = nullptr;
  int m_datum = 0;
  std::string m_projectionName;
  bool m_latLong = true;
  std::optional<TZonaUTM> m_utmZone;                 // a UTM map's zone
  std::shared_ptr<const TProjection> m_projection;   // null for "Lat/Long"
  TPlanePoint m_offset;
  TPixelTransform m_transform;
};

}  // namespace velantis
