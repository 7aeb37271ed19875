// TThreadComm: the worker thread that carries out one device command at a
// time (a download or upload, reading or saving a device's control panel,
// auto-detection, the moving-map test), so that the caller stays free to show
// progress and to cancel.
//
// The command runs on its own thread with a progress object it counts on and
// whose cancel flag it reads between steps. Its failures end it and are
// logged, never thrown back: a TXErrorRScom as "TXErrorRScom error:" and its
// text (a COMM error entry), any other exception as "Error Exception en
// TThreadComm::Run ()" with what it says, anything else as "Error
// indeterminado 2 (...) ". The text logged is also kept for the caller.
#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

#include "core/progress.h"

namespace velantis {

// The names of the commands, as the thread's texts give them.
inline constexpr std::string_view kCommandSendVectorMap = "Enviar Mapa Vectorial al GPS";
inline constexpr std::string_view kCommandReadControlPanel = "Read GPS Control Panel";
inline constexpr std::string_view kCommandSaveControlPanel = "Save GPS Control Panel";
inline constexpr std::string_view kCommandAutodetect = "Autodetect GPS";
inline constexpr std::string_view kCommandTestMovingMap = "COM_TESTMOVINGMAPGPS";

inline constexpr std::string_view kThreadSerialError = "TXErrorRScom error:";
inline constexpr std::string_view kThreadException = "Error Exception en TThreadComm::Run ()";
inline constexpr std::string_view kThreadUnknownError = "Error indeterminado 2 (...) ";

class TThreadComm {
public:
  // The command's work; it returns whether it succeeded, counts its steps on
  // the progress object and stops when it is cancelled.
  using TCommand = std::function<bool(TProgress& progress)>;

  TThreadComm() = default;
  TThreadComm(const TThreadComm&) = delete;
  TThreadComm& operator=(const TThreadComm&) = delete;
  // Cancels a command still running and waits for it.
  ~TThreadComm();

  // Starts command under name; false (nothing started) while another runs.
  bool Start(std::string name, TCommand command);
  void Cancel() { m_progress.Cancel(); }
  bool Running() const { return m_running.load(std::memory_order_acquire); }
  // Waits for the command; true when it ran to success.
  bool Wait();

  const TProgress& Progress() const { return m_progress; }
  const std::string& Name() const { return m_name; }
  // What was logged when the command failed by an error, else empty.
  std::string ErrorText() const;

private:
  void Run(TCommand command);
  void Fail(std::string text, bool commError);

  std::thread m_thread;
  std::atomic<bool> m_running{false};
  bool m_succeeded = false;
  std::string m_name;
  TProgress m_progress;
  mutable std::mutex m_errorMutex;
  std::string m_error;
};

}  // namespace velantis
