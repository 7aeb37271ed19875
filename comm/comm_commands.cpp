#include "comm/comm_commands.h"

#include "comm/port_line_source.h"

namespace velantis {

TThreadComm::TCommand AutodetectGpsCommand(TSerialPort& port, TAutoDetectProtocol& protocol,
                                           TConfig& config, std::string& result,
                                           TErrorSink& errors) {
  return [&port, &protocol, &config, &result, &errors](TProgress& progress) {
    if (!protocol.Detect(port, result, errors, &progress, false)) return false;
    config.Last_Autodetect_Protocol = protocol.LastDetected();
    return true;
  };
}

TThreadComm::TCommand TestMovingMapCommand(TSerialPort& port, std::vector<const TTrack*> tracks,
                                           TNmeaTestOutputOptions options) {
  return [&port, tracks = std::move(tracks), options](TProgress& progress) {
    TErrorSink unused;  // the test only writes
    TPortLineSource sink(port, unused);
    return TNmeaTestOutput(sink, options).Send(tracks, &progress);
  };
}

}  // namespace velantis
