// Running other programs and ending the program: none yet.
#include "script/application_commands.h"

namespace velantis {

std::span<const TApplicationCommand> ProcessCommands() { return {}; }

}  // namespace velantis
