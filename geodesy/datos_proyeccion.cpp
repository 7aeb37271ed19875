#include "geodesy/datos_proyeccion.h"

namespace velantis {

TProjectionParams TDatosProyeccion::Params() const {
  TProjectionParams params;
  params.lonOrigin = lonOrigin;
  params.latOrigin = latOrigin;
  params.scaleFactor = scaleFactor;
  params.falseEasting = falseEasting;
  params.falseNorthing = falseNorthing;
  params.lat1 = lat1;
  params.lat2 = lat2;
  return params;
}

}  // namespace velantis
