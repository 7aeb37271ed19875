#include "comm/nmea_test_output.h"

#include <memory>
#include <random>
#include <thread>

#include "comm/nmea_sentence_tx.h"

namespace velantis {
namespace {

constexpr size_t kDamagedFromEnd = 4;

TRandomBelow SystemRandom() {
  auto engine = std::make_shared<std::mt19937>(std::random_device{}());
  return [engine](int bound) { return std::uniform_int_distribution<int>(0, bound - 1)(*engine); };
}

}  // namespace

void DamageNmeaLine(std::string& line, int draw) {
  if (draw == kNmeaDamageNoDollar && !line.empty()) {
    line.front() = 'R';
  } else if (draw == kNmeaDamageCut && line.size() > kNmeaDamageCutLength) {
    line.resize(kNmeaDamageCutLength);
  } else if (draw == kNmeaDamageChecksum && line.size() >= kDamagedFromEnd) {
    line[line.size() - kDamagedFromEnd] = 'A';
  }
}

TNmeaTestOutput::TNmeaTestOutput(TNmeaLineSink& port, TNmeaTestOutputOptions options,
                                 TRandomBelow random, TPauseFunction pause)
    : m_port(port),
      m_options(options),
      m_random(random ? std::move(random) : SystemRandom()),
      m_pause(pause ? std::move(pause)
                    : [](std::chrono::milliseconds wait) { std::this_thread::sleep_for(wait); }) {}

void TNmeaTestOutput::SendSentence(std::string_view kind, const TrkPnt& point) {
  TComandaNMEA_Tx plain;
  TComandaNMEA_Tx_Galileo galileo;
  TComandaNMEA_Tx& sentence = m_options.galileo ? galileo : plain;
  sentence.Build(kind, point, m_options.decimals);
  m_line = sentence.Line();
  if (m_options.injectErrors) DamageNmeaLine(m_line, m_random(kNmeaDamageDrawBound));
  m_port.WriteLine(m_line);
}

bool TNmeaTestOutput::Send(const std::vector<const TTrack*>& tracks, TProgress* progress) {
  if (progress != nullptr) {
    int64_t total = 0;
    for (const TTrack* track : tracks) total += static_cast<int64_t>(track->Count());
    progress->SetTotal(total);
  }
  bool first = true;
  for (const TTrack* track : tracks) {
    for (const TrkPnt& point : track->Points()) {
      if (!first) m_pause(m_options.pause);
      first = false;
      if (progress != nullptr && progress->Cancelled()) return false;
      SendSentence(m_options.extendedGga ? "GPGGAM" : "GPGGA", point);
      SendSentence("GPRMC", point);
      if (progress != nullptr && !progress->Step()) return false;
    }
  }
  return true;
}

}  // namespace velantis
