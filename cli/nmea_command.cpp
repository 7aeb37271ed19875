// velantis nmea FILE|PORT [--json] [--baud N]: runs every line through the
// live sentence handling and prints the fix each time the handling marks it
// new. A FILE is read whole; a PORT (a serial device or host:port) is read
// until it closes or Ctrl-C.
#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>

#include "app/file_io.h"
#include "cli/command.h"
#include "cli/fix_output.h"
#include "cli/terminal_progress.h"
#include "comm/nmea_live_handler.h"
#include "comm/port_line_source.h"
#include "comm/serial_error.h"
#include "comm/serial_port.h"

namespace velantis::cli {

namespace {

struct TNmeaOptions {
  std::string source;
  bool json = false;
  int baud = kNmeaBaudRate;
};

class TFixPrinter {
public:
  TFixPrinter(const TConfig& config, bool json)
      : m_handler(TNmeaReceiverSettings::FromConfig(config)), m_json(json) {}

  void Line(std::string_view line) {
    if (!m_handler.Handle(line, m_fix)) return;
    m_fix.newData = false;
    if (m_filter.Take(m_fix)) std::cout << (m_json ? FixJson(m_fix) : FixText(m_fix)) << "\n";
  }

private:
  TNmeaLiveHandler m_handler;
  TPosicionNMEA m_fix;
  TFixPrintFilter m_filter;
  bool m_json;
};

int RunFile(const std::string& path, TFixPrinter& printer) {
  std::string bytes;
  std::string error;
  if (!ReadWholeFile(path, bytes, error)) {
    PrintError(error);
    return kExitRefused;
  }
  for (size_t start = 0; start < bytes.size();) {
    size_t end = bytes.find('\n', start);
    end = end == std::string::npos ? bytes.size() : end + 1;
    printer.Line(std::string_view(bytes).substr(start, end - start));
    start = end;
  }
  return kExitOk;
}

// Until the port closes (its error is printed) or Ctrl-C.
int RunPort(const TNmeaOptions& options, const TConfig& config, TFixPrinter& printer) {
  TTerminalProgress interrupt;
  try {
    const std::unique_ptr<TSerialPort> port = OpenSerialPort(options.source, options.baud);
    TErrorSink errors;
    TPortLineSource source(*port, errors, config.Comm_NNEA_Timeout);
    std::string line;
    while (!interrupt.Interrupted()) {
      if (source.ReadLine(line, true) > 0) printer.Line(line);
      std::cout.flush();
    }
  } catch (const TXErrorRScom& error) {
    PrintError(error.what());
    return kExitRefused;
  }
  return kExitOk;
}

int Run(const TNmeaOptions& options, const TGlobalOptions& global) {
  TRuntime runtime;
  if (!StartRuntime(global, runtime)) return kExitRefused;
  TFixPrinter printer(runtime.config, options.json);
  if (std::filesystem::is_regular_file(options.source)) return RunFile(options.source, printer);
  return RunPort(options, runtime.config, printer);
}

}  // namespace

void AddNmeaCommand(CLI::App& app, const TGlobalOptions& global, int& exitCode) {
  auto options = std::make_shared<TNmeaOptions>();
  auto* command = app.add_subcommand("nmea", "the fixes of an NMEA capture or receiver");
  command->add_option("source", options->source, "a capture file, a serial port or host:port")
      ->required();
  command->add_flag("--json", options->json, "one JSON object a fix");
  AddBaudOption(*command, options->baud);
  command->callback([options, &global, &exitCode] { exitCode = Run(*options, global); });
}

}  // namespace velantis::cli
