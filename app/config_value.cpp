#include "app/config_value.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace velantis {

namespace {

// Integer text: optional sign, decimal digits, nothing else.
template <typename T>
bool ParseWhole(std::string_view text, T& value) {
  if (text.size() > 1 && text.front() == '+' && text[1] != '-') text.remove_prefix(1);
  if (text.empty()) return false;
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  return ec == std::errc() && end == text.data() + text.size();
}

// The fixed key of the secret form; changing it makes stored secrets unreadable.
constexpr std::string_view kSecretKey = "Velantis gps.ini secret";
constexpr char kSecretMark = '~';
constexpr std::string_view kHexDigits = "0123456789ABCDEF";

int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

unsigned char SecretMask(size_t i) { return static_cast<unsigned char>(kSecretKey[i % kSecretKey.size()]); }

constexpr char kRecentSeparator = '|';
constexpr std::string_view kEscapedSeparator = "%7C";
constexpr std::string_view kEscapedPercent = "%25";

// True when text at i starts one of the two escapes of the recent-list form.
bool StartsEscape(std::string_view text, size_t i) {
  const std::string_view rest = text.substr(i);
  return rest.size() >= 3 && rest[0] == '%' &&
         ((rest[1] == '2' && rest[2] == '5') || (rest[1] == '7' && (rest[2] == 'C' || rest[2] == 'c')));
}

}  // namespace

bool ParseConfigInteger(std::string_view text, int& value) {
  int parsed = 0;
  if (!ParseWhole(text, parsed)) return false;
  value = parsed;
  return true;
}

std::string FormatConfigInteger(int value) { return std::to_string(value); }

bool ParseConfigBoolean(std::string_view text, bool& value) {
  int parsed = 0;
  if (!ParseWhole(text, parsed)) return false;
  value = parsed != 0;
  return true;
}

std::string FormatConfigBoolean(bool value) { return value ? "1" : "0"; }

bool ParseConfigReal(std::string_view text, float& value) {
  if (text.size() > 1 && text.front() == '+' && text[1] != '-') text.remove_prefix(1);
  if (text.empty()) return false;
  float parsed = 0.0f;
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), parsed);
  if (ec != std::errc() || end != text.data() + text.size() || !std::isfinite(parsed)) return false;
  value = parsed;
  return true;
}

std::string FormatConfigReal(float value) {
  char text[32];
  const auto [end, ec] = std::to_chars(text, text + sizeof text, value);
  return ec == std::errc() ? std::string(text, end) : std::string();
}

bool ParseConfigColour(std::string_view text, uint32_t& value) {
  int64_t parsed = 0;
  if (!ParseWhole(text, parsed)) return false;
  if (parsed < std::numeric_limits<int32_t>::min() || parsed > std::numeric_limits<uint32_t>::max()) return false;
  value = static_cast<uint32_t>(parsed);
  return true;
}

std::string FormatConfigColour(uint32_t value) { return std::to_string(value); }

bool ParseConfigRecentList(std::string_view text, std::vector<std::string>& entries) {
  entries.clear();
  std::string entry;
  for (size_t i = 0; i <= text.size(); ++i) {
    if (i == text.size() || text[i] == kRecentSeparator) {
      if (!entry.empty()) entries.push_back(std::move(entry));
      entry.clear();
    } else if (StartsEscape(text, i)) {
      entry += text[i + 1] == '2' ? '%' : kRecentSeparator;
      i += 2;
    } else {
      entry += text[i];
    }
  }
  return true;
}

std::string FormatConfigRecentList(const std::vector<std::string>& entries) {
  std::string text;
  for (const std::string& entry : entries) {
    if (entry.empty()) continue;
    if (!text.empty()) text += kRecentSeparator;
    for (size_t i = 0; i < entry.size(); ++i) {
      if (entry[i] == kRecentSeparator)
        text += kEscapedSeparator;
      else if (StartsEscape(entry, i))
        text += kEscapedPercent;  // the "25" or "7C" that follows is copied as it stands
      else
        text += entry[i];
    }
  }
  return text;
}

bool ParseConfigSecret(std::string_view text, std::string& secret) {
  if (text.empty()) {
    secret.clear();
    return true;
  }
  if (text.front() != kSecretMark || text.size() % 2 == 0) return false;
  std::string plain;
  for (size_t i = 1, n = 0; i < text.size(); i += 2, ++n) {
    const int high = HexValue(text[i]);
    const int low = HexValue(text[i + 1]);
    if (high < 0 || low < 0) return false;
    plain += static_cast<char>(static_cast<unsigned char>(high * 16 + low) ^ SecretMask(n));
  }
  secret = std::move(plain);
  return true;
}

std::string FormatConfigSecret(std::string_view secret) {
  if (secret.empty()) return {};
  std::string text(1, kSecretMark);
  for (size_t i = 0; i < secret.size(); ++i) {
    const unsigned char byte = static_cast<unsigned char>(secret[i]) ^ SecretMask(i);
    text += kHexDigits[byte >> 4];
    text += kHexDigits[byte & 0x0F];
  }
  return text;
}

}  // namespace velantis
