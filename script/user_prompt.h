// The user's side of a script: the messages it shows (MessageBox, Warning)
// and the answers it asks for (InputUser). The host gives the script one
// prompt; without one the commands that need the user fail.
//
// TTerminalPrompt talks on a terminal: POSIX file descriptors (tested on a
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

namespace velantis {

class TUserPrompt {
public:
  virtual ~TUserPrompt() = default;
  virtual void Message(std::string_view text) = 0;
  virtual void Warning(std::string_view text) = 0;
  // False when the user cancels.
  virtual bool Input(std::string_view prompt, std::string& answer) = 0;
};

inline constexpr std::string_view kWarningPrefix = "Warning: ";

#ifdef _WIN32
using TTerminalHandle = void*;  // a console HANDLE
#else
using TTerminalHandle = int;    // a file descriptor
#endif

class TTerminalPrompt : public TUserPrompt {
public:
  TTerminalPrompt(TTerminalHandle input, TTerminalHandle output) : m_input(input), m_output(output) {}
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
