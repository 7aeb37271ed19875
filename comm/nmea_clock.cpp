#include "comm/nmea_clock.h"

#include <chrono>

namespace velantis {
namespace {

constexpr double kUnixEpochDays = 25569.0;  // 1970-01-01 in TDateTime days

}  // namespace

TDateTime TNmeaClock::SystemNow() {
  const auto since = std::chrono::system_clock::now().time_since_epoch();
  const double seconds = std::chrono::duration<double>(since).count();
  return TDateTime::FromDays(kUnixEpochDays + seconds / kSecondsPerDay);
}

}  // namespace velantis
