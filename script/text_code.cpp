#include "script/text_code.h"

#include <openssl/evp.h>

#include <cstdint>

namespace velantis {

namespace {

constexpr char kCodeDigits[] = "0123456789ABCDEFGHJKMNPQRSTVWXYZ";
constexpr int kCodeLength = 5;
constexpr int kBitsPerDigit = 5;

}  // namespace

std::string TextCode5(std::string_view text) {
  unsigned char digest[EVP_MAX_MD_SIZE];
  unsigned int length = 0;
  EVP_Digest(text.data(), text.size(), digest, &length, EVP_md5(), nullptr);
  // The first four bytes hold the 25 bits, most significant first.
  const uint32_t head = uint32_t{digest[0]} << 24 | uint32_t{digest[1]} << 16 | uint32_t{digest[2]} << 8 | digest[3];
  std::string code(kCodeLength, '0');
  for (int i = 0; i < kCodeLength; ++i)
    code[i] = kCodeDigits[(head >> (32 - kBitsPerDigit * (i + 1))) & 0x1F];
  return code;
}

}  // namespace velantis
