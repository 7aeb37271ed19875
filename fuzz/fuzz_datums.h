// The datums the file fuzz targets resolve names against, held in memory so
// that the targets need no data folder: WGS 84 under an alias, two names on
// its ellipsoid, and a shifted datum with aliases.
#pragma once

#include "geodesy/lista_datums.h"

namespace velantis::fuzz {

inline const TListaDatums& Datums() {
  static int configured = 0;
  static const TListaDatums datums = [] {
    TListaDatums list(configured);
    list.Add({.name = "WGS 84", .aliasText = "WGS 1984", .invFlattening = 298.257223563, .a = 6378137});
    for (const char* name : {"European 1979", "Ord Srvy Grt Britn"})
      list.Add({.name = name, .invFlattening = 298.257223563, .a = 6378137});
    list.Add({.name = "Pulkovo 1942", .aliasText = "Pulkovo 1942 (1);Pulkovo 1942 (2)", .invFlattening = 298.3,
              .a = 6378245, .dX = 28, .dY = -130, .dZ = -95});
    return list;
  }();
  return datums;
}

}  // namespace velantis::fuzz
