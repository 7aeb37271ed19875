// The device commands the communication thread runs that belong to the
// serial link itself: "Autodetect GPS" (the protocols tried in turn on the
// port; the one found is kept in Last_Autodetect_Protocol) and
// "COM_TESTMOVINGMAPGPS" (track points sent as NMEA sentences, so that a
// program on the other end sees a receiver on the move). Each returns the
// work for TThreadComm::Start; the objects it is given must outlive the run.
#pragma once

#include <string>
#include <vector>

#include "app/config.h"
#include "comm/error_sink.h"
#include "comm/gps_protocol.h"
#include "comm/nmea_test_output.h"
#include "comm/serial_port.h"
#include "comm/thread_comm.h"

namespace velantis {

// result receives the protocol found, errors why none was.
TThreadComm::TCommand AutodetectGpsCommand(TSerialPort& port, TAutoDetectProtocol& protocol,
                                           TConfig& config, std::string& result,
                                           TErrorSink& errors);

TThreadComm::TCommand TestMovingMapCommand(TSerialPort& port, std::vector<const TTrack*> tracks,
                                           TNmeaTestOutputOptions options);

}  // namespace velantis
