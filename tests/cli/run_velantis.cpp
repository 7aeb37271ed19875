#include "tests/cli/run_velantis.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>

#include "tests/support/testdata.h"

namespace velantis::test {

namespace {

// In the child: the streams redirected, then velantis with args.
[[noreturn]] void ExecVelantis(const std::vector<std::string>& args, const std::string& userDir,
                               const std::string& in, const std::string& out,
                               const std::string& err) {
  std::freopen(in.c_str(), "rb", stdin);
  std::freopen(out.c_str(), "wb", stdout);
  std::freopen(err.c_str(), "wb", stderr);
  const std::string program = (BinaryDir() / "cli" / "velantis").string();
  std::vector<std::string> full = {program, "--user-dir", userDir};
  full.insert(full.end(), args.begin(), args.end());
  std::vector<char*> argv;
  for (auto& a : full) argv.push_back(a.data());
  argv.push_back(nullptr);
  execv(program.c_str(), argv.data());
  _exit(127);
}

TRunResult Finish(pid_t pid, const std::string& out, const std::string& err) {
  TRunResult result;
  int status = 0;
  waitpid(pid, &status, 0);
  result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  result.out = FileBytes(out);
  result.err = FileBytes(err);
  return result;
}

}  // namespace

TRunResult RunVelantis(const std::vector<std::string>& args, const std::string& stdinText) {
  const auto dir = ScratchDir("cli");
  const std::string in = (dir / "stdin").string(), out = (dir / "stdout").string(),
                    err = (dir / "stderr").string();
  std::ofstream(in, std::ios::binary) << stdinText;
  const pid_t pid = fork();
  if (pid == 0) ExecVelantis(args, (dir / "user").string(), in, out, err);
  return Finish(pid, out, err);
}

TRunningVelantis::TRunningVelantis(const std::vector<std::string>& args,
                                   const std::string& userDir) {
  const auto dir = ScratchDir("cli-running");
  m_out = (dir / "stdout").string();
  m_err = (dir / "stderr").string();
  const pid_t pid = fork();
  if (pid == 0) ExecVelantis(args, userDir, "/dev/null", m_out, m_err);
  m_pid = pid;
}

TRunningVelantis::~TRunningVelantis() {
  if (m_pid > 0) Stop(SIGKILL);
}

TRunResult TRunningVelantis::Stop(int signal) {
  kill(m_pid, signal);
  const TRunResult result = Finish(m_pid, m_out, m_err);
  m_pid = -1;
  return result;
}

}  // namespace velantis::test
