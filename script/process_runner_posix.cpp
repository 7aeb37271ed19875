#ifndef _WIN32
#include <spawn.h>
#include <sys/wait.h>

#include <cerrno>
#include <cstring>

#include "script/process_runner.h"

extern char** environ;

namespace velantis {

namespace {

constexpr int kSignalExitBase = 128;  // the shells' convention for a killed program

}  // namespace

int RunProgram(const std::vector<std::string>& words, std::string& error) {
  if (words.empty()) {
    error = "No program to run";
    return -1;
  }
  std::vector<char*> argv;
  for (const std::string& w : words) argv.push_back(const_cast<char*>(w.c_str()));
  argv.push_back(nullptr);
  pid_t child = 0;
  const int started = posix_spawn(&child, argv[0], nullptr, nullptr, argv.data(), environ);
  if (started != 0) {
    error = words[0] + ": " + std::strerror(started);
    return -1;
  }
  int status = 0;
  while (waitpid(child, &status, 0) < 0)
    if (errno != EINTR) {
      error = words[0] + ": " + std::strerror(errno);
      return -1;
    }
  if (WIFSIGNALED(status)) return kSignalExitBase + WTERMSIG(status);
  return WEXITSTATUS(status);
}

}  // namespace velantis
#endif
