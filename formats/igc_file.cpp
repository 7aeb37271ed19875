// Choices the format leaves open
//
// - Altitudes. The track point's own altitude is the GNSS altitude (bytes
//   31-35): it is the GPS altitude the point record holds, and the one every
//   logger has. The pressure altitude (bytes 26-30) goes to the barometric
//   altitude, so both are kept and the configured altitude source chooses.
//   A pressure altitude of 00000 is what loggers without a sensor write: it
//   is read as no altitude (and written as 00000 again), so that such a
//   flight falls back to the GNSS altitude rather than to sea level.
// - Validity. 'A' is a three-dimensional fix: its GNSS altitude is the
//   point's altitude. 'V' has no valid GNSS altitude: the point's altitude
//   is unknown, and the writer gives 'V' with 00000. An 'A' fix at or below
//   -1000 m, the data model's "unknown", is a bad record.
// - Records printed otherwise. A fix whose record the writer would not print
//   byte for byte as it stands (minutes of 60.000, which some loggers write
//   for a value they rounded up, "-0000", the digits of a 'V' fix's
//   altitude) keeps the whole record in its properties ("B record"); the
//   writer prints it as it stands as long as it still reads as the point.
// - Date. The first line "HFDTEDDMMYY" or "HFDTEDATE:DDMMYY,NN" that reads
//   dates every fix, wherever it stands; two-digit years 80-99 are 19YY,
//   00-79 20YY. Without one the fixes fall on day 0 of the date-time (30
//   December 1899), which keeps their times of day and their durations.
// - Midnight. A fix whose time of day is more than 12 hours before the
//   previous good fix's has passed midnight: one day is added from it on.
//   A fix a little earlier than the one before (a logger's out-of-order
//   fix) stays on its day; GPSBabel, which adds a day at any step back,
//   dates the last two fixes of the format's own example a day later.
// - Extensions (the I record). "FXA" fills the point's accuracy, "SIU" its
//   satellites, "LAD"/"LOD" further digits of the minutes of its position;
//   any other extension, a value of those that is not all digits, and bytes
//   after the last extension are kept in the point's properties under their
//   code ("B tail" for the trailing bytes), so the writer prints them back.
//   An I record that does not lay its extensions end to end from byte 36,
//   with distinct codes, is a bad record, and later fixes have none.
// - Bad records. A B record that does not read (short, a field out of
//   range, a letter where a digit belongs), an I record as above and a date
//   line whose date does not exist are counted and kept as lines, so the
//   file still comes back whole; they give no point.
// - Kept lines. Every line that gives no point (A, H, I, J, C, L, D, E, F,
//   K, G, empty and unknown lines, bad records) is kept in order with the
//   number of fixes before it. The writer puts each back before the point
//   it stood before; the first date line that reads is given the date of
//   the first point, the I records are obeyed for the fixes after them.
// - Line ends. Lines end in CR LF, as the format asks: a file with bare LF
//   line ends or without an end on its last line is written with them.
// - Datum. Positions are WGS 84, as the format fixes; the "HFDTM" line is
//   kept but not read.
// - Name. The track's name stays empty: the pilot, glider and site are H
//   lines, kept as they are.
// - A track that did not come from an IGC file gets a header of its own:
//   an A record, the date of its first timed point and, when any point has
//   an accuracy or satellites, the I record for "FXA" and "SIU". Segments
//   are not kept (the format has none); a point without a time is written
//   at the time of the point before it (00:00:00 when there is none).
#include "formats/igc_file.h"

#include <algorithm>
#include <cmath>

#include "app/file_io.h"
#include "formats/igc_records.h"
#include "formats/native_text.h"

namespace velantis {

namespace {

constexpr int kMidnightJumpS = 43200;  // a clock this far behind has passed midnight
constexpr int kSecondsPerDayInt = 86400;
constexpr std::string_view kOwnARecord = "AXVLVelantis";
constexpr std::string_view kOwnDatePrefix = "HFDTEDATE:";
constexpr std::string_view kOwnDateSuffix = ",01";
constexpr std::string_view kOwnExtensions = "I023638FXA3940SIU";

// The date of the first date line that reads; day 0 when none does.
TDateTime FlightDate(std::string_view bytes) {
  TLineCursor lines(bytes);
  std::string_view line;
  TDateTime date;
  size_t at = 0;
  while (lines.Next(line))
    if (ParseIgcDate(line, date, at)) return date;
  return TDateTime::FromDays(0);
}

// The lines TLineCursor gives: one a line feed, and a last one without.
size_t CountLines(std::string_view bytes) {
  const auto feeds = static_cast<size_t>(std::count(bytes.begin(), bytes.end(), '\n'));
  return feeds + (bytes.empty() || bytes.back() == '\n' ? 0 : 1);
}

bool IsDateLine(std::string_view line) {
  return line.size() >= 5 && line[0] == 'H' && line.substr(2, 3) == "DTE";
}

// The reader's state from line to line.
class TIgcReadState {
public:
  TIgcReadState(TDateTime date, TTrack& track) : m_dateDays(date.Days()), m_track(track) {}

  void Line(std::string_view line) {
    const char letter = line.empty() ? 0 : line[0];
    if (letter == 'B' && Fix(line)) return;
    if (!Readable(letter, line)) ++m_bad;
    m_kept.lines.push_back({m_track.Count(), std::string(line)});
  }

  size_t Bad() const { return m_bad; }
  TKeptRecords TakeKept() {
    m_kept.format = kIgcFormatName;
    return std::move(m_kept);
  }

private:
  // Whether a line that gives no point is a good record (a B record that
  // gives no point is a bad one); an I record is obeyed from here on.
  bool Readable(char letter, std::string_view line) {
    TDateTime date;
    size_t at = 0;
    switch (letter) {
      case 'B':
        return false;
      case 'I':
        if (ParseIgcExtensions(line, m_extensions)) return true;
        m_extensions.clear();
        return false;
      default:
        return !IsDateLine(line) || ParseIgcDate(line, date, at);
    }
  }

  bool Fix(std::string_view line) {
    TrkPnt point;
    int second = 0;
    if (!ParseIgcFix(line, m_extensions, point, second, m_extras)) return false;
    if (m_lastSecond >= 0 && second < m_lastSecond - kMidnightJumpS) ++m_days;
    m_lastSecond = second;
    point.time = TDateTime::FromDays(m_dateDays + m_days + second / kSecondsPerDay);
    m_track.Anyade_Punt(point);
    if (!m_extras.Empty()) m_track.EditPointProperties(m_track.Count() - 1) = m_extras;
    return true;
  }

  double m_dateDays;
  TTrack& m_track;
  TIgcExtensions m_extensions;
  TPropertyList m_extras;
  TKeptRecords m_kept;
  int m_lastSecond = -1;
  int m_days = 0;
  size_t m_bad = 0;
};

// The time of day of a point, in whole seconds, and the day it falls on.
int SecondOfDay(TDateTime time) {
  const double days = time.Days();
  const auto second = static_cast<int64_t>(std::llround((days - std::floor(days)) * kSecondsPerDay));
  return static_cast<int>(second % kSecondsPerDayInt);
}

// A time that rounds to the next day's 00:00:00 falls on that day.
TDateTime DayOf(TDateTime time) { return TDateTime::FromDays(std::floor(time.Days() + 0.5 / kSecondsPerDay)); }

// The writer's state: the extensions in force and the time of the last point.
class TIgcWriteState {
public:
  TIgcWriteState(const TTrack& track, std::string& out) : m_track(track), m_out(out) {
    for (const TrkPnt& p : track.Points()) {
      if (p.time.IsNull()) continue;
      m_firstDay = DayOf(p.time);
      break;
    }
  }

  void OwnHeader() {
    Line(kOwnARecord);
    if (!m_firstDay.IsNull()) Line(std::string(kOwnDatePrefix) + IgcDateDigits(m_firstDay) + std::string(kOwnDateSuffix));
    bool extended = false;
    for (const TrkPnt& p : m_track.Points()) extended = extended || p.accuracyM != 0 || p.satellites != 0;
    if (extended) Kept(kOwnExtensions);
  }

  void Kept(std::string_view line) {
    TDateTime date;
    size_t at = 0;
    if (!line.empty() && line[0] == 'I' && !ParseIgcExtensions(line, m_extensions)) m_extensions.clear();
    if (!m_dated && ParseIgcDate(line, date, at)) {
      m_dated = true;
      if (!m_firstDay.IsNull() && !(date == m_firstDay)) return Line(WithIgcDate(line, m_firstDay));
    }
    Line(line);
  }

  void Point(size_t index) {
    const TrkPnt& p = m_track.Point(index);
    if (!p.time.IsNull()) m_second = SecondOfDay(p.time);
    AppendIgcFix(m_out, p, m_second, m_extensions, m_track.PointProperties(index));
    m_out += kCrLf;
  }

private:
  void Line(std::string_view line) {
    m_out += line;
    m_out += kCrLf;
  }

  const TTrack& m_track;
  std::string& m_out;
  TIgcExtensions m_extensions;
  TDateTime m_firstDay;
  bool m_dated = false;
  int m_second = 0;
};

}  // namespace

bool ReadIgcFile(const std::string& path, const TNativeOptions& options, TTrack& track, std::string& error) {
  std::string bytes;
  return ReadWholeFile(path, bytes, error) && ReadIgc(bytes, options, track, error);
}

bool ReadIgc(std::string_view bytes, const TNativeOptions& options, TTrack& track, std::string& error) {
  TTrack read;
  TIgcReadState state(FlightDate(bytes), read);
  read.Reserve(CountLines(bytes));
  ProgressSetTotal(options.progress, static_cast<int64_t>(CountLines(bytes)));
  TLineCursor lines(bytes);
  std::string_view line;
  while (lines.Next(line)) {
    state.Line(line);
    if (!ProgressStep(options.progress)) {
      error = kCancelledError;
      return false;
    }
  }
  read.SetKeptRecords(state.TakeKept());
  if (options.header) {
    *options.header = TNativeHeader();
    options.header->badRecords = state.Bad();
  }
  read.MarkAsSaved();
  track = std::move(read);
  return true;
}

bool WriteIgc(const TTrack& track, const TNativeOptions& options, std::string& text, std::string& error) {
  std::string out;
  TIgcWriteState state(track, out);
  const TKeptRecords& kept = track.KeptRecords();
  const bool ours = kept.format == kIgcFormatName;
  if (!ours) state.OwnHeader();
  ProgressSetTotal(options.progress, static_cast<int64_t>(track.Count()));
  size_t k = 0;
  for (size_t i = 0; i < track.Count(); ++i) {
    for (; ours && k < kept.lines.size() && kept.lines[k].beforePoint <= i; ++k) state.Kept(kept.lines[k].line);
    state.Point(i);
    if (!ProgressStep(options.progress)) {
      error = kCancelledError;
      return false;
    }
  }
  for (; ours && k < kept.lines.size(); ++k) state.Kept(kept.lines[k].line);
  text = std::move(out);
  return true;
}

bool WriteIgcFile(const std::string& path, TTrack& track, const TNativeOptions& options, std::string& error) {
  if (track.SaveProhibited()) {
    error = kSaveProhibitedError;
    return false;
  }
  std::string text;
  return WriteIgc(track, options, text, error) && WriteFileAtomic(path, text, error);
}

}  // namespace velantis
