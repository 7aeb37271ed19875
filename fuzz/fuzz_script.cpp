// A script loaded and run, with the file functions and Sleep shut off, the
// strings bounded, and a budget of debugger steps that ends endless loops.
//
// Invariants: an error names a place inside the text (start <= end, both
// within it) and has a message; every node the debugger sees lies inside
// the text.
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz/fuzz_failure.h"
#include "script/velan_script_base.h"

namespace {

using namespace velantis;

constexpr int kStepBudget = 20000;
constexpr size_t kMaxString = size_t{1} << 20;

struct TBudgetSpent {};

struct TRun {
  std::string_view text;
  int steps = 0;
};

bool Inside(int start, int end, std::string_view text) {
  if (text.empty()) return start == 0 && end == 0;
  return start >= 0 && start <= end && end < static_cast<int>(text.size());
}

void Step(void* context, const TTokenNode& node) {
  auto& run = *static_cast<TRun*>(context);
  if (!Inside(node.start, node.end, run.text)) fuzz::Fail("node outside the text", std::string(run.text));
  if (++run.steps > kStepBudget) throw TBudgetSpent{};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  TRun run{std::string_view(reinterpret_cast<const char*>(data), size)};
  TVelanScriptBase script;
  TScriptLimits limits;
  limits.systemAccess = false;
  limits.maxStringLength = kMaxString;
  script.SetLimits(limits);
  script.SetDebugHook(Step, &run);
  try {
    script.Load(run.text);
    script.Ejecuta();
  } catch (const TScriptError& error) {
    if (*error.what() == '\0' || !Inside(error.Start(), error.End(), run.text))
      fuzz::Fail("error without message or place: " + std::string(error.what()) + " @" +
                     std::to_string(error.Start()) + "-" + std::to_string(error.End()),
                 std::string(run.text));
  } catch (const TBudgetSpent&) {
  }
  return 0;
}
