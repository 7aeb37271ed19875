#include "maps/map_calibration.h"

namespace velantis {

bool TMapCalibration::ReachesImageEdge() const {
  if (bitmapWidth <= 0 || bitmapHeight <= 0) return false;
  for (const TPlanePoint& point : polygonBitmap) {
    if (point.x >= bitmapWidth - 1 || point.y >= bitmapHeight - 1) return true;
  }
  return false;
}

}  // namespace velantis
