// MessageBox, Warning and InputUser, through the host's terminal
// (user_prompt.h gives the terminal's own behaviour).
//
// Argument lists:
//   MessageBox(text), Warning(text): show the text, 1; with no terminal
//     (a host without a user) the text goes to the Monitor's log instead,
//     a warning with "Warning: " before it;
//   InputUser(question, default): the line the user typed, or default when
//     the line is empty; a cancel (end of input), or no terminal at all,
//     ends the script with "Script Stopped InputUser".
#include "script/application_commands.h"
#include "script/script_host.h"
#include "script/user_prompt.h"
#include "script/velan_script_base.h"

namespace velantis {

namespace {

void MessageBox(TBuiltinCall& call) {
  const std::string& text = call.Text(0);
  TScriptHost& host = call.script.Host();
  if (TScriptTerminal* terminal = host.Terminal())
    terminal->Message(text);
  else
    host.Monitor().Log(text);
  call.result.SetNumber(1);
}

void Warning(TBuiltinCall& call) {
  const std::string& text = call.Text(0);
  TScriptHost& host = call.script.Host();
  if (TScriptTerminal* terminal = host.Terminal())
    terminal->Warning(text);
  else
    host.Monitor().Log(std::string(kWarningPrefix) + text);
  call.result.SetNumber(1);
}

void InputUser(TBuiltinCall& call) {
  const std::string &question = call.Text(0), &byDefault = call.Text(1);
  TScriptTerminal* terminal = call.script.Host().Terminal();
  std::string answer;
  if (!terminal || !terminal->Input(question + " [" + byDefault + "]: ", answer))
    throw TScriptError("Script Stopped InputUser", call.at);
  call.result.SetString(answer.empty() ? byDefault : answer);
}

constexpr TApplicationCommand kTerminalCommands[] = {
    {"MessageBox", 1, MessageBox}, {"Warning", 1, Warning}, {"InputUser", 2, InputUser}};

}  // namespace

std::span<const TApplicationCommand> TerminalCommands() { return kTerminalCommands; }

}  // namespace velantis
