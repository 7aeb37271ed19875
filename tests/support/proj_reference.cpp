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

}  // namespace velantis::test
