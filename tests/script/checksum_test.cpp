// Checksums and bzip2 against the system's own tools: md5sum, a CRC-32 from
// crc32 (libarchive-zip-perl) or Python's zlib, and bzip2.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>

#include "script/bz2_file.h"
#include "script/file_checksum.h"
#include "tests/script/script_outcome.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

namespace fs = std::filesystem;

void Write(const fs::path& path, const std::string& bytes) { std::ofstream(path, std::ios::binary) << bytes; }

// A system tool's output for the reference; "" when it is missing or fails.
std::string ToolOutput(const std::string& command) {
  std::string out;
  std::FILE* pipe = ::popen((command + " 2>/dev/null").c_str(), "r");
  char buffer[4096];
  for (size_t n; pipe && (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) out.append(buffer, n);
  return pipe && ::pclose(pipe) == 0 ? out : std::string();
}

std::string ReferenceMd5(const fs::path& file) { return ToolOutput("md5sum '" + file.string() + "'").substr(0, 32); }

std::string ReferenceCrc32(const fs::path& file) {
  std::string crc = ToolOutput("crc32 '" + file.string() + "'").substr(0, 8);
  if (crc.empty())
    crc = ToolOutput("python3 -c 'import sys, zlib; print(\"%08X\" % zlib.crc32(open(sys.argv[1], \"rb\")"
                           ".read()))' '" + file.string() + "'").substr(0, 8);
  for (char& c : crc) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return crc;
}

TEST(Checksums, AppendMatchesSystemToolsAndCheckAcceptsIt) {
  const fs::path file = test::ScratchDir("checksums") / "f";
  std::string binary(70000, '\0');
  std::mt19937 draw(7);
  for (char& c : binary) c = static_cast<char>(draw());
  for (const auto& [kind, reference] : {std::pair{TChecksumKind::Md5, &ReferenceMd5}, {TChecksumKind::Crc32, &ReferenceCrc32}})
    for (const std::string& content : {std::string(), std::string("a\0\r\n\xff", 5), binary}) {
      Write(file, content);
      const std::string expected = reference(file);
      if (expected.empty()) GTEST_SKIP() << "no md5sum, crc32 or python3 for the reference";
      std::string text, error;
      ASSERT_TRUE(AppendFileChecksum(kind, file.string(), text, error)) << error;
      EXPECT_EQ(text, expected);
      EXPECT_EQ(test::FileBytes(file), content + expected);
      EXPECT_EQ(CheckFileChecksum(kind, file.string()), TChecksumCheck::Match);
    }
  // The string method gives md5sum's digest of the string's bytes.
  Write(file, "Sierra \xd1");
  EXPECT_EQ(Outcome("v = \"Sierra \xd1\".Md5();"), "v=" + ReferenceMd5(file));
}

TEST(Checksums, CheckRefusesWhatAppendDoesNotWrite) {
  const fs::path file = test::ScratchDir("checksum-refused") / "f";
  const std::string md5 = ChecksumText(TChecksumKind::Md5, "abc"), crc = "352441C2";  // Python's zlib.crc32(b"abc")
  const std::tuple<TChecksumKind, std::string, TChecksumCheck> cases[] = {
      {TChecksumKind::Md5, "abd" + md5, TChecksumCheck::Mismatch},
      {TChecksumKind::Md5, "abc" + md5 + "\n", TChecksumCheck::Mismatch},
      {TChecksumKind::Md5, md5.substr(1), TChecksumCheck::Mismatch},
      {TChecksumKind::Crc32, "abc352441c2", TChecksumCheck::Mismatch},
      {TChecksumKind::Crc32, "abc" + crc, TChecksumCheck::Match},
      {TChecksumKind::Crc32, "bc" + crc, TChecksumCheck::Mismatch},
      {TChecksumKind::Crc32, crc.substr(1), TChecksumCheck::Mismatch},
  };
  for (const auto& [kind, bytes, expected] : cases) {
    Write(file, bytes);
    EXPECT_EQ(CheckFileChecksum(kind, file.string()), expected) << bytes;
  }
  fs::remove(file);
  EXPECT_EQ(CheckFileChecksum(TChecksumKind::Md5, file.string()), TChecksumCheck::Unreadable);
}

// Reference codes computed with Python's hashlib from the rule of text_code.h.
TEST(Checksums, Cod5ReferenceCodes) {
  EXPECT_EQ(Outcome("v = \"\".Cod5() + \"abc\".Cod5() + \"Velantis\".Cod5() + \"\xe1rbol\".Cod5();"),
            "v=TGERSJ00N14W1NPTNEKG");
  EXPECT_EQ(Outcome("v = \"a\".Cod5(1);"), "|Too few parametes in call to 'Cod5' @4-6");
}

TEST(Bz2, UncompressesWhatBzip2WroteAndRefusesDamage) {
  const fs::path dir = test::ScratchDir("bz2");
  const std::string first = std::string(100000, 'x') + "track\r\n", second = "second stream";
  Write(dir / "a", first);
  Write(dir / "b", second);
  if (ToolOutput("bzip2 -k '" + (dir / "a").string() + "' && bzip2 -c '" + (dir / "b").string() + "' >> '" +
                       (dir / "a.bz2").string() + "' && echo ok") != "ok\n")
    GTEST_SKIP() << "no bzip2";
  const std::string out = (dir / "out").string();
  std::string error;
  ASSERT_TRUE(UncompressBz2File((dir / "a.bz2").string(), out, error)) << error;
  EXPECT_EQ(test::FileBytes(out), first + second);
  const std::string good = test::FileBytes(dir / "a.bz2");
  std::string flipped = good;
  flipped[good.size() / 3] ^= 0x10;
  for (const std::string& bytes : {flipped, good.substr(0, good.size() - 5), good + "junk", std::string("text"), std::string()}) {
    Write(dir / "bad.bz2", bytes);
    fs::remove(out);
    EXPECT_FALSE(UncompressBz2File((dir / "bad.bz2").string(), out, error)) << bytes.size();
    EXPECT_FALSE(fs::exists(out)) << "no partial output";
  }
}

}  // namespace
}  // namespace velantis
