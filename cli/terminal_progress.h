// Progress of long work as the command line shows it: a bar on stderr,
// redrawn a few times a second, only when stdout is a terminal; Ctrl-C
// cancels the work through the progress object (the work then stops at its
// next step and reports failure) instead of killing the program mid-save.
#pragma once

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

#include "core/progress.h"

namespace velantis::cli {

class TTerminalProgress {
public:
  TTerminalProgress();
  TTerminalProgress(const TTerminalProgress&) = delete;
  TTerminalProgress& operator=(const TTerminalProgress&) = delete;
  ~TTerminalProgress();

  TProgress* Progress() { return &m_progress; }
  // True once Ctrl-C has been pressed.
  bool Interrupted() const { return m_progress.Cancelled(); }
  // A text shown before the bar from the next redraw on ("" for none).
  void SetCaption(std::string caption);

private:
  void Draw();

  TProgress m_progress;
  std::mutex m_mutex;
  std::condition_variable m_wake;
  bool m_stop = false;
  std::string m_caption;
  int m_captionWidth = 0;
  std::thread m_drawer;
  void (*m_previousHandler)(int) = nullptr;
};

}  // namespace velantis::cli
