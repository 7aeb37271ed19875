// The NMEA 0183 checksum: the exclusive-or of the bytes between "$" and "*".
//
// Each byte is taken as a signed 8-bit value and the result is a 32-bit
// integer, as the receivers' own firmware and the older program code compute
// it: a run with an odd number of bytes at or above 0x80 gives a negative
// value. Only the low 8 bits are ever compared with the two hex digits of a
// sentence.
#pragma once

#include <cstdint>
#include <string_view>

namespace velantis {

// length < 0: up to the terminating zero byte of bytes.
int32_t NmeaChecksum(const char* bytes, int length);
int32_t NmeaChecksum(std::string_view bytes);

}  // namespace velantis
