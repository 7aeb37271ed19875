#include "maps/calibrated_map.h"

#include <cstdio>
#include <vector>

#include "geodesy/project_dat.h"
#include "geodesy/projection_catalogue.h"
#include "geodesy/projection_file.h"
#include "geodesy/utm.h"

namespace velantis {

namespace {

std::string PointText(const TLonLat& geo) {
  char text[64];
  std::snprintf(text, sizeof text, "%.9f %.9f", geo.lat, geo.lon);
  return text;
}

const TCalibrationPoint* FirstPoint(const TMapCalibration& calibration) {
  for (const TCalibrationPoint& point : calibration.points) {
    if (!point.Empty()) return &point;
  }
  return nullptr;
}

// The zone a UTM map without one takes: that of its first calibration point.
bool ZoneOfFirstPoint(const TMapCalibration& calibration, TZonaUTM& zone) {
  const TCalibrationPoint* point = FirstPoint(calibration);
  if (!point) return false;
  std::string message;
  switch (calibration.coordinates) {
    case TCoordinateMode::Utm:
      return ParseUtmZone(point->zone, zone, message);
    case TCoordinateMode::LatLon:
      zone.zone = static_cast<int8_t>(UtmZoneOfLongitude(point->x));
      zone.band = UtmBandOfLatitude(point->y);
      return true;
    case TCoordinateMode::Plane:
      return false;
  }
  return false;
}

bool SameUtmPlane(const TZonaUTM& one, const TZonaUTM& other) {
  return one.zone == other.zone && IsSouthernBand(one.band) == IsSouthernBand(other.band);
}

TPixelTransform MatrixTransform(const std::array<double, 6>& m) {
  // The file's order is A D B E C F: X = A·px + B·py + C, Y = D·px + E·py + F.
  TPixelTransform transform;
  transform.Set({{{m[0], m[2], m[4]}, {m[1], m[3], m[5]}, {0, 0, 1}}}, TTransformKind::Matrix);
  return transform;
}

}  // namespace

bool TCalibratedMap::Open(const TMapCalibration& calibration, TListaDatums& datums,
                          const std::string& dataDir, std::string& error) {
  m_datums = &datums;
  m_datum = datums.Find(calibration.datum);
  if (m_datum < 0) {
    error = "Unknown datum: " + calibration.datum;
    return false;
  }
  if (!BuildProjection(calibration, dataDir, error)) return false;
  m_offset = calibration.offset.value_or(TPlanePoint{});
  if (calibration.matrix) {
    m_transform = MatrixTransform(*calibration.matrix);
  } else {
    std::vector<TPointPair> pairs;
    for (const TCalibrationPoint& point : calibration.points) {
      if (point.Empty()) continue;
      TPointPair pair{{point.pixelX, point.pixelY}, {}};
      if (!PointToPlane(point, calibration.coordinates, pair.plane, error)) return false;
      pairs.push_back(pair);
    }
    m_transform = ComputePixelTransform(pairs, calibration.calibrationMode);
  }
  if (!m_transform.Valid()) {
    error = kWrongCalibrationPoints;
    return false;
  }
  return true;
}

bool TCalibratedMap::BuildProjection(const TMapCalibration& calibration,
                                     const std::string& dataDir, std::string& error) {
  const TMapProjection& projection = calibration.projection;
  m_projectionName = projection.name;
  m_latLong = projection.IsLatLong();
  m_projection.reset();
  m_utmZone.reset();
  if (m_latLong) return true;
  const TDatum& datum = *m_datums->Get(m_datum);
  if (projection.IsUtm()) {
    TZonaUTM zone;
    if (projection.zone) {
      zone = *projection.zone;
    } else if (!ZoneOfFirstPoint(calibration, zone)) {
      error = kWrongCalibrationPoints;
      return false;
    }
    m_utmZone = zone;
    m_projection = CreateProjection(kTransverseMercatorName, datum, UtmZoneParams(zone), error);
    return m_projection != nullptr;
  }
  const TProjectionKind* kind = FindProjectionKind(projection.name);
  if (kind && kind->create) {
    m_projection = CreateProjection(kind->name, datum, projection.params, error);
    return m_projection != nullptr;
  }
  if (kind) {  // "Meters" and the grid notations have no projection to build
    error = "Projection not supported: " + projection.name;
    return false;
  }
  TDatosProyeccion definition;
  if (!LookupProjectDat(dataDir, projection.name, m_datums, definition, error)) return false;
  m_projection = CreateProjection(definition.projection, datum, definition.Params(), error);
  return m_projection != nullptr;
}

bool TCalibratedMap::PointToPlane(const TCalibrationPoint& point, TCoordinateMode mode,
                                  TPlanePoint& plane, std::string& error) const {
  switch (mode) {
    case TCoordinateMode::Plane:
      plane = {point.x, point.y};
      return true;
    case TCoordinateMode::LatLon:
      return GeoToPlane({point.x, point.y}, plane, error);
    case TCoordinateMode::Utm: {
      TUtmPosition utm{{}, point.x, point.y};
      std::string message;
      if (!ParseUtmZone(point.zone, utm.zone, message)) {
        error = kCoordinatePointError + message;
        return false;
      }
      if (m_utmZone && SameUtmPlane(*m_utmZone, utm.zone)) {
        plane = {point.x, point.y};
        return true;
      }
      TLonLat geo;
      if (!UtmToLatLon(utm, m_datum, m_datum, *m_datums, geo, message)) {
        error = kCoordinatePointError + message;
        return false;
      }
      return GeoToPlane(geo, plane, error);
    }
  }
  return false;
}

bool TCalibratedMap::GeoToPlane(const TLonLat& geo, TPlanePoint& plane, std::string& error) const {
  if (m_latLong) {
    plane = {geo.lon, geo.lat};
    return true;
  }
  std::string message;
  if (m_projection && m_projection->Forward(geo, plane, message)) return true;
  error = kProjectionPointError + message + "\n  Projection: " + m_projectionName +
          "\n  Point: " + PointText(geo);
  return false;
}

bool TCalibratedMap::PlaneToGeo(const TPlanePoint& plane, TLonLat& geo, std::string& error) const {
  if (m_latLong) {
    geo = {plane.x, plane.y};
    return true;
  }
  std::string message;
  if (m_projection && m_projection->Inverse(plane, geo, message)) return true;
  error = kProjectionToCoordsError;
  return false;
}

bool TCalibratedMap::PixelToCoord(const TPlanePoint& pixel, int datum, TLonLat& geo,
                                  std::string& error) const {
  TPlanePoint plane;
  TLonLat result;
  if (!m_transform.ToPlane({pixel.x + m_offset.x, pixel.y + m_offset.y}, plane)) {
    error = kWrongCalibrationPoints;
    return false;
  }
  if (!PlaneToGeo(plane, result, error)) return false;
  if (!m_datums->Transforma_Grados_Datum(result, m_datum, datum, error)) return false;
  geo = result;
  return true;
}

bool TCalibratedMap::CoordToPixel(const TLonLat& geo, int datum, TPlanePoint& pixel,
                                  std::string& error) const {
  TLonLat onMapDatum = geo;
  if (!m_datums->Transforma_Grados_Datum(onMapDatum, datum, m_datum, error)) return false;
  TPlanePoint plane;
  TPlanePoint result;
  if (!GeoToPlane(onMapDatum, plane, error)) return false;
  if (!m_transform.ToPixel(plane, result)) {
    error = kWrongCalibrationPoints;
    return false;
  }
  pixel = {result.x - m_offset.x, result.y - m_offset.y};
  return true;
}

}  // namespace velantis
