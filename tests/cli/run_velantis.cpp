#include "tests/cli/run_velantis.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <iterator>

#include "tests/support/testdata.h"

namespace velantis::test {

namespace {

std::string Slurp(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

}  // namespace

TRunResult RunVelantis(const std::vector<std::string>& args, const std::string& stdinText) {
  const auto dir = ScratchDir("cli");
  const std::string in = (dir / "stdin").string(), out = (dir / "stdout").string(),
                    err = (dir / "stderr").string();
  std::ofstream(in, std::ios::binary) << stdinText;
  TRunResult result;
  const pid_t pid = fork();
  if (pid == 0) {
    std::freopen(in.c_str(), "rb", stdin);
    std::freopen(out.c_str(), "wb", stdout);
    std::freopen(err.c_str(), "wb", stderr);
    const std::string program = (BinaryDir() / "cli" / "velantis").string();
    std::vector<std::string> full = {program, "--user-dir", (dir / "user").string()};
    full.insert(full.end(), args.begin(), args.end());
    std::vector<char*> argv;
    for (auto& a : full) argv.push_back(a.data());
    argv.push_back(nullptr);
    execv(program.c_str(), argv.data());
    _exit(127);
  }
  int status = 0;
  waitpid(pid, &status, 0);
  result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  result.out = Slurp(out);
  result.err = Slurp(err);
  return result;
}

}  // namespace velantis::test
