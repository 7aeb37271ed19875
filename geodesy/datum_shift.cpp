// Moving a position from one datum to another: through an NTv2 grid when one
// of the two is WGS 84 and the other has a grid, else by the three-parameter
// shift.
#include <cmath>

#include "geodesy/lista_datums.h"
#include "geodesy/molodensky.h"
#include "geodesy/ntv2.h"

namespace velantis {

namespace {

// Poles are left as they are: the shift formulas divide by cos(latitude).
constexpr double kPoleLatitudeDeg = 89.9999;

}  // namespace

bool TListaDatums::Transforma_Grados_Datum(TLonLat& position, int from, int to,
                                           std::string& message) {
  if (!Exists(*m_configured)) *m_configured = 0;
  from = Resolve(from);
  to = Resolve(to);
  if (from == to) return true;
  if (!Exists(from) || !Exists(to)) {
    message = "Transforma_Grados_Datum: datum index out of range";
    return false;
  }
  if (std::fabs(position.lat) > kPoleLatitudeDeg) return true;

  const TDatum& source = m_datums[static_cast<size_t>(from)];
  const TDatum& target = m_datums[static_cast<size_t>(to)];
  if (!source.grid && target.grid && from == 0) {
    if (target.grid->Shift(position.lon, position.lat, true)) return true;
  } else if (source.grid && to == 0) {
    if (source.grid->Shift(position.lon, position.lat, false)) return true;
  }
  return MolodenskyShift(position, source, target, message);
}

}  // namespace velantis
