// The terminal prompt on a pseudo-terminal (on pipes through the program,
// script_cli_test.cpp), and the program runner with its command-line
// splitting.
#include <poll.h>
#include <pty.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "script/process_runner.h"
#include "script/user_prompt.h"

namespace velantis {
namespace {

// What the prompt wrote on the other side, waiting up to a second for it.
std::string Shown(int fd) {
  std::string shown;
  char buffer[256];
  pollfd p{fd, POLLIN, 0};
  for (int wait = 1000; ::poll(&p, 1, wait) > 0; wait = 50) {
    const ssize_t n = ::read(fd, buffer, sizeof buffer);
    if (n <= 0) break;
    shown.append(buffer, static_cast<size_t>(n));
  }
  return shown;
}

void Type(int fd, const std::string& text) { ASSERT_EQ(::write(fd, text.data(), text.size()), ssize_t(text.size())); }

TEST(TerminalPrompt, OnATerminal) {
  int master = -1, slave = -1;
  ASSERT_EQ(::openpty(&master, &slave, nullptr, nullptr, nullptr), 0) << "no pseudo-terminal";
  termios raw{};
  ::tcgetattr(slave, &raw);
  ::cfmakeraw(&raw);  // no echo, no line editing: the test sees only what the prompt writes
  ::tcsetattr(slave, TCSANOW, &raw);
  TTerminalPrompt prompt(slave, slave);
  for (const auto& [typed, expected] : {std::pair{"Sierra Nevada\n", "Sierra Nevada"}, {"\n", ""}, {"x y\r\n", "x y"}}) {
    Type(master, typed);
    std::string answer = "old";
    EXPECT_TRUE(prompt.Input("Name? ", answer));
    EXPECT_EQ(answer, expected);
    EXPECT_EQ(Shown(master), "Name? ");
  }
  prompt.Warning("low battery");
  EXPECT_EQ(Shown(master), "Warning: low battery\n");
  // A message waits for Enter on a terminal; what follows the Enter stays.
  Type(master, "\nnext\n");
  prompt.Message("Done");
  EXPECT_EQ(Shown(master), "Done\n");
  std::string answer;
  EXPECT_TRUE(prompt.Input("", answer));
  EXPECT_EQ(answer, "next");
  ::close(master);
  ::close(slave);
}

TEST(ProcessRunner, SplitsCommandLinesAndRunsPrograms) {
  const std::pair<std::string, std::vector<std::string>> cases[] = {
      {"convert a.wpt  b.gpx", {"convert", "a.wpt", "b.gpx"}},
      {"\tinfo \"My Tracks/day 1.trk\" --json ", {"info", "My Tracks/day 1.trk", "--json"}},
      {"a \"\" b", {"a", "", "b"}},
      {"say \\\"hi\\\" x\\ y", {"say", "\"hi\"", "x y"}},
      {"", {}},
  };
  for (const auto& [line, words] : cases) EXPECT_EQ(SplitCommandLine(line), words) << line;
  std::string error;
  EXPECT_EQ(RunProgram({"/bin/sh", "-c", "kill -TERM $$"}, error), 128 + 15);
  EXPECT_EQ(RunProgram({"/nonexistent/velantis"}, error), -1);
  EXPECT_NE(error.find("/nonexistent/velantis"), std::string::npos) << error;
}

}  // namespace
}  // namespace velantis
