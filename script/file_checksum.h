// Checksums of files and texts: CRC-32 (zlib) and MD5 (OpenSSL EVP).
//
// The appended form: the checksum of a file's bytes is written at its end as
// fixed-width hexadecimal text, with nothing before or after it, so that the
// file stays readable by the tools that ignore trailing bytes and the sum can
// be read back without knowing anything else about the file:
// - CRC-32: 8 upper-case hex digits ("%08X", the form most CRC tools print);
// - MD5: 32 lower-case hex digits (the form md5sum prints).
// A check splits that many bytes off the end, computes the sum of the rest and
// compares the texts exactly: it accepts what the append writes and nothing
// else (a lower-case CRC, a line feed after the sum, a shorter file).
// Appending writes through a temporary file renamed over the old one, so a
// failed write leaves the file as it was.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace velantis {

enum class TChecksumKind { Crc32, Md5 };

// The checksum of bytes as the appended text.
std::string ChecksumText(TChecksumKind kind, std::string_view bytes);
// The length of that text: 8 or 32.
size_t ChecksumTextLength(TChecksumKind kind);

// Appends the checksum of the file's current bytes; on success text is the
// checksum appended. False (error filled) when the file cannot be read or
// written.
bool AppendFileChecksum(TChecksumKind kind, const std::string& path, std::string& text, std::string& error);

enum class TChecksumCheck { Match, Mismatch, Unreadable };
// Whether the file ends with the checksum of the bytes before it.
TChecksumCheck CheckFileChecksum(TChecksumKind kind, const std::string& path);

}  // namespace velantis
