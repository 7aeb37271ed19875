#ifdef _WIN32
#include <windows.h>

#include "script/process_runner.h"

namespace velantis {

namespace {

// Quotes a word so that CommandLineToArgvW and the C runtime read it back:
// backslashes before a quote are doubled, quotes escaped.
std::string QuotedWord(const std::string& word) {
  if (!word.empty() && word.find_first_of(" \t\"") == std::string::npos) return word;
  std::string out = "\"";
  size_t backslashes = 0;
  for (char c : word) {
    if (c == '\\') {
      ++backslashes;
      continue;
    }
    out.append(c == '"' ? backslashes * 2 + 1 : backslashes, '\\');
    backslashes = 0;
    out += c;
  }
  out.append(backslashes * 2, '\\');
  return out + "\"";
}

}  // namespace

int RunProgram(const std::vector<std::string>& words, std::string& error) {
  if (words.empty()) {
    error = "No program to run";
    return -1;
  }
  std::string line;
  for (const std::string& w : words) line += (line.empty() ? "" : " ") + QuotedWord(w);
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process{};
  if (!CreateProcessA(words[0].c_str(), line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                      &process)) {
    error = words[0] + ": cannot start (error " + std::to_string(GetLastError()) + ")";
    return -1;
  }
  WaitForSingleObject(process.hProcess, INFINITE);
  DWORD code = 0;
  GetExitCodeProcess(process.hProcess, &code);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return static_cast<int>(code);
}

}  // namespace velantis
#endif
