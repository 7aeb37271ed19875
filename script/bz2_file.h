// Decompression of bzip2 files (libbz2), for the UncompressBZ2 command.
//
// The whole input must be bzip2 data: one stream or several written one
// after the other (as `bzip2 -c a >> f` leaves them), all complete. The
// output is written through a temporary file renamed over the target, so a
// corrupt or truncated input leaves no partial output behind.
#pragma once

#include <string>

namespace velantis {

// False, with error filled, when the input cannot be read, is not complete
// bzip2 data, or the output cannot be written.
bool UncompressBz2File(const std::string& in, const std::string& out, std::string& error);

}  // namespace velantis
