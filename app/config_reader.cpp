#include "app/config_reader.h"

#include <vector>

#include "app/key_file.h"

namespace velantis {

bool ReadKeyFileSetting(const TKeyFile& file, const std::string& section, const std::string& key,
                        std::string& text) {
  std::vector<char> buffer;
  size_t size = kConfigReadBufferStartChars;
  size_t first = 0;
  size_t second = 0;
  do {
    size += kConfigReadBufferStepChars;
    buffer.resize(size);
    first = file.GetProfileString(section, key, kConfigAbsentSentinel, buffer.data(), size);
    size += kConfigReadBufferStepChars;
    buffer.resize(size);
    second = file.GetProfileString(section, key, kConfigAbsentSentinel, buffer.data(), size);
  } while (first != second);
  const std::string read(buffer.data(), second);
  if (read == kConfigAbsentSentinel) return false;
  text = read;
  return true;
}

}  // namespace velantis
