#include "app/log.h"

#include <chrono>
#include <ctime>

namespace velantis {

namespace {

std::string Timestamp() {
  const auto now = std::chrono::system_clock::now();
  const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
  const auto millis =
      std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() % 1000;
  std::tm local{};
#ifdef _WIN32
  localtime_s(&local, &seconds);
#else
  localtime_r(&seconds, &local);
#endif
  char text[32];
  const size_t n = std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &local);
  std::snprintf(text + n, sizeof text - n, ".%03d", static_cast<int>(millis));
  return text;
}

}  // namespace

std::string_view LogPrefix(TLogKind kind) {
  switch (kind) {
    case TLogKind::CommError: return "COMM Error: ";
    case TLogKind::Error: return "ERROR: ";
    case TLogKind::Debug: return "Debug: ";
    case TLogKind::Warning: return "Warning: ";
  }
  return "";
}

std::string FormatLogEntry(const TLogEntry& entry) {
  std::string line(LogPrefix(entry.kind));
  if (entry.code != 0) line += std::to_string(entry.code) + " ";
  line += entry.text;
  return line;
}

TLog& TLog::Instance() {
  static TLog log;
  return log;
}

TLog::~TLog() { Close(); }

bool TLog::Open(const std::string& path) {
  std::lock_guard lock(m_mutex);
  if (m_file) std::fclose(m_file);
  m_file = std::fopen(path.c_str(), "ab");
  return m_file != nullptr;
}

void TLog::Close() {
  std::lock_guard lock(m_mutex);
  if (m_file) std::fclose(m_file);
  m_file = nullptr;
}

void TLog::Write(TLogKind kind, std::string_view text, int code) {
  TLogEntry entry{kind, code, std::string(text)};
  std::lock_guard lock(m_mutex);
  if (m_file) {
    const std::string line = Timestamp() + " " + FormatLogEntry(entry) + "\r\n";
    std::fwrite(line.data(), 1, line.size(), m_file);
    std::fflush(m_file);
  }
  m_entries.push_back(std::move(entry));
  if (m_entries.size() > kKeptEntries) m_entries.pop_front();
}

std::vector<TLogEntry> TLog::Entries() const {
  std::lock_guard lock(m_mutex);
  return {m_entries.begin(), m_entries.end()};
}

void TLog::ClearEntries() {
  std::lock_guard lock(m_mutex);
  m_entries.clear();
}

}  // namespace velantis
