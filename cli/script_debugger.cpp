// Choices of the terminal debugger:
// - everything it shows goes to the screen stream (stderr in velantis), so
//   stdout holds the script's Echo output alone, as in a run without --debug;
// - a stop shows "LINE: text of the line" and under it a marker: "^" under
//   the node's first character and "~" under the rest of it on that line;
// - a line of input that is empty steps, "c" continues, "q" stops (blanks
//   around them do not count); anything else shows the keys again and waits;
// - the end of the input continues: a run fed from a file or /dev/null does
//   all of the script's work, as a run without --debug would;
// - a stop by "q" is no failure: "Debug End" and exit 0, like `Exit`;
// - a script error shows its line and marker, then "velantis: <message>",
//   then "Debug End", and exits 1.
#include "cli/script_debugger.h"

#include <algorithm>

#include "cli/command.h"
#include "script/thread_velan_script_debug.h"

namespace velantis::cli {

namespace {

constexpr const char* kKeysHelp = "Enter: step, c: continue, q: stop";

enum class TKey : uint8_t { Step, Continue, Stop };

std::string Trimmed(const std::string& line) {
  const size_t first = line.find_first_not_of(" \t\r");
  if (first == std::string::npos) return {};
  return line.substr(first, line.find_last_not_of(" \t\r") - first + 1);
}

TKey ReadKey(std::istream& keys, std::ostream& screen) {
  std::string line;
  while (std::getline(keys, line)) {
    const std::string key = Trimmed(line);
    if (key.empty()) return TKey::Step;
    if (key == "c") return TKey::Continue;
    if (key == "q") return TKey::Stop;
    screen << kKeysHelp << '\n' << std::flush;
  }
  return TKey::Continue;
}

// "12: the line", and under it "^~~~" from the node's column to its end or
// the end of the line. Tabs before the node are copied so the marker stays
// under it.
void ShowNode(const TDebugNode& node, std::ostream& screen) {
  const std::string prefix = std::to_string(node.position.line) + ": ";
  const std::string& line = node.position.lineText;
  const size_t column = std::min(static_cast<size_t>(node.position.column - 1), line.size());
  std::string marker(prefix.size(), ' ');
  for (size_t i = 0; i < column; ++i) marker += line[i] == '\t' ? '\t' : ' ';
  const size_t onLine = line.size() - column;
  const size_t length = std::clamp(static_cast<size_t>(std::max(node.end - node.start, 0)) + 1,
                                   size_t{1}, std::max(onLine, size_t{1}));
  marker += '^' + std::string(length - 1, '~');
  screen << prefix << line << '\n' << marker << '\n';
}

void Answer(TThreadVelanScriptDebug& session, TKey key) {
  switch (key) {
    case TKey::Step: session.Step(); break;
    case TKey::Continue: session.Continue(); break;
    case TKey::Stop: session.Stop(); break;
  }
}

}  // namespace

int RunScriptDebugger(TVelanScriptBase& script, const std::string& text, const std::string& name,
                      std::istream& keys, std::ostream& screen) {
  screen << kDebuggerCaption << name << '\n' << kKeysHelp << '\n' << std::flush;
  TThreadVelanScriptDebug session(script, text);
  TDebugEvent event = session.NextEvent();
  for (; event.outcome == TDebugOutcome::Paused; event = session.NextEvent()) {
    ShowNode(event.node, screen);
    screen << std::flush;
    Answer(session, ReadKey(keys, screen));
  }
  session.Join();
  if (event.outcome == TDebugOutcome::Failed) {
    ShowNode(event.node, screen);
    screen << std::flush;
    PrintError(event.message);
  }
  screen << kDebugEnd << '\n' << std::flush;
  return event.outcome == TDebugOutcome::Failed ? kExitRefused : kExitOk;
}

}  // namespace velantis::cli
