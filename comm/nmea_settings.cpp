#include "comm/nmea_settings.h"

#include "app/config.h"

namespace velantis {

TNmeaReceiverSettings TNmeaReceiverSettings::FromConfig(const TConfig& config) {
  TNmeaReceiverSettings settings;
  settings.sentenceFilter = config.Comanda_NMEA_MovingMap;
  settings.minSatellites = config.MINSatellitesPosition;
  settings.useChecksum = config.Use_Checksum_NMEA;
  settings.chipGps = config.ChipGPS;
  settings.linesWithoutPosition = config.Num_Mensajes_NMEA_Error;
  return settings;
}

}  // namespace velantis
