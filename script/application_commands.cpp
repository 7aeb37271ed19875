#include "script/application_commands.h"

#include <vector>

namespace velantis {

namespace {

using TTheme = std::span<const TApplicationCommand> (*)();

constexpr TTheme kThemes[] = {ElementCommands, FileCommands,     ChecksumCommands,
                              ProcessCommands, TerminalCommands, UnavailableCommands};

// Built once, at the first lookup: the themes one after the other.
const std::vector<TApplicationCommand>& AllCommands() {
  static const std::vector<TApplicationCommand> all = [] {
    std::vector<TApplicationCommand> commands;
    for (const TTheme theme : kThemes)
      for (const TApplicationCommand& command : theme()) commands.push_back(command);
    return commands;
  }();
  return all;
}

}  // namespace

int FindApplicationCommand(std::string_view name) { return IndexOfName(AllCommands(), name); }

const TApplicationCommand& ApplicationCommand(int index) { return AllCommands()[index]; }

}  // namespace velantis
