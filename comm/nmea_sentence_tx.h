// Sentences the program sends: as a position source for another program or
// device, in the moving-map test, and in NMEA logs.
//
// TComandaNMEA_Tx builds a sentence field by field and closes it into the
// line "$" body "*" two upper-case hex digits CR LF; once closed, its fields
// read as those of a received sentence. Build() makes the three position
// sentences from a track point:
//   "GPRMC"  time, "A", latitude, longitude, speed (knots), course, date, and
//            empty magnetic variation fields;
//   "GPGGA"  time, latitude, longitude, quality "1", satellites, HDOP,
//            altitude "M" (empty when unknown), empty geoid separation "M",
//            empty age and station;
//   "GPGGAM" the GGA fields, then speed (knots), course (degrees) and the
//            date ddmmyy (see nmea_position_rules.h).
// Latitude and longitude are written in degrees and minutes with the given
// number of decimals of the minutes (0 to 9), with "N"/"S" and "E"/"W"; the
// time as hhmmss.ss and the date as ddmmyy, both empty for a point without
// time; speed and course with "%03.1f", a missing course (the track point's
// 0, or a value that is not a finite positive number) as "000.0".
//
// TComandaNMEA_Tx_Galileo is the form for listeners that expect a
// multi-constellation receiver (GPS with Galileo): the same sentences with
// the combined-solution talker "GN" of NMEA 0183 4.x in place of "GP"
// ("GNRMC", "GNGGA", "GNGGAM"). Listeners that read only the identifier
// after the talker see no difference.
#pragma once

#include <string>
#include <string_view>

#include "comm/nmea_sentence.h"
#include "core/trk_pnt.h"

namespace velantis {

inline constexpr int kNmeaMaxMinuteDecimals = 9;

class TComandaNMEA_Tx : public TComandaNMEA_Base {
public:
  // Starts a sentence of kind ("GPRMC", "PMGNCMD" ...), written with this
  // form's talker.
  void Begin(std::string_view kind);
  // Appends "," and text.
  void AddField(std::string_view text);
  // Closes the sentence: Line() is "$" body "*" "%02X" CR LF and the fields
  // are split as a received sentence's.
  const std::string& Finish();
  const std::string& Line() const { return m_line; }

  // One of "GPRMC", "GPGGA", "GPGGAM" from point; false (Line() empty) for
  // another kind.
  bool Build(std::string_view kind, const TrkPnt& point, int decimals);

protected:
  // The identifier written for kind: kind itself.
  virtual void AppendIdentifier(std::string& body, std::string_view kind) const;

private:
  void AddTime(const TrkPnt& point);
  void AddDate(const TrkPnt& point);
  void AddPosition(const TrkPnt& point, int decimals);
  void AddSpeedAndCourse(const TrkPnt& point);
  void AddGgaFields(const TrkPnt& point, int decimals);

  std::string m_line;
};

class TComandaNMEA_Tx_Galileo : public TComandaNMEA_Tx {
protected:
  // "GP" + sentence becomes "GN" + sentence; other kinds are kept.
  void AppendIdentifier(std::string& body, std::string_view kind) const override;
};

// The line of one position sentence from point, as TComandaNMEA_Tx::Build
// makes it; empty for an unknown kind.
std::string BuildNmeaSentence(std::string_view kind, const TrkPnt& point, int decimals);

}  // namespace velantis
