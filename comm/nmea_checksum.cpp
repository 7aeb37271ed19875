#include "comm/nmea_checksum.h"

#include <cstring>

namespace velantis {

int32_t NmeaChecksum(std::string_view bytes) {
  // The exclusive-or of sign-extended bytes is the sign extension of the
  // exclusive-or of the bytes (bits 8 to 31 of each are copies of bit 7), so
  // the bytes are folded eight at a time and extended once at the end.
  const char* p = bytes.data();
  size_t n = bytes.size();
  uint64_t wide = 0;
  for (; n >= sizeof wide; n -= sizeof wide, p += sizeof wide) {
    uint64_t word;
    std::memcpy(&word, p, sizeof word);
    wide ^= word;
  }
  wide ^= wide >> 32;
  wide ^= wide >> 16;
  wide ^= wide >> 8;
  auto folded = static_cast<uint8_t>(wide);
  for (; n > 0; --n, ++p) folded ^= static_cast<uint8_t>(*p);
  return static_cast<int8_t>(folded);
}

int32_t NmeaChecksum(const char* bytes, int length) {
  if (bytes == nullptr) return 0;
  const size_t size = length < 0 ? std::strlen(bytes) : static_cast<size_t>(length);
  return NmeaChecksum(std::string_view(bytes, size));
}

}  // namespace velantis
