// The debugger session driven as a front end drives it: each row a script,
// the commands given at its stops, and the trace of what the session showed.
#include <gtest/gtest.h>

#include <thread>

#include "script/thread_velan_script_debug.h"

namespace velantis {
namespace {

std::string Describe(const TDebugNode& node) {
  return std::to_string(node.position.line) + ":" + std::to_string(node.position.column) + " " +
         KindText(node.kind) + " " + std::to_string(node.start) + "-" + std::to_string(node.end);
}

// Each stop as "line:column kind start-end", how it ended, the Echo output.
// keys[i] answers the i-th stop: 'c' continues, 'q' stops, the rest steps.
std::string Trace(const std::string& text, const std::string& keys) {
  TVelanScriptBase script;
  script.Load(text);
  std::string trace;
  TThreadVelanScriptDebug session(script, text);
  TDebugEvent event = session.NextEvent();
  for (; event.outcome == TDebugOutcome::Paused; event = session.NextEvent()) {
    trace += Describe(event.node) + " | ";
    const char key = event.steps <= static_cast<int>(keys.size()) ? keys[event.steps - 1] : 's';
    if (key == 'c') session.Continue();
    else if (key == 'q') session.Stop();
    else EXPECT_TRUE(session.Step());
  }
  session.Join();
  EXPECT_FALSE(session.Step());
  const char* const ends[] = {"paused", "end", "failed ", "stopped"};
  trace += ends[static_cast<int>(event.outcome)] + event.message;
  if (event.outcome != TDebugOutcome::Finished) trace += " at " + Describe(event.node);
  return trace + " #" + std::to_string(event.steps) + " > " + script.Output();
}

TEST(ScriptDebugger, StopsAtEachNodeAndObeysTheCommands) {
  const struct {
    std::string script, keys, trace;
  } cases[] = {
      {"", "", "end #0 > "},
      // Conditions, arguments, groups and a declared function's body stop.
      {"function f(n) {\n  return (n) * 2;\n};\nif (f(3) > 5) Echo(\"big\");", "",
       "4:4 () 40-49 | 4:6 function() 42-44 | 2:10 linea 25-31 | 2:10 () 25-27 | 4:15 linea 51-61 | "
       "4:19 function() 55-61 | end #6 > big"},
      // CR LF and a lone CR end a line each.
      {"a = \"1\";\r\nb = \"2\";\rEcho(a + b);", "ss",
       "1:1 linea 0-6 | 2:1 linea 10-16 | 3:1 linea 19-29 | 3:5 function() 23-29 | end #4 > 12"},
      {"i = 0; while (i < 1000) i++; Echo(\"\" + i);", "sc", "1:1 linea 0-4 | 1:14 () 13-22 | end #2 > 1000"},
      {"while (1) {\n  x = 1;\n};\nEcho(\"never\");", "ssq",
       "1:7 () 6-8 | 2:3 linea 14-18 | 1:7 () 6-8 | stopped at 1:7 null 6-8 #3 > "},
      {"Echo(\"x\");\n  y = z;", "",
       "1:1 linea 0-8 | 1:5 function() 4-8 | 2:3 linea 13-17 | failed Unknown variable 'z' at 2:7 null 17-17 #3 > x"},
  };
  for (const auto& c : cases) EXPECT_EQ(Trace(c.script, c.keys), c.trace) << c.script;
}

TEST(ScriptDebugger, StopFromAnotherThreadEndsARunningLoop) {
  const std::string text = "n = 0; while (1) n++;";
  TVelanScriptBase script;
  script.Load(text);
  TThreadVelanScriptDebug session(script, text);
  session.NextEvent();
  session.Continue();
  // Told to continue, it does not stop again while it loops.
  EXPECT_FALSE(session.NextEvent(std::chrono::milliseconds(50)).has_value());
  std::thread stopper([&session] { session.Stop(); });
  const TDebugEvent end = session.NextEvent();
  stopper.join();
  EXPECT_EQ(std::tie(end.outcome, end.steps), std::make_tuple(TDebugOutcome::Stopped, 1));
  EXPECT_GT(script.GetVariable("n")->number, 0);
  EXPECT_EQ(session.NextEvent().outcome, TDebugOutcome::Stopped);  // the end, on every later call
}

// Destroying a session wherever its script is must neither hang nor leak,
// and leaves the script free of the hook.
TEST(ScriptDebugger, DestroyedMidRun) {
  const std::string text = "s = \"\"; while (1) { s = s + \"x\"; if (s == \"xxxx\") s = \"\"; }";
  for (const int steps : {0, 1, 5, -1}) {
    TVelanScriptBase script;
    script.Load(text);
    auto session = std::make_unique<TThreadVelanScriptDebug>(script, text);
    for (int i = 0; i < steps; ++i) session->NextEvent(), session->Step();
    if (steps < 0) session->Continue();
    session.reset();
    script.Load("Echo(\"free\");");
    script.Ejecuta();
    EXPECT_EQ(script.Output(), "free") << steps;
  }
}

}  // namespace
}  // namespace velantis
