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

bool TWaypoints::Remove(size_t index) { return ErasePoint(m_balizas, index); }

void TWaypoints::Clear() { ClearPoints(m_balizas); }

TBoundingBox TWaypoints::Extent() const {
  TBoundingBox box;
  for (const TBaliza& b : m_balizas) box.Add(b.Latitude(), b.Longitude());
  return box;
}

bool TWaypoints::Modified() const {
  return ModifiedWithPoints(m_balizas, [](const TBaliza& b) -> const TBaliza& { return b; });
}

void TWaypoints::MarkAsSaved() {
  MarkAsSavedWithPoints(m_balizas, [](TBaliza& b) -> TBaliza& { return b; });
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
  if (PointListField(code, value)) return true;
  error = kUndefWaypointsGlobal2;
  return false;
}

}  // namespace velantis
