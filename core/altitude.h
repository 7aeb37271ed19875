// Altitude conventions of the elements: metres as a 32-bit float.
//
// A waypoint's or a track point's own (GPS) altitude of -1000 or less means
// that the altitude is unknown, and the elements store -9999 for it, which
// is also what files write. A track point's barometric and terrain altitudes
// are valid when not below -999. The two limits differ and are kept so:
// existing files and the altitude choice depend on each.
#pragma once

namespace velantis {

inline constexpr float kAltitudeUnknownM = -9999.0f;
inline constexpr float kAltitudeUnknownAtOrBelowM = -1000.0f;
inline constexpr float kAltitudeValidFromM = -999.0f;

inline bool IsKnownAltitude(float metres) { return metres > kAltitudeUnknownAtOrBelowM; }
inline bool IsValidAlternativeAltitude(float metres) { return metres >= kAltitudeValidFromM; }

}  // namespace velantis
