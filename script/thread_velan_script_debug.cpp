// Choices the debugger leaves open:
// - the session stops before the first node, so a front end sees where the
//   script starts before anything runs;
// - Stop unwinds the script with a signal of its own that is not an error
//   (not a std::exception either, so no catch of the system's failures turns
//   it into one): nothing after the node runs, the outcome is Stopped and it
//   carries no message; a front end decides how to say so;
// - the end event of a failure points at the error's token, with its line;
//   a normal end and a stop point at nothing new (a stop at its node).
#include "script/thread_velan_script_debug.h"

#include <utility>

namespace velantis {

namespace {

// Thrown from the hook to end the script at the node it was called with.
struct TDebugStopSignal {
  int start;
  int end;
};

}  // namespace

TThreadVelanScriptDebug::TThreadVelanScriptDebug(TVelanScriptBase& script, std::string text)
    : m_script(script), m_text(std::move(text)) {
  m_script.SetDebugHook(&Hook, this);
  m_thread = std::thread([this] { Run(); });
}

TThreadVelanScriptDebug::~TThreadVelanScriptDebug() {
  Stop();
  Join();
}

void TThreadVelanScriptDebug::Hook(void* context, const TTokenNode& node) {
  static_cast<TThreadVelanScriptDebug*>(context)->AtNode(node);
}

void TThreadVelanScriptDebug::AtNode(const TTokenNode& node) {
  if (m_stopRequested.load()) throw TDebugStopSignal{node.start, node.end};
  if (!m_stepping.load()) return;
  std::unique_lock lock(m_mutex);
  if (!m_stopRequested && m_stepping) {
    m_event = {TDebugOutcome::Paused, Describe(node.kind, node.text, node.start, node.end), {},
               m_event.steps + 1};
    m_paused = true;
    m_resume = false;
    m_changed.notify_all();
    m_changed.wait(lock, [this] { return m_resume || m_stopRequested; });
    m_paused = false;
  }
  if (m_stopRequested) throw TDebugStopSignal{node.start, node.end};
}

void TThreadVelanScriptDebug::Run() {
  try {
    m_script.Ejecuta();
    Finish(TDebugOutcome::Finished, {}, 0, 0);
  } catch (const TDebugStopSignal& stop) {
    Finish(TDebugOutcome::Stopped, {}, stop.start, stop.end);
  } catch (const TScriptError& error) {
    Finish(TDebugOutcome::Failed, error.what(), error.Start(), error.End());
  } catch (...) {  // Ejecuta turns the system's failures into script errors; anything else
    Finish(TDebugOutcome::Failed, kUndefError, 0, 0);
  }
}

void TThreadVelanScriptDebug::Finish(TDebugOutcome outcome, std::string message, int start, int end) {
  m_script.SetDebugHook(nullptr, nullptr);
  const bool atNode = outcome != TDebugOutcome::Finished;
  TDebugNode node = atNode ? Describe(kTokNull, {}, start, end) : TDebugNode{};
  std::lock_guard lock(m_mutex);
  m_event = {outcome, std::move(node), std::move(message), m_event.steps};
  m_ended = true;
  m_changed.notify_all();
}

TDebugNode TThreadVelanScriptDebug::Describe(int32_t kind, std::string text, int start, int end) const {
  return {kind, std::move(text), start, end, LocateOffset(m_text, start)};
}

TDebugEvent TThreadVelanScriptDebug::TakeEvent() {
  if (!m_ended) m_delivered = m_event.steps;
  return m_event;
}

TDebugEvent TThreadVelanScriptDebug::NextEvent() {
  std::unique_lock lock(m_mutex);
  m_changed.wait(lock, [this] { return HasNewEvent(); });
  return TakeEvent();
}

std::optional<TDebugEvent> TThreadVelanScriptDebug::NextEvent(std::chrono::milliseconds timeout) {
  std::unique_lock lock(m_mutex);
  if (!m_changed.wait_for(lock, timeout, [this] { return HasNewEvent(); })) return std::nullopt;
  return TakeEvent();
}

bool TThreadVelanScriptDebug::Step() {
  std::lock_guard lock(m_mutex);
  if (!m_paused || m_resume) return false;
  m_resume = true;
  m_changed.notify_all();
  return true;
}

void TThreadVelanScriptDebug::Continue() {
  std::lock_guard lock(m_mutex);
  m_stepping = false;
  if (m_paused) m_resume = true;
  m_changed.notify_all();
}

void TThreadVelanScriptDebug::Stop() {
  std::lock_guard lock(m_mutex);
  if (m_ended) return;
  m_stopRequested = true;
  m_changed.notify_all();
}

void TThreadVelanScriptDebug::Join() {
  if (m_thread.joinable()) m_thread.join();
}

}  // namespace velantis
