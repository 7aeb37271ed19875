// velantis live PORT [--baud N]: follows a receiver. Prints the fix each time
// it changes and records the live track ("TrackMovingMap-YYYY-MM-DD.trk" in
// the user folder, named on stderr). When the port goes away the error is
// printed and the port is opened again until it comes back; Ctrl-C ends.
#include <CLI/CLI.hpp>
#include <chrono>
#include <iostream>
#include <thread>

#include "cli/command.h"
#include "cli/fix_output.h"
#include "cli/terminal_progress.h"
#include "comm/live_track_log.h"
#include "comm/nmea_live_cycle.h"
#include "comm/port_line_source.h"
#include "comm/serial_error.h"
#include "comm/serial_port.h"

namespace velantis::cli {

namespace {

constexpr auto kReconnectPause = std::chrono::milliseconds(500);

struct TLiveOptions {
  std::string port;
  int baud = kNmeaBaudRate;
};

class TLiveSession {
public:
  TLiveSession(const TLiveOptions& options, TRuntime& runtime, TTerminalProgress& interrupt)
      : m_options(options),
        m_config(runtime.config),
        m_handler(TNmeaReceiverSettings::FromConfig(runtime.config)),
        m_log(runtime.folders.userDir, TNativeOptions::FromConfig(runtime.config, runtime.datums)),
        m_interrupt(interrupt) {}

  // Until Ctrl-C; false when the track could not be written.
  bool Run() {
    std::string lastError;
    while (!m_interrupt.Interrupted()) {
      try {
        Follow();
      } catch (const TXErrorRScom& error) {
        // Said once for each new reason, then the port is tried again.
        if (lastError != error.what()) PrintError(error.what());
        lastError = error.what();
        std::this_thread::sleep_for(kReconnectPause);
      }
      if (m_failed) return false;
    }
    return true;
  }

private:
  void Follow() {
    const std::unique_ptr<TSerialPort> port = OpenSerialPort(m_options.port, m_options.baud);
    TErrorSink errors;
    TPortLineSource source(*port, errors, m_config.Comm_NNEA_Timeout);
    TNmeaLiveCycle cycle(m_handler, source);
    m_handler.Start();
    while (!m_interrupt.Interrupted()) {
      errors.Clear();
      if (!cycle.ReadCurrent(m_fix, errors, m_interrupt.Progress())) continue;
      m_fix.newData = false;
      if (m_filter.Take(m_fix)) std::cout << FixText(m_fix) << std::endl;
      std::string error;
      const bool hadPath = !m_log.Path().empty();
      if (!m_log.Record(m_fix, error)) {
        PrintError(error);
        m_failed = true;
        return;
      }
      if (!hadPath && !m_log.Path().empty()) std::cerr << "track: " << m_log.Path() << std::endl;
    }
  }

  const TLiveOptions& m_options;
  const TConfig& m_config;
  TNmeaLiveHandler m_handler;
  TPosicionNMEA m_fix;
  TFixPrintFilter m_filter;
  TLiveTrackLog m_log;
  TTerminalProgress& m_interrupt;
  bool m_failed = false;
};

int Run(const TLiveOptions& options, const TGlobalOptions& global) {
  TRuntime runtime;
  if (!StartRuntime(global, runtime)) return kExitRefused;
  TTerminalProgress interrupt;
  TLiveSession session(options, runtime, interrupt);
  return session.Run() ? kExitOk : kExitRefused;
}

}  // namespace

void AddLiveCommand(CLI::App& app, const TGlobalOptions& global, int& exitCode) {
  auto options = std::make_shared<TLiveOptions>();
  auto* command = app.add_subcommand("live", "follow a receiver and record the live track");
  command->add_option("port", options->port, "a serial port or host:port")->required();
  AddBaudOption(*command, options->baud);
  command->callback([options, &global, &exitCode] { exitCode = Run(*options, global); });
}

}  // namespace velantis::cli
