#include "core/elemento_gps.h"

#include "core/altitude.h"

namespace velantis {

double FieldAbsentValue(int code) {
  switch (static_cast<TFieldCode>(code)) {
    case TFieldCode::Altitude:
    case TFieldCode::AltitudeGps:
    case TFieldCode::AltitudeBarometric:
    case TFieldCode::AltitudeTerrain:
    case TFieldCode::MinAltitude:
    case TFieldCode::MaxAltitude:
      return kAltitudeUnknownM;
    default:
      return kFieldAbsent;
  }
}

TElementoGPS::TElementoGPS(const TElementoGPS& other)
    : m_name(other.m_name),
      m_description(other.m_description),
      m_modified(other.m_modified),
      m_saveProhibited(other.m_saveProhibited),
      m_properties(other.m_properties ? std::make_unique<TPropertyList>(*other.m_properties) : nullptr),
      m_label(other.m_label ? std::make_unique<TTextLabel>(*other.m_label) : nullptr) {}

TElementoGPS& TElementoGPS::operator=(const TElementoGPS& other) {
  if (this == &other) return *this;
  m_name = other.m_name;
  m_description = other.m_description;
  m_modified = other.m_modified;
  m_saveProhibited = other.m_saveProhibited;
  m_properties = other.m_properties ? std::make_unique<TPropertyList>(*other.m_properties) : nullptr;
  m_label = other.m_label ? std::make_unique<TTextLabel>(*other.m_label) : nullptr;
  return *this;
}

void TElementoGPS::SetName(std::string name) { SetAndTouch(m_name, std::move(name)); }

void TElementoGPS::SetDescription(std::string description) {
  SetAndTouch(m_description, std::move(description));
}

TPropertyList& TElementoGPS::EditProperties() {
  if (!m_properties) m_properties = std::make_unique<TPropertyList>();
  Touch();
  return *m_properties;
}

void TElementoGPS::RemoveProperties() {
  if (!m_properties) return;
  m_properties.reset();
  Touch();
}

void TElementoGPS::SetLabel(const TTextLabel& label) {
  SetAndTouch(m_label, std::make_unique<TTextLabel>(label));
}

void TElementoGPS::RemoveLabel() {
  if (!m_label) return;
  m_label.reset();
  Touch();
}

bool TElementoGPS::IsPointField(int) const { return false; }

TFieldLookup TElementoGPS::PointField(int, size_t, double&) const { return TFieldLookup::Unknown; }

bool TElementoGPS::Retorna_Val_Campo(int code, size_t index, double& value, std::string& error) const {
  if (!IsPointField(code)) return Retorna_Val_Campo_Global2(code, value, error);
  if (index >= PointCount()) {
    error = kFieldIndexOutOfRange;
    return false;
  }
  if (ResolveLookup(PointField(code, index, value), code, value)) return true;
  return Retorna_Val_Campo_Global2(code, value, error);
}

bool TElementoGPS::ResolveLookup(TFieldLookup lookup, int code, double& value) {
  switch (lookup) {
    case TFieldLookup::Value:
      return true;
    case TFieldLookup::Absent:
      value = FieldAbsentValue(code);
      return true;
    case TFieldLookup::Unknown:
      break;
  }
  return false;
}

bool TElementoGPS::PointListField(int code, double& value) const {
  switch (static_cast<TFieldCode>(code)) {
    case TFieldCode::PointCount:
      value = static_cast<double>(PointCount());
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
      return false;
  }
}

bool TElementoGPS::Retorna_Extremos_Campo(int code, double& minimum, double& maximum, std::string& error) const {
  if (!IsPointField(code)) {
    double v = 0;
    if (!Retorna_Val_Campo_Global2(code, v, error)) return false;
    minimum = maximum = v;
    return true;
  }
  bool found = false;
  for (size_t i = 0, count = PointCount(); i < count; ++i) {
    double v = 0;
    if (PointField(code, i, v) != TFieldLookup::Value) continue;
    if (!found || v < minimum) minimum = v;
    if (!found || v > maximum) maximum = v;
    found = true;
  }
  if (!found) error = kFieldNoValues;
  return found;
}

}  // namespace velantis
