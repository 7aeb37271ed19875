// The short code of a text (the Cod5 string method): five characters that
// stand for the text in lists and file names where the whole would be too
// long. The code is the first 25 bits of the text's MD5 digest, read most
// significant bit first in five groups of five, each group written with the
// digits and capitals "0123456789ABCDEFGHJKMNPQRSTVWXYZ" (no I, L, O or U, so
// a code read aloud or copied by hand is not mistaken). The same text always
// gives the same code; two texts share one with a chance of 1 in 2^25.
#pragma once

#include <string>
#include <string_view>

namespace velantis {

std::string TextCode5(std::string_view text);

}  // namespace velantis
