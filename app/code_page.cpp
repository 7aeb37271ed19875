#include "app/code_page.h"

#include <algorithm>
#include <cctype>
#include <cstdint>

namespace velantis {

namespace {

// Code points of the bytes 0x80 to 0x9F; the rest of the page equals Latin-1.
constexpr char16_t kHighControls[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

void AppendUtf8(std::string& out, char16_t code) {
  if (code < 0x80) {
    out.push_back(static_cast<char>(code));
  } else if (code < 0x800) {
    out.push_back(static_cast<char>(0xC0 | (code >> 6)));
    out.push_back(static_cast<char>(0x80 | (code & 0x3F)));
  } else {
    out.push_back(static_cast<char>(0xE0 | (code >> 12)));
    out.push_back(static_cast<char>(0x80 | ((code >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (code & 0x3F)));
  }
}

// The next code point of UTF-8 text at i (advancing i), or -1 for a byte
// that does not start a valid sequence (i then moves one byte).
int32_t NextCodePoint(std::string_view text, size_t& i) {
  const auto lead = static_cast<uint8_t>(text[i++]);
  if (lead < 0x80) return lead;
  int length = 0;
  int32_t code = 0;
  if ((lead & 0xE0) == 0xC0) {
    length = 1;
    code = lead & 0x1F;
  } else if ((lead & 0xF0) == 0xE0) {
    length = 2;
    code = lead & 0x0F;
  } else if ((lead & 0xF8) == 0xF0) {
    length = 3;
    code = lead & 0x07;
  } else {
    return -1;
  }
  if (i + static_cast<size_t>(length) > text.size()) return -1;
  for (int k = 0; k < length; ++k) {
    const auto next = static_cast<uint8_t>(text[i + static_cast<size_t>(k)]);
    if ((next & 0xC0) != 0x80) return -1;
    code = (code << 6) | (next & 0x3F);
  }
  i += static_cast<size_t>(length);
  return code;
}

char Cp1252Byte(int32_t code) {
  if (code < 0) return '?';
  if (code < 0x80 || (code >= 0xA0 && code <= 0xFF)) return static_cast<char>(code);
  for (size_t k = 0; k < std::size(kHighControls); ++k)
    if (kHighControls[k] == code) return static_cast<char>(0x80 + k);
  return '?';
}

bool SameName(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
    return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
  });
}

}  // namespace

std::string Utf8ToCp1252(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (size_t i = 0; i < text.size();) out.push_back(Cp1252Byte(NextCodePoint(text, i)));
  return out;
}

TCodePage CodePageByName(std::string_view name) {
  for (const std::string_view utf8 : {"UTF-8", "UTF8"})
    if (SameName(name, utf8)) return TCodePage::Utf8;
  for (const std::string_view legacy : {"Windows-1252", "CP1252", "1252", "ANSI"})
    if (SameName(name, legacy)) return TCodePage::Cp1252;
  return TCodePage::Unknown;
}

std::string ToCodePage(std::string_view utf8, TCodePage page) {
  return page == TCodePage::Cp1252 ? Utf8ToCp1252(utf8) : std::string(utf8);
}

std::string FromCodePage(std::string_view bytes, TCodePage page) {
  return page == TCodePage::Cp1252 ? Cp1252ToUtf8(bytes) : std::string(bytes);
}

std::string Cp1252ToUtf8(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (const char c : text) {
    const auto byte = static_cast<uint8_t>(c);
    const char16_t code = (byte >= 0x80 && byte < 0xA0) ? kHighControls[byte - 0x80] : byte;
    AppendUtf8(out, code);
  }
  return out;
}

}  // namespace velantis
