#include "script/file_checksum.h"

#include <openssl/evp.h>
#include <zlib.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <memory>

#include "app/file_io.h"

namespace velantis {

namespace {

constexpr size_t kCrc32TextLength = 8;   // "%08X"
constexpr size_t kMd5TextLength = 32;    // 16 bytes, two hex digits each

// zlib takes lengths as uInt: feed long inputs in pieces.
uint32_t Crc32(std::string_view bytes) {
  uLong crc = crc32(0L, Z_NULL, 0);
  constexpr size_t kPiece = UINT_MAX / 2;
  for (size_t at = 0; at < bytes.size(); at += kPiece) {
    const size_t n = std::min(kPiece, bytes.size() - at);
    crc = crc32(crc, reinterpret_cast<const Bytef*>(bytes.data() + at), static_cast<uInt>(n));
  }
  return static_cast<uint32_t>(crc);
}

std::string Md5Text(std::string_view bytes) {
  unsigned char digest[EVP_MAX_MD_SIZE];
  unsigned int length = 0;
  EVP_Digest(bytes.data(), bytes.size(), digest, &length, EVP_md5(), nullptr);
  static constexpr char kHex[] = "0123456789abcdef";
  std::string text;
  for (unsigned int i = 0; i < length; ++i) {
    text += kHex[digest[i] >> 4];
    text += kHex[digest[i] & 0x0F];
  }
  return text;
}

}  // namespace

size_t ChecksumTextLength(TChecksumKind kind) {
  return kind == TChecksumKind::Crc32 ? kCrc32TextLength : kMd5TextLength;
}

std::string ChecksumText(TChecksumKind kind, std::string_view bytes) {
  if (kind == TChecksumKind::Md5) return Md5Text(bytes);
  char text[kCrc32TextLength + 1];
  std::snprintf(text, sizeof text, "%08X", static_cast<unsigned>(Crc32(bytes)));
  return text;
}

bool AppendFileChecksum(TChecksumKind kind, const std::string& path, std::string& text, std::string& error) {
  std::string bytes;
  if (!ReadWholeFile(path, bytes, error)) return false;
  text = ChecksumText(kind, bytes);
  bytes += text;
  return WriteFileAtomic(path, bytes, error);
}

TChecksumCheck CheckFileChecksum(TChecksumKind kind, const std::string& path) {
  std::string bytes, error;
  if (!ReadWholeFile(path, bytes, error)) return TChecksumCheck::Unreadable;
  const size_t width = ChecksumTextLength(kind);
  if (bytes.size() < width) return TChecksumCheck::Mismatch;
  const std::string_view all(bytes);
  const std::string_view body = all.substr(0, all.size() - width);
  return ChecksumText(kind, body) == all.substr(body.size()) ? TChecksumCheck::Match : TChecksumCheck::Mismatch;
}

}  // namespace velantis
