#include "tests/cli/run_velantis.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>

#include "tests/support/testdata.h"

namespace velantis::test {

TRunResult RunVelantis(const std::vector<std::string>& args, const std::string& stdinText,
                       const std::function<int()>& whileRunning, const std::string& userDir) {
  const auto dir = ScratchDir("cli");
  const std::string in = (dir / "stdin").string(), out = (dir / "stdout").string(),
                    err = (dir / "stderr").string();
  std::ofstream(in, std::ios::binary) << stdinText;
  std::vector<std::string> full = {(BinaryDir() / "cli" / "velantis").string(), "--user-dir",
                                   userDir.empty() ? (dir / "user").string() : userDir};
  full.insert(full.end(), args.begin(), args.end());
  std::vector<char*> argv;
  for (auto& a : full) argv.push_back(a.data());
  argv.push_back(nullptr);
  const pid_t pid = fork();
  if (pid == 0) {
    std::freopen(in.c_str(), "rb", stdin);
    std::freopen(out.c_str(), "wb", stdout);
    std::freopen(err.c_str(), "wb", stderr);
    execv(argv[0], argv.data());
    _exit(127);
  }
  if (whileRunning) kill(pid, whileRunning());
  int status = 0;
  waitpid(pid, &status, 0);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, FileBytes(out), FileBytes(err)};
}

}  // namespace velantis::test
