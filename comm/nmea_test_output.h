// The moving-map test's output: every point of the chosen tracks sent as a
// GGA (or the extended GGAM) and an RMC sentence, a pause between points, so
// that a program listening on the other end of the port sees a receiver on
// the move.
//
// With error injection on, each sentence draws a number below 100 and is
// damaged by DamageNmeaLine: 23 replaces the first character with "R" (no
// "$"), 55 cuts the line at 30 characters, 93 replaces the fourth character
// from the end with "A" (inside the checksum of a line ending in CR LF: a
// wrong checksum unless that digit was "A" already); other draws leave it
// whole. The random source and the pause are injected so that tests run
// without waiting and with chosen draws.
#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "comm/nmea_line_source.h"
#include "core/progress.h"
#include "core/track.h"

namespace velantis {

inline constexpr int kNmeaDamageDrawBound = 100;
inline constexpr int kNmeaDamageNoDollar = 23;
inline constexpr int kNmeaDamageCut = 55;
inline constexpr int kNmeaDamageChecksum = 93;
inline constexpr size_t kNmeaDamageCutLength = 30;
inline constexpr std::chrono::milliseconds kNmeaTestPause{2000};

struct TNmeaTestOutputOptions {
  bool extendedGga = false;  // GPGGAM instead of GPGGA
  bool galileo = false;      // TComandaNMEA_Tx_Galileo's talker
  bool injectErrors = false;
  int decimals = 4;  // of the minutes of latitude and longitude
  std::chrono::milliseconds pause = kNmeaTestPause;
};

// A number in 0..bound-1.
using TRandomBelow = std::function<int(int bound)>;
using TPauseFunction = std::function<void(std::chrono::milliseconds)>;

// The damage of one draw below kNmeaDamageDrawBound.
void DamageNmeaLine(std::string& line, int draw);

class TNmeaTestOutput {
public:
  // Without random, a Mersenne Twister seeded from the system; without pause,
  // the thread sleeps.
  TNmeaTestOutput(TNmeaLineSink& port, TNmeaTestOutputOptions options, TRandomBelow random = {},
                  TPauseFunction pause = {});

  // Sends every point of every track; the progress object counts points and
  // stops the test when cancelled (false). Port failures throw TXErrorRScom.
  bool Send(const std::vector<const TTrack*>& tracks, TProgress* progress = nullptr);

private:
  void SendSentence(std::string_view kind, const TrkPnt& point);

  TNmeaLineSink& m_port;
  TNmeaTestOutputOptions m_options;
  TRandomBelow m_random;
  TPauseFunction m_pause;
  std::string m_line;
};

}  // namespace velantis
