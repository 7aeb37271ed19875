#include "formats/native_file.h"

#include <cctype>

#include "app/config.h"
#include "core/property_list.h"
#include "formats/native_text.h"
#include "geodesy/coordinate_notation.h"
#include "geodesy/lista_datums.h"

namespace velantis {

namespace {

constexpr size_t kFlushBytes = 1 << 20;
constexpr int kInverseShiftPasses = 2;

// Property texts travel on one line: "%", CR and LF, and "=" in names, are
// written as "%" and two hexadecimal digits.
void AppendEscaped(std::string& out, std::string_view text, std::string_view special) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  for (const char c : text) {
    if (special.find(c) == std::string_view::npos) {
      out.push_back(c);
      continue;
    }
    const auto byte = static_cast<unsigned char>(c);
    out.push_back('%');
    out.push_back(kHex[byte >> 4]);
    out.push_back(kHex[byte & 0x0F]);
  }
}

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  const int upper = std::toupper(static_cast<unsigned char>(c));
  return upper >= 'A' && upper <= 'F' ? upper - 'A' + 10 : -1;
}

std::string Unescaped(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '%' && i + 2 < text.size() && HexDigit(text[i + 1]) >= 0 && HexDigit(text[i + 2]) >= 0) {
      out.push_back(static_cast<char>(HexDigit(text[i + 1]) * 16 + HexDigit(text[i + 2])));
      i += 2;
    } else {
      out.push_back(text[i]);
    }
  }
  return out;
}

std::string DatumName(const TNativeOptions& options, int index) {
  const TDatum* datum = options.datums ? options.datums->Get(index) : nullptr;
  return datum ? datum->name : std::string(kWgs84Name);
}

}  // namespace

TNativeOptions TNativeOptions::FromConfig(const TConfig& config, TListaDatums& datums) {
  TNativeOptions options;
  options.datums = &datums;
  options.datum = datums.ConfiguredIndex();
  options.notation = config.Coordinate_Notation;
  options.codePage = config.File_Code_Page;
  options.defaults = TBalizaDefaults::FromConfig(config);
  options.forceExtensionLines = config.Force_Extension_Lines;
  return options;
}

TNativeWriter::TNativeWriter(const std::string& path, const TNativeOptions& options)
    : m_options(options),
      m_page(options.codePage.empty() ? TCodePage::Cp1252 : CodePageByName(options.codePage)),
      m_file(path) {}

bool TNativeWriter::WriteHeader(bool alwaysNotation, bool shiftDatum, std::string& error) {
  if (!IsValidNotation(m_options.notation)) {
    error = "Unknown coordinate notation: " + std::to_string(m_options.notation);
    return false;
  }
  if (shiftDatum && m_options.datum != 0 && (m_options.datums == nullptr || !m_options.datums->Exists(m_options.datum))) {
    error = "Unknown datum index " + std::to_string(m_options.datum);
    return false;
  }
  if (!m_options.codePage.empty()) Raw("B  ").Text(m_options.codePage).EndLine();
  Raw("G  ").Text(shiftDatum ? DatumName(m_options, m_options.datum) : std::string(kWgs84Name)).EndLine();
  if (alwaysNotation || m_options.notation != 0) Raw("U  ").Int(m_options.notation).EndLine();
  return true;
}

TNativeWriter& TNativeWriter::Raw(std::string_view text) {
  m_buffer += text;
  return *this;
}

TNativeWriter& TNativeWriter::Text(std::string_view utf8) {
  bool ascii = true;
  for (const char c : utf8) ascii = ascii && static_cast<unsigned char>(c) < 0x80;
  if (ascii || m_page != TCodePage::Cp1252) {
    m_buffer += utf8;
  } else {
    m_buffer += Utf8ToCp1252(utf8);
  }
  return *this;
}

TNativeWriter& TNativeWriter::Real(double value, int precision) {
  AppendReal(m_buffer, value, precision);
  return *this;
}

TNativeWriter& TNativeWriter::Int(int64_t value) {
  AppendInt(m_buffer, value);
  return *this;
}

TNativeWriter& TNativeWriter::Unsigned(uint64_t value) {
  AppendUnsigned(m_buffer, value);
  return *this;
}

TNativeWriter& TNativeWriter::Date(TDateTime time, bool fourDigitYear) {
  AppendDateTime(m_buffer, time, fourDigitYear);
  return *this;
}

void TNativeWriter::EndLine() {
  m_buffer += kCrLf;
  FlushIfLarge();
}

bool TNativeWriter::Shifted(TLonLat& position, bool shiftDatum, std::string& error) const {
  return !shiftDatum || m_options.datum == 0 ||
         m_options.datums->Transforma_Grados_Datum(position, 0, m_options.datum, error);
}

bool TNativeWriter::AddWritten(TBoundingBox& box, double lat, double lon, bool shiftDatum, std::string& error) {
  TLonLat position{lon, lat};
  if (!Shifted(position, shiftDatum, error)) return false;
  box.Add(RoundToNotation(position.lat, m_options.notation), RoundToNotation(position.lon, m_options.notation));
  return true;
}

bool TNativeWriter::Position(double lat, double lon, bool shiftDatum, std::string& error) {
  TLonLat position{lon, lat};
  if (!Shifted(position, shiftDatum, error)) return false;
  if (!FormatLatitude(position.lat, m_options.notation, m_latitude, error) ||
      !FormatLongitude(position.lon, m_options.notation, m_longitude, error))
    return false;
  Text(m_latitude).Raw(" ").Text(m_longitude);
  return true;
}

void TNativeWriter::PropertyBlock(const TPropertyList& properties, char letter) {
  for (size_t i = 0; i < properties.Count(); ++i) {
    const auto& [name, value] = properties.Item(i);
    m_buffer.push_back(letter);
    m_buffer += "  ";
    std::string line;
    AppendEscaped(line, name, "%=\r\n");
    line.push_back('=');
    AppendEscaped(line, value, "%\r\n");
    Text(line).EndLine();
  }
}

bool TNativeWriter::Commit(std::string& error) {
  m_file.Write(m_buffer);
  m_buffer.clear();
  return m_file.Commit(error);
}

void TNativeWriter::FlushIfLarge() {
  if (!m_toFile || m_buffer.size() < kFlushBytes) return;
  m_file.Write(m_buffer);
  m_buffer.clear();
}

bool TNativeReader::HeaderLine(char letter, std::string_view content, bool& ok, std::string& error) {
  ok = true;
  switch (letter) {
    case 'B':
      m_page = CodePageByName(content);
      if (m_options.header) m_options.header->codePage = content;
      return true;
    case 'G': {
      const std::string name = Text(content);
      const int index = m_options.datums ? m_options.datums->Find(name) : (name == kWgs84Name ? 0 : -1);
      if (index < 0) {
        error = "Unknown datum: " + name;
        ok = false;
      } else {
        m_datum = index;
        if (m_options.header) m_options.header->datum = name;
      }
      return true;
    }
    case 'U':
      if (!ParseInt(content, m_notation) || !IsValidNotation(m_notation)) {
        error = "Unknown coordinate notation: " + std::string(content);
        ok = false;
      } else if (m_options.header) {
        m_options.header->notation = m_notation;
      }
      return true;
    default:
      return false;
  }
}

bool TNativeReader::Position(std::string_view latitude, std::string_view longitude, bool shiftDatum, double& lat,
                             double& lon, std::string& error) const {
  double first = 0, second = 0;
  bool firstIsLatitude = false, secondIsLatitude = false;
  if (!ParseLatLon(latitude, first, firstIsLatitude, error) || !ParseLatLon(longitude, second, secondIsLatitude, error))
    return false;
  if (firstIsLatitude == secondIsLatitude) {
    error = std::string(kNotationFormatError) + std::string(latitude) + " " + std::string(longitude);
    return false;
  }
  TLonLat position = firstIsLatitude ? TLonLat{second, first} : TLonLat{first, second};
  if (shiftDatum && m_datum != 0 && !ShiftToWgs84(position, error)) return false;
  lat = position.lat;
  lon = position.lon;
  return true;
}

bool TNativeReader::ShiftToWgs84(TLonLat& position, std::string& error) const {
  const TLonLat written = position;
  if (!m_options.datums->Transforma_Grados_Datum(position, m_datum, 0, error)) return false;
  // The shift back is not the exact inverse of the shift there: correct the
  // held position until the writer's shift gives the file's values again,
  // so that a file read and written again keeps its bytes.
  for (int pass = 0; pass < kInverseShiftPasses; ++pass) {
    TLonLat there = position;
    if (!m_options.datums->Transforma_Grados_Datum(there, 0, m_datum, error)) return false;
    position.lat += written.lat - there.lat;
    position.lon += written.lon - there.lon;
  }
  return true;
}

void TNativeReader::PropertyLine(std::string_view bytes, TPropertyList& properties) const {
  const std::string content = Text(bytes);
  const size_t equals = content.find('=');
  if (equals == std::string_view::npos) return;
  const std::string_view text(content);
  properties.Set(Unescaped(text.substr(0, equals)), Unescaped(text.substr(equals + 1)));
}

size_t CountRecordLines(std::string_view bytes, char letter, bool atLineStart) {
  size_t count = atLineStart && !bytes.empty() && bytes.front() == letter;
  for (size_t at = bytes.find('\n'); at != std::string_view::npos; at = bytes.find('\n', at + 1))
    count += at + 1 < bytes.size() && bytes[at + 1] == letter;
  return count;
}

bool ReadLines(std::string_view bytes, char recordLetter, TProgress* progress,
               const std::function<bool(std::string_view line, size_t offset)>& readLine, std::string& error) {
  ProgressSetTotal(progress, static_cast<int64_t>(CountRecordLines(bytes, recordLetter)));
  return ReadLineRun(bytes, 0, recordLetter, progress, readLine, error);
}

bool ReadLineRun(std::string_view bytes, size_t base, char recordLetter, TProgress* progress,
                 const std::function<bool(std::string_view line, size_t offset)>& readLine, std::string& error) {
  TLineCursor lines(bytes);
  std::string_view line;
  while (lines.Next(line)) {
    if (!readLine(line, base + lines.Offset())) return false;
    if (!line.starts_with(recordLetter)) continue;
    if (!ProgressStep(progress)) {
      error = kCancelledError;
      return false;
    }
  }
  return true;
}

}  // namespace velantis
