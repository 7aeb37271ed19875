// The progress object of long readers and writers.
//
// The operation sets the total (the number of records it will handle) and
// counts one step per record; another thread (a progress bar, a Ctrl-C
// handler, a port command) reads the counts and may cancel. A cancelled
// operation stops at its next step and reports failure. Every member is an
// atomic, so one thread may run the operation while others watch and cancel;
// the counts are only advisory (relaxed order), the cancel flag is seen by
// the next step at the latest.
#pragma once

#include <atomic>
#include <cstdint>

namespace velantis {

class TProgress {
public:
  TProgress() = default;
  TProgress(const TProgress&) = delete;
  TProgress& operator=(const TProgress&) = delete;

  // Starts a new count of total records; steps go back to 0. The cancel flag
  // is kept: a cancel that arrives before the operation starts still stops it.
  void SetTotal(int64_t total) {
    m_total.store(total, std::memory_order_relaxed);
    m_steps.store(0, std::memory_order_relaxed);
  }
  int64_t Total() const { return m_total.load(std::memory_order_relaxed); }
  int64_t Steps() const { return m_steps.load(std::memory_order_relaxed); }

  // Counts count records; false when the object has been cancelled, and the
  // operation must then stop with failure. A cancelled step is not counted.
  bool Step(int64_t count = 1) {
    if (Cancelled()) return false;
    m_steps.fetch_add(count, std::memory_order_relaxed);
    return true;
  }

  void Cancel() { m_cancelled.store(true, std::memory_order_release); }
  bool Cancelled() const { return m_cancelled.load(std::memory_order_acquire); }

  // Total 0, steps 0, not cancelled: ready for another operation.
  void Reset() {
    m_cancelled.store(false, std::memory_order_release);
    SetTotal(0);
  }

  // Steps / total in 0..1 (0 while the total is not known).
  double Fraction() const {
    const int64_t total = Total();
    if (total <= 0) return 0.0;
    const double f = static_cast<double>(Steps()) / static_cast<double>(total);
    return f > 1.0 ? 1.0 : f;
  }

private:
  std::atomic<int64_t> m_total{0};
  std::atomic<int64_t> m_steps{0};
  std::atomic<bool> m_cancelled{false};
};

// The progress object is optional everywhere: these helpers accept nullptr.
inline void ProgressSetTotal(TProgress* progress, int64_t total) {
  if (progress) progress->SetTotal(total);
}
inline bool ProgressStep(TProgress* progress, int64_t count = 1) {
  return progress == nullptr || progress->Step(count);
}

}  // namespace velantis
