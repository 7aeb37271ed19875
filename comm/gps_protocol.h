// The protocol objects that talk to a receiver over the serial link. Each has
// a long name (shown to the user) and a short name (kept in the
// configuration), and its own step of protocol auto-detection: given the open
// port, it says whether the device speaks it.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "comm/error_sink.h"
#include "core/progress.h"

namespace velantis {

class TSerialPort;

class TGpsProtocol {
public:
  virtual ~TGpsProtocol() = default;
  virtual std::string_view LongName() const = 0;
  virtual std::string_view ShortName() const = 0;
  // The detection step on an open port: true with the protocol found in
  // result; false with the reason in errors. progress, when given, is read
  // for a cancel between tries. skip asks the step to report its protocol
  // without trying it.
  virtual bool Detect(TSerialPort& port, std::string& result, TErrorSink& errors,
                      const TProgress* progress, bool skip) = 0;
};

inline constexpr std::string_view kAutoDetectLongName = "Auto-Detect";
inline constexpr std::string_view kAutoDetectShortName = "Auto";

// "Auto-Detect": tries its protocols in order and reports the first that
// answers; the index of that protocol is what the configuration keeps in
// Last_Autodetect_Protocol.
class TAutoDetectProtocol : public TGpsProtocol {
public:
  explicit TAutoDetectProtocol(std::vector<std::unique_ptr<TGpsProtocol>> protocols)
      : m_protocols(std::move(protocols)) {}

  std::string_view LongName() const override { return kAutoDetectLongName; }
  std::string_view ShortName() const override { return kAutoDetectShortName; }
  bool Detect(TSerialPort& port, std::string& result, TErrorSink& errors,
              const TProgress* progress, bool skip) override;

  // The index of the protocol the last successful detection found, -1 before.
  int LastDetected() const { return m_lastDetected; }

private:
  std::vector<std::unique_ptr<TGpsProtocol>> m_protocols;
  int m_lastDetected = -1;
};

}  // namespace velantis
