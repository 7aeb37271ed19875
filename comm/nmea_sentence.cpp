#include "comm/nmea_sentence.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "comm/nmea_fields.h"

namespace velantis {
namespace {

constexpr size_t kChecksumDigits = 2;
// Field 0 of at least this length starts with a two-letter talker.
constexpr size_t kMinLengthWithTalker = 4;
constexpr size_t kTalkerLength = 2;
constexpr char kProprietaryTalker = 'P';

bool IsLineEnd(char c) { return c == '\r' || c == '\n'; }

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

// The two checksum characters as a byte; false when they are not hex digits.
bool ReadHexByte(std::string_view text, int& value) {
  const int high = HexDigit(text[0]), low = HexDigit(text[1]);
  if (high < 0 || low < 0) return false;
  value = high * 16 + low;
  return true;
}

// view re-pointed from a body that started at from to one that starts at to.
std::string_view Rebase(std::string_view view, const char* from, const char* to) {
  if (view.data() == nullptr) return {};
  return std::string_view(to + (view.data() - from), view.size());
}

}  // namespace

TComandaNMEA_Base::TComandaNMEA_Base(const TComandaNMEA_Base& other) : m_body(other.m_body) {
  CopyViewsFrom(other, other.m_body.data());
}

TComandaNMEA_Base::TComandaNMEA_Base(TComandaNMEA_Base&& other) noexcept {
  *this = std::move(other);
}

TComandaNMEA_Base& TComandaNMEA_Base::operator=(const TComandaNMEA_Base& other) {
  if (this != &other) {
    m_body = other.m_body;
    CopyViewsFrom(other, other.m_body.data());
  }
  return *this;
}

TComandaNMEA_Base& TComandaNMEA_Base::operator=(TComandaNMEA_Base&& other) noexcept {
  if (this != &other) {
    // A long body moves its buffer, a short one is copied into this object's
    // own: either way the views are re-pointed from where the text was.
    const char* from = other.m_body.data();
    m_body = std::move(other.m_body);
    m_fields = std::move(other.m_fields);
    for (std::string_view& field : m_fields) field = Rebase(field, from, m_body.data());
    CopyScalarsFrom(other, from);
    other.Clear();
  }
  return *this;
}

void TComandaNMEA_Base::CopyViewsFrom(const TComandaNMEA_Base& other, const char* from) {
  m_fields.clear();
  for (const std::string_view field : other.m_fields)
    m_fields.push_back(Rebase(field, from, m_body.data()));
  CopyScalarsFrom(other, from);
}

void TComandaNMEA_Base::CopyScalarsFrom(const TComandaNMEA_Base& other, const char* from) {
  const char* to = m_body.data();
  m_identifier = Rebase(other.m_identifier, from, to);
  m_completeIdentifier = Rebase(other.m_completeIdentifier, from, to);
  m_bodyWithoutChecksum = Rebase(other.m_bodyWithoutChecksum, from, to);
  m_checksumText = Rebase(other.m_checksumText, from, to);
  m_computedChecksum = other.m_computedChecksum;
  m_checksumMatches = other.m_checksumMatches;
}

void TComandaNMEA_Base::Clear() {
  m_body.clear();
  m_fields.clear();
  m_identifier = m_completeIdentifier = m_bodyWithoutChecksum = m_checksumText = {};
  m_computedChecksum = 0;
  m_checksumMatches = false;
}

bool TComandaNMEA_Base::Parse(std::string_view line, TErrorSink* sink) {
  const size_t dollar = line.find('$');
  if (dollar == std::string_view::npos) {
    Clear();
    if (sink != nullptr) sink->Add(std::string(kNmeaErrorNoDollar), std::string(line));
    return false;
  }
  std::string_view after = line.substr(dollar + 1);
  // Lines end in CR LF; a CR or LF anywhere else is rare and costs a second pass.
  while (!after.empty() && IsLineEnd(after.back())) after.remove_suffix(1);
  m_body.assign(after);
  if (std::memchr(m_body.data(), '\r', m_body.size()) != nullptr ||
      std::memchr(m_body.data(), '\n', m_body.size()) != nullptr)
    std::erase_if(m_body, IsLineEnd);
  return SplitBody(line, sink);
}

bool TComandaNMEA_Base::SplitBody(std::string_view line, TErrorSink* sink) {
  // One pass up to the first "*": the fields, and the exclusive-or of the
  // bytes (NmeaChecksum folded in: fields are short, and one loop over a
  // sentence's sixty bytes beats a library call per field).
  m_fields.clear();
  const char* const begin = m_body.data();
  const char* const end = begin + m_body.size();
  const char* fieldStart = begin;
  const char* star = nullptr;
  uint8_t sum = 0;
  for (const char* p = begin; p != end; ++p) {
    const char c = *p;
    // A "*" in the first place of the body is text, not a checksum mark.
    if (c == '*' && p != begin) {
      star = p;
      break;
    }
    sum ^= static_cast<uint8_t>(c);
    if (c == ',') {
      m_fields.emplace_back(fieldStart, static_cast<size_t>(p - fieldStart));
      fieldStart = p + 1;
    }
  }
  const char* const bodyEnd = star != nullptr ? star : end;
  m_fields.emplace_back(fieldStart, static_cast<size_t>(bodyEnd - fieldStart));
  m_bodyWithoutChecksum = std::string_view(begin, static_cast<size_t>(bodyEnd - begin));
  if (star != nullptr) {
    const auto afterStar = static_cast<size_t>(end - star - 1);
    m_checksumText = std::string_view(star + 1, std::min(kChecksumDigits, afterStar));
  } else {
    m_checksumText = {};
  }

  m_completeIdentifier = m_fields.front();
  m_identifier = m_completeIdentifier;
  if (m_identifier.size() >= kMinLengthWithTalker) {
    // A proprietary sentence's talker is the "P" alone; its manufacturer's
    // code is part of what the dialect readers compare.
    m_identifier.remove_prefix(m_identifier.front() == kProprietaryTalker ? 1 : kTalkerLength);
  }

  if (star != nullptr && m_checksumText.size() != kChecksumDigits) {
    Clear();
    if (sink != nullptr) sink->Add(std::string(kNmeaErrorChecksumSection), std::string(line));
    return false;
  }
  m_computedChecksum = static_cast<int8_t>(sum);  // as NmeaChecksum gives it
  int received = 0;
  // Only the low 8 bits of the computed value mean anything (see nmea_checksum.h).
  m_checksumMatches = star != nullptr && ReadHexByte(m_checksumText, received) && received == sum;
  return true;
}

bool TComandaNMEA_Rx::FieldReal(size_t index, double& value) const {
  return ParseNmeaReal(Field(index), value);
}

bool TComandaNMEA_Rx::FieldInt(size_t index, int& value) const {
  return ParseNmeaInt(Field(index), value);
}

}  // namespace velantis
