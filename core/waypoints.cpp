#include "core/waypoints.h"

namespace velantis {

void TWaypoints::Add(TBaliza baliza) {
  m_balizas.push_back(std::move(baliza));
  Touch();
}

void TWaypoints::Insert(size_t index, TBaliza baliza) {
  if (index > m_balizas.size()) index = m_balizas.size();
  m_balizas.insert(m_balizas.begin() + static_cast<std::ptrdiff_t>(index), std::move(baliza));
  Touch();
}

bool TWaypoints::Remove(size_t index) {
  if (index >= m_balizas.size()) return false;
  m_balizas.erase(m_balizas.begin() + static_cast<std::ptrdiff_t>(index));
  Touch();
  return true;
}

void TWaypoints::Clear() {
  if (m_balizas.empty()) return;
  m_balizas.clear();
  Touch();
}

TBoundingBox TWaypoints::Extent() const {
  TBoundingBox box;
  for (const TBaliza& b : m_balizas) box.Add(b.Latitude(), b.Longitude());
  return box;
}

bool TWaypoints::Modified() const {
  if (TElementoGPS::Modified()) return true;
  for (const TBaliza& b : m_balizas)
    if (b.Modified()) return true;
  return false;
}

void TWaypoints::MarkAsSaved() {
  TElementoGPS::MarkAsSaved();
  for (TBaliza& b : m_balizas) b.MarkAsSaved();
}

bool TWaypoints::Retorna_Val_Campo(int code, size_t index, double& value, std::string& error) const {
  if (index >= m_balizas.size()) {
    error = kFieldIndexOutOfRange;
    return false;
  }
  return m_balizas[index].Retorna_Val_Campo_Global2(code, value, error);
}

bool TWaypoints::IsPointField(int code) const { return TBaliza::IsBalizaField(code); }

TFieldLookup TWaypoints::PointField(int code, size_t index, double& value) const {
  return m_balizas[index].FieldValue(code, value);
}

bool TWaypoints::Retorna_Val_Campo_Global2(int code, double& value, std::string& error) const {
  switch (static_cast<TFieldCode>(code)) {
    case TFieldCode::PointCount:
      value = static_cast<double>(m_balizas.size());
      return true;
    case TFieldCode::MinAltitude:
    case TFieldCode::MaxAltitude: {
      double lo = 0, hi = 0;
      std::string ignored;
      if (!Retorna_Extremos_Campo(static_cast<int>(TFieldCode::Altitude), lo, hi, ignored))
        value = kAltitudeUnknownM;
      else
        value = code == static_cast<int>(TFieldCode::MinAltitude) ? lo : hi;
      return true;
    }
    default:
      error = kUndefWaypointsGlobal2;
      return false;
  }
}

}  // namespace velantis
