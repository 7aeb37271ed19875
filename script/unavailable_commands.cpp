// Commands whose subsystem this build does not have: none yet.
#include "script/application_commands.h"

namespace velantis {

std::span<const TApplicationCommand> UnavailableCommands() { return {}; }

}  // namespace velantis
