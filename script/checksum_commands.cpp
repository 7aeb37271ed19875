// CRC-32 and MD5: none yet.
#include "script/application_commands.h"

namespace velantis {

std::span<const TApplicationCommand> ChecksumCommands() { return {}; }

}  // namespace velantis
