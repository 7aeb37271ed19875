#include "comm/serial_error.h"

#include <gtest/gtest.h>

namespace velantis {
namespace {

TEST(SerialError, TextIsCodeThenDetailThenLastError) {
  struct TCase {
    int32_t code;
    std::string detail;
    int lastError;
    std::string text;
  };
  const TCase cases[] = {
      {0, "", 0, "Ya conectado"},
      {1, "", 0, ""},
      {2, "/dev/ttyUSB0", 2,
       "Error de Windows: /dev/ttyUSB0 lasterror= 2 (No such file or directory)"},
      {3, "", 5, "Error en la recepcion lasterror= 5 (Input/output error)"},
      {4, "COM3", 0, "Error, puerto cerrado! COM3"},
      {5, "", 0, "Error, en la transmision!"},
      {6, "", 0, "Error default"},
      {-1, "x", 0, "Error default x"},
  };
  for (const TCase& c : cases) {
    const TXErrorRScom error(c.code, c.detail, c.lastError);
    EXPECT_EQ(std::string(error.what()), c.text) << c.code;
    EXPECT_EQ(error.Code(), c.code);
  }
}

}  // namespace
}  // namespace velantis
