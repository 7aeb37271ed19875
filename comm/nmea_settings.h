// What the NMEA position rules and the live handling are told: the receiver
// setting (its datum, an altitude offset, the geoid option) and the
// configuration keys of the NMEA protocol.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace velantis {

class TConfig;

// The geoid separation N (metres, geoid above the ellipsoid) at a position
// in degrees. The program has no geoid model yet: the owner injects one, and
// an empty function stands for a model that answers 0 everywhere.
using TGeoidModel = std::function<double(double latDeg, double lonDeg)>;

struct TNmeaReceiverSettings {
  // The receiver setting.
  int datum = 0;  // index into TListaDatums of the datum the receiver reports in (0: WGS 84)
  double altitudeOffsetM = 0;  // added to every GGA altitude
  // For receivers that report the height above the ellipsoid in the GGA
  // altitude field: the geoid separation (the receiver's, or the model's when
  // the receiver sends 0 or nothing) is subtracted from it.
  bool geoidCorrection = false;
  TGeoidModel geoidModel;

  // Configuration keys (their defaults are the store's).
  std::string sentenceFilter;     // Comanda_NMEA_MovingMap: "", "GGA" or "RMC"
  int minSatellites = 0;          // MINSatellitesPosition; 0: no minimum
  bool useChecksum = true;        // Use_Checksum_NMEA: drop sentences whose checksum is wrong
  int chipGps = 0;                // ChipGPS; kChipGpsGlonassOnly counts only "GLGSV" cycles
  int linesWithoutPosition = 50;  // Num_Mensajes_NMEA_Error

  // The configuration keys from the store; the receiver setting keeps its
  // defaults.
  static TNmeaReceiverSettings FromConfig(const TConfig& config);

  // Whether a position sentence of that name may feed the fix.
  bool Accepts(std::string_view name) const {
    return sentenceFilter.empty() || sentenceFilter == name;
  }
};

inline constexpr int kChipGpsGlonassOnly = 4;

}  // namespace velantis
