// velantis detect PORT [--baud N]: protocol auto-detection on a port; prints
// the protocol found and keeps it in the configuration
// (Last_Autodetect_Protocol).
#include <CLI/CLI.hpp>
#include <iostream>

#include "cli/command.h"
#include "cli/terminal_progress.h"
#include "comm/nmea_protocol.h"
#include "comm/serial_error.h"
#include "comm/serial_port.h"

namespace velantis::cli {

namespace {

struct TDetectOptions {
  std::string port;
  int baud = kNmeaBaudRate;
};

// The protocols tried, in order.
TAutoDetectProtocol AutoDetect(const TConfig& config) {
  std::vector<std::unique_ptr<TGpsProtocol>> protocols;
  protocols.push_back(std::make_unique<TNmeaProtocol>(TNmeaReceiverSettings::FromConfig(config),
                                                      config.Comm_NNEA_Timeout));
  return TAutoDetectProtocol(std::move(protocols));
}

int Run(const TDetectOptions& options, const TGlobalOptions& global) {
  TRuntime runtime;
  if (!StartRuntime(global, runtime)) return kExitRefused;
  TTerminalProgress interrupt;
  TAutoDetectProtocol protocol = AutoDetect(runtime.config);
  std::string result;
  TErrorSink errors;
  try {
    const std::unique_ptr<TSerialPort> port = OpenSerialPort(options.port, options.baud);
    if (!protocol.Detect(*port, result, errors, interrupt.Progress(), false)) {
      PrintError(errors.Records().empty() ? "No protocol detected" : errors.Records().back().message);
      return kExitRefused;
    }
  } catch (const TXErrorRScom& error) {
    PrintError(error.what());
    return kExitRefused;
  }
  std::cout << result << "\n";
  runtime.config.Last_Autodetect_Protocol = protocol.LastDetected();
  std::string error;
  if (!runtime.config.Save(error)) PrintError(error);
  return kExitOk;
}

}  // namespace

void AddDetectCommand(CLI::App& app, const TGlobalOptions& global, int& exitCode) {
  auto options = std::make_shared<TDetectOptions>();
  auto* command = app.add_subcommand("detect", "protocol auto-detection on a port");
  command->add_option("port", options->port, "a serial port or host:port")->required();
  AddBaudOption(*command, options->baud);
  command->callback([options, &global, &exitCode] { exitCode = Run(*options, global); });
}

}  // namespace velantis::cli
