#include "core/window_rate.h"

namespace velantis {
namespace {

// Times come from day counts, exact to a few microseconds: a window of 10 s
// between fixes 10 s apart must not miss by a rounding.
constexpr double kWindowSlackS = 1e-3;

}  // namespace

void ForEachWindowRate(std::span<const TTimedValue> samples, double windowS,
                       const std::function<void(size_t, double)>& rate) {
  windowS -= kWindowSlackS;
  size_t runStart = 0;
  while (runStart < samples.size()) {
    size_t runEnd = runStart + 1;
    while (runEnd < samples.size() && samples[runEnd].seconds >= samples[runEnd - 1].seconds) ++runEnd;
    bool anyWindow = false;
    size_t i = runStart;
    for (size_t j = runStart + 1; j < runEnd; ++j) {
      while (i + 1 < j && samples[j].seconds - samples[i + 1].seconds >= windowS) ++i;
      const double dt = samples[j].seconds - samples[i].seconds;
      if (dt >= windowS) {
        rate(samples[j].index, (samples[j].value - samples[i].value) / dt);
        anyWindow = true;
      }
    }
    const size_t last = runEnd - 1;
    const double runS = samples[last].seconds - samples[runStart].seconds;
    if (!anyWindow && runS > 0) rate(samples[last].index, (samples[last].value - samples[runStart].value) / runS);
    runStart = runEnd;
  }
}

}  // namespace velantis
