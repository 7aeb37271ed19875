// Field access of TTrack (field_codes.h).
#include "core/geodesic.h"
#include "core/track.h"

namespace velantis {
namespace {

using F = TFieldCode;

TFieldLookup Put(double& value, double v) {
  value = v;
  return TFieldLookup::Value;
}

// A byte field: absent when its getter reports kFieldAbsent.
TFieldLookup PutByte(double& value, double v) {
  value = v;
  return v == kFieldAbsent ? TFieldLookup::Absent : TFieldLookup::Value;
}

TFieldLookup PutAltitude(double& value, float metres) {
  value = metres;
  return IsValidAlternativeAltitude(metres) ? TFieldLookup::Value : TFieldLookup::Absent;
}

}  // namespace

bool TTrack::IsPointField(int code) const {
  switch (static_cast<F>(code)) {
    case F::Latitude:
    case F::Longitude:
    case F::Altitude:
    case F::Time:
    case F::DistanceFromStart:
    case F::Speed:
    case F::ClimbRate:
    case F::HeartRate:
    case F::Cadence:
    case F::Temperature:
    case F::QuarterUnit:
    case F::AltitudeGps:
    case F::AltitudeBarometric:
    case F::AltitudeTerrain:
    case F::Course:
    case F::ElapsedTime:
    case F::SegmentStart:
      return true;
    default:
      return false;
  }
}

TFieldLookup TTrack::PointField(int code, size_t index, double& value) const {
  const TrkPnt& p = m_points[index];
  // The previous point, for the values taken over the last leg.
  const TrkPnt* previous = index > 0 && !p.StartsSegment() ? &m_points[index - 1] : nullptr;
  switch (static_cast<F>(code)) {
    case F::Latitude:
      return Put(value, p.lat);
    case F::Longitude:
      return Put(value, p.lon);
    case F::Altitude:
      return PutAltitude(value, ChooseAltitude(p, m_altitudeSource));
    case F::AltitudeGps:
      return p.HasAltitude() ? Put(value, p.altitude) : TFieldLookup::Absent;
    case F::AltitudeBarometric:
      return PutAltitude(value, p.altitudeBarometric);
    case F::AltitudeTerrain:
      return PutAltitude(value, p.altitudeTerrain);
    case F::Time:
      return p.time.IsNull() ? TFieldLookup::Absent : Put(value, p.time.Days());
    case F::ElapsedTime: {
      const TTrackStatistics& s = Statistics();
      return p.time.IsNull() ? TFieldLookup::Absent : Put(value, s.start.SecondsTo(p.time));
    }
    case F::DistanceFromStart:
      return Put(value, Cumulative()[index]);
    case F::Speed:
    case F::ClimbRate: {
      if (!previous) return Put(value, 0.0);
      const double dt = previous->time.SecondsTo(p.time);
      if (!(dt > 0)) return TFieldLookup::Absent;
      if (code == static_cast<int>(F::Speed)) {
        const std::vector<double>& c = Cumulative();
        return Put(value, (c[index] - c[index - 1]) / dt * kMsToKmh);
      }
      const float a0 = ChooseAltitude(*previous, m_altitudeSource), a1 = ChooseAltitude(p, m_altitudeSource);
      if (!IsValidAlternativeAltitude(a0) || !IsValidAlternativeAltitude(a1)) return TFieldLookup::Absent;
      return Put(value, (a1 - a0) / dt);
    }
    case F::Course: {
      if (!previous) return TFieldLookup::Absent;
      double course = 0;
      GeodesicDistanceCourse(previous->lat, previous->lon, p.lat, p.lon, course);
      return Put(value, course);
    }
    case F::HeartRate:
      return PutByte(value, p.HeartRate());
    case F::Cadence:
      return PutByte(value, p.Cadence());
    case F::Temperature:
      return PutByte(value, p.TemperatureK());
    case F::QuarterUnit:
      return PutByte(value, p.QuarterUnit());
    case F::SegmentStart:
      return Put(value, p.StartsSegment() ? 1.0 : 0.0);
    default:
      return TFieldLookup::Unknown;
  }
}

bool TTrack::Retorna_Val_Campo_Global2(int code, double& value, std::string& error) const {
  const TTrackStatistics& s = Statistics();
  // Element values that need times, speeds or altitudes the track lacks
  // report the absent value, like a point field.
  auto put = [&](bool present, double v) {
    value = present ? v : FieldAbsentValue(code);
    return true;
  };
  switch (static_cast<F>(code)) {
    case F::PointCount:
      return put(true, static_cast<double>(m_points.size()));
    case F::TotalDistance:
      return put(true, s.distanceM);
    case F::Duration:
      return put(s.hasTime, s.durationS);
    case F::MovingTime:
      return put(s.hasTime, s.movingTimeS);
    case F::Ascent:
      return put(s.hasAltitude, s.ascentM);
    case F::Descent:
      return put(s.hasAltitude, s.descentM);
    case F::MaxSpeed:
      return put(s.hasSpeed, s.maxSpeedKmh);
    case F::AverageSpeed:
      return put(s.durationS > 0, s.distanceM / s.durationS * kMsToKmh);
    case F::AverageMovingSpeed:
      return put(s.movingTimeS > 0, s.distanceM / s.movingTimeS * kMsToKmh);
    case F::MinAltitude:
      return put(s.hasAltitude, s.minAltitudeM);
    case F::MaxAltitude:
      return put(s.hasAltitude, s.maxAltitudeM);
    case F::MaxClimbRate:
      return put(s.hasClimb, s.maxClimbMs);
    case F::MaxSinkRate:
      return put(s.hasClimb, s.maxSinkMs);
    case F::StartTime:
      return put(s.hasTime, s.start.Days());
    case F::EndTime:
      return put(s.hasTime, s.end.Days());
    default:
      error = kUndefTrackGlobal2;
      return false;
  }
}

}  // namespace velantis
