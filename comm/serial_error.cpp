#include "comm/serial_error.h"

#include <system_error>

namespace velantis {

TXErrorRScom::TXErrorRScom(int32_t code, std::string detail, int lastError)
    : std::runtime_error(Text(code, detail, lastError)),
      m_code(code),
      m_detail(std::move(detail)),
      m_lastError(lastError) {}

const char* TXErrorRScom::CodeText(int32_t code) {
  switch (code) {
    case kSerialAlreadyConnected: return "Ya conectado";
    case kSerialNoText: return "";
    case kSerialPlatformError: return "Error de Windows:";
    case kSerialReceiveError: return "Error en la recepcion";
    case kSerialPortClosed: return "Error, puerto cerrado!";
    case kSerialTransmitError: return "Error, en la transmision!";
    default: return "Error default";
  }
}

std::string TXErrorRScom::Text(int32_t code, const std::string& detail, int lastError) {
  std::string text = CodeText(code);
  if (!detail.empty()) text += " " + detail;
  // The number alone tells a user nothing: the system's own words for it
  // follow ("lasterror= 2 (No such file or directory)").
  if (lastError != 0)
    text += " lasterror= " + std::to_string(lastError) + " (" +
            std::system_category().message(lastError) + ")";
  return text;
}

}  // namespace velantis
