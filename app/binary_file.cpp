#include "app/binary_file.h"

#include <bit>
#include <cstring>

namespace velantis {

namespace {

static_assert(std::endian::native == std::endian::little,
              "the binary file layer assumes a little-endian host");

template <typename T>
T Load(const char* data) {
  T value;
  std::memcpy(&value, data, sizeof(T));
  return value;
}

template <typename T>
void Store(std::string& out, T value) {
  char raw[sizeof(T)];
  std::memcpy(raw, &value, sizeof(T));
  out.append(raw, sizeof(T));
}

}  // namespace

bool TBinaryReader::Take(size_t count, const char*& data) {
  if (m_failed) return false;
  if (count > m_bytes.size() - m_pos) {
    m_failed = true;
    m_error = "Unexpected end of file at byte " + std::to_string(m_pos);
    return false;
  }
  data = m_bytes.data() + m_pos;
  m_pos += count;
  return true;
}

template <typename T>
bool TBinaryReader::ReadPlain(T& value) {
  const char* data;
  if (!Take(sizeof value, data)) return false;
  value = Load<T>(data);
  return true;
}

bool TBinaryReader::ReadInt32(int32_t& value) { return ReadPlain(value); }

bool TBinaryReader::ReadFloat(float& value) { return ReadPlain(value); }

bool TBinaryReader::ReadDouble(double& value) { return ReadPlain(value); }

bool TBinaryReader::ReadBytes(size_t count, std::string_view& bytes) {
  const char* data;
  if (!Take(count, data)) return false;
  bytes = std::string_view(data, count);
  return true;
}

bool TBinaryReader::ReadString(std::string& text) {
  const char* data;
  if (!Take(sizeof(uint16_t), data)) return false;
  const uint16_t length = Load<uint16_t>(data);
  // The text is followed by a zero byte that is not part of it.
  if (!Take(size_t{length} + 1, data)) return false;
  text.assign(data, length);
  return true;
}

void TBinaryWriter::WriteInt32(int32_t value) { Store(m_bytes, value); }

void TBinaryWriter::WriteDouble(double value) { Store(m_bytes, value); }

void TBinaryWriter::WriteString(std::string_view text) {
  const size_t length = std::min(text.size(), kMaxStringLength);
  Store(m_bytes, static_cast<uint16_t>(length));
  m_bytes.append(text.substr(0, length));
  m_bytes.push_back('\0');
}

}  // namespace velantis
