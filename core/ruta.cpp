#include "core/ruta.h"

#include "core/geodesic.h"

namespace velantis {

void TRuta::SetDisplayAttribute(int which, int value) {
  m_attributes.at(static_cast<size_t>(which)) = value;
  Touch();
}

void TRuta::Add(TBaliza baliza, std::vector<TShapePoint> shape) {
  m_points.push_back({std::move(baliza), std::move(shape)});
  Touch();
}

bool TRuta::Remove(size_t index) { return ErasePoint(m_points, index); }

void TRuta::Clear() { ClearPoints(m_points); }

TBoundingBox TRuta::Extent() const {
  TBoundingBox box;
  for (const TRoutePoint& p : m_points) {
    box.Add(p.baliza.Latitude(), p.baliza.Longitude());
    for (const TShapePoint& s : p.shape) box.Add(s.lat, s.lon);
  }
  return box;
}

double TRuta::LegLength(size_t index) const {
  if (index + 1 >= m_points.size()) return 0.0;
  double lat = m_points[index].baliza.Latitude(), lon = m_points[index].baliza.Longitude();
  double total = 0;
  for (const TShapePoint& s : m_points[index].shape) {
    total += GeodesicDistanceM(lat, lon, s.lat, s.lon);
    lat = s.lat;
    lon = s.lon;
  }
  const TBaliza& next = m_points[index + 1].baliza;
  return total + GeodesicDistanceM(lat, lon, next.Latitude(), next.Longitude());
}

double TRuta::DistanceTo(size_t index) const {
  double total = 0;
  for (size_t i = 0; i < index && i + 1 < m_points.size(); ++i) total += LegLength(i);
  return total;
}

double TRuta::TotalDistance() const { return m_points.empty() ? 0.0 : DistanceTo(m_points.size() - 1); }

bool TRuta::Modified() const {
  return ModifiedWithPoints(m_points, [](const TRoutePoint& p) -> const TBaliza& { return p.baliza; });
}

void TRuta::MarkAsSaved() {
  MarkAsSavedWithPoints(m_points, [](TRoutePoint& p) -> TBaliza& { return p.baliza; });
}

bool TRuta::IsPointField(int code) const {
  return TBaliza::IsBalizaField(code) || code == static_cast<int>(TFieldCode::DistanceFromStart) ||
         code == static_cast<int>(TFieldCode::LegDistance);
}

TFieldLookup TRuta::PointField(int code, size_t index, double& value) const {
  switch (static_cast<TFieldCode>(code)) {
    case TFieldCode::DistanceFromStart:
      value = DistanceTo(index);
      return TFieldLookup::Value;
    case TFieldCode::LegDistance:
      value = LegLength(index);
      return TFieldLookup::Value;
    default:
      return m_points[index].baliza.FieldValue(code, value);
  }
}

bool TRuta::Retorna_Val_Campo(int code, size_t index, double& value, std::string& error) const {
  return Retorna_Val_Campo_Baliza(code, index, value, error);
}

bool TRuta::Retorna_Val_Campo_Baliza(int code, size_t index, double& value, std::string& error) const {
  if (!IsPointField(code)) {
    error = kUndefRutaBaliza;
    return false;
  }
  if (index >= m_points.size()) {
    error = kFieldIndexOutOfRange;
    return false;
  }
  if (PointField(code, index, value) == TFieldLookup::Absent) value = FieldAbsentValue(code);
  return true;
}

bool TRuta::Retorna_Val_Campo_Global2(int code, double& value, std::string& error) const {
  if (PointListField(code, value)) return true;
  if (code == static_cast<int>(TFieldCode::TotalDistance)) {
    value = TotalDistance();
    return true;
  }
  error = kUndefRutaGlobal2;
  return false;
}

}  // namespace velantis
