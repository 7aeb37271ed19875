#include "script/bz2_file.h"

#include <bzlib.h>

#include <algorithm>
#include <climits>

#include "app/file_io.h"

namespace velantis {

namespace {

constexpr size_t kOutputPiece = 1 << 16;
constexpr unsigned kMaxFeed = UINT_MAX / 2;  // bz_stream counts in unsigned int

// Decompresses one stream starting at bytes[at]; at moves past it.
bool DecompressStream(const std::string& bytes, size_t& at, TAtomicFileWriter& writer, std::string& error) {
  bz_stream stream{};
  if (BZ2_bzDecompressInit(&stream, 0, 0) != BZ_OK) {
    error = "Out of memory";
    return false;
  }
  char piece[kOutputPiece];
  int status = BZ_OK;
  while (status == BZ_OK) {
    const size_t feed = std::min<size_t>(kMaxFeed, bytes.size() - at);
    stream.next_in = const_cast<char*>(bytes.data() + at);
    stream.avail_in = static_cast<unsigned>(feed);
    stream.next_out = piece;
    stream.avail_out = kOutputPiece;
    status = BZ2_bzDecompress(&stream);
    at += feed - stream.avail_in;
    const size_t produced = kOutputPiece - stream.avail_out;
    if (!writer.Write(std::string_view(piece, produced))) status = BZ_IO_ERROR;
    // No progress with the input used up: the stream was cut short.
    if (status == BZ_OK && produced == 0 && at == bytes.size()) status = BZ_UNEXPECTED_EOF;
  }
  BZ2_bzDecompressEnd(&stream);
  if (status == BZ_STREAM_END) return true;
  error = status == BZ_IO_ERROR ? "Error writing file" : "Not valid bzip2 data";
  return false;
}

}  // namespace

bool UncompressBz2File(const std::string& in, const std::string& out, std::string& error) {
  std::string bytes;
  if (!ReadWholeFile(in, bytes, error)) return false;
  TAtomicFileWriter writer(out);
  if (!writer.Open(error)) return false;
  size_t at = 0;
  do {
    if (!DecompressStream(bytes, at, writer, error)) return false;
  } while (at < bytes.size());
  return writer.Commit(error);
}

}  // namespace velantis
