// One NMEA 0183 sentence, split into its fields.
//
// TComandaNMEA_Base holds what every sentence has: the body (everything after
// the "$", carriage returns and line feeds removed), the body without its
// checksum part, the fields (the body without checksum split at every ",",
// empty fields kept so that field numbers stay fixed), the identifier (field
// 0 without its talker when it has 4 or more characters: the two letters of
// a standard talker, "GPRMC" -> "RMC", or the "P" of a proprietary sentence,
// "PMGNWPL" -> "MGNWPL"), the complete identifier (field 0 as received), the
// checksum text and whether it matches.
//
// TComandaNMEA_Rx is the received form: the base and the readers of typed
// fields that the position rules and the receiver-dialect readers use.
// TComandaNMEA is an alias of TComandaNMEA_Rx, not a class of its own: a
// parsed sentence is always a received one, and one type lets every reader
// take `const TComandaNMEA&`.
//
// No allocation per field: the body lives in one std::string and the fields,
// the identifiers and the checksum text are std::string_views into it, kept
// in a std::vector. Both keep their capacity, so parsing line after line
// into the same object allocates nothing once it has seen its longest line.
// Copies and moves re-point the views into the new object's own body.
//
// Failures (Parse returns false, the sentence is left empty and the sink, when
// given, gets the message with the whole line as detail):
//   no "$" in the line                    kNmeaErrorNoDollar
//   "*" present, not 2 characters after   kNmeaErrorChecksumSection
// A sentence without "*" parses, with ChecksumMatches() false. A wrong
// checksum is no failure either: the flag says so and the caller decides.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "comm/error_sink.h"

namespace velantis {

inline constexpr std::string_view kNmeaErrorNoDollar = "Wrong NMEA message. ($ symbol not found)";
inline constexpr std::string_view kNmeaErrorChecksumSection =
    "Error in NMEA message in checksum section";

class TComandaNMEA_Base {
public:
  TComandaNMEA_Base() = default;
  TComandaNMEA_Base(const TComandaNMEA_Base& other);
  TComandaNMEA_Base(TComandaNMEA_Base&& other) noexcept;
  TComandaNMEA_Base& operator=(const TComandaNMEA_Base& other);
  TComandaNMEA_Base& operator=(TComandaNMEA_Base&& other) noexcept;
  virtual ~TComandaNMEA_Base() = default;

  // Parses one line as received (noise before the "$" and CR LF allowed).
  bool Parse(std::string_view line, TErrorSink& sink) { return Parse(line, &sink); }
  // sink may be null: the failure is then only returned.
  bool Parse(std::string_view line, TErrorSink* sink);
  // Empty: no fields, no identifier, checksum not matching.
  void Clear();

  std::string_view Identifier() const { return m_identifier; }
  std::string_view CompleteIdentifier() const { return m_completeIdentifier; }
  const std::string& Body() const { return m_body; }
  std::string_view BodyWithoutChecksum() const { return m_bodyWithoutChecksum; }
  const std::vector<std::string_view>& Fields() const { return m_fields; }
  size_t FieldCount() const { return m_fields.size(); }
  // Field index, or an empty text past the last field.
  std::string_view Field(size_t index) const {
    return index < m_fields.size() ? m_fields[index] : std::string_view();
  }
  std::string_view ChecksumText() const { return m_checksumText; }
  int32_t ComputedChecksum() const { return m_computedChecksum; }
  bool ChecksumMatches() const { return m_checksumMatches; }

protected:
  // Steps 3 to 7 of the parse on the body already in m_body.
  bool SplitBody(std::string_view line, TErrorSink* sink);
  std::string m_body;

private:
  // The views of other, whose body started at from, re-pointed into m_body.
  void CopyViewsFrom(const TComandaNMEA_Base& other, const char* from);
  void CopyScalarsFrom(const TComandaNMEA_Base& other, const char* from);

  std::string_view m_identifier;
  std::string_view m_completeIdentifier;
  std::string_view m_bodyWithoutChecksum;
  std::vector<std::string_view> m_fields;
  std::string_view m_checksumText;
  int32_t m_computedChecksum = 0;
  bool m_checksumMatches = false;
};

class TComandaNMEA_Rx : public TComandaNMEA_Base {
public:
  // The whole field as a finite real (a leading "+" allowed) / a whole number;
  // false for an empty or absent field and for any other text.
  bool FieldReal(size_t index, double& value) const;
  bool FieldInt(size_t index, int& value) const;
};

using TComandaNMEA = TComandaNMEA_Rx;

}  // namespace velantis
