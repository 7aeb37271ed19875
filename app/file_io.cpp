#include "app/file_io.h"

#include <filesystem>

namespace velantis {

namespace {

constexpr size_t kWriteBufferBytes = 1 << 20;

}  // namespace

bool ReadWholeFile(const std::string& path, std::string& bytes, std::string& error) {
  // A folder opens as a stream on some systems and then fails to read.
  std::error_code ec;
  std::FILE* file = std::filesystem::is_directory(path, ec) ? nullptr : std::fopen(path.c_str(), "rb");
  if (file == nullptr) {
    error = "Error opening " + path;
    return false;
  }
  bytes.clear();
  const auto size = std::filesystem::file_size(path, ec);
  if (!ec) bytes.reserve(static_cast<size_t>(size));
  char chunk[1 << 16];
  size_t got = 0;
  while ((got = std::fread(chunk, 1, sizeof chunk, file)) > 0) bytes.append(chunk, got);
  const bool failed = std::ferror(file) != 0;
  std::fclose(file);
  if (failed) {
    error = "Error reading " + path;
    return false;
  }
  return true;
}

bool WriteFileAtomic(const std::string& path, std::string_view bytes, std::string& error) {
  TAtomicFileWriter writer(path);
  if (!writer.Open(error)) return false;
  writer.Write(bytes);
  return writer.Commit(error);
}

TAtomicFileWriter::TAtomicFileWriter(std::string path)
    : m_path(std::move(path)), m_temporary(m_path + ".tmp") {}

TAtomicFileWriter::~TAtomicFileWriter() { Discard(); }

bool TAtomicFileWriter::Open(std::string& error) {
  Discard();
  m_file = std::fopen(m_temporary.c_str(), "wb");
  if (m_file == nullptr) {
    error = "Error creating " + m_temporary;
    return false;
  }
  m_created = true;
  std::setvbuf(m_file, nullptr, _IOFBF, kWriteBufferBytes);
  m_offset = 0;
  m_failed = false;
  return true;
}

bool TAtomicFileWriter::Write(std::string_view bytes) {
  if (m_file == nullptr || m_failed) return false;
  if (std::fwrite(bytes.data(), 1, bytes.size(), m_file) != bytes.size()) m_failed = true;
  m_offset += bytes.size();
  return !m_failed;
}

bool TAtomicFileWriter::Commit(std::string& error) {
  if (m_file == nullptr) {
    error = "Error creating " + m_temporary;
    return false;
  }
  const bool closed = std::fclose(m_file) == 0;
  m_file = nullptr;
  if (m_failed || !closed) {
    error = "Error writing " + m_temporary;
    Discard();
    return false;
  }
  std::error_code ec;
  std::filesystem::rename(m_temporary, m_path, ec);
  if (ec) {
    error = "Error renaming " + m_temporary + " to " + m_path + ": " + ec.message();
    Discard();
    return false;
  }
  m_created = false;
  return true;
}

void TAtomicFileWriter::Discard() {
  if (m_file != nullptr) {
    std::fclose(m_file);
    m_file = nullptr;
  }
  if (!m_created) return;
  std::error_code ec;
  std::filesystem::remove(m_temporary, ec);
  m_created = false;
}

}  // namespace velantis
