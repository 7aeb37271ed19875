#include "comm/nmea_live_cycle.h"

#include <algorithm>

namespace velantis {
namespace {

// Zero bytes inside the line become blanks; the last position is left as
// it is (a reader that terminates its text keeps its terminator).
void BlankZeroBytes(std::string& line, int length) {
  const size_t used = std::min(line.size(), static_cast<size_t>(length));
  if (used == 0) return;
  std::replace(line.begin(), line.begin() + static_cast<std::ptrdiff_t>(used - 1), '\0', ' ');
}

std::string_view Used(const std::string& line, int length) {
  return std::string_view(line).substr(0, static_cast<size_t>(length));
}

}  // namespace

bool TNmeaLiveCycle::ReadCurrent(TPosicionNMEA& record, TErrorSink& sink,
                                 const TProgress* progress) {
  const int limit = m_handler.Settings().linesWithoutPosition;
  for (int lines = 0; lines < std::max(limit, 1); ++lines) {
    if (progress != nullptr && progress->Cancelled()) {
      sink.Add(m_cancelMessage, {});
      return false;
    }
    const int length = m_port.ReadLine(m_line, true);
    if (length <= 0) return false;
    BlankZeroBytes(m_line, length);
    bool changed = m_handler.Handle(Used(m_line, length), record);
    if (m_auxiliaryInput != nullptr) {
      for (int extra = 0; extra < kNmeaAuxiliaryLinesPerCycle; ++extra) {
        const int auxiliaryLength = m_auxiliaryInput->ReadLine(m_auxiliaryLine, false);
        if (auxiliaryLength <= 0) break;
        BlankZeroBytes(m_auxiliaryLine, auxiliaryLength);
        changed |= m_handler.Handle(Used(m_auxiliaryLine, auxiliaryLength), record);
      }
    }
    if (m_auxiliaryOutput != nullptr) m_auxiliaryOutput->WriteLine(Used(m_line, length));
    if (changed) return true;
  }
  m_handler.EnableGllFallback();
  record.valid = false;
  sink.Add(std::string(kNmeaErrorNoPosition), {});
  return false;
}

}  // namespace velantis
