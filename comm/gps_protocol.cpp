#include "comm/gps_protocol.h"

namespace velantis {

bool TAutoDetectProtocol::Detect(TSerialPort& port, std::string& result, TErrorSink& errors,
                                 const TProgress* progress, bool skip) {
  for (size_t i = 0; i < m_protocols.size(); ++i) {
    if (progress && progress->Cancelled()) return false;
    if (m_protocols[i]->Detect(port, result, errors, progress, skip)) {
      m_lastDetected = static_cast<int>(i);
      return true;
    }
  }
  return false;
}

}  // namespace velantis
