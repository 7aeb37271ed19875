#include "comm/posicion_nmea.h"

#include "geodesy/lista_datums.h"

namespace velantis {

bool PositionOnDatum(const TPosicionNMEA& record, int receiverDatum, TListaDatums& datums,
                     int toDatum, TLonLat& position, std::string& message) {
  TLonLat shifted{record.lon, record.lat};
  if (receiverDatum != toDatum &&
      !datums.Transforma_Grados_Datum(shifted, receiverDatum, toDatum, message))
    return false;
  position = shifted;
  return true;
}

}  // namespace velantis
