// The terminal prompt on a pseudo-terminal and on a pipe, and the program
// runner with its command-line splitting.
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <unistd.h>

#include <gtest/gtest.h>


#include "script/process_runner.h"
#include "script/user_prompt.h"

namespace velantis {
namespace {

// A pseudo-terminal in raw mode: the test types on the master side, the
// prompt reads and writes the slave side as it would a real terminal.
struct TPty {
  int master = -1, slave = -1;
  TPty() {
    if (::openpty(&master, &slave, nullptr, nullptr, nullptr) != 0) return;
    termios raw{};
    ::tcgetattr(slave, &raw);
    ::cfmakeraw(&raw);
    ::tcsetattr(slave, TCSANOW, &raw);
  }
  ~TPty() {
    ::close(master);
    ::close(slave);
  }
  void Type(const std::string& text) const { ASSERT_EQ(::write(master, text.data(), text.size()), ssize_t(text.size())); }
  // What the prompt wrote, waiting up to one second for the first byte.
  std::string Shown() const {
    std::string shown;
    char buffer[256];
    pollfd p{master, POLLIN, 0};
    for (int wait = 1000; ::poll(&p, 1, wait) > 0; wait = 50) {
      const ssize_t n = ::read(master, buffer, sizeof buffer);
      if (n <= 0) break;
      shown.append(buffer, static_cast<size_t>(n));
    }
    return shown;
  }
};

TEST(TerminalPrompt, InputOnATerminal) {
  TPty pty;
  ASSERT_GE(pty.master, 0) << "no pseudo-terminal";
  TTerminalPrompt prompt(pty.slave, pty.slave);
  struct TCase {
    std::string typed;
    std::string answer;
  } const cases[] = {{"Sierra Nevada\n", "Sierra Nevada"}, {"\n", ""}, {"x y\r\n", "x y"}};
  for (const TCase& c : cases) {
    pty.Type(c.typed);
    std::string answer = "old";
    EXPECT_TRUE(prompt.Input("Name? ", answer));
    EXPECT_EQ(answer, c.answer);
    EXPECT_EQ(pty.Shown(), "Name? ");
  }
  prompt.Warning("low battery");
  EXPECT_EQ(pty.Shown(), "Warning: low battery\n");
  // A message waits for Enter on a terminal: what follows the Enter stays.
  pty.Type("\nnext\n");
  prompt.Message("Done");
  EXPECT_EQ(pty.Shown(), "Done\n");
  std::string answer;
  EXPECT_TRUE(prompt.Input("Q", answer));
  EXPECT_EQ(answer, "next");
}

TEST(TerminalPrompt, EndOfInputIsACancelAndMessagesDoNotWaitOnAPipe) {
  int in[2], out[2];
  ASSERT_EQ(::pipe(in), 0);
  ASSERT_EQ(::pipe(out), 0);
  TTerminalPrompt prompt(in[0], out[1]);
  ASSERT_EQ(::write(in[1], "last", 4), 4);
  ::close(in[1]);
  prompt.Message("shown");  // must not take "last"
  std::string answer;
  EXPECT_TRUE(prompt.Input("Q: ", answer));
  EXPECT_EQ(answer, "last");
  EXPECT_FALSE(prompt.Input("Q: ", answer));
  ::close(out[1]);
  char shown[64] = {};
  EXPECT_EQ(std::string(shown, static_cast<size_t>(::read(out[0], shown, sizeof shown))), "shown\nQ: Q: ");
  ::close(in[0]);
  ::close(out[0]);
}

TEST(ProcessRunner, SplitsCommandLines) {
  const std::pair<std::string, std::vector<std::string>> cases[] = {
      {"convert a.wpt  b.gpx", {"convert", "a.wpt", "b.gpx"}},
      {"\tinfo \"My Tracks/day 1.trk\" --json ", {"info", "My Tracks/day 1.trk", "--json"}},
      {"a \"\" b", {"a", "", "b"}},
      {"say \\\"hi\\\" x\\ y", {"say", "\"hi\"", "x y"}},
      {"", {}},
  };
  for (const auto& [line, words] : cases) EXPECT_EQ(SplitCommandLine(line), words) << line;
}

TEST(ProcessRunner, ExitCodesAndFailureToStart) {
  std::string error;
  EXPECT_EQ(RunProgram({"/bin/sh", "-c", "exit 0"}, error), 0);
  EXPECT_EQ(RunProgram({"/bin/sh", "-c", "test \"$1\" = 'a b' && exit 7", "sh", "a b"}, error), 7);
  EXPECT_EQ(RunProgram({"/bin/sh", "-c", "kill -TERM $$"}, error), 128 + 15);
  EXPECT_EQ(RunProgram({"/nonexistent/velantis"}, error), -1);
  EXPECT_NE(error.find("/nonexistent/velantis"), std::string::npos) << error;
  EXPECT_EQ(RunProgram({}, error), -1);
}

}  // namespace
}  // namespace velantis
