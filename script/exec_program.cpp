#include "script/exec_program.h"

#include <filesystem>
#include <mutex>

#ifdef _WIN32
#include <windows.h>
#endif

namespace velantis {

namespace {

std::string OwnPath() {
#ifdef _WIN32
  char path[MAX_PATH];
  const DWORD n = GetModuleFileNameA(nullptr, path, MAX_PATH);
  return std::string(path, n);
#else
  std::error_code ec;
  return std::filesystem::read_symlink("/proc/self/exe", ec).string();
#endif
}

std::mutex g_lock;
std::vector<std::string> g_words;

}  // namespace

std::vector<std::string> ExecProgram() {
  std::lock_guard<std::mutex> hold(g_lock);
  if (g_words.empty()) g_words.push_back(OwnPath());
  return g_words;
}

void SetExecProgram(std::vector<std::string> words) {
  std::lock_guard<std::mutex> hold(g_lock);
  g_words = std::move(words);
}

std::string StartCommandScript(std::string_view command) {
  if (command.find_first_not_of(" \t") == std::string_view::npos) return "";
  return "Velantis.Exec(" + std::string(command) + ");\r\n";
}

}  // namespace velantis
