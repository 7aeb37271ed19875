// The types of the configuration settings and their text forms in "gps.ini".
//
// Every form is written the same way on every platform and does not depend on
// the locale, so a file saved twice compares byte for byte:
//   integer      "%d"; the whole text must be a decimal integer (a leading "+"
//                is accepted), otherwise it does not convert.
//   boolean      "0" or "1"; on reading any integer converts, non-zero is true.
//   text         the text as it stands (the key file trims surrounding blanks).
//   real         a 32-bit float in the shortest decimal form that reads back to
//                the same float ("10" for 10.0, "0.1" for 0.1); any decimal or
//                exponent form is read; infinities and NaN do not convert.
//   colour       the 32-bit colour value as decimal "%u" (white 0xFFFFFF is
//                "16777215"); a negative decimal down to -2147483648 is read as
//                the same 32 bits, as older files stored colours signed.
//   recent list  the entries in order, separated by "|"; empty entries are
//                dropped. Inside an entry "|" is written "%7C", and a "%" that
//                would otherwise be read as the start of "%7C" or "%25" is
//                written "%25"; every other "%" stays as it is, so URLs keep
//                their own escapes readable.
//   secret       account passwords and tokens: "~" followed by two upper-case
//                hex digits per byte of the text XOR-ed with a fixed key. This
//                is obfuscation against a glance over the shoulder, not
//                security: anyone with this source reverses it. The empty
//                secret is the empty text.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace velantis {

enum class TConfigType { Integer, Boolean, Text, Real, Colour, RecentList, Secret };

bool ParseConfigInteger(std::string_view text, int& value);
std::string FormatConfigInteger(int value);

bool ParseConfigBoolean(std::string_view text, bool& value);
std::string FormatConfigBoolean(bool value);

bool ParseConfigReal(std::string_view text, float& value);
std::string FormatConfigReal(float value);

bool ParseConfigColour(std::string_view text, uint32_t& value);
std::string FormatConfigColour(uint32_t value);

// Always converts: any text is a list.
bool ParseConfigRecentList(std::string_view text, std::vector<std::string>& entries);
std::string FormatConfigRecentList(const std::vector<std::string>& entries);

bool ParseConfigSecret(std::string_view text, std::string& secret);
std::string FormatConfigSecret(std::string_view secret);

}  // namespace velantis
