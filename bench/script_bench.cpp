// The script interpreter beside Lua 5.4 on the same four programs in the
// same run (bench/script/<name>.vs and <name>.lua): a counting loop of
// 10,000,000 iterations, string building, calls of a declared function and
// a nested-loop numeric kernel.
//
// - BM_ScriptLoad/<name>: Load alone (scan, classify, group), by the wall
//   clock (a few microseconds: finer than this thread's CPU clock ticks).
// - BM_Script/<name>: Ejecuta on the loaded script, by this thread's CPU
//   time (the first run also resolves each expression once).
// - BM_Lua/<name>: lua5.4 runs the .lua file as a child process; the script
//   times its own program with os.clock (the process's CPU time) and prints
//   it with its result, so the interpreter's start-up is left out.
//
// The fastest run of each counts. Both programs leave a result (the .vs in
// the variable `result`, the .lua on its output) and the summary prints both,
// so a program that does not do the same work shows. At the end: the table of
// times and the ratio ours / Lua per program. Without lua5.4 on the PATH (or
// at $VELANTIS_LUA) the Lua side is skipped with a message.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <string>

#include "bench/bench_run.h"
#include "script/velan_script_base.h"

namespace {

using namespace velantis;

const char* const kPrograms[] = {"count", "strings", "calls", "kernel"};

struct TRow {
  double loadMs = 0;
  double oursMs = 0;
  double luaMs = 0;
  std::string oursResult;
  std::string luaResult;
};
std::map<std::string, TRow>& Rows() {
  static std::map<std::string, TRow> rows;
  return rows;
}

std::string ProgramPath(const std::string& name, const char* extension) {
  return std::string(VELANTIS_BENCH_SOURCE_DIR) + "/script/" + name + extension;
}

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

std::string LuaCommand() {
  const char* value = std::getenv("VELANTIS_LUA");
  return value != nullptr && *value != '\0' ? value : "lua5.4";
}

bool LuaPresent() {
  return std::system((LuaCommand() + " -v > /dev/null 2>&1").c_str()) == 0;
}

void TimeLoad(benchmark::State& state, const std::string& name) {
  const std::string text = ReadFile(ProgramPath(name, ".vs"));
  if (text.empty()) return state.SkipWithError("program not found");
  double fastest = 1e300;
  for (auto _ : state) {
    TVelanScriptBase script;
    const auto start = std::chrono::steady_clock::now();
    script.Load(text);
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    state.SetIterationTime(seconds);
    fastest = std::min(fastest, seconds);
  }
  Rows()[name].loadMs = fastest * 1e3;
}

void TimeRun(benchmark::State& state, const std::string& name) {
  const std::string text = ReadFile(ProgramPath(name, ".vs"));
  if (text.empty()) return state.SkipWithError("program not found");
  TVelanScriptBase script;
  try {
    script.Load(text);
  } catch (const TScriptError& error) {
    return state.SkipWithError(error.what());
  }
  double fastest = 1e300;
  for (auto _ : state) {
    const double start = bench::ThreadCpuSeconds();
    try {
      script.Ejecuta();
    } catch (const TScriptError& error) {
      return state.SkipWithError(error.what());
    }
    const double seconds = bench::ThreadCpuSeconds() - start;
    state.SetIterationTime(seconds);
    fastest = std::min(fastest, seconds);
  }
  TRow& row = Rows()[name];
  row.oursMs = fastest * 1e3;
  const TVarVelanScript* result = script.GetVariable("result");
  row.oursResult = result != nullptr ? result->AsText() : "(none)";
}

void TimeLua(benchmark::State& state, const std::string& name) {
  const std::string command = LuaCommand() + " " + ProgramPath(name, ".lua") + " 2>&1";
  double fastest = 1e300;
  std::string result;
  for (auto _ : state) {
    std::FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) return state.SkipWithError("cannot start lua5.4");
    std::string output;
    char buffer[256];
    while (std::fgets(buffer, sizeof buffer, pipe) != nullptr) output += buffer;
    if (pclose(pipe) != 0) return state.SkipWithError(("lua5.4 failed: " + output).c_str());
    // "<seconds>\t<result>\n"
    const size_t tab = output.find('\t');
    if (tab == std::string::npos) return state.SkipWithError(("unexpected output: " + output).c_str());
    const double seconds = std::atof(output.c_str());
    result = output.substr(tab + 1, output.find_last_not_of("\r\n") - tab);
    state.SetIterationTime(seconds);
    fastest = std::min(fastest, seconds);
  }
  TRow& row = Rows()[name];
  row.luaMs = fastest * 1e3;
  row.luaResult = result;
}

void RegisterAll(bool withLua) {
  for (const char* name : kPrograms) {
    const std::string program = name;
    benchmark::RegisterBenchmark(("BM_ScriptLoad/" + program).c_str(),
                                 [program](benchmark::State& state) { TimeLoad(state, program); })
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(("BM_Script/" + program).c_str(),
                                 [program](benchmark::State& state) { TimeRun(state, program); })
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond)
        ->MinTime(2.0);
    if (withLua) {
      benchmark::RegisterBenchmark(("BM_Lua/" + program).c_str(),
                                   [program](benchmark::State& state) { TimeLua(state, program); })
          ->UseManualTime()
          ->Unit(benchmark::kMillisecond)
          ->MinTime(2.0);
    }
  }
}

void PrintSummary(bool withLua) {
  std::printf("\n%-8s %9s %11s %11s %9s  %-14s %s\n", "program", "load ms", "ours ms", "lua ms", "ours/lua",
              "our result", "lua result");
  for (const char* name : kPrograms) {
    const TRow& row = Rows()[name];
    std::printf("%-8s %9.3f %11.3f ", name, row.loadMs, row.oursMs);
    if (withLua && row.luaMs > 0) {
      std::printf("%11.3f %9.2f ", row.luaMs, row.oursMs / row.luaMs);
    } else {
      std::printf("%11s %9s ", "-", "-");
    }
    std::printf(" %-14s %s\n", row.oursResult.c_str(), withLua ? row.luaResult.c_str() : "-");
  }
}

}  // namespace

int main(int argc, char** argv) {
  const bool withLua = LuaPresent();
  if (!withLua) {
    std::fprintf(stderr, "%s not found (install lua5.4 or set VELANTIS_LUA): the Lua side is skipped\n",
                 LuaCommand().c_str());
  }
  RegisterAll(withLua);
  if (!velantis::bench::RunBenchmarks(argc, argv)) return 1;
  PrintSummary(withLua);
  return 0;
}
