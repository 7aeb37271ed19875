#include "geodesy/projection_file.h"

#include <array>
#include <charconv>
#include <cmath>

#include "app/decimal_text.h"
#include "app/file_io.h"
#include "geodesy/coordinate_notation.h"
#include "geodesy/projection_file_lines.h"

namespace velantis {

namespace {

using projection_file::ForEachLine;
using projection_file::SameKey;
using projection_file::SplitKeyValue;

enum class TValueKind { Version, Text, Angle, Number, AppendedText, Datum, Unit };

struct TKeyInfo {
  std::string_view key;
  TValueKind kind;
  uint32_t bit;      // 0 for keys without one
  bool inOlderForm;  // taken by the transverse Mercator form
  double TDatosProyeccion::*number;
  std::string TDatosProyeccion::*text;
};

// In the order the writer prints them.
constexpr std::array<TKeyInfo, 14> kKeys = {{
    {"VERSION", TValueKind::Version, kFieldVersion, true, nullptr, nullptr},
    {"PROJECTION", TValueKind::Text, kFieldProjection, true, nullptr,
     &TDatosProyeccion::projection},
    {"NAME", TValueKind::Text, kFieldName, true, nullptr, &TDatosProyeccion::name},
    {"LON_ORIGIN", TValueKind::Angle, kFieldLonOrigin, true, &TDatosProyeccion::lonOrigin, nullptr},
    {"LAT_ORIGIN", TValueKind::Angle, kFieldLatOrigin, true, &TDatosProyeccion::latOrigin, nullptr},
    {"SCALE_FACTOR", TValueKind::Number, kFieldScaleFactor, true, &TDatosProyeccion::scaleFactor,
     nullptr},
    {"FN", TValueKind::Number, kFieldFalseNorthing, true, &TDatosProyeccion::falseNorthing,
     nullptr},
    {"FE", TValueKind::Number, kFieldFalseEasting, true, &TDatosProyeccion::falseEasting, nullptr},
    {"LAT1", TValueKind::Angle, kFieldLat1, false, &TDatosProyeccion::lat1, nullptr},
    {"LAT2", TValueKind::Angle, kFieldLat2, false, &TDatosProyeccion::lat2, nullptr},
    {"OTHER_NAMES", TValueKind::AppendedText, 0, true, nullptr, &TDatosProyeccion::otherNames},
    {"VERIF_POINT", TValueKind::AppendedText, 0, false, nullptr, &TDatosProyeccion::verifPoints},
    {"PREFERED_DATUM", TValueKind::Datum, 0, true, nullptr, nullptr},
    {"UNIT", TValueKind::Unit, 0, false, nullptr, nullptr},
}};

// Every key of the older form except PREFERED_DATUM and OTHER_NAMES.
constexpr uint32_t kOlderFormRequired = kFieldVersion | kFieldProjection | kFieldName |
                                        kFieldLonOrigin | kFieldLatOrigin | kFieldScaleFactor |
                                        kFieldFalseNorthing | kFieldFalseEasting;
constexpr int kDefinitionVersion = 1;
constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kFeet = "FEET";

const TKeyInfo* FindKey(std::string_view key) {
  for (const TKeyInfo& info : kKeys) {
    if (SameKey(info.key, key)) return &info;
  }
  return nullptr;
}

bool ReadDecimal(std::string_view text, double& value) {
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  return ec == std::errc() && end == text.data() + text.size() && std::isfinite(value);
}

bool ReadVersion(std::string_view text) {
  int version = 0;
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), version);
  return ec == std::errc() && end == text.data() + text.size() && version == kDefinitionVersion;
}

// Any coordinate notation first, a plain decimal number otherwise.
bool ReadAngle(std::string_view text, double& value) {
  double degrees = 0;
  bool isLatitude = false;
  std::string ignored;
  if (ParseLatLon(text, degrees, isLatitude, ignored) && std::isfinite(degrees)) {
    value = degrees;
    return true;
  }
  return ReadDecimal(text, value);
}

std::string Upper(std::string_view text) {
  std::string upper(text);
  for (char& c : upper) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return upper;
}

int FindDatum(std::string_view name, const TListaDatums* datums) {
  return datums ? datums->FindProjectionName(name) : -1;
}

void Append(std::string& list, std::string_view entry) {
  if (!list.empty()) list += ';';
  list += entry;
}

bool HasTextLines(std::string_view text) {
  if (text.find('\0') != std::string_view::npos) return false;
  return text.find_first_not_of(" \t\r\n") != std::string_view::npos;
}

bool WritableText(std::string_view key, std::string_view value, std::string& error) {
  if (value.find_first_of(std::string_view("\r\n\0", 3)) == std::string_view::npos) return true;
  error = "Line break in the value of " + std::string(key);
  return false;
}

}  // namespace

bool ReadProjectionText(std::string_view text, const TListaDatums* datums,
                        TDatosProyeccion& definition, std::string& error) {
  if (!HasTextLines(text)) {
    error = kProjectionErrLines;
    return false;
  }
  TDatosProyeccion read;
  const bool ok = ForEachLine(text, [&](std::string_view line, int) {
    if (projection_file::TrimBlanks(line).empty()) return true;
    std::string_view key, value;
    if (!SplitKeyValue(line, key, value)) {
      error = kProjectionErrLine;
      return false;
    }
    const TKeyInfo* info = FindKey(key);
    if (!info) {
      error = kProjectionErrKey;
      return false;
    }
    switch (info->kind) {
      case TValueKind::Version:
        if (!ReadVersion(value)) {
          error = kProjectionErrVersion;
          return false;
        }
        break;
      case TValueKind::Text:
        read.*(info->text) = value;
        break;
      case TValueKind::AppendedText:
        Append(read.*(info->text), value);
        break;
      case TValueKind::Angle:
      case TValueKind::Number:
        if (!(info->kind == TValueKind::Angle ? ReadAngle(value, read.*(info->number))
                                              : ReadDecimal(value, read.*(info->number)))) {
          error = kProjectionErrLine;
          return false;
        }
        break;
      case TValueKind::Datum:
        read.preferredDatum = FindDatum(value, datums);
        break;
      case TValueKind::Unit:
        if (Upper(value) == kFeet) read.unit = kUnitCodeFeet;
        break;
    }
    read.fieldsPresent |= info->bit;
    return true;
  });
  if (!ok) return false;
  definition = std::move(read);
  return true;
}

bool ReadTransverseMercatorText(std::string_view text, const TListaDatums* datums,
                                TDatosProyeccion& definition, std::string& error) {
  TDatosProyeccion read;
  const bool ok = ForEachLine(text, [&](std::string_view line, int) {
    if (projection_file::TrimBlanks(line).empty()) return true;
    std::string_view key, value;
    const TKeyInfo* info = SplitKeyValue(line, key, value) ? FindKey(key) : nullptr;
    if (!info || !info->inOlderForm || line.find('\0') != std::string_view::npos) {
      error = "Error in " + std::string(line);
      return false;
    }
    switch (info->kind) {
      case TValueKind::Version:
        if (!ReadVersion(value)) {
          error = "Error in 'VERSION'";
          return false;
        }
        break;
      case TValueKind::Text:
        if (info->bit == kFieldProjection) {
          if (value != kTransverseMercatorName && value != kTransverseMercatorOldSpelling) {
            error = "Error in 'PROJECTION'";
            return false;
          }
          read.projection = kTransverseMercatorName;
        } else {
          read.*(info->text) = value;
        }
        break;
      case TValueKind::AppendedText:
        Append(read.*(info->text), value);
        break;
      case TValueKind::Angle:
      case TValueKind::Number:
        if (!ReadDecimal(value, read.*(info->number))) {
          error = "Error in " + std::string(line);
          return false;
        }
        break;
      case TValueKind::Datum:
        read.preferredDatum = FindDatum(value, datums);
        break;
      case TValueKind::Unit:
        break;  // not a key of this form
    }
    read.fieldsPresent |= info->bit;
    return true;
  });
  if (!ok) return false;
  if ((read.fieldsPresent & kOlderFormRequired) != kOlderFormRequired) {
    error = "Error, some fields missing";
    return false;
  }
  definition = std::move(read);
  return true;
}

bool ReadProjectionFile(const std::string& path, const TListaDatums* datums,
                        TDatosProyeccion& definition, std::string& error) {
  std::string text;
  return ReadWholeFile(path, text, error) && ReadProjectionText(text, datums, definition, error);
}

bool ReadTransverseMercatorFile(const std::string& path, const TListaDatums* datums,
                                TDatosProyeccion& definition, std::string& error) {
  std::string text;
  return ReadWholeFile(path, text, error) &&
         ReadTransverseMercatorText(text, datums, definition, error);
}

bool ProjectionText(const TDatosProyeccion& definition, const TListaDatums* datums,
                    std::string& text, std::string& error) {
  std::string out;
  const auto line = [&out](std::string_view key, std::string_view value) {
    out.append(key).append("=").append(value).append(kLineEnd);
  };
  for (const TKeyInfo& info : kKeys) {
    switch (info.kind) {
      case TValueKind::Version:
        line(info.key, std::to_string(kDefinitionVersion));
        break;
      case TValueKind::Text:
      case TValueKind::AppendedText: {
        const std::string& value = definition.*(info.text);
        const bool present = info.bit ? definition.Has(info.bit) : !value.empty();
        if (!present) break;
        if (!WritableText(info.key, value, error)) return false;
        line(info.key, value);
        break;
      }
      case TValueKind::Angle:
      case TValueKind::Number:
        if (definition.Has(info.bit)) line(info.key, ShortestDecimal(definition.*(info.number)));
        break;
      case TValueKind::Datum: {
        if (definition.preferredDatum < 0) break;
        const TDatum* datum = datums ? datums->Get(definition.preferredDatum) : nullptr;
        if (!datum) {
          error = "Unknown datum index " + std::to_string(definition.preferredDatum);
          return false;
        }
        if (!WritableText(info.key, datum->name, error)) return false;
        line(info.key, datum->name);
        break;
      }
      case TValueKind::Unit:
        if (definition.unit == kUnitCodeFeet) line(info.key, kFeet);
        break;
    }
  }
  text = std::move(out);
  return true;
}

bool WriteProjectionFile(const std::string& path, const TDatosProyeccion& definition,
                         const TListaDatums* datums, std::string& error) {
  std::string text;
  return ProjectionText(definition, datums, text, error) && WriteFileAtomic(path, text, error);
}

}  // namespace velantis
