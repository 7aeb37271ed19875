// The platform-neutral half of TTerminalPrompt; the reads and writes are in
// user_prompt_posix.cpp and user_prompt_win32.cpp.
#include "script/user_prompt.h"

namespace velantis {

void TTerminalPrompt::Message(std::string_view text) {
  Write(std::string(text) + "\n");
  std::string ignored;
  if (InputIsTerminal()) ReadLine(ignored);
}

void TTerminalPrompt::Warning(std::string_view text) { Write(std::string(kWarningPrefix) + std::string(text) + "\n"); }

bool TTerminalPrompt::Input(std::string_view prompt, std::string& answer) {
  Write(prompt);
  if (!ReadLine(answer)) return false;
  if (!answer.empty() && answer.back() == '\r') answer.pop_back();
  return true;
}

}  // namespace velantis
