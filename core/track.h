// TTrack: a track, its points held by index with the values its file carries.
//
// Points are packed TrkPnt records in one vector; the label and the property
// object of the few points that have them are kept in side maps keyed by the
// point's index (points are only appended or all removed, so the keys stay
// right). Besides its points the track carries its colour, its drawing
// values, the optional texts of its file (by their line letter), a time
// offset, a list of marked number pairs and the file position of its "z"
// line, which a later append rewrites in place. The data model does not
// interpret the drawing values or the texts; it carries them for the files.
//
// Statistics (track_statistics.h) are computed on first use after an edit,
// or at once by Recalculate; the per-point distances from the start are
// kept only once a field that needs them is asked for (8 bytes a point).
// Altitudes follow the source set by SetAltitudeSource (the owner passes
// TConfig::Altitude_Source; GPS until then).
//
// Field access: every point code of field_codes.h except the waypoint and
// route ones; element codes 40-54. Speed, climb rate and course are taken
// from the previous point (the first point of a segment has speed and climb
// 0 and no course).
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/elemento_gps.h"
#include "core/kept_records.h"
#include "core/track_statistics.h"
#include "core/trk_pnt.h"

namespace velantis {

// The letters of the optional texts a track file may give, "M" being the
// multi-line one; "N" (name) and "D" (description) are the element's own.
inline constexpr std::string_view kTrackTextLetters = "PQIbdMZRslijkgef";

// Values of the "C" line after the colour, and of the "V" line.
struct TTrackDrawing {
  int style = 0;
  double width = 0;
  int mode = 0;
  std::string pattern;  // blanks travel as '*' in the file
  std::string text;
  std::array<double, 4> viewReals{};      // "V" values 1, 2, 7, 8
  std::array<int, 4> viewIntegers{};      // "V" values 3 to 6
  int viewSmall = 0;                      // "V" value 9
  friend bool operator==(const TTrackDrawing&, const TTrackDrawing&) = default;
};

// Values of the "E" line (the point count is the track's own).
struct TTrackEValues {
  uint8_t flags = 0;
  uint8_t kind = 0;
  TDateTime time1;
  TDateTime time2;
  uint8_t last = 0;
  friend bool operator==(const TTrackEValues&, const TTrackEValues&) = default;
};

struct TTrackColour {
  uint8_t red = 255;
  uint8_t green = 0;
  uint8_t blue = 0;
  friend bool operator==(const TTrackColour&, const TTrackColour&) = default;
};

class TTrack : public TElementoGPS {
public:
  size_t Count() const { return m_points.size(); }
  const TrkPnt& Point(size_t index) const { return m_points[index]; }
  const std::vector<TrkPnt>& Points() const { return m_points; }
  // Replaces point index (the statistics follow); false past the end.
  bool SetPoint(size_t index, const TrkPnt& point);
  void Reserve(size_t count) { m_points.reserve(count); }

  // Appends a point as it is.
  void Anyade_Punt(const TrkPnt& point);
  // Appends a point at lat/lon (degrees) with a GPS altitude (metres) and a
  // time; every other field takes its default.
  void Anyade_Punto_Temps(double lat, double lon, float altitude, TDateTime time);
  // Removes every point with its labels and properties; the track's own
  // values stay.
  void Vacia();

  const TTextLabel* PointLabel(size_t index) const;
  void SetPointLabel(size_t index, const TTextLabel& label);
  const TPropertyList* PointProperties(size_t index) const;
  TPropertyList& EditPointProperties(size_t index);
  size_t PointLabelCount() const { return m_pointLabels.size(); }
  size_t PointPropertiesCount() const { return m_pointProperties.size(); }

  const TTrackColour& Colour() const { return m_colour; }
  void SetColour(TTrackColour colour);
  const TTrackDrawing& Drawing() const { return m_drawing; }
  void SetDrawing(TTrackDrawing drawing);
  const TTrackEValues& EValues() const { return m_eValues; }
  void SetEValues(TTrackEValues values);

  // The text of a file line letter of kTrackTextLetters; "" for any other.
  const std::string& Text(char letter) const;
  // False (nothing stored) for a letter not in kTrackTextLetters.
  bool SetText(char letter, std::string text);

  bool HasTimeOffset() const { return m_hasTimeOffset; }
  double TimeOffsetDays() const { return m_timeOffsetDays; }
  void SetTimeOffset(bool on, double days = 0);

  const std::vector<std::pair<int, int>>& MarkedPairs() const { return m_markedPairs; }
  void SetMarkedPairs(std::vector<std::pair<int, int>> pairs);

  // Byte offset of the "z" line's text in the file last written or read; -1
  // when unknown. Bookkeeping of the file, not an edit.
  int64_t ZLinePosition() const { return m_zLinePosition; }
  void SetZLinePosition(int64_t position) { m_zLinePosition = position; }

  // The lines of an exchange file the track has no field for (kept_records.h).
  const TKeptRecords& KeptRecords() const { return m_keptRecords; }
  void SetKeptRecords(TKeptRecords records);

  int AltitudeSource() const { return m_altitudeSource; }
  void SetAltitudeSource(int source);

  // Recomputes the statistics now.
  void Recalculate();
  const TTrackStatistics& Statistics() const;

  // The point at time t, interpolated linearly between the two points
  // around it (position, altitudes and time; the other fields from the
  // earlier point), and its distance from the start in metres. False when t
  // is null or outside the track's timed points. Times are assumed not to
  // decrease along the track.
  bool Datos_Por_Tiempo(TDateTime t, TrkPnt& point, double& distanceFromStartM) const;

  // The statistics as text, one "caption: value" line each, lines ending in
  // CR LF; lines whose values the track lacks (no times, no altitudes) are
  // left out.
  std::string GeneraResumen_TRK() const;

  size_t PointCount() const override { return m_points.size(); }
  bool Retorna_Val_Campo_Global2(int code, double& value, std::string& error) const override;

protected:
  bool IsPointField(int code) const override;
  TFieldLookup PointField(int code, size_t index, double& value) const override;

private:
  void PointsChanged();
  // The last point with a time at or before t; Count() when none.
  size_t LastTimedAtOrBefore(TDateTime t) const;
  const std::vector<double>& Cumulative() const;

  std::vector<TrkPnt> m_points;
  std::map<size_t, TTextLabel> m_pointLabels;
  std::map<size_t, TPropertyList> m_pointProperties;
  TTrackColour m_colour;
  TTrackDrawing m_drawing;
  TTrackEValues m_eValues;
  std::array<std::string, kTrackTextLetters.size()> m_texts;
  bool m_hasTimeOffset = false;
  double m_timeOffsetDays = 0;
  std::vector<std::pair<int, int>> m_markedPairs;
  int64_t m_zLinePosition = -1;
  TKeptRecords m_keptRecords;
  int m_altitudeSource = 0;

  mutable bool m_statisticsValid = false;
  mutable TTrackStatistics m_statistics;
  mutable std::vector<double> m_cumulative;  // empty until asked for
};

}  // namespace velantis
