// TBaliza: a waypoint.
//
// Position on the internal datum (WGS 84) in degrees, altitude in metres as
// a 32-bit float (-1000 or less: unknown, stored as -9999), an optional time,
// and the packed display fields the native files carry: the state byte, the
// size byte, the display flags, the extra nibble, two compact reals (the
// display-scale threshold and the proximity radius) and two 16-bit label
// colours. Every setter marks the waypoint modified.
//
// State byte: bit 5 enables the proximity alarm, bit 6 is a transient mark
// that readers clear; the default form has bits 0, 1, 2 and 5 set.
// Display flags: bits 0-2 the label display mode (0 to 7), bit 3 a flag whose
// default comes from the configuration, bits 6-7 the label placement
// (0 right of the symbol, 1 left, 2 above, 3 below). Bits 4-5 are carried.
// Extra nibble (low four bits of the extra byte): the label font step, 0 the
// configured size, each step one point larger.
#pragma once

#include <cstdint>
#include <string>

#include "core/altitude.h"
#include "core/compact_real.h"
#include "core/date_time.h"
#include "core/elemento_gps.h"
#include "core/label_colour.h"

namespace velantis {

class TConfig;

inline constexpr uint8_t kBalizaStateDefault = 0x27;  // bits 0, 1, 2 and 5
inline constexpr uint8_t kBalizaStateProximityBit = 0x20;
inline constexpr uint8_t kBalizaStateTransientBit = 0x40;
inline constexpr uint8_t kSizeByteUnset = 255;
// A stored proximity radius counts only above this (metres).
inline constexpr double kProximityRadiusMinM = 0.1;
// The proximity mode in which every enabled alarm without its own radius
// uses the configured one.
inline constexpr int kProximityModeAllWaypoints = 2;

// What a new waypoint starts with, taken from the configuration.
struct TBalizaDefaults {
  TLabelColour colour1 = PackLabelColour(0x000000);  // label text
  TLabelColour colour2 = PackLabelColour(0xFFFFFF);  // label background
  // Bit 3 of the display flags (TConfig::Wpt_Scale_Display).
  bool displayFlag3 = false;

  static TBalizaDefaults FromConfig(const TConfig& config);
};

class TBaliza : public TElementoGPS {
public:
  TBaliza() : TBaliza(TBalizaDefaults{}) {}
  explicit TBaliza(const TBalizaDefaults& defaults);

  double Latitude() const { return m_lat; }
  double Longitude() const { return m_lon; }
  void SetPosition(double lat, double lon);
  // Metres; kAltitudeUnknownM when unknown.
  float Altitude() const { return m_altitude; }
  bool HasAltitude() const { return IsKnownAltitude(m_altitude); }
  // Any value of -1000 or less is stored as kAltitudeUnknownM.
  void SetAltitude(float metres);
  TDateTime Time() const { return m_time; }
  void SetTime(TDateTime time);

  uint8_t State() const { return m_state; }
  void SetState(uint8_t state);
  bool ProximityAlarm() const { return (m_state & kBalizaStateProximityBit) != 0; }
  void SetProximityAlarm(bool on);
  // Bit 6 cleared, as every reader does after a waypoint is read.
  void ClearTransientMark();

  uint8_t SizeByte() const { return m_size; }
  void SetSizeByte(uint8_t size);

  uint8_t DisplayFlags() const { return m_displayFlags; }
  void SetDisplayFlags(uint8_t flags);
  int DisplayMode() const { return m_displayFlags & 0x07; }
  void SetDisplayMode(int mode);  // 0..7, higher bits ignored
  bool DisplayFlag3() const { return (m_displayFlags & 0x08) != 0; }
  void SetDisplayFlag3(bool on);
  int LabelPlacement() const { return m_displayFlags >> 6; }
  void SetLabelPlacement(int placement);  // 0..3, higher bits ignored

  uint8_t ExtraByte() const { return m_extra; }
  int LabelFontStep() const { return m_extra & 0x0F; }
  void SetLabelFontStep(int step);  // 0..15, higher bits ignored

  // Compact reals: the setters store the encoded value, the getters decode.
  double DisplayScale() const { return DecodeCompactReal(m_displayScale); }
  void SetDisplayScale(double threshold);
  TCompactReal DisplayScaleRaw() const { return m_displayScale; }
  double ProximityRadius() const { return DecodeCompactReal(m_proximityRadius); }
  void SetProximityRadius(double metres);
  TCompactReal ProximityRadiusRaw() const { return m_proximityRadius; }
  void SetRawCompactReals(TCompactReal displayScale, TCompactReal proximityRadius);

  // Label colours as 24-bit 0x00RRGGBB (the expansion of the stored 5-6-5).
  uint32_t LabelColour1() const { return UnpackLabelColour(m_colour1); }
  uint32_t LabelColour2() const { return UnpackLabelColour(m_colour2); }
  void SetLabelColour1(uint32_t rgb);
  void SetLabelColour2(uint32_t rgb);
  TLabelColour LabelColour1Packed() const { return m_colour1; }
  TLabelColour LabelColour2Packed() const { return m_colour2; }

  const std::string& Symbol() const { return m_symbol; }  // empty: the default symbol
  void SetSymbol(std::string name);
  const std::string& Link() const { return m_link; }
  void SetLink(std::string link);

  // The alarm radius in metres: 0 unless state bit 5 is set; then the stored
  // radius when above 0.1 m; otherwise the configured default radius when the
  // waypoint has a property object or the configured proximity mode is 2;
  // otherwise 0.
  double EffectiveProximityRadius(const TConfig& config) const;

  // True when nothing beyond name, position, time, altitude and description
  // differs from a new waypoint: the test that decides whether a file needs
  // the waypoint's extension values (colours compared in 16 bits).
  bool HasDefaultExtension(const TBalizaDefaults& defaults) const;

  // The waypoint's own fields (the point codes of field_codes.h it knows),
  // for the lists and routes that hold it.
  static bool IsBalizaField(int code);
  TFieldLookup FieldValue(int code, double& value) const;

  size_t PointCount() const override { return 1; }
  bool Retorna_Val_Campo_Global2(int code, double& value, std::string& error) const override;

protected:
  bool IsPointField(int code) const override;
  TFieldLookup PointField(int code, size_t index, double& value) const override;

private:
  double m_lat = 0;
  double m_lon = 0;
  float m_altitude = kAltitudeUnknownM;
  TDateTime m_time;
  uint8_t m_state = kBalizaStateDefault;
  uint8_t m_size = kSizeByteUnset;
  uint8_t m_displayFlags = 0;
  uint8_t m_extra = 0;
  TCompactReal m_displayScale = 0;
  TCompactReal m_proximityRadius = 0;
  TLabelColour m_colour1 = 0;
  TLabelColour m_colour2 = 0;
  std::string m_symbol;
  std::string m_link;
};

}  // namespace velantis
