// The live track: the moving map's own track log, "TrackMovingMap-" + the
// day (YYYY-MM-DD, UTC) + ".trk" in a folder, in the native track format.
//
// Each new fix with a position and a time of its own becomes a point that is
// appended to the file at once, with the "z" and "m" lines rewritten in
// place, and handed to the system before the call returns: a program killed
// at any moment loses nothing already recorded. A file of the same day that
// already exists (the program started again, the receiver came back) is
// read and continued, not replaced.
#pragma once

#include <string>

#include "comm/posicion_nmea.h"
#include "core/track.h"
#include "formats/native_file.h"

namespace velantis {

inline constexpr std::string_view kLiveTrackPrefix = "TrackMovingMap-";
// Live-track files always carry "U  1" (degrees and decimal minutes), so
// that any reader of them knows the notation without the configuration.
inline constexpr int kLiveTrackNotation = 1;

class TLiveTrackLog {
public:
  // options: the datum and code page the file is written in; the notation
  // is kLiveTrackNotation whatever options say.
  TLiveTrackLog(std::string folder, const TNativeOptions& options)
      : m_folder(std::move(folder)), m_options(options) {
    m_options.notation = kLiveTrackNotation;
  }

  // The file of a day: folder + "/TrackMovingMap-YYYY-MM-DD.trk".
  std::string PathOfDay(TDateTime day) const;

  // Records the fix, on the receiver's datum (WGS 84 unless the receiver
  // setting names another), when it is valid and later than the last point; false with the reason when the file cannot be written. A fix
  // of a new day starts that day's file.
  bool Record(const TPosicionNMEA& fix, std::string& error);

  const std::string& Path() const { return m_path; }
  const TTrack& Track() const { return m_track; }

private:
  bool OpenDay(TDateTime day, std::string& error);

  std::string m_folder;
  TNativeOptions m_options;
  std::string m_path;
  TTrack m_track;
};

}  // namespace velantis
