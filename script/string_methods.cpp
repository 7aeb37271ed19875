// The methods of a string value ("abc".strlen(), path.FileNameEx()).
//
// Choices left open:
// - positions count from 0: strstr gives the first position of its argument
//   or -1, SubString(start, length) takes what of that range lies inside the
//   string;
// - case changes and accent removal read the text as Latin-1 (the 8-bit
//   script text); the methods that change the string in place also return
//   the changed string;
// - FileNameChangeExt takes the new extension with its dot (".csv");
//   GetFileSize of a file that cannot be read is -1;
// - atoi reads an optional sign and the digits that follow (white space
//   first is skipped), 0 when there are none, like C's atoi but saturating;
// - Md5 is the digest of the string's bytes in lower-case hex, as md5sum
//   prints it; Cod5 is the five-character code of text_code.h.
#include <filesystem>
#include <limits>

#include "script/builtins.h"
#include "script/file_checksum.h"
#include "script/text_code.h"
#include "script/velan_script_base.h"

namespace velantis {

namespace {

size_t NameStart(const std::string& path) {
  const size_t slash = path.find_last_of("/\\");
  return slash == std::string::npos ? 0 : slash + 1;
}

// Where the extension's dot is, or the end when the name has none.
size_t ExtensionStart(const std::string& path) {
  const size_t dot = path.rfind('.');
  return dot == std::string::npos || dot < NameStart(path) ? path.size() : dot;
}

void FileNameEx(TBuiltinCall& call, std::string& s) { call.result.SetString(s.substr(NameStart(s))); }

void FileNameNoEx(TBuiltinCall& call, std::string& s) {
  const size_t start = NameStart(s);
  call.result.SetString(s.substr(start, ExtensionStart(s) - start));
}

void FileNameChangeExt(TBuiltinCall& call, std::string& s) {
  call.result.SetString(s.substr(0, ExtensionStart(s)) + call.Text(0));
}

void GetFileSize(TBuiltinCall& call, std::string& s) {
  std::error_code error;
  const auto size = call.script.Limits().systemAccess ? std::filesystem::file_size(s, error)
                                                      : std::uintmax_t{0};
  const bool known = call.script.Limits().systemAccess && !error;
  call.result.SetNumber(known ? static_cast<double>(size) : -1);
}

void Strlen(TBuiltinCall& call, std::string& s) { call.result.SetNumber(static_cast<double>(s.size())); }

// Latin-1 letters 0xC0..0xFF without their accents; '\0' leaves the byte.
constexpr char kUnaccented[] =
    "AAAAAAACEEEEIIII"  // C0..CF
    "DNOOOOO\0OUUUUY\0\0"  // D0..DF
    "aaaaaaaceeeeiiii"  // E0..EF
    "dnooooo\0ouuuuy\0y";  // F0..FF

void QuitarAcentos(TBuiltinCall& call, std::string& s) {
  for (char& c : s) {
    const auto u = static_cast<unsigned char>(c);
    if (u >= 0xC0 && kUnaccented[u - 0xC0]) c = kUnaccented[u - 0xC0];
  }
  call.result.SetString(s);
}

bool IsLatinLetter(unsigned char u) { return u >= 0xC0 && u != 0xD7 && u != 0xF7 && u != 0xDF && u != 0xFF; }

void AMayusculas(TBuiltinCall& call, std::string& s) {
  for (char& c : s) {
    const auto u = static_cast<unsigned char>(c);
    if ((u >= 'a' && u <= 'z') || (IsLatinLetter(u) && u >= 0xE0)) c = static_cast<char>(u - 0x20);
  }
  call.result.SetString(s);
}

void AMinusculas(TBuiltinCall& call, std::string& s) {
  for (char& c : s) {
    const auto u = static_cast<unsigned char>(c);
    if ((u >= 'A' && u <= 'Z') || (IsLatinLetter(u) && u < 0xE0)) c = static_cast<char>(u + 0x20);
  }
  call.result.SetString(s);
}

void Replace(TBuiltinCall& call, std::string& s) {
  const std::string& from = call.Text(0);
  const std::string& to = call.Text(1);
  if (!from.empty()) {
    std::string out;
    size_t pos = 0;
    for (size_t found; (found = s.find(from, pos)) != std::string::npos; pos = found + from.size())
      out.append(s, pos, found - pos).append(to);
    s = out.append(s, pos);
  }
  call.result.SetString(s);
}

void SubString(TBuiltinCall& call, std::string& s) {
  const double size = static_cast<double>(s.size());
  const double start = std::max(0.0, std::min(call.Number(0), size));
  const double end = std::max(start, std::min(start + call.Number(1), size));
  call.result.SetString(s.substr(static_cast<size_t>(start), static_cast<size_t>(end - start)));
}

void Strstr(TBuiltinCall& call, std::string& s) {
  const size_t found = s.find(call.Text(0));
  call.result.SetNumber(found == std::string::npos ? -1 : static_cast<double>(found));
}

void Atoi(TBuiltinCall& call, std::string& s) {
  size_t i = s.find_first_not_of(" \t\r\n");
  if (i == std::string::npos) return call.result.SetNumber(0);
  const bool negative = s[i] == '-';
  if (s[i] == '-' || s[i] == '+') ++i;
  double value = 0;
  constexpr double kLimit = static_cast<double>(std::numeric_limits<long long>::max());
  for (; i < s.size() && s[i] >= '0' && s[i] <= '9'; ++i) value = std::min(kLimit, value * 10 + (s[i] - '0'));
  call.result.SetNumber(negative ? -value : value);
}

void Md5(TBuiltinCall& call, std::string& s) { call.result.SetString(ChecksumText(TChecksumKind::Md5, s)); }

void Cod5(TBuiltinCall& call, std::string& s) { call.result.SetString(TextCode5(s)); }

constexpr TStringBuiltin kStringMethods[] = {
    {"FileNameEx", 0, FileNameEx},     {"FileNameNoEx", 0, FileNameNoEx},
    {"FileNameChangeExt", 1, FileNameChangeExt}, {"GetFileSize", 0, GetFileSize},
    {"strlen", 0, Strlen},             {"quitar_acentos", 0, QuitarAcentos},
    {"A_Mayusculas", 0, AMayusculas},  {"A_Minusculas", 0, AMinusculas},
    {"Replace", 2, Replace},           {"SubString", 2, SubString},
    {"strstr", 1, Strstr},             {"atoi", 0, Atoi},
    {"Md5", 0, Md5},                   {"Cod5", 0, Cod5},
};

}  // namespace

int FindStringMethod(std::string_view name) { return IndexOfName(kStringMethods, name); }

const TStringBuiltin& StringMethod(int index) { return kStringMethods[index]; }

}  // namespace velantis
