#include "maps/map_projection.h"

#include <vector>

#include "app/decimal_text.h"
#include "formats/native_text.h"
#include "geodesy/projection_catalogue.h"

namespace velantis {

namespace {

std::vector<std::string_view> SplitCommas(std::string_view value) {
  std::vector<std::string_view> fields;
  size_t start = 0;
  for (size_t comma = value.find(','); comma != std::string_view::npos;
       comma = value.find(',', start)) {
    fields.push_back(TrimBlanks(value.substr(start, comma - start)));
    start = comma + 1;
  }
  fields.push_back(TrimBlanks(value.substr(start)));
  // Each parameter is followed by a comma, so the last field is empty.
  while (!fields.empty() && fields.back().empty()) fields.pop_back();
  return fields;
}

int CodeOfKind(std::string_view name) {
  if (name == kLatLongName) return kProjectionCodeLatLon;
  if (name == kUtmName) return kProjectionCodeUtm;
  return kProjectionCodePlane;
}

// The full form: code, catalogue name, exactly the kind's parameters.
bool ReadFullForm(const std::vector<std::string_view>& fields, TMapProjection& projection) {
  int code = 0;
  if (fields.size() < 2 || !ParseInt(fields[0], code)) return false;
  const TProjectionKind* kind = FindProjectionKind(fields[1]);
  if (!kind || CodeOfKind(kind->name) != code) return false;
  TMapProjection read;
  read.name = std::string(kind->name);
  const size_t given = fields.size() - 2;
  if (read.IsUtm()) {
    if (given > 1) return false;
    if (given == 1) {
      TZonaUTM zone;
      std::string message;
      // A zone and a band letter, so that the zone writes back as it read.
      if (fields[2].size() < 2 || fields[2].size() > 3 || !ParseUtmZone(fields[2], zone, message) ||
          !CheckUtmZone(zone, message))
        return false;
      read.zone = zone;
    }
  } else {
    if (given != kind->captions.size()) return false;
    for (size_t i = 0; i < given; ++i) {
      if (!ParseReal(fields[2 + i], read.params.*(kind->captions[i].param))) return false;
    }
  }
  projection = std::move(read);
  return true;
}

}  // namespace

int TMapProjection::Code() const { return CodeOfKind(name); }
bool TMapProjection::IsLatLong() const { return name == kLatLongName; }
bool TMapProjection::IsUtm() const { return name == kUtmName; }

bool ParseMapProjection(std::string_view value, TMapProjection& projection, std::string& error) {
  if (ReadFullForm(SplitCommas(value), projection)) return true;
  const size_t comma = value.find(',');
  std::string_view name = comma == std::string_view::npos ? "" : value.substr(comma + 1);
  while (!name.empty() && (name.back() == ',' || name.back() == ' ')) name.remove_suffix(1);
  name = TrimBlanks(name);
  // A name with a comma left in it is a value of the full form that did not
  // read, not a name.
  if (name.empty() || name.find(',') != std::string_view::npos) {
    error = "Unknown projection: " + std::string(value);
    return false;
  }
  projection = TMapProjection{};
  const TProjectionKind* kind = FindProjectionKind(name);
  projection.name = std::string(kind ? kind->name : name);
  return true;
}

std::string FormatMapProjection(const TMapProjection& projection) {
  std::string value = std::to_string(projection.Code()) + ',' + projection.name + ',';
  if (projection.IsUtm()) {
    if (projection.zone) value += FormatUtmZone(*projection.zone) + ',';
    return value;
  }
  const TProjectionKind* kind = FindProjectionKind(projection.name);
  if (!kind) return value;
  for (const TProjectionCaption& caption : kind->captions) {
    value += ShortestDecimal(projection.params.*(caption.param)) + ',';
  }
  return value;
}

}  // namespace velantis
