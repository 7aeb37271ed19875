// Files and folders: none yet.
#include "script/application_commands.h"

namespace velantis {

std::span<const TApplicationCommand> FileCommands() { return {}; }

}  // namespace velantis
