// TElementoGPS: the common base of waypoints, waypoint lists, routes and
// tracks.
//
// Every element has a name and a description, a modified flag that every
// edit sets and a completed save clears (MarkAsSaved, virtual so that
// containers clear their parts too), a save-prohibited bit that makes every
// writer refuse the element, an optional property object and an optional
// label. Copies are deep. Elements are not thread-safe: the main thread owns
// them, and the statistics some kinds cache are filled on first use.
//
// Generic field access (field_codes.h): Retorna_Val_Campo answers a field of
// one point (codes that are not point codes of the kind are answered as
// element codes), Retorna_Val_Campo_Global2 a field of the whole element,
// Retorna_Extremos_Campo the smallest and largest value of a field over the
// points. They return false and fill error for a code the kind does not
// know or a point index it does not have; they never throw.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/field_codes.h"
#include "core/property_list.h"
#include "core/text_label.h"

namespace velantis {

// How one point answered a field.
enum class TFieldLookup { Value, Absent, Unknown };

// What a field the point does not carry reports: -9999 for the altitude
// codes (the unknown altitude), kFieldAbsent (-1) for the others.
double FieldAbsentValue(int code);

class TElementoGPS {
public:
  TElementoGPS() = default;
  TElementoGPS(const TElementoGPS& other);
  TElementoGPS& operator=(const TElementoGPS& other);
  TElementoGPS(TElementoGPS&&) noexcept = default;
  TElementoGPS& operator=(TElementoGPS&&) noexcept = default;
  virtual ~TElementoGPS() = default;

  const std::string& Name() const { return m_name; }
  void SetName(std::string name);
  const std::string& Description() const { return m_description; }
  void SetDescription(std::string description);

  // True after any edit since the element was created, read or saved.
  virtual bool Modified() const { return m_modified; }
  void SetModified() { m_modified = true; }
  // Called by a writer after a complete save (and by readers once the element
  // is built): clears the modified flag.
  virtual void MarkAsSaved() { m_modified = false; }

  bool SaveProhibited() const { return m_saveProhibited; }
  void SetSaveProhibited(bool prohibited) { m_saveProhibited = prohibited; }

  // The property object, or nullptr when the element has none.
  const TPropertyList* Properties() const { return m_properties.get(); }
  // The property object for editing, created empty when missing; marks the
  // element modified.
  TPropertyList& EditProperties();
  void RemoveProperties();

  const TTextLabel* Label() const { return m_label.get(); }
  void SetLabel(const TTextLabel& label);
  void RemoveLabel();

  // Points the field access walks (waypoints, route points, track points).
  virtual size_t PointCount() const { return 0; }

  virtual bool Retorna_Val_Campo(int code, size_t index, double& value, std::string& error) const;
  virtual bool Retorna_Val_Campo_Global2(int code, double& value, std::string& error) const = 0;
  // For an element code both extremes are the element's value.
  virtual bool Retorna_Extremos_Campo(int code, double& minimum, double& maximum, std::string& error) const;

protected:
  // Whether code is a point code of the kind (field_codes.h, "point").
  virtual bool IsPointField(int code) const;
  // One point's field, for a point code and an index below PointCount().
  virtual TFieldLookup PointField(int code, size_t index, double& value) const;
  void Touch() { m_modified = true; }
  // The element fields every list of points answers: PointCount, and
  // MinAltitude and MaxAltitude (the smallest or largest altitude of the
  // points, the unknown altitude when none has one); false for other codes.
  bool PointListField(int code, double& value) const;
  // A point field's value once looked up: true with the value, or with
  // FieldAbsentValue when the point has none; false when the code is not
  // answered there.
  static bool ResolveLookup(TFieldLookup lookup, int code, double& value);
  // Sets a member and marks the element modified.
  template <typename TField, typename TValue>
  void SetAndTouch(TField& field, TValue&& value) {
    field = std::forward<TValue>(value);
    Touch();
  }
  // Edits of a list of points: an erase (false when index is past the end)
  // and a clear, each marking the element modified when it changes the list.
  template <typename TPoint>
  bool ErasePoint(std::vector<TPoint>& points, size_t index) {
    if (index >= points.size()) return false;
    points.erase(points.begin() + static_cast<std::ptrdiff_t>(index));
    Touch();
    return true;
  }
  template <typename TPoint>
  void ClearPoints(std::vector<TPoint>& points) {
    if (points.empty()) return;
    points.clear();
    Touch();
  }
  // Modified and MarkAsSaved of an element holding elements (elementOf gives
  // the element of a point): its own flag and those of its points.
  template <typename TPoint, typename TElementOf>
  bool ModifiedWithPoints(const std::vector<TPoint>& points, TElementOf elementOf) const {
    if (TElementoGPS::Modified()) return true;
    for (const TPoint& p : points)
      if (elementOf(p).Modified()) return true;
    return false;
  }
  template <typename TPoint, typename TElementOf>
  void MarkAsSavedWithPoints(std::vector<TPoint>& points, TElementOf elementOf) {
    TElementoGPS::MarkAsSaved();
    for (TPoint& p : points) elementOf(p).MarkAsSaved();
  }

private:
  std::string m_name;
  std::string m_description;
  bool m_modified = false;
  bool m_saveProhibited = false;
  std::unique_ptr<TPropertyList> m_properties;
  std::unique_ptr<TTextLabel> m_label;
};

}  // namespace velantis
