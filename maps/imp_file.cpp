#include "maps/imp_file.h"

#include <array>
#include <charconv>
#include <filesystem>

#include "app/decimal_text.h"
#include "app/file_io.h"
#include "app/log.h"
#include "formats/file_dispatch.h"
#include "formats/native_text.h"
#include "geodesy/projection_file_lines.h"
#include "maps/map_file.h"

namespace velantis {

namespace {

using projection_file::ForEachLine;
using projection_file::SameKey;
using projection_file::SplitKeyValue;

constexpr std::string_view kLineEnd = "\r\n";
constexpr int kWrittenVersion = 2;
constexpr size_t kPointFields = 5;
constexpr size_t kMatrixNumbers = 6;
constexpr size_t kMatrixE = 3;  // the factor of py in Y
constexpr size_t kMatrixF = 5;  // the shift of Y

constexpr std::string_view kHeader = "Header";
constexpr std::string_view kMap = "Map";
constexpr std::string_view kCalibration = "Calibration";
constexpr std::string_view kPolygonBitmap = "MainPolygonBitmap";
constexpr std::string_view kPolygonCoords = "MainPolygonCoords";
constexpr std::string_view kLayers = "Layers";
constexpr std::string_view kBitmapData = "BitmapData";
constexpr std::string_view kHipermapLayers = "HiperMapLayers";
constexpr std::string_view kHipermapLayer = "HLayer";
constexpr std::string_view kProperties = "Properties";
constexpr std::string_view kContextMenu = "ContextMenu";

struct TTextKey {
  std::string_view key;
  std::string TMapCalibration::*member;
};

using M = TMapCalibration;
constexpr std::array<TTextKey, 8> kHeaderTexts{{
    {"ProjectionToView", &M::projectionToView},
    {"Copyright", &M::copyright},
    {"MaxZoomLevel", &M::maxZoomLevel},
    {"MinZoomLevel", &M::minZoomLevel},
    {"MapScale", &M::mapScale},
    {"ReqVersion", &M::reqVersion},
    {"Name", &M::name},
    {"Description", &M::description},
}};
constexpr std::array<TTextKey, 12> kMapTexts{{
    {"Bitmap", &M::bitmap},
    {"BitsPerPixel", &M::bitsPerPixel},
    {"MemoryUse", &M::memoryUse},
    {"Remote", &M::remote},
    {"VectorMap", &M::vectorMap},
    {"ScaleMpix", &M::scaleMpix},
    {"TransparentColor", &M::transparentColor},
    {"TolTransparentColor", &M::tolTransparentColor},
    {"ReloadTime", &M::reloadTime},
    {"PoiImages", &M::poiImages},
    {"Orientation", &M::orientation},
    {"OrientationRange", &M::orientationRange},
}};

template <size_t N>
bool ReadTextKey(const std::array<TTextKey, N>& keys, std::string_view key, std::string_view value,
                 TMapCalibration& map) {
  for (const TTextKey& text : keys) {
    if (SameKey(text.key, key)) {
      map.*(text.member) = std::string(value);
      return true;
    }
  }
  return false;
}

bool IsRawSection(std::string_view section) {
  return section == kBitmapData || section == kProperties || section == kContextMenu;
}

// The value of an indexed line ("P0=...", "M3=..."): the text after "=".
bool IndexedValue(std::string_view line, std::string_view& value) {
  const size_t equals = line.find('=');
  if (equals == std::string_view::npos) return false;
  value = line.substr(equals + 1);
  return true;
}

bool ReadPair(std::string_view text, TPlanePoint& point) {
  std::array<std::string_view, 3> fields;
  return SplitAt(text, ',', fields.data(), fields.size()) >= 2 && ParseReal(fields[0], point.x) &&
         ParseReal(fields[1], point.y);
}

bool ReadPoint(std::string_view line, TCalibrationPoint& point) {
  std::string_view value;
  std::array<std::string_view, kPointFields + 1> fields;
  if (!IndexedValue(line, value) || SplitAt(value, ',', fields.data(), fields.size()) < kPointFields)
    return false;
  point.zone = std::string(TrimBlanks(fields[2]));
  return ParseReal(fields[0], point.pixelX) && ParseReal(fields[1], point.pixelY) &&
         ParseReal(fields[3], point.x) && ParseReal(fields[4], point.y);
}

bool ReadMatrix(std::string_view value, std::array<double, kMatrixNumbers>& matrix) {
  std::array<std::string_view, kMatrixNumbers + 1> fields;
  if (SplitBlanks(value, fields.data(), fields.size()) != kMatrixNumbers) return false;
  for (size_t i = 0; i < kMatrixNumbers; ++i) {
    if (!ParseReal(fields[i], matrix[i])) return false;
  }
  return true;
}

bool ReadCoordinateMode(std::string_view value, TCoordinateMode& mode) {
  int number = 0;
  if (!ParseInt(value, number) || number < -1 || number > 1) return false;
  mode = static_cast<TCoordinateMode>(number);
  return true;
}

class TImpReader {
public:
  TImpReader(const std::string& folder, const TListaDatums& datums, int depth)
      : m_folder(folder), m_datums(datums), m_depth(depth) {}

  bool Read(std::string_view text, TMapCalibration& map, std::string& error) {
    bool first = true;
    const bool read = ForEachLine(text, [&](std::string_view line, int) {
      if (first) {
        first = false;
        if (TrimBlanks(line) == kImpFirstLine) return true;
        m_error = kImpNotImp;
        return false;
      }
      return Line(line);
    });
    if (read && first) m_error = kImpNotImp;  // an empty file
    if (!read || first || !Finish()) {
      error = m_error;
      return false;
    }
    map = std::move(m_map);
    return true;
  }

private:
  bool Refuse(std::string_view message) {
    m_error = std::string(message);
    return false;
  }
  bool WrongValue(std::string_view line) {
    return Refuse("Wrong value in <" + m_section + ">: " + std::string(line));
  }

  bool Line(std::string_view line) {
    const std::string_view trimmed = TrimBlanks(line);
    if (IsRawSection(m_section) && trimmed != "</" + m_section + ">") {
      RawLines().emplace_back(line);
      return true;
    }
    if (trimmed.size() > 2 && trimmed.front() == '<' && trimmed.back() == '>') return Tag(trimmed);
    if (trimmed.empty() || m_section.empty()) return true;
    return SectionLine(trimmed);
  }

  std::vector<std::string>& RawLines() {
    if (m_section == kProperties) return m_map.properties;
    if (m_section == kContextMenu) return m_map.contextMenu;
    return *m_map.bitmapData;
  }

  bool Tag(std::string_view tag) {
    const bool closing = tag[1] == '/';
    const std::string name(tag.substr(closing ? 2 : 1, tag.size() - (closing ? 3 : 2)));
    if (m_section == kHipermapLayers && name == kHipermapLayer) {
      if (closing) m_map.hipermapLayers.push_back(m_layer);
      m_layer = {};
      m_inLayer = !closing;
      return true;
    }
    if (closing) {
      m_section.clear();
      return true;
    }
    m_section = name;
    if (name == kBitmapData) {
      ++m_bitmapDataSections;
      m_map.bitmapData.emplace();
    }
    return true;
  }

  bool SectionLine(std::string_view line) {
    if (m_section == kCalibration) return CalibrationLine(line);
    if (m_section == kPolygonBitmap) return PolygonLine(line, m_map.polygonBitmap, kImpBadPolygonBitmap);
    if (m_section == kPolygonCoords) return PolygonLine(line, m_map.polygonCoords, kImpBadPolygonCoords);
    std::string_view key;
    std::string_view value;
    if (!SplitKeyValue(line, key, value)) return true;
    if (m_section == kHeader) return HeaderLine(line, key, value);
    if (m_section == kMap) return MapLine(line, key, value);
    if (m_section == kLayers && SameKey(key, "File")) m_map.layers.emplace_back(value);
    if (m_section == kHipermapLayers && m_inLayer) return LayerLine(line, key, value);
    return true;
  }

  bool HeaderLine(std::string_view line, std::string_view key, std::string_view value) {
    if (ReadTextKey(kHeaderTexts, key, value, m_map)) return true;
    if (SameKey(key, "Datum")) m_map.datum = std::string(value);
    if (SameKey(key, "Projection")) {
      std::string error;
      if (!ParseMapProjection(value, m_map.projection, error)) return Refuse(error);
    }
    if (SameKey(key, "Coordinates") && !ReadCoordinateMode(value, m_map.coordinates))
      return WrongValue(line);
    if (SameKey(key, "Type") && !ParseInt(value, m_map.calibrationMode)) return WrongValue(line);
    return true;
  }

  bool MapLine(std::string_view line, std::string_view key, std::string_view value) {
    if (ReadTextKey(kMapTexts, key, value, m_map)) return true;
    if (SameKey(key, "BitmapWidth") && !ParseInt(value, m_map.bitmapWidth)) return WrongValue(line);
    if (SameKey(key, "BitmapHeight") && !ParseInt(value, m_map.bitmapHeight)) return WrongValue(line);
    return true;
  }

  bool CalibrationLine(std::string_view line) {
    if (line.front() == 'P') {
      TCalibrationPoint point;
      if (!ReadPoint(line, point)) return Refuse(kImpBadPoint);
      m_map.points.push_back(point);
      return true;
    }
    std::string_view key;
    std::string_view value;
    if (!SplitKeyValue(line, key, value)) return true;
    if (SameKey(key, "Offset")) {
      TPlanePoint offset;
      if (!ReadPair(value, offset)) return WrongValue(line);
      m_map.offset = offset;
    }
    if (SameKey(key, "Matrix")) {
      std::array<double, kMatrixNumbers> matrix;
      if (!ReadMatrix(value, matrix)) return WrongValue(line);
      m_map.matrix = matrix;
    }
    return true;
  }

  bool PolygonLine(std::string_view line, std::vector<TPlanePoint>& polygon,
                   std::string_view message) {
    if (line.front() != 'M') return true;
    std::string_view value;
    TPlanePoint point;
    if (!IndexedValue(line, value) || !ReadPair(value, point)) return Refuse(message);
    polygon.push_back(point);
    return true;
  }

  bool LayerLine(std::string_view line, std::string_view key, std::string_view value) {
    if (SameKey(key, "File")) m_layer.file = std::string(value);
    if (SameKey(key, "MaxZoomLevel")) m_layer.maxZoomLevel = std::string(value);
    if (SameKey(key, "MinZoomLevel")) m_layer.minZoomLevel = std::string(value);
    if (SameKey(key, "visible")) {
      int visible = 0;
      if (!ParseInt(value, visible)) return WrongValue(line);
      m_layer.visible = visible != 0;
    }
    return true;
  }

  bool Finish() {
    if (m_bitmapDataSections > 1) return Refuse(kImpBitmapDataNotOne);
    if (!TopDownMatrix() || !HasImage() || !ReadSubmaps()) return false;
    return CheckHipermapLayers();
  }

  // A matrix whose rows count upwards is turned top-down with the image height.
  bool TopDownMatrix() {
    if (!m_map.matrix || (*m_map.matrix)[kMatrixE] <= 0) return true;
    if (m_map.bitmapHeight <= 0) return Refuse("Wrong value in <Calibration>: Matrix");
    std::array<double, kMatrixNumbers>& matrix = *m_map.matrix;
    matrix[kMatrixF] += m_map.bitmapHeight * matrix[kMatrixE];
    matrix[kMatrixE] = -matrix[kMatrixE];
    return true;
  }

  // A map needs an image, a vector map or sub-maps; a sub-map entry needs a name.
  bool HasImage() {
    for (const std::string& name : m_map.layers) {
      if (name.empty()) return NoImage(kWarningEmptyLayerName, kImpNoImageName);
    }
    if (m_map.IsMultiLayer() || !m_map.bitmap.empty() || !m_map.vectorMap.empty() ||
        !m_map.layers.empty())
      return true;
    return NoImage(kWarningEmptyMapName, kImpNoImageNoSubmap);
  }

  bool NoImage(int code, std::string_view logged) {
    TLog::Instance().Warning(code, logged);
    return Refuse(kImpNoImage);
  }

  bool ReadSubmaps() {
    for (const std::string& name : m_map.layers) {
      TMapCalibration submap;
      std::string error;
      const std::string path = (std::filesystem::path(m_folder) / name).string();
      if (m_depth >= kMaxSubmapDepth || !ReadMapFile(path, m_datums, submap, error, m_depth + 1))
        return Refuse(std::string(kImpSubmapError) + name);
      m_map.subMaps.push_back(std::move(submap));
    }
    return true;
  }

  bool CheckHipermapLayers() {
    for (const THipermapLayer& layer : m_map.hipermapLayers) {
      const std::string extension = FileExtension(layer.file);
      if (!IsCalibrationExtension(extension)) {
        return Refuse(std::string(kImpHipermapLayerError) + layer.file +
                      std::string(kImpHipermapUnknownType) + extension);
      }
    }
    return true;
  }

  const std::string& m_folder;
  const TListaDatums& m_datums;
  const int m_depth;
  TMapCalibration m_map;
  std::string m_error;
  std::string m_section;
  THipermapLayer m_layer;
  bool m_inLayer = false;
  int m_bitmapDataSections = 0;
};

// --- writing ---------------------------------------------------------------

// Reals with eight decimals, as printf's "%.8f" prints them; the buffer holds
// the largest double's 309 digits.
std::string Fixed8(double value) {
  constexpr int kDecimals = 8;
  char text[400];
  const auto [end, ec] =
      std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, kDecimals);
  return std::string(text, ec == std::errc() ? end : text);
}

class TImpWriter {
public:
  explicit TImpWriter(const TMapCalibration& map) : m_map(map) {}

  std::string Text() {
    Line(kImpFirstLine);
    Header();
    MapSection();
    Calibration();
    Polygon(kPolygonBitmap, m_map.polygonBitmap);
    Polygon(kPolygonCoords, m_map.polygonCoords);
    Layers();
    if (m_map.bitmapData) Raw(kBitmapData, *m_map.bitmapData);
    HipermapLayers();
    if (!m_map.properties.empty()) Raw(kProperties, m_map.properties);
    if (!m_map.contextMenu.empty()) Raw(kContextMenu, m_map.contextMenu);
    return std::move(m_text);
  }

private:
  void Line(std::string_view line) {
    m_text += line;
    m_text += kLineEnd;
  }
  void Key(std::string_view key, std::string_view value) {
    m_text += key;
    m_text += '=';
    Line(value);
  }
  void Open(std::string_view section) { Line("<" + std::string(section) + ">"); }
  void Close(std::string_view section) { Line("</" + std::string(section) + ">"); }
  template <size_t N>
  void Texts(const std::array<TTextKey, N>& keys) {
    for (const TTextKey& text : keys) {
      if (!(m_map.*(text.member)).empty()) Key(text.key, m_map.*(text.member));
    }
  }

  void Header() {
    Open(kHeader);
    Key("Version", std::to_string(kWrittenVersion));
    Key("VerVelantis", VELANTIS_VERSION);
    Key("Projection", FormatMapProjection(m_map.projection));
    Key("Coordinates", std::to_string(static_cast<int>(m_map.coordinates)));
    Key("Datum", m_map.datum);
    Key("Type", std::to_string(m_map.calibrationMode));
    Texts(kHeaderTexts);
    Close(kHeader);
  }

  void MapSection() {
    Open(kMap);
    Texts(kMapTexts);
    Key("BitmapWidth", std::to_string(m_map.bitmapWidth));
    Key("BitmapHeight", std::to_string(m_map.bitmapHeight));
    Close(kMap);
  }

  void Calibration() {
    Open(kCalibration);
    for (size_t i = 0; i < m_map.points.size(); ++i) {
      const TCalibrationPoint& point = m_map.points[i];
      Key("P" + std::to_string(i), Fixed8(point.pixelX) + ',' + Fixed8(point.pixelY) + ',' +
                                       point.zone + ',' + Fixed8(point.x) + ',' + Fixed8(point.y));
    }
    if (m_map.offset) Key("Offset", Fixed8(m_map.offset->x) + ',' + Fixed8(m_map.offset->y));
    if (m_map.matrix) {
      std::string numbers;
      for (const double number : *m_map.matrix) {
        if (!numbers.empty()) numbers += '\t';
        numbers += ShortestDecimal(number);
      }
      Key("Matrix", numbers);
    }
    Close(kCalibration);
  }

  void Polygon(std::string_view section, const std::vector<TPlanePoint>& polygon) {
    if (polygon.empty()) return;
    Open(section);
    for (size_t i = 0; i < polygon.size(); ++i) {
      Key("M" + std::to_string(i), Fixed8(polygon[i].x) + ',' + Fixed8(polygon[i].y));
    }
    Close(section);
  }

  void Layers() {
    if (m_map.layers.empty()) return;
    Open(kLayers);
    for (const std::string& file : m_map.layers) Key("File", file);
    Close(kLayers);
  }

  void Raw(std::string_view section, const std::vector<std::string>& lines) {
    Open(section);
    for (const std::string& line : lines) Line(line);
    Close(section);
  }

  void HipermapLayers() {
    if (m_map.hipermapLayers.empty()) return;
    Open(kHipermapLayers);
    for (const THipermapLayer& layer : m_map.hipermapLayers) {
      Open(kHipermapLayer);
      Key("File", layer.file);
      if (!layer.maxZoomLevel.empty()) Key("MaxZoomLevel", layer.maxZoomLevel);
      if (!layer.minZoomLevel.empty()) Key("MinZoomLevel", layer.minZoomLevel);
      Key("visible", layer.visible ? "1" : "0");
      Close(kHipermapLayer);
    }
    Close(kHipermapLayers);
  }

  const TMapCalibration& m_map;
  std::string m_text;
};

}  // namespace

bool ReadImpText(std::string_view text, const std::string& folder, const TListaDatums& datums,
                 TMapCalibration& map, std::string& error, int depth) {
  return TImpReader(folder, datums, depth).Read(text, map, error);
}

bool ReadImpFile(const std::string& path, const TListaDatums& datums, TMapCalibration& map,
                 std::string& error, int depth) {
  std::string bytes;
  if (!ReadWholeFile(path, bytes, error)) return false;
  const std::string folder = std::filesystem::path(path).parent_path().string();
  return ReadImpText(bytes, folder, datums, map, error, depth);
}

std::string ImpText(const TMapCalibration& map) { return TImpWriter(map).Text(); }

bool WriteImpFile(const std::string& path, const TMapCalibration& map, std::string& error) {
  return WriteFileAtomic(path, ImpText(map), error);
}

bool WriteHipermapFile(const std::string& folder, const TMapCalibration& map, std::string& error) {
  if (!map.IsMultiLayer()) {
    error = kImpNotMultiLayer;
    return false;
  }
  return WriteImpFile((std::filesystem::path(folder) / kHipermapFileName).string(), map, error);
}

}  // namespace velantis
