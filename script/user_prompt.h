// The script terminal (TScriptTerminal of script_host.h: the messages of
// MessageBox and Warning, the answers of InputUser) on a real terminal.
//
// TTerminalPrompt talks: POSIX file descriptors (tested on a
// pseudo-terminal), console handles under Win32. Messages go to the output
// descriptor, never to stdout's Echo text when the host passes stderr.
// - Message: the text and a line feed; when the input is a terminal it then
//   waits for Enter, as a message box waits for its button (end of input ends
//   the wait).
// - Warning: "Warning: " and the text, a line feed; no wait.
// - Input: the prompt as given, then one line (a carriage return before the
//   line feed is dropped); end of input (Ctrl-D, a closed pipe) with nothing
//   typed is the user's cancel.
#pragma once

#include <string>
#include <string_view>

#include "script/script_host.h"

namespace velantis {

inline constexpr std::string_view kWarningPrefix = "Warning: ";

#ifdef _WIN32
using TTerminalHandle = void*;  // a console HANDLE
#else
using TTerminalHandle = int;    // a file descriptor
#endif

class TTerminalPrompt : public TScriptTerminal {
public:
  TTerminalPrompt(TTerminalHandle input, TTerminalHandle output) : m_input(input), m_output(output) {}
  // Standard input for the answers, standard error for the messages (so
  // that standard output keeps only the script's Echo text).
  static TTerminalPrompt OnStandardStreams();
  void Message(std::string_view text) override;
  void Warning(std::string_view text) override;
  bool Input(std::string_view prompt, std::string& answer) override;

private:
  void Write(std::string_view text);
  bool ReadLine(std::string& line);  // false at end of input with nothing read
  bool InputIsTerminal() const;

  TTerminalHandle m_input;
  TTerminalHandle m_output;
};

}  // namespace velantis
