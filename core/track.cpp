#include "core/track.h"

namespace velantis {
namespace {

const std::string kNoText;

// a + (b - a) * f, for floats that may be invalid altitudes: an invalid end
// makes the result the earlier value.
float Blend(float a, float b, double f) {
  if (!IsValidAlternativeAltitude(a) || !IsValidAlternativeAltitude(b)) return a;
  return static_cast<float>(a + (b - a) * f);
}

}  // namespace

void TTrack::PointsChanged() {
  m_statisticsValid = false;
  m_cumulative.clear();
  m_cumulative.shrink_to_fit();
  Touch();
}

bool TTrack::SetPoint(size_t index, const TrkPnt& point) {
  if (index >= m_points.size()) return false;
  m_points[index] = point;
  PointsChanged();
  return true;
}

void TTrack::Anyade_Punt(const TrkPnt& point) {
  m_points.push_back(point);
  // Appending keeps earlier distances: extend the cache instead of dropping it.
  if (!m_cumulative.empty()) {
    const size_t i = m_points.size() - 1;
    const std::vector<double> tail = CumulativeDistances(std::span(m_points).subspan(i - 1, 2));
    m_cumulative.push_back(m_cumulative.back() + tail.back());
  }
  m_statisticsValid = false;
  Touch();
}

void TTrack::Anyade_Punto_Temps(double lat, double lon, float altitude, TDateTime time) {
  TrkPnt p;
  p.lat = lat;
  p.lon = lon;
  p.altitude = IsKnownAltitude(altitude) ? altitude : kAltitudeUnknownM;
  p.time = time;
  Anyade_Punt(p);
}

void TTrack::Vacia() {
  m_points.clear();
  m_points.shrink_to_fit();
  m_pointLabels.clear();
  m_pointProperties.clear();
  PointsChanged();
}

const TTextLabel* TTrack::PointLabel(size_t index) const {
  auto it = m_pointLabels.find(index);
  return it == m_pointLabels.end() ? nullptr : &it->second;
}

void TTrack::SetPointLabel(size_t index, const TTextLabel& label) {
  m_pointLabels[index] = label;
  Touch();
}

const TPropertyList* TTrack::PointProperties(size_t index) const {
  auto it = m_pointProperties.find(index);
  return it == m_pointProperties.end() ? nullptr : &it->second;
}

TPropertyList& TTrack::EditPointProperties(size_t index) {
  Touch();
  return m_pointProperties[index];
}

void TTrack::SetColour(TTrackColour colour) {
  m_colour = colour;
  Touch();
}

void TTrack::SetKeptRecords(TKeptRecords records) {
  m_keptRecords = std::move(records);
  Touch();
}

void TTrack::SetDrawing(TTrackDrawing drawing) {
  m_drawing = std::move(drawing);
  Touch();
}

void TTrack::SetEValues(TTrackEValues values) {
  m_eValues = values;
  Touch();
}

const std::string& TTrack::Text(char letter) const {
  const size_t at = kTrackTextLetters.find(letter);
  return at == std::string_view::npos ? kNoText : m_texts[at];
}

bool TTrack::SetText(char letter, std::string text) {
  const size_t at = kTrackTextLetters.find(letter);
  if (at == std::string_view::npos) return false;
  m_texts[at] = std::move(text);
  Touch();
  return true;
}

void TTrack::SetTimeOffset(bool on, double days) {
  m_hasTimeOffset = on;
  m_timeOffsetDays = days;
  Touch();
}

void TTrack::SetMarkedPairs(std::vector<std::pair<int, int>> pairs) {
  m_markedPairs = std::move(pairs);
  Touch();
}

void TTrack::SetAltitudeSource(int source) {
  if (source == m_altitudeSource) return;
  m_altitudeSource = source;
  m_statisticsValid = false;
}

void TTrack::Recalculate() {
  m_statistics = ComputeTrackStatistics(m_points, m_altitudeSource);
  m_statisticsValid = true;
}

const TTrackStatistics& TTrack::Statistics() const {
  if (!m_statisticsValid) {
    m_statistics = ComputeTrackStatistics(m_points, m_altitudeSource);
    m_statisticsValid = true;
  }
  return m_statistics;
}

const std::vector<double>& TTrack::Cumulative() const {
  if (m_cumulative.size() != m_points.size()) m_cumulative = CumulativeDistances(m_points);
  return m_cumulative;
}

size_t TTrack::LastTimedAtOrBefore(TDateTime t) const {
  // Binary search over the timed points: a probe that lands on an untimed
  // point moves to the next timed one inside the range.
  size_t lo = 0, hi = m_points.size(), found = m_points.size();
  while (lo < hi) {
    size_t mid = lo + (hi - lo) / 2;
    while (mid < hi && m_points[mid].time.IsNull()) ++mid;
    if (mid == hi) {
      hi = lo + (hi - lo) / 2;
      continue;
    }
    if (m_points[mid].time.Days() <= t.Days()) {
      found = mid;
      lo = mid + 1;
    } else {
      hi = mid;
    }
  }
  return found;
}

bool TTrack::Datos_Por_Tiempo(TDateTime t, TrkPnt& point, double& distanceFromStartM) const {
  if (t.IsNull()) return false;
  const size_t i = LastTimedAtOrBefore(t);
  if (i == m_points.size()) return false;
  const TrkPnt& before = m_points[i];
  size_t j = i + 1;
  while (j < m_points.size() && m_points[j].time.IsNull()) ++j;
  if (before.time != t && j == m_points.size()) return false;
  const std::vector<double>& cumulative = Cumulative();
  point = before;
  distanceFromStartM = cumulative[i];
  if (before.time == t) return true;
  const TrkPnt& after = m_points[j];
  const double f = (t.Days() - before.time.Days()) / (after.time.Days() - before.time.Days());
  point.lat = before.lat + (after.lat - before.lat) * f;
  point.lon = before.lon + (after.lon - before.lon) * f;
  point.altitude = Blend(before.altitude, after.altitude, f);
  point.altitudeBarometric = Blend(before.altitudeBarometric, after.altitudeBarometric, f);
  point.altitudeTerrain = Blend(before.altitudeTerrain, after.altitudeTerrain, f);
  point.time = t;
  distanceFromStartM = cumulative[i] + (cumulative[j] - cumulative[i]) * f;
  return true;
}

}  // namespace velantis
