// The application commands on the elements the application holds.
#include "script/application_commands.h"
#include "script/script_host.h"
#include "script/velan_script_base.h"

namespace velantis {

namespace {

// Closes every loaded element; references the script still holds stay
// usable, detached from the application.
void CloseAll(TBuiltinCall& call) { call.script.Host().Loaded().clear(); }

constexpr TApplicationCommand kElementCommands[] = {
    {"CloseAll", 0, CloseAll},
};

}  // namespace

std::span<const TApplicationCommand> ElementCommands() { return kElementCommands; }

}  // namespace velantis
