// What the three native files (WPT, RTE, TRK) share: the options a save is
// made with, the header lines "B", "G" and "U", the writer that builds lines
// into the file and the reader state the header sets.
//
// Header: "B  " + code page name when one is configured (text fields are
// converted to it, coordinates included: the degree sign is one byte in the
// legacy page), "G  " + the name of the datum the coordinates are written in,
// "U  " + the notation code. Readers take "B" and "G" lines wherever they
// stand; a file without "B" is in the legacy page and one without "G" in
// WGS 84. Elements hold WGS 84 (datum index 0).
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "app/code_page.h"
#include "app/file_io.h"
#include "core/baliza.h"
#include "core/bounding_box.h"
#include "core/progress.h"
#include "geodesy/lon_lat.h"

namespace velantis {

class TConfig;
class TListaDatums;
class TPropertyList;

inline constexpr std::string_view kWgs84Name = "WGS 84";
// What a refused or stopped save reports.
inline constexpr std::string_view kSaveProhibitedError = "This element may not be saved";
inline constexpr std::string_view kCancelledError = "Cancelled";

// What a file's header said, for those who show it.
struct TNativeHeader {
  std::string codePage;  // "" when the file had no "B" line
  std::string datum = std::string(kWgs84Name);
  int notation = 0;
  size_t badRecords = 0;  // records the reader skipped as unreadable (IGC)
};

struct TNativeOptions {
  // The datum list for names and shifts; without one only WGS 84 is known.
  TListaDatums* datums = nullptr;
  int datum = 0;     // writers: the datum coordinates are written in
  int notation = 0;  // writers: the coordinate notation
  std::string codePage = "Windows-1252";  // writers: "" writes no "B" line
  TBalizaDefaults defaults;               // what new waypoints start with
  bool forceExtensionLines = false;       // "w" lines for every waypoint
  TProgress* progress = nullptr;
  TNativeHeader* header = nullptr;  // readers fill it when given

  // The configured datum, notation, code page and waypoint defaults.
  static TNativeOptions FromConfig(const TConfig& config, TListaDatums& datums);
};

// Builds a native file line by line into a temporary file that Commit
// renames over the target. Texts go through the code page; positions are
// shifted to the file datum and printed in the file notation.
class TNativeWriter {
public:
  TNativeWriter(const std::string& path, const TNativeOptions& options);

  bool Open(std::string& error) { return m_toFile = m_file.Open(error); }
  // "B", "G" and "U" lines; the "U" line only when the notation is not 0,
  // unless alwaysNotation. shiftDatum false writes "G  WGS 84": the
  // coordinates are then written as held.
  bool WriteHeader(bool alwaysNotation, bool shiftDatum, std::string& error);

  // Appends to the line being built: raw ASCII, a text in the code page, a
  // real, an integer; EndLine adds CR LF.
  TNativeWriter& Raw(std::string_view text);
  TNativeWriter& Text(std::string_view utf8);
  TNativeWriter& Real(double value, int precision = 6);
  TNativeWriter& Int(int64_t value);
  TNativeWriter& Unsigned(uint64_t value);
  TNativeWriter& Date(TDateTime time, bool fourDigitYear = false);
  void EndLine();
  // The latitude and longitude (WGS 84) as coordinate text: shifted to the
  // file datum unless shiftDatum is false, one blank between the two.
  bool Position(double lat, double lon, bool shiftDatum, std::string& error);
  // Adds the position as Position prints it (shifted, rounded to the
  // notation) to box, so that a box line written from positions that were
  // read back prints the same again.
  bool AddWritten(TBoundingBox& box, double lat, double lon, bool shiftDatum, std::string& error);
  // Lines "Y  name=value" of a property object, each ending in CR LF.
  void PropertyBlock(const TPropertyList& properties, char letter = 'Y');

  // The file offset of the next byte.
  uint64_t Offset() const { return m_file.Offset() + m_buffer.size(); }
  // Counts one record; false when the progress object has been cancelled.
  bool Step() { return ProgressStep(m_options.progress); }
  const TNativeOptions& Options() const { return m_options; }
  bool Commit(std::string& error);
  // A writer that was never opened builds its lines in memory: this hands
  // them over and starts afresh.
  std::string TakeText() { return std::exchange(m_buffer, std::string()); }

private:
  void FlushIfLarge();
  bool Shifted(TLonLat& position, bool shiftDatum, std::string& error) const;

  const TNativeOptions& m_options;
  TCodePage m_page;
  TAtomicFileWriter m_file;
  bool m_toFile = false;
  std::string m_buffer;
  std::string m_latitude;
  std::string m_longitude;
};

// What the header of a file being read has said so far, and the conversions
// it implies for the lines after it.
class TNativeReader {
public:
  explicit TNativeReader(const TNativeOptions& options) : m_options(options) {}

  // Takes a "B", "G" or "U" line (true); false for any other letter. A "G"
  // line naming no known datum fails with "Unknown datum: " + name.
  bool HeaderLine(char letter, std::string_view content, bool& ok, std::string& error);

  std::string Text(std::string_view bytes) const { return FromCodePage(bytes, m_page); }
  // A latitude and a longitude field in any notation, shifted from the file
  // datum to WGS 84 unless shiftDatum is false.
  bool Position(std::string_view latitude, std::string_view longitude, bool shiftDatum, double& lat,
                double& lon, std::string& error) const;
  // A "Y" line's property into properties.
  void PropertyLine(std::string_view content, TPropertyList& properties) const;

  int Datum() const { return m_datum; }
  int Notation() const { return m_notation; }
  const TNativeOptions& Options() const { return m_options; }

private:
  bool ShiftToWgs84(TLonLat& position, std::string& error) const;

  const TNativeOptions& m_options;
  TCodePage m_page = TCodePage::Cp1252;
  int m_datum = 0;
  int m_notation = 0;
};

// Runs readLine on every line of bytes (without its CR LF; offset is where
// the line starts), counting progress in bytes. False with readLine's error,
// or with kCancelledError when the progress object is cancelled.
bool ReadLines(std::string_view bytes, TProgress* progress,
               const std::function<bool(std::string_view line, size_t offset)>& readLine, std::string& error);
// The same for a run of whole lines that starts at file offset base, when a
// file is read piece by piece: the progress total is the caller's to set.
bool ReadLineRun(std::string_view bytes, size_t base, TProgress* progress,
                 const std::function<bool(std::string_view line, size_t offset)>& readLine, std::string& error);

}  // namespace velantis
