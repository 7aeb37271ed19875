#include "formats/trk_file.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "core/bounding_box.h"
#include "formats/native_text.h"
#include "formats/track_point_record.h"

namespace velantis {

namespace {

constexpr std::string_view kHeadTextLetters = "PQNIbDd";
constexpr std::string_view kMiddleTextLetters = "ZRsl";
constexpr std::string_view kTailTextLetters = "ijkgef";
constexpr size_t kColourFields = 7;
constexpr size_t kViewFields = 9;
constexpr size_t kEFields = 6;
constexpr char kPatternBlank = '*';

// The "N" and "D" lines are the element's name and description; the other
// letters its texts.
std::string HeaderText(const TTrack& track, char letter) {
  if (letter == 'N') return track.Name();
  if (letter == 'D') return track.Description();
  return track.Text(letter);
}

void SetHeaderText(TTrack& track, char letter, std::string text) {
  if (letter == 'N') {
    track.SetName(std::move(text));
  } else if (letter == 'D') {
    track.SetDescription(std::move(text));
  } else {
    track.SetText(letter, std::move(text));
  }
}

// The identifier when the track has none: the first point's time.
std::string DerivedIdentifier(const TTrack& track) {
  for (const TrkPnt& p : track.Points()) {
    TCalendarTime c;
    if (!p.time.ToCalendar(c)) continue;
    char text[32];
    std::snprintf(text, sizeof text, "%04d%02d%02d%02d%02d%02d", c.year, c.month, c.day, c.hour, c.minute,
                  static_cast<int>(c.second));
    return text;
  }
  return {};
}

void WriteTextLines(TNativeWriter& w, const TTrack& track, std::string_view letters) {
  for (const char letter : letters) {
    std::string text = HeaderText(track, letter);
    if (letter == 'i' && text.empty()) text = DerivedIdentifier(track);
    if (text.empty()) continue;
    // The lines after "E" have one blank after their letter, the others two.
    const bool oneBlank = kTailTextLetters.find(letter) != std::string_view::npos;
    w.Raw(std::string_view(&letter, 1)).Raw(oneBlank ? " " : "  ");
    w.Text(ReplaceChars(text, "\r\n", ' ')).EndLine();
  }
}

void WriteDrawingLines(TNativeWriter& w, const TTrack& track) {
  const TTrackColour& c = track.Colour();
  const TTrackDrawing& d = track.Drawing();
  w.Raw("C  ").Unsigned(c.red).Raw(" ").Unsigned(c.green).Raw(" ").Unsigned(c.blue).Raw(" ").Int(d.style);
  w.Raw(" ").Real(d.width).Raw(" ").Int(d.mode).Raw(" \"").Text(ReplaceChars(d.pattern, " \"\r\n", kPatternBlank));
  w.Raw("\" ").Text(ReplaceChars(d.text, "\r\n", ' ')).EndLine();
  if (track.HasTimeOffset()) w.Raw("L  ").Date(TDateTime::FromDays(track.TimeOffsetDays()), true).EndLine();
  w.Raw("V  ").Real(d.viewReals[0]).Raw(" ").Real(d.viewReals[1]);
  for (const int value : d.viewIntegers) w.Raw(" ").Int(value);
  w.Raw(" ").Real(d.viewReals[2]).Raw(" ").Real(d.viewReals[3]).Raw(" ").Int(d.viewSmall).EndLine();
}

void WriteMultiLineText(TNativeWriter& w, const std::string& text) {
  std::string_view rest = text;
  while (!rest.empty()) {
    const size_t cr = rest.find('\r');
    const std::string part = RemoveChars(rest.substr(0, cr), "\n");
    if (!part.empty()) w.Raw("M  ").Text(part).EndLine();
    if (cr == std::string_view::npos) break;
    rest.remove_prefix(cr + 1);
  }
}

void WriteELine(TNativeWriter& w, const TTrack& track) {
  const TTrackEValues& e = track.EValues();
  w.Raw("E ").Unsigned(e.flags).Raw("|").Unsigned(e.kind).Raw("|").Date(e.time1).Raw("|").Date(e.time2);
  w.Raw("|").Unsigned(e.last).Raw("|").Unsigned(track.Count()).EndLine();
}

void WriteMarkedPairs(TNativeWriter& w, const TTrack& track) {
  if (track.MarkedPairs().empty()) return;
  w.Raw("c ");
  for (const auto& [first, second] : track.MarkedPairs()) w.Int(first).Raw(":").Int(second).Raw(" ");
  w.EndLine();
}

// The fixed-width texts of the "z" and "m" lines, and the bytes from the
// start of the "z" text to the end of the "m" line.
void AppendTime(std::string& out, TDateTime time) {
  const std::string text = time.ToIsoText();
  out += text.empty() ? std::string(19, ' ') : text;
}

// The box is of the positions as the "T" lines give them, so that a file
// read and written again keeps its "z" text.
bool SummaryLines(const TTrack& track, TNativeWriter& writer, std::string& lines, std::string& error) {
  TBoundingBox box;
  TDateTime first, last;
  for (const TrkPnt& p : track.Points()) {
    if (!writer.AddWritten(box, p.lat, p.lon, true, error)) return false;
    if (p.time.IsNull()) continue;
    if (first.IsNull()) first = p.time;
    last = p.time;
  }
  char z[96];
  std::snprintf(z, sizeof z, "%010zu,%+011.6f,%+012.6f,%+011.6f,%+012.6f", track.Count(), box.minLat, box.minLon,
                box.maxLat, box.maxLon);
  lines = z;
  lines += "\r\nm  ";
  AppendTime(lines, first);
  lines += "|";
  AppendTime(lines, last);
  lines += kCrLf;
  return true;
}

// Whether the bytes found at the "z" offset are a summary like the new one:
// the ten-digit count, its comma, the "m" line where the new one has it.
bool IsSummaryOfSameForm(const std::string& found, const std::string& summary) {
  constexpr size_t kCountDigits = 10;
  for (size_t i = 0; i < kCountDigits; ++i)
    if (!std::isdigit(static_cast<unsigned char>(found[i]))) return false;
  const size_t mLine = summary.find("\r\nm  ");
  return found[kCountDigits] == ',' && found.compare(mLine, 5, "\r\nm  ") == 0 &&
         found.compare(found.size() - 2, 2, kCrLf) == 0;
}

bool WriteHeader(TNativeWriter& w, TTrack& track, std::string& error) {
  if (!w.WriteHeader(true, true, error)) return false;
  WriteTextLines(w, track, kHeadTextLetters);
  WriteDrawingLines(w, track);
  WriteMultiLineText(w, track.Text('M'));
  WriteTextLines(w, track, kMiddleTextLetters);
  WriteELine(w, track);
  WriteTextLines(w, track, kTailTextLetters);
  WriteMarkedPairs(w, track);
  std::string summary;
  if (!SummaryLines(track, w, summary, error)) return false;
  w.Raw("z  ");
  track.SetZLinePosition(static_cast<int64_t>(w.Offset()));
  w.Raw(summary);
  if (track.Properties() != nullptr) w.PropertyBlock(*track.Properties());
  return true;
}

// --- reading -------------------------------------------------------------

void ReadColourLine(std::string_view content, TTrack& track, const TNativeReader& reader) {
  std::string_view f[kColourFields];
  const size_t count = SplitBlanks(content, f, kColourFields);
  int value = 0;
  TTrackColour colour;
  uint8_t* components[] = {&colour.red, &colour.green, &colour.blue};
  for (size_t i = 0; i < 3 && i < count; ++i)
    if (ParseInt(f[i], value)) *components[i] = static_cast<uint8_t>(value);
  track.SetColour(colour);
  TTrackDrawing drawing = track.Drawing();
  if (count > 3) ParseInt(f[3], drawing.style);
  if (count > 4) ParseReal(f[4], drawing.width);
  if (count > 5) ParseInt(f[5], drawing.mode);
  if (count > 6 && f[6].size() >= 1 && f[6].front() == '"') {
    const std::string_view quoted = f[6].substr(1);
    const size_t close = quoted.find('"');
    drawing.pattern = ReplaceChars(reader.Text(quoted.substr(0, close)), std::string_view(&kPatternBlank, 1), ' ');
    if (close != std::string_view::npos && close + 2 <= quoted.size())
      drawing.text = reader.Text(quoted.substr(std::min(close + 2, quoted.size())));
  }
  track.SetDrawing(std::move(drawing));
}

void ReadViewLine(std::string_view content, TTrack& track) {
  std::string_view f[kViewFields];
  const size_t count = SplitBlanks(content, f, kViewFields);
  TTrackDrawing d = track.Drawing();
  double* reals[] = {&d.viewReals[0], &d.viewReals[1], &d.viewReals[2], &d.viewReals[3]};
  const size_t realAt[] = {0, 1, 6, 7};
  for (size_t k = 0; k < 4; ++k)
    if (realAt[k] < count) ParseReal(f[realAt[k]], *reals[k]);
  for (size_t k = 0; k < 4; ++k)
    if (2 + k < count) ParseInt(f[2 + k], d.viewIntegers[k]);
  if (count > 8) ParseInt(f[8], d.viewSmall);
  track.SetDrawing(std::move(d));
}

void ReadELine(std::string_view content, TTrack& track) {
  std::string_view f[kEFields];
  const size_t count = SplitAt(content, '|', f, kEFields);
  TTrackEValues e;
  int value = 0;
  if (ParseInt(f[0], value)) e.flags = static_cast<uint8_t>(value);
  if (count > 1 && ParseInt(f[1], value)) e.kind = static_cast<uint8_t>(value);
  std::string_view dateTime[2];
  if (count > 2 && SplitBlanks(f[2], dateTime, 2) == 2) ParseDateTime(dateTime[0], dateTime[1], e.time1);
  if (count > 3 && SplitBlanks(f[3], dateTime, 2) == 2) ParseDateTime(dateTime[0], dateTime[1], e.time2);
  if (count > 4 && ParseInt(f[4], value)) e.last = static_cast<uint8_t>(value);
  track.SetEValues(e);
}

void ReadMarkedPairs(std::string_view content, TTrack& track) {
  std::vector<std::pair<int, int>> pairs;
  std::string_view f[2];
  std::string_view items[1];
  while (SplitBlanks(content, items, 1) == 1) {
    std::string_view item = items[0];
    const size_t blank = item.find_first_of(" \t");
    const std::string_view pair = item.substr(0, blank);
    content = blank == std::string_view::npos ? std::string_view() : item.substr(blank);
    int a = 0, b = 0;
    if (SplitAt(pair, ':', f, 2) == 2 && ParseInt(f[0], a) && ParseInt(f[1], b)) pairs.emplace_back(a, b);
  }
  track.SetMarkedPairs(std::move(pairs));
}

void ReadTimeOffset(std::string_view content, TTrack& track) {
  std::string_view f[2];
  TDateTime offset;
  if (SplitBlanks(content, f, 2) == 2 && ParseDateTime(f[0], f[1], offset) && !offset.IsNull())
    track.SetTimeOffset(true, offset.Days());
}

class TTrkReadState {
public:
  TTrkReadState(const TNativeOptions& options, TTrack& track) : m_reader(options), m_track(track) {}

  void Reserve(size_t points) { m_track.Reserve(points); }

  bool Line(std::string_view line, size_t offset, std::string& error) {
    const TRecordLine record = SplitRecord(line);
    bool ok = true;
    if (m_reader.HeaderLine(record.letter, record.content, ok, error)) return ok;
    switch (record.letter) {
      case 'T':
        return Point(line, error);
      case 't':
        if (m_track.Count() > 0) m_track.SetPointLabel(m_track.Count() - 1, ReadTrackLabelLine(m_reader, record.content));
        return true;
      case 'y':
        if (m_track.Count() > 0) LabelProperty(record.content);
        return true;
      case 'Y':
        m_reader.PropertyLine(record.content, m_track.Count() > 0 ? m_track.EditPointProperties(m_track.Count() - 1)
                                                                   : m_track.EditProperties());
        return true;
      case 'z':
        m_track.SetZLinePosition(static_cast<int64_t>(offset + (record.content.data() - line.data())));
        return true;
      default:
        HeaderLine(record);
        return true;
    }
  }

private:
  bool Point(std::string_view line, std::string& error) {
    TrkPnt point;
    if (!ReadTrackPointLine(m_reader, line, point, error)) return false;
    m_track.Anyade_Punt(point);
    return true;
  }

  void LabelProperty(std::string_view content) {
    const size_t index = m_track.Count() - 1;
    if (m_track.PointLabel(index) == nullptr) return;
    TTextLabel label = *m_track.PointLabel(index);
    m_reader.PropertyLine(content, label.properties);
    m_track.SetPointLabel(index, label);
  }

  void HeaderLine(const TRecordLine& record) {
    const char letter = record.letter;
    if (letter == 0) return;
    if (letter == 'C') return ReadColourLine(record.content, m_track, m_reader);
    if (letter == 'V') return ReadViewLine(record.content, m_track);
    if (letter == 'E') return ReadELine(record.content, m_track);
    if (letter == 'c') return ReadMarkedPairs(record.content, m_track);
    if (letter == 'L') return ReadTimeOffset(record.content, m_track);
    if (letter == 'M') {
      std::string text = m_track.Text('M');
      if (!text.empty()) text += kCrLf;
      m_track.SetText('M', text + m_reader.Text(record.content));
      return;
    }
    const bool known = kHeadTextLetters.find(letter) != std::string_view::npos ||
                       kMiddleTextLetters.find(letter) != std::string_view::npos ||
                       kTailTextLetters.find(letter) != std::string_view::npos;
    if (known) SetHeaderText(m_track, letter, m_reader.Text(record.content));
  }

  TNativeReader m_reader;
  TTrack& m_track;
};

// Reading speed. A track of a million points is some 140 MB of text, and
// memory a process touches for the first time costs about as much as parsing
// what goes into it. So a file is read through one buffer of kReadChunk bytes
// used over and over, not into a buffer the size of the file, and the "T"
// lines are counted first (a scan for line starts, far cheaper than parsing)
// so that the points go once into a vector of the right size: 64 bytes a
// point, instead of a vector that doubles, copying every point on the way.
// A small file gets a buffer of about its own size.
constexpr size_t kReadChunk = size_t{1} << 20;
constexpr size_t kMinReadChunk = size_t{1} << 12;

// The point record letter: the progress counts points, as the writer does.
constexpr char kPointLetter = 'T';

// The lines of an open file, each handed to state with its offset in the
// file, as ReadLines does with a file's bytes (the same lines, offsets and
// progress in points).
bool ReadFileLines(std::FILE* file, const std::string& path, TProgress* progress, TTrkReadState& state,
                   std::string& error) {
  std::error_code ec;
  const uintmax_t expected = std::filesystem::file_size(path, ec);
  const size_t chunk =
      ec ? kReadChunk : static_cast<size_t>(std::clamp<uintmax_t>(expected + 1, kMinReadChunk, kReadChunk));
  size_t points = 0;
  std::string window(chunk, '\0');
  bool atLineStart = true;
  for (size_t got = 0; (got = std::fread(window.data(), 1, window.size(), file)) > 0;) {
    points += CountRecordLines(std::string_view(window.data(), got), kPointLetter, atLineStart);
    atLineStart = window[got - 1] == '\n';
  }
  if (std::ferror(file) != 0 || std::fseek(file, 0, SEEK_SET) != 0) {
    error = "Error reading " + path;
    return false;
  }
  state.Reserve(points);
  ProgressSetTotal(progress, static_cast<int64_t>(points));
  // window[0, kept) holds the start of a line not yet complete; windowStart
  // is the file offset of window[0]. The window only grows, doubling, for a
  // line longer than half of it.
  size_t kept = 0, windowStart = 0;
  const auto readLine = [&](std::string_view line, size_t offset) { return state.Line(line, offset, error); };
  for (;;) {
    if (window.size() - kept < chunk / 2) window.resize(std::max(kept + chunk, 2 * window.size()));
    const size_t got = std::fread(window.data() + kept, 1, window.size() - kept, file);
    if (got == 0 && std::ferror(file) != 0) {
      error = "Error reading " + path;
      return false;
    }
    const size_t filled = kept + got;
    // Whole lines only, unless the file has ended: its last line needs no LF.
    const size_t lastLf = std::string_view(window.data(), filled).rfind('\n');
    const size_t complete = got == 0 ? filled : lastLf == std::string_view::npos ? 0 : lastLf + 1;
    if (!ReadLineRun(std::string_view(window.data(), complete), windowStart, kPointLetter, progress, readLine, error)) return false;
    if (got == 0) return true;
    kept = filled - complete;
    if (complete > 0) std::memmove(window.data(), window.data() + complete, kept);
    windowStart += complete;
  }
}

}  // namespace

bool ReadTrkFile(const std::string& path, const TNativeOptions& options, TTrack& track, std::string& error) {
  // A folder opens as a stream on some systems and then fails to read.
  std::error_code ec;
  std::FILE* file = std::filesystem::is_directory(path, ec) ? nullptr : std::fopen(path.c_str(), "rb");
  if (file == nullptr) {
    error = "Error opening " + path;
    return false;
  }
  // What cannot be read twice (a pipe) is read whole.
  if (std::fseek(file, 0, SEEK_SET) != 0) {
    std::fclose(file);
    std::string bytes;
    return ReadWholeFile(path, bytes, error) && ReadTrk(bytes, options, track, error);
  }
  TTrack read;
  TTrkReadState state(options, read);
  const bool ok = ReadFileLines(file, path, options.progress, state, error);
  std::fclose(file);
  if (!ok) return false;
  read.MarkAsSaved();
  track = std::move(read);
  return true;
}

bool ReadTrk(std::string_view bytes, const TNativeOptions& options, TTrack& track, std::string& error) {
  TTrack read;
  TTrkReadState state(options, read);
  state.Reserve(CountRecordLines(bytes, kPointLetter));
  const auto readLine = [&](std::string_view line, size_t offset) { return state.Line(line, offset, error); };
  if (!ReadLines(bytes, kPointLetter, options.progress, readLine, error)) return false;
  read.MarkAsSaved();
  track = std::move(read);
  return true;
}

bool WriteTrkFile(const std::string& path, TTrack& track, const TNativeOptions& options, std::string& error) {
  if (track.SaveProhibited()) {
    error = kSaveProhibitedError;
    return false;
  }
  TNativeWriter writer(path, options);
  const int64_t oldPosition = track.ZLinePosition();
  if (!writer.Open(error) || !WriteHeader(writer, track, error)) {
    track.SetZLinePosition(oldPosition);
    return false;
  }
  ProgressSetTotal(options.progress, static_cast<int64_t>(track.Count()));
  bool ok = true;
  for (size_t i = 0; ok && i < track.Count(); ++i) {
    ok = WriteTrackPointRecord(writer, track, i, error);
    if (ok && !writer.Step()) {
      error = kCancelledError;
      ok = false;
    }
  }
  if (ok && writer.Commit(error)) return true;
  track.SetZLinePosition(oldPosition);
  return false;
}

bool AppendTrkPoints(const std::string& path, const TTrack& track, size_t first, const TNativeOptions& options,
                     std::string& error) {
  if (track.ZLinePosition() < 0) {
    error = "The track has no file to append to: " + path;
    return false;
  }
  TNativeWriter records(path, options);
  for (size_t i = first; i < track.Count(); ++i)
    if (!WriteTrackPointRecord(records, track, i, error)) return false;
  const std::string appended = records.TakeText();
  std::string summary;
  if (!SummaryLines(track, records, summary, error)) return false;
  std::FILE* file = std::fopen(path.c_str(), "r+b");
  if (file == nullptr) {
    error = "Error opening " + path;
    return false;
  }
  // The bytes to be replaced must be a summary of the same form.
  std::string old(summary.size(), '\0');
  const long position = static_cast<long>(track.ZLinePosition());
  bool ok = std::fseek(file, position, SEEK_SET) == 0 && std::fread(old.data(), 1, old.size(), file) == old.size() &&
            IsSummaryOfSameForm(old, summary);
  if (!ok) {
    std::fclose(file);
    error = "The track file has changed since it was written: " + path;
    return false;
  }
  ok = std::fseek(file, 0, SEEK_END) == 0 && std::fwrite(appended.data(), 1, appended.size(), file) == appended.size() &&
       std::fflush(file) == 0 && std::fseek(file, position, SEEK_SET) == 0 &&
       std::fwrite(summary.data(), 1, summary.size(), file) == summary.size();
  ok = std::fclose(file) == 0 && ok;
  if (!ok) error = "Error writing " + path;
  return ok;
}

}  // namespace velantis
