#ifdef _WIN32
#include <windows.h>

#include "script/user_prompt.h"

namespace velantis {

TTerminalPrompt TTerminalPrompt::OnStandardStreams() {
  return TTerminalPrompt(GetStdHandle(STD_INPUT_HANDLE), GetStdHandle(STD_ERROR_HANDLE));
}

void TTerminalPrompt::Write(std::string_view text) {
  DWORD written = 0;
  while (!text.empty() && WriteFile(m_output, text.data(), static_cast<DWORD>(text.size()), &written, nullptr) &&
         written > 0)
    text.remove_prefix(written);
}

bool TTerminalPrompt::ReadLine(std::string& line) {
  line.clear();
  char c;
  DWORD read = 0;
  while (ReadFile(m_input, &c, 1, &read, nullptr) && read == 1) {
    if (c == '\n') return true;
    line += c;
  }
  return !line.empty();
}

bool TTerminalPrompt::InputIsTerminal() const { return GetFileType(m_input) == FILE_TYPE_CHAR; }

}  // namespace velantis
#endif
