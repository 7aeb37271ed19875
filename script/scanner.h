// Loading, first half: the text becomes a flat list of classified tokens.
// Errors are thrown as TScriptError pointing at the offending token.
#pragma once

#include <string_view>

#include "script/token_node.h"

namespace velantis {

// Cuts the text into single-character tokens, string literals (kind 6, the
// contents with escapes applied) and raw runs (kind 3). Comments and white
// space are skipped.
TTokenList ScanScript(std::string_view text);

// Numbers, identifiers and symbol runs; operators (with the two-character
// split); adjacent strings joined; the decimal point; keywords.
void ClassifyTokens(TTokenList& tokens);

}  // namespace velantis
