#ifndef _WIN32
#include <unistd.h>

#include <cerrno>

#include "script/user_prompt.h"

namespace velantis {

TTerminalPrompt TTerminalPrompt::OnStandardStreams() { return TTerminalPrompt(STDIN_FILENO, STDERR_FILENO); }

void TTerminalPrompt::Write(std::string_view text) {
  while (!text.empty()) {
    const ssize_t n = ::write(m_output, text.data(), text.size());
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return;  // a closed terminal: nothing more to show
    text.remove_prefix(static_cast<size_t>(n));
  }
}

// One byte at a time, so that nothing after the line is taken from the
// input (the next prompt, or the program after the script, reads it).
bool TTerminalPrompt::ReadLine(std::string& line) {
  line.clear();
  char c;
  for (;;) {
    const ssize_t n = ::read(m_input, &c, 1);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return !line.empty();
    if (c == '\n') return true;
    line += c;
  }
}

bool TTerminalPrompt::InputIsTerminal() const { return ::isatty(m_input) == 1; }

}  // namespace velantis
#endif
