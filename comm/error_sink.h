// Where device links leave the errors of a command for the user interface:
// the message in the system's own text and, when there is one, what it was
// about (the bytes received, a field). Not thread-safe: it belongs to the
// command that fills it.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace velantis {

struct TErrorRecord {
  std::string message, detail;
};

class TErrorSink {
public:
  void Add(std::string message, std::string detail = {}) {
    m_records.push_back({std::move(message), std::move(detail)});
  }
  const std::vector<TErrorRecord>& Records() const { return m_records; }
  void Clear() { m_records.clear(); }

private:
  std::vector<TErrorRecord> m_records;
};

}  // namespace velantis
