// The application commands: `Velantis.Name(args)`. The name is looked up
// when the expression is resolved ("Unknown command '%s'" for a name in no
// table; a wrong argument count is "Too few parametes in call to '%s' "),
// never at each call. Any exception other than a script error that leaves
// a command becomes "VelanScript: Exception in Velantis Engine, command="
// and the command's name.
//
// How a theme adds its commands: write its table in its own file, e.g.
//
//   // script/foo_commands.cpp
//   namespace { void Foo(TBuiltinCall& call) { ... }
//               constexpr TApplicationCommand kFoo[] = {{"Foo", 1, Foo}}; }
//   std::span<const TApplicationCommand> FooCommands() { return kFoo; }
//
// declare FooCommands() below and add it to kThemes in
// application_commands.cpp. A name that two tables hold goes to the
// earlier theme of that list. The themes whose files hold an empty table
// are still to be written: filling the table is all they need.
#pragma once

#include <span>
#include <string_view>

#include "script/builtins.h"

namespace velantis {

struct TApplicationCommand {
  std::string_view name;
  size_t argCount;
  TFreeFunction function;
};

inline constexpr const char* kUnknownCommand = "Unknown command '%s'";
inline constexpr const char* kEngineException = "VelanScript: Exception in Velantis Engine, command=";

// Open, OpenWPT, Read, CloseAll, CreateWpts, CreateTrack, ConfigComm,
// IsMovingMapOn, MovingMapCoord (element_commands.cpp).
std::span<const TApplicationCommand> ElementCommands();
// Files and folders (file_commands.cpp).
std::span<const TApplicationCommand> FileCommands();
// CRC-32 and MD5 (checksum_commands.cpp).
std::span<const TApplicationCommand> ChecksumCommands();
// Exec, Quit (process_commands.cpp).
std::span<const TApplicationCommand> ProcessCommands();
// MessageBox, Warning, InputUser (terminal_commands.cpp).
std::span<const TApplicationCommand> TerminalCommands();
// Commands whose subsystem this build does not have (unavailable_commands.cpp).
std::span<const TApplicationCommand> UnavailableCommands();

// Index into the concatenation of the themes, -1 for a name in none.
int FindApplicationCommand(std::string_view name);
const TApplicationCommand& ApplicationCommand(int index);

}  // namespace velantis
