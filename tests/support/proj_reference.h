// PROJ as an independent reference: a PROJ string operation applied to
// longitude/latitude in degrees.
#pragma once

#include <proj.h>

#include <string>

namespace velantis::test {

class TProjReference {
public:
  explicit TProjReference(const std::string& definition);
  ~TProjReference();
  TProjReference(const TProjReference&) = delete;
  TProjReference& operator=(const TProjReference&) = delete;

  bool Valid() const { return m_pj != nullptr; }
  // Applies the operation (inverse when asked) to degrees; false when PROJ
  // refuses the point (outside a grid, ...).
  bool Apply(double& lon, double& lat, bool inverse = false) const;
  // For a projection ("+proj=tmerc ..."): geographic degrees to plane
  // metres and back. Radians are converted inside when PROJ expects them.
  // False when PROJ refuses the point; the outputs are then untouched.
  bool Forward(double lonDeg, double latDeg, double& x, double& y) const;
  bool Inverse(double x, double y, double& lonDeg, double& latDeg) const;

private:
  PJ_CONTEXT* m_context;
  PJ* m_pj;
};

}  // namespace velantis::test
