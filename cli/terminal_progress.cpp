#include "cli/terminal_progress.h"

#include <csignal>
#include <algorithm>
#include <cstdio>
#include <utility>

#ifdef _WIN32
#include <io.h>
#define VELANTIS_ISATTY _isatty
#define VELANTIS_STDOUT 1
#else
#include <unistd.h>
#define VELANTIS_ISATTY isatty
#define VELANTIS_STDOUT STDOUT_FILENO
#endif

namespace velantis::cli {

namespace {

constexpr int kBarWidth = 40;
constexpr auto kRedrawPeriod = std::chrono::milliseconds(200);

// The progress object Ctrl-C cancels. Cancelling is a lock-free atomic
// store, which a signal handler may do.
std::atomic<TProgress*> g_interruptTarget{nullptr};

extern "C" void CancelOnInterrupt(int) {
  if (TProgress* progress = g_interruptTarget.load()) progress->Cancel();
}

}  // namespace

TTerminalProgress::TTerminalProgress() {
  g_interruptTarget.store(&m_progress);
  m_previousHandler = std::signal(SIGINT, CancelOnInterrupt);
  if (VELANTIS_ISATTY(VELANTIS_STDOUT)) m_drawer = std::thread([this] { Draw(); });
}

TTerminalProgress::~TTerminalProgress() {
  {
    std::lock_guard lock(m_mutex);
    m_stop = true;
  }
  m_wake.notify_all();
  if (m_drawer.joinable()) {
    m_drawer.join();
    std::fprintf(stderr, "\r%*s\r", kBarWidth + 8 + m_captionWidth + 1, "");
  }
  std::signal(SIGINT, m_previousHandler == SIG_ERR ? SIG_DFL : m_previousHandler);
  g_interruptTarget.store(nullptr);
}

void TTerminalProgress::SetCaption(std::string caption) {
  std::lock_guard lock(m_mutex);
  m_caption = std::move(caption);
}

void TTerminalProgress::Draw() {
  std::unique_lock lock(m_mutex);
  while (!m_wake.wait_for(lock, kRedrawPeriod, [this] { return m_stop; })) {
    const double fraction = m_progress.Fraction();
    const int filled = static_cast<int>(fraction * kBarWidth);
    // The caption is padded to the widest one drawn so far, so a shorter
    // one leaves nothing of a longer one behind.
    m_captionWidth = std::max(m_captionWidth, static_cast<int>(m_caption.size()));
    std::fprintf(stderr, "\r%-*s%s[%.*s%*s] %3d%%", m_captionWidth, m_caption.c_str(), m_captionWidth > 0 ? " " : "",
                 filled, "########################################", kBarWidth - filled, "",
                 static_cast<int>(fraction * 100));
    std::fflush(stderr);
  }
}

}  // namespace velantis::cli
