// The key-file reader ("gps.ini"): parse, read keys through the profile-string
// rules, write one back and check a key file reproduces its own text.
#include <cstdint>
#include <string>
#include <string_view>

#include "app/key_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  velantis::TKeyFile file;
  file.LoadText(text);
  if (file.Text() != text) __builtin_trap();  // loading and printing must not change a byte
  char buffer[16];
  file.GetProfileString("General", "num_idioma", "foca_noE", buffer, sizeof buffer);
  file.GetProfileString("Com", "Comm_NNEA_Timeout", "", buffer, 1);
  if (file.WriteProfileString("Com", "Comm_NNEA_Timeout", "2500")) {
    auto value = file.Find("com", "comm_nnea_timeout");
    if (!value || *value != "2500") __builtin_trap();
  }
  return 0;
}
