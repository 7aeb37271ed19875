// TThreadVelanScriptDebug: a debugger session. It runs a loaded script on a
// thread of its own with the debugger hook attached; before each evaluated
// node the script thread stops, publishes the node to the front end and waits
// for a command: Step (run to the next node), Continue (run to the end
// without stopping) or Stop (end the script at once). The end of the script
// is the final event.
//
// Threads: NextEvent, Step, Continue and Stop may be called from any thread;
// waiting is on a condition variable, never a poll. The script, its built-ins
// and its Echo sink run on the session's thread; the caller must not touch
// the script until the end event has come (or Join has returned). Destroying
// the session stops the script and joins its thread.
//
// Stopping ends the script at its next node with the outcome Stopped, which
// is neither an error nor a normal end: nothing after that node runs, and no
// message is produced. A built-in already running (a Sleep, a prompt)
// finishes first.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "script/text_position.h"
#include "script/velan_script_base.h"

namespace velantis {

// The session's own texts: the caption (the script's name follows it) and
// the line shown when the script has ended.
inline constexpr const char* kDebuggerCaption = "VelanScript Debugger ";
inline constexpr const char* kDebugEnd = "Debug End";

enum class TDebugOutcome : uint8_t {
  Paused,    // not an end: the script waits at `node` for a command
  Finished,  // ran to its end (an Exit or a top-level return included)
  Failed,    // ended by a script error: `message`, at `node`'s offsets
  Stopped,   // ended by Stop
};

// The node a stop concerns: the one about to be evaluated, or the token a
// failure points at (then only its offsets are known).
struct TDebugNode {
  int32_t kind = kTokNull;
  std::string text;
  int start = 0;
  int end = 0;
  TTextPosition position;  // of start in the script text
};

struct TDebugEvent {
  TDebugOutcome outcome = TDebugOutcome::Paused;
  TDebugNode node;
  std::string message;  // a failure's text
  int steps = 0;        // nodes the script has stopped at so far, this one included
};

class TThreadVelanScriptDebug {
public:
  // Starts running the loaded script; it stops before its first node. The
  // text is the one loaded, for the nodes' lines.
  TThreadVelanScriptDebug(TVelanScriptBase& script, std::string text);
  ~TThreadVelanScriptDebug();
  TThreadVelanScriptDebug(const TThreadVelanScriptDebug&) = delete;
  TThreadVelanScriptDebug& operator=(const TThreadVelanScriptDebug&) = delete;

  // The next event not handed out yet: blocks until the script stops at a
  // node or ends. Once it has ended, the end is returned on every call. A
  // stop not fetched before the script moved on is replaced by the newer one.
  TDebugEvent NextEvent();
  // The same, giving up after the timeout.
  std::optional<TDebugEvent> NextEvent(std::chrono::milliseconds timeout);

  // Run to the next node. Acts only while the script waits at a node;
  // returns whether it did.
  bool Step();
  // Run to the end without stopping again (a later Stop still ends it).
  void Continue();
  // End the script at its next node (at once when it waits at one).
  void Stop();
  // Waits for the script's thread to end (after a Continue or a Stop). For
  // the thread that owns the session.
  void Join();

private:
  TVelanScriptBase& m_script;
  const std::string m_text;
  std::mutex m_mutex;
  std::condition_variable m_changed;
  // Written under the mutex; the two flags are also read without it, so that
  // a script told to continue pays two atomic loads per node.
  TDebugEvent m_event;  // the latest stop, or the end
  int m_delivered = 0;  // steps of the last stop handed out
  bool m_ended = false;
  bool m_paused = false;  // the script thread waits for a command
  bool m_resume = false;  // the command that lets it go on
  std::atomic<bool> m_stepping{true};
  std::atomic<bool> m_stopRequested{false};
  std::thread m_thread;  // last: it starts when everything else is set

  static void Hook(void* context, const TTokenNode& node);
  void AtNode(const TTokenNode& node);
  void Run();
  void Finish(TDebugOutcome outcome, std::string message, int start, int end);
  TDebugNode Describe(int32_t kind, std::string text, int start, int end) const;
  // A stop already answered by a command is not new, even before the script moved on.
  bool HasNewEvent() const { return m_ended || (m_paused && !m_resume && m_event.steps > m_delivered); }
  TDebugEvent TakeEvent();
};

}  // namespace velantis
