// CRC-32 and MD5 of files, and bzip2 decompression (file_checksum.h and
// bz2_file.h give the forms).
//
// Argument lists:
//   CheckCRC32(path), CheckMd5(path): 1 when the file ends with the checksum
//     of the bytes before it, 0 when not; "CRC Error" / "Check Md5 Error"
//     when the file cannot be read;
//   AppendCRC32(path), AppendMd5(path): append the checksum of the file and
//     give its text; "CRC Writting error" / "Md5 Writting error" on failure;
//   UncompressBZ2(in, out): writes the decompressed bytes of in to out, 1;
//     "Uncompression error" for anything not complete bzip2 data.
// Without system access (TScriptLimits) every one of them fails with its
// message.
#include "script/application_commands.h"
#include "script/bz2_file.h"
#include "script/file_checksum.h"
#include "script/velan_script_base.h"

namespace velantis {

namespace {

struct TChecksumMessages {
  const char* check;
  const char* append;
};
constexpr TChecksumMessages kCrcMessages{"CRC Error", "CRC Writting error"};
constexpr TChecksumMessages kMd5Messages{"Check Md5 Error", "Md5 Writting error"};

bool SystemAccess(const TBuiltinCall& call) { return call.script.Limits().systemAccess; }

void Check(TBuiltinCall& call, TChecksumKind kind, const TChecksumMessages& messages) {
  const std::string& path = call.Text(0);
  const TChecksumCheck result = SystemAccess(call) ? CheckFileChecksum(kind, path) : TChecksumCheck::Unreadable;
  if (result == TChecksumCheck::Unreadable) throw TScriptError(messages.check, call.at);
  call.result.SetNumber(result == TChecksumCheck::Match ? 1 : 0);
}

void Append(TBuiltinCall& call, TChecksumKind kind, const TChecksumMessages& messages) {
  std::string text, error;
  const std::string& path = call.Text(0);
  if (!SystemAccess(call) || !AppendFileChecksum(kind, path, text, error)) throw TScriptError(messages.append, call.at);
  call.result.SetString(text);
}

void CheckCRC32(TBuiltinCall& call) { Check(call, TChecksumKind::Crc32, kCrcMessages); }
void AppendCRC32(TBuiltinCall& call) { Append(call, TChecksumKind::Crc32, kCrcMessages); }
void CheckMd5(TBuiltinCall& call) { Check(call, TChecksumKind::Md5, kMd5Messages); }
void AppendMd5(TBuiltinCall& call) { Append(call, TChecksumKind::Md5, kMd5Messages); }

void UncompressBZ2(TBuiltinCall& call) {
  std::string error;
  const std::string &in = call.Text(0), &out = call.Text(1);
  if (!SystemAccess(call) || !UncompressBz2File(in, out, error)) throw TScriptError("Uncompression error", call.at);
  call.result.SetNumber(1);
}

constexpr TApplicationCommand kChecksumCommands[] = {
    {"CheckCRC32", 1, CheckCRC32}, {"AppendCRC32", 1, AppendCRC32}, {"CheckMd5", 1, CheckMd5},
    {"AppendMd5", 1, AppendMd5},   {"UncompressBZ2", 2, UncompressBZ2},
};

}  // namespace

std::span<const TApplicationCommand> ChecksumCommands() { return kChecksumCommands; }

}  // namespace velantis
