// The one layer every binary data file of the system goes through:
// little-endian 32-bit integers, IEEE doubles and floats, and strings stored as
// a 16-bit length L (at most 32767), L bytes of text and a zero byte.
//
// Readers never throw: each read returns false once the data runs out, after
// which the reader stays failed and its error text says why.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace velantis {

class TBinaryReader {
public:
  explicit TBinaryReader(std::string_view bytes) : m_bytes(bytes) {}

  bool ReadInt32(int32_t& value);
  bool ReadFloat(float& value);
  bool ReadDouble(double& value);
  // Reads the raw bytes of a length-prefixed string (no code page conversion).
  bool ReadString(std::string& text);
  bool ReadBytes(size_t count, std::string_view& bytes);

  bool Failed() const { return m_failed; }
  size_t Position() const { return m_pos; }
  const std::string& Error() const { return m_error; }

private:
  bool Take(size_t count, const char*& data);
  template <typename T>
  bool ReadPlain(T& value);

  std::string_view m_bytes;
  size_t m_pos = 0;
  bool m_failed = false;
  std::string m_error;
};

class TBinaryWriter {
public:
  void WriteInt32(int32_t value);
  void WriteDouble(double value);
  // The length is clamped to kMaxStringLength; longer text is cut.
  void WriteString(std::string_view text);

  const std::string& Bytes() const { return m_bytes; }

  static constexpr size_t kMaxStringLength = 32767;

private:
  std::string m_bytes;
};

}  // namespace velantis
