// Runs the built velantis program as a user would, in a scratch user folder.
#pragma once

#include <string>
#include <vector>

namespace velantis::test {

struct TRunResult {
  int exitCode = -1;
  std::string out;
  std::string err;
};

// Runs velantis with args (each one argument, no shell), feeding stdinText.
TRunResult RunVelantis(const std::vector<std::string>& args, const std::string& stdinText = "");

// A velantis that runs until it is sent a signal (a live command).
class TRunningVelantis {
public:
  // userDir: the user folder the program is given.
  TRunningVelantis(const std::vector<std::string>& args, const std::string& userDir);
  ~TRunningVelantis();
  // Sends the signal and waits for the program to end.
  TRunResult Stop(int signal);

private:
  int m_pid = -1;
  std::string m_out, m_err;
};

}  // namespace velantis::test
