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

}  // namespace velantis
