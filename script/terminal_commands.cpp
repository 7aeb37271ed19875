// Prompts on the terminal: none yet.
#include "script/application_commands.h"

namespace velantis {

std::span<const TApplicationCommand> TerminalCommands() { return {}; }

}  // namespace velantis
