#include "tests/support/proj_reference.h"

#include <cmath>

namespace velantis::test {

TProjReference::TProjReference(const std::string& definition)
    : m_context(proj_context_create()), m_pj(proj_create(m_context, definition.c_str())) {}

TProjReference::~TProjReference() {
  if (m_pj) proj_destroy(m_pj);
  proj_context_destroy(m_context);
}

bool TProjReference::Apply(double& lon, double& lat, bool inverse) const {
  PJ_COORD c = proj_coord(proj_torad(lon), proj_torad(lat), 0, 0);
  c = proj_trans(m_pj, inverse ? PJ_INV : PJ_FWD, c);
  if (c.v[0] == HUGE_VAL || std::isnan(c.v[0])) return false;
  lon = proj_todeg(c.lp.lam);
  lat = proj_todeg(c.lp.phi);
  return true;
}

bool TProjReference::Forward(double lonDeg, double latDeg, double& x, double& y) const {
  if (!m_pj) return false;
  const bool radians = proj_angular_input(m_pj, PJ_FWD);
  PJ_COORD c = radians ? proj_coord(proj_torad(lonDeg), proj_torad(latDeg), 0, 0)
                       : proj_coord(lonDeg, latDeg, 0, 0);
  c = proj_trans(m_pj, PJ_FWD, c);
  if (c.v[0] == HUGE_VAL || std::isnan(c.v[0]) || std::isnan(c.v[1])) return false;
  x = c.v[0];
  y = c.v[1];
  return true;
}

bool TProjReference::Inverse(double x, double y, double& lonDeg, double& latDeg) const {
  if (!m_pj) return false;
  PJ_COORD c = proj_coord(x, y, 0, 0);
  c = proj_trans(m_pj, PJ_INV, c);
  if (c.v[0] == HUGE_VAL || std::isnan(c.v[0]) || std::isnan(c.v[1])) return false;
  const bool radians = proj_angular_output(m_pj, PJ_INV);
  lonDeg = radians ? proj_todeg(c.v[0]) : c.v[0];
  latDeg = radians ? proj_todeg(c.v[1]) : c.v[1];
  return true;
}

}  // namespace velantis::test
