#include "core/baliza.h"

#include "app/config.h"

namespace velantis {
namespace {

// The bits of the state byte the default-form test looks at (0 to 5).
constexpr uint8_t kStateFormMask = 0x3F;
// A stored radius at or below this is no radius for the extension test.
constexpr double kProximityRadiusExtensionM = 0.0001;

}  // namespace

TBalizaDefaults TBalizaDefaults::FromConfig(const TConfig& config) {
  TBalizaDefaults d;
  d.colour1 = PackLabelColour(config.Default_Label_Color_Wpt);
  d.colour2 = PackLabelColour(config.Default_Label_Back_Color_Wpt);
  d.displayFlag3 = config.Wpt_Scale_Display;
  return d;
}

TBaliza::TBaliza(const TBalizaDefaults& defaults) : m_colour1(defaults.colour1), m_colour2(defaults.colour2) {
  if (defaults.displayFlag3) m_displayFlags |= 0x08;
}

void TBaliza::SetPosition(double lat, double lon) {
  m_lat = lat;
  m_lon = lon;
  Touch();
}

void TBaliza::SetAltitude(float metres) {
  SetAndTouch(m_altitude, IsKnownAltitude(metres) ? metres : kAltitudeUnknownM);
}

void TBaliza::SetTime(TDateTime time) { SetAndTouch(m_time, time); }

void TBaliza::SetState(uint8_t state) { SetAndTouch(m_state, state); }

void TBaliza::SetProximityAlarm(bool on) {
  SetState(on ? (m_state | kBalizaStateProximityBit) : (m_state & ~kBalizaStateProximityBit));
}

void TBaliza::ClearTransientMark() { m_state &= ~kBalizaStateTransientBit; }

void TBaliza::SetSizeByte(uint8_t size) { SetAndTouch(m_size, size); }

void TBaliza::SetDisplayFlags(uint8_t flags) { SetAndTouch(m_displayFlags, flags); }

void TBaliza::SetDisplayMode(int mode) {
  SetDisplayFlags(static_cast<uint8_t>((m_displayFlags & ~0x07) | (mode & 0x07)));
}

void TBaliza::SetDisplayFlag3(bool on) {
  SetDisplayFlags(static_cast<uint8_t>(on ? (m_displayFlags | 0x08) : (m_displayFlags & ~0x08)));
}

void TBaliza::SetLabelPlacement(int placement) {
  SetDisplayFlags(static_cast<uint8_t>((m_displayFlags & 0x3F) | ((placement & 0x03) << 6)));
}

void TBaliza::SetLabelFontStep(int step) {
  SetAndTouch(m_extra, static_cast<uint8_t>((m_extra & 0xF0) | (step & 0x0F)));
}

void TBaliza::SetDisplayScale(double threshold) {
  SetAndTouch(m_displayScale, EncodeCompactReal(threshold));
}

void TBaliza::SetProximityRadius(double metres) {
  SetAndTouch(m_proximityRadius, EncodeCompactReal(metres));
}

void TBaliza::SetRawCompactReals(TCompactReal displayScale, TCompactReal proximityRadius) {
  m_displayScale = displayScale;
  m_proximityRadius = proximityRadius;
  Touch();
}

void TBaliza::SetLabelColour1(uint32_t rgb) { SetAndTouch(m_colour1, PackLabelColour(rgb)); }

void TBaliza::SetLabelColour2(uint32_t rgb) { SetAndTouch(m_colour2, PackLabelColour(rgb)); }

void TBaliza::SetSymbol(std::string name) { SetAndTouch(m_symbol, std::move(name)); }

void TBaliza::SetLink(std::string link) { SetAndTouch(m_link, std::move(link)); }

double TBaliza::EffectiveProximityRadius(const TConfig& config) const {
  if (!ProximityAlarm()) return 0.0;
  const double radius = ProximityRadius();
  if (radius > kProximityRadiusMinM) return radius;
  if (Properties() != nullptr || config.Proximity_Mode == kProximityModeAllWaypoints)
    return config.Proximity_Radius;
  return 0.0;
}

bool TBaliza::HasDefaultExtension(const TBalizaDefaults& defaults) const {
  return m_symbol.empty() && m_displayScale == 0 && DisplayMode() == 0 && m_colour1 == defaults.colour1 &&
         m_colour2 == defaults.colour2 && m_size == kSizeByteUnset && LabelFontStep() == 0 &&
         DisplayFlag3() == defaults.displayFlag3 && m_link.empty() &&
         (m_state & kStateFormMask) == kBalizaStateDefault && LabelPlacement() == 0 &&
         !(ProximityRadius() > kProximityRadiusExtensionM);
}

bool TBaliza::IsBalizaField(int code) {
  switch (static_cast<TFieldCode>(code)) {
    case TFieldCode::Latitude:
    case TFieldCode::Longitude:
    case TFieldCode::Altitude:
    case TFieldCode::AltitudeGps:
    case TFieldCode::Time:
    case TFieldCode::ProximityRadius:
    case TFieldCode::DisplayScale:
    case TFieldCode::SizeByte:
    case TFieldCode::StateByte:
      return true;
    default:
      return false;
  }
}

TFieldLookup TBaliza::FieldValue(int code, double& value) const {
  switch (static_cast<TFieldCode>(code)) {
    case TFieldCode::Latitude:
      value = m_lat;
      return TFieldLookup::Value;
    case TFieldCode::Longitude:
      value = m_lon;
      return TFieldLookup::Value;
    case TFieldCode::Altitude:
    case TFieldCode::AltitudeGps:
      value = m_altitude;
      return HasAltitude() ? TFieldLookup::Value : TFieldLookup::Absent;
    case TFieldCode::Time:
      value = m_time.Days();
      return m_time.IsNull() ? TFieldLookup::Absent : TFieldLookup::Value;
    case TFieldCode::ProximityRadius:
      value = ProximityRadius();
      return TFieldLookup::Value;
    case TFieldCode::DisplayScale:
      value = DisplayScale();
      return TFieldLookup::Value;
    case TFieldCode::SizeByte:
      value = m_size;
      return m_size == kSizeByteUnset ? TFieldLookup::Absent : TFieldLookup::Value;
    case TFieldCode::StateByte:
      value = m_state;
      return TFieldLookup::Value;
    default:
      return TFieldLookup::Unknown;
  }
}

bool TBaliza::IsPointField(int code) const { return IsBalizaField(code); }

TFieldLookup TBaliza::PointField(int code, size_t, double& value) const { return FieldValue(code, value); }

bool TBaliza::Retorna_Val_Campo_Global2(int code, double& value, std::string& error) const {
  if (ResolveLookup(FieldValue(code, value), code, value)) return true;
  error = kUndefBalizaGlobal2;
  return false;
}

}  // namespace velantis
