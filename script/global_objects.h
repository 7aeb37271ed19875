// The two global objects besides Velantis (application_commands.h), both
// resolved by name when the expression is resolved: they are names, not
// values, and cannot be assigned or passed.
//
// Monitor: the log and progress display.
//   Monitor.Log(text)     writes a line to the application log
//   Monitor.Start(total)  the progress display starts over with total steps
//   Monitor.Step()        one step done; 1, or 0 once the user has cancelled
//   Monitor.End()         the progress display is done (back to 0 of 0)
//
// Config: `Config.Key` reads the configuration key of that name (letter
// case ignored), a number for numeric, colour and yes/no keys, a string for
// the others; `Config.Key = value` sets it and writes the configuration back
// to its file at once ("Wrong Config Property" for a key that does not
// exist, "Error In Config" for a value the key does not take or a failed
// write).
#pragma once

#include <span>
#include <string_view>

#include "script/application_commands.h"

namespace velantis {

std::span<const TApplicationCommand> MonitorMethods();
// Index into MonitorMethods(), -1 for another name.
int FindMonitorMethod(std::string_view name);

// Index of the key's registration, -1 for no such key.
int FindConfigKey(std::string_view key);
void ReadConfig(TBuiltinCall& call, int key);
void AssignConfig(TBuiltinCall& call, int key, const TVarVelanScript& value);

inline constexpr const char* kWrongConfigProperty = "Wrong Config Property";

}  // namespace velantis
