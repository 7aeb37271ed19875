// The error of the serial link: a code, a detail text and the platform's
// last error number. Device links throw it; the communication thread catches
// it, logs "TXErrorRScom error:" with its text and ends the command.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace velantis {

enum TSerialErrorCode : int32_t {
  kSerialAlreadyConnected = 0,  // "Ya conectado"
  kSerialNoText = 1,
  kSerialPlatformError = 2,     // "Error de Windows:" (the platform's error)
  kSerialReceiveError = 3,      // "Error en la recepcion"
  kSerialPortClosed = 4,        // "Error, puerto cerrado!"
  kSerialTransmitError = 5,     // "Error, en la transmision!"
};

class TXErrorRScom : public std::runtime_error {
public:
  TXErrorRScom(int32_t code, std::string detail = {}, int lastError = 0);

  int32_t Code() const { return m_code; }
  const std::string& Detail() const { return m_detail; }
  int LastError() const { return m_lastError; }

  // The code's text, then " " and the detail when there is one, then
  // " lasterror= " and the number when it is not 0, with the system's text
  // for that number in parentheses.
  static std::string Text(int32_t code, const std::string& detail, int lastError);
  // The text of a code alone ("Error default" for codes not in the table).
  static const char* CodeText(int32_t code);

private:
  int32_t m_code;
  std::string m_detail;
  int m_lastError;
};

}  // namespace velantis
