// TWaypoints: a waypoint list, its waypoints held by index in file order.
//
// The list has its own name, description and property object (from the
// base), and remembers whether it was read from an OziExplorer file: such a
// list is not saved back in that format. The list counts as modified when it
// or any of its waypoints is; MarkAsSaved clears both.
//
// Field access: a point code with an index answers that waypoint's field
// (unknown codes report the waypoint's own message); element codes are
// PointCount, MinAltitude and MaxAltitude.
#pragma once

#include <vector>

#include "core/baliza.h"
#include "core/bounding_box.h"

namespace velantis {

class TWaypoints : public TElementoGPS {
public:
  size_t Count() const { return m_balizas.size(); }
  const TBaliza& Baliza(size_t index) const { return m_balizas[index]; }
  // For editing; edits mark the waypoint, and through it the list, modified.
  TBaliza& Baliza(size_t index) { return m_balizas[index]; }
  const std::vector<TBaliza>& Balizas() const { return m_balizas; }

  void Add(TBaliza baliza);
  // index at or past the end appends.
  void Insert(size_t index, TBaliza baliza);
  // False when index is past the end.
  bool Remove(size_t index);
  void Clear();

  bool FromOziExplorer() const { return m_fromOzi; }
  void SetFromOziExplorer(bool fromOzi) { m_fromOzi = fromOzi; }

  TBoundingBox Extent() const;

  bool Modified() const override;
  void MarkAsSaved() override;

  size_t PointCount() const override { return m_balizas.size(); }
  bool Retorna_Val_Campo(int code, size_t index, double& value, std::string& error) const override;
  bool Retorna_Val_Campo_Global2(int code, double& value, std::string& error) const override;

protected:
  bool IsPointField(int code) const override;
  TFieldLookup PointField(int code, size_t index, double& value) const override;

private:
  std::vector<TBaliza> m_balizas;
  bool m_fromOzi = false;
};

}  // namespace velantis
