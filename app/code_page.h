// The legacy 8-bit code page of older files is Windows-1252 on every platform,
// converted with a fixed table so that results never depend on the host locale.
#pragma once

#include <string>
#include <string_view>

namespace velantis {

// Converts Windows-1252 text to UTF-8. The five bytes the code page leaves
// undefined (0x81, 0x8D, 0x8F, 0x90, 0x9D) map to the C1 controls of the same
// value, as Windows' own conversion does.
std::string Cp1252ToUtf8(std::string_view text);

// Converts UTF-8 text to Windows-1252. Characters the code page lacks, and
// bytes that are not valid UTF-8, become "?".
std::string Utf8ToCp1252(std::string_view text);

// The encodings a file may name on its "B" line. Names are compared without
// regard to case; "UTF-8"/"UTF8" are UTF-8, "Windows-1252", "CP1252", "1252"
// and "ANSI" the legacy page, any other name is unknown.
enum class TCodePage { Utf8, Cp1252, Unknown };
TCodePage CodePageByName(std::string_view name);

// A text of the program (UTF-8) as it goes into a file of that code page,
// and back; an unknown page passes the bytes through unchanged.
std::string ToCodePage(std::string_view utf8, TCodePage page);
std::string FromCodePage(std::string_view bytes, TCodePage page);

}  // namespace velantis
