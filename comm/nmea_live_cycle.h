// The live reading cycle: one call of the NMEA protocol's "current data"
// operation, made by the real-time pipeline.
//
// A call reads lines from the receiver port (waiting form), each with its
// zero bytes turned into blanks, through the live handling; after each one
// it drains up to 100 lines from the auxiliary input port, when there is one
// (single-read form, stopping at the first read that brings nothing: a
// second instrument such as a wind or depth sensor feeding the same record),
// and repeats the receiver's line unchanged on the auxiliary output port,
// when there is one. The call succeeds as soon as a handled line marks the
// record new. It fails:
//   - at once when the receiver port brings nothing (the port's reader has
//     reported why);
//   - after Num_Mensajes_NMEA_Error receiver lines without a position: the
//     GLL fallback is switched on again, the fix is cleared (valid false)
//     and kNmeaErrorNoPosition goes to the sink;
//   - when the progress object is cancelled (checked before each line): the
//     cancel message goes to the sink.
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "comm/error_sink.h"
#include "comm/nmea_line_source.h"
#include "comm/nmea_live_handler.h"
#include "comm/posicion_nmea.h"
#include "core/progress.h"

namespace velantis {

inline constexpr std::string_view kNmeaErrorNoPosition = "No se reciben mensajes NMEA de posicion";
inline constexpr int kNmeaAuxiliaryLinesPerCycle = 100;
// The stand-in for the language file's cancellation text until the
// language files are read.
inline constexpr std::string_view kNmeaCancelledDefault = "Cancelled";

class TNmeaLiveCycle {
public:
  // Neither is owned; both outlive the cycle.
  TNmeaLiveCycle(TNmeaLiveHandler& handler, TNmeaLineSource& port)
      : m_handler(handler), m_port(port) {}

  void SetAuxiliaryInput(TNmeaLineSource* source) { m_auxiliaryInput = source; }
  void SetAuxiliaryOutput(TNmeaLineSink* sink) { m_auxiliaryOutput = sink; }
  void SetCancelMessage(std::string text) { m_cancelMessage = std::move(text); }

  bool ReadCurrent(TPosicionNMEA& record, TErrorSink& sink, const TProgress* progress = nullptr);

private:
  // Handles the line read into m_line; true when it marked the record new.
  bool HandleLine(int length, TPosicionNMEA& record);

  TNmeaLiveHandler& m_handler;
  TNmeaLineSource& m_port;
  TNmeaLineSource* m_auxiliaryInput = nullptr;
  TNmeaLineSink* m_auxiliaryOutput = nullptr;
  std::string m_cancelMessage{kNmeaCancelledDefault};
  std::string m_line;
  std::string m_auxiliaryLine;
};

}  // namespace velantis
