// TRuta: a route, an ordered list of route points.
//
// Each route point is a full waypoint and may carry intermediate shape points
// (a position and one real, the shape point's altitude in metres) that the
// route passes through on its way to the next route point. The three integer
// display attributes are carried for the route file; the data model gives
// them no meaning. The route counts as modified when it or any route point is.
//
// Distances follow the route through the shape points, on the ellipsoid.
// Field access: Retorna_Val_Campo for a route point is
// Retorna_Val_Campo_Baliza: the waypoint's own fields plus
// DistanceFromStart and LegDistance (to the next route point, 0 on the last).
// Element codes: PointCount, TotalDistance, MinAltitude, MaxAltitude.
#pragma once

#include <array>
#include <vector>

#include "core/baliza.h"
#include "core/bounding_box.h"

namespace velantis {

struct TShapePoint {
  double lat = 0;
  double lon = 0;
  double altitude = kAltitudeUnknownM;  // metres
  friend bool operator==(const TShapePoint&, const TShapePoint&) = default;
};

struct TRoutePoint {
  TBaliza baliza;
  std::vector<TShapePoint> shape;  // between this route point and the next
};

class TRuta : public TElementoGPS {
public:
  int DisplayAttribute(int which) const { return m_attributes.at(static_cast<size_t>(which)); }
  void SetDisplayAttribute(int which, int value);  // which 0..2

  size_t Count() const { return m_points.size(); }
  const TRoutePoint& Point(size_t index) const { return m_points[index]; }
  TRoutePoint& Point(size_t index) { return m_points[index]; }
  void Add(TBaliza baliza, std::vector<TShapePoint> shape = {});
  bool Remove(size_t index);
  void Clear();

  bool FromOziExplorer() const { return m_fromOzi; }
  void SetFromOziExplorer(bool fromOzi) { m_fromOzi = fromOzi; }

  // Route points and shape points; empty when the route has no points.
  TBoundingBox Extent() const;
  // Metres from the first route point to route point index, through the
  // shape points on the way.
  double DistanceTo(size_t index) const;
  double TotalDistance() const;

  bool Modified() const override;
  void MarkAsSaved() override;

  size_t PointCount() const override { return m_points.size(); }
  bool Retorna_Val_Campo(int code, size_t index, double& value, std::string& error) const override;
  bool Retorna_Val_Campo_Baliza(int code, size_t index, double& value, std::string& error) const;
  bool Retorna_Val_Campo_Global2(int code, double& value, std::string& error) const override;

protected:
  bool IsPointField(int code) const override;
  TFieldLookup PointField(int code, size_t index, double& value) const override;

private:
  // Metres from route point index to the next one through its shape points.
  double LegLength(size_t index) const;

  std::array<int, 3> m_attributes{};
  std::vector<TRoutePoint> m_points;
  bool m_fromOzi = false;
};

}  // namespace velantis
