// The application log, "velantis.log" in the user folder: one line per entry,
// a local timestamp, then the entry's prefix and text. Writers on any thread
// may log at once; each entry is written and flushed whole.
//
// Warnings that are logged rather than shown carry a numeric code
// (kWarningGridHeader, kWarningGridUnusable, ...), written before the text.
// Until a file is opened entries are only kept in memory (the last
// kKeptEntries), which is also how tests read what was logged.
#pragma once

#include <cstdio>
#include <deque>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace velantis {

enum class TLogKind { CommError, Error, Debug, Warning };

// Warning codes of the logged (not shown) warnings.
inline constexpr int kWarningGridHeader = 44001;    // a grid file's header did not read
inline constexpr int kWarningGridUnusable = 44002;  // a grid file names datums it cannot serve
inline constexpr int kWarningCalibrationFallback = 37001;
inline constexpr int kWarningEmptyMapName = 11002;
inline constexpr int kWarningEmptyLayerName = 11003;

struct TLogEntry {
  TLogKind kind;
  int code;  // 0 when the entry has no code
  std::string text;
};

class TLog {
public:
  static TLog& Instance();

  // Appends to the file from now on; false when it cannot be opened.
  bool Open(const std::string& path);
  void Close();

  void Write(TLogKind kind, std::string_view text, int code = 0);
  void Warning(int code, std::string_view text) { Write(TLogKind::Warning, text, code); }
  void Error(std::string_view text) { Write(TLogKind::Error, text); }

  std::vector<TLogEntry> Entries() const;
  void ClearEntries();

  static constexpr size_t kKeptEntries = 1000;
  static constexpr const char* kFileName = "velantis.log";

private:
  TLog() = default;
  ~TLog();

  mutable std::mutex m_mutex;
  std::FILE* m_file = nullptr;
  std::deque<TLogEntry> m_entries;
};

// The prefix a kind of entry carries in the file ("Warning: ", "COMM Error: " ...).
std::string_view LogPrefix(TLogKind kind);

// One line as written to the file, without the timestamp and line end.
std::string FormatLogEntry(const TLogEntry& entry);

}  // namespace velantis
