// Checksums and bzip2 against the system's own tools: md5sum, a CRC-32 from
// crc32 (libarchive-zip-perl) or Python's zlib, and bzip2.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>

#include "script/bz2_file.h"
#include "script/file_checksum.h"
#include "script/text_code.h"
#include "tests/script/script_outcome.h"
#include "tests/script/tool_output.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

namespace fs = std::filesystem;

void Write(const fs::path& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

// The contents every checksum test runs over: empty, short, binary, long.
std::vector<std::string> Contents() {
  std::string binary(70000, '\0');
  std::mt19937 draw(7);
  for (char& c : binary) c = static_cast<char>(draw());
  return {"", "abc", std::string("a\0\r\n\xff", 5), binary};
}

std::string ReferenceMd5(const fs::path& file) { return test::ToolOutput("md5sum '" + file.string() + "'").substr(0, 32); }

std::string ReferenceCrc32(const fs::path& file) {
  std::string crc = test::ToolOutput("crc32 '" + file.string() + "'").substr(0, 8);
  if (crc.empty())
    crc = test::ToolOutput("python3 -c 'import sys, zlib; print(\"%08X\" % zlib.crc32(open(sys.argv[1], \"rb\").read()))' '" +
                           file.string() + "'")
              .substr(0, 8);
  for (char& c : crc) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return crc;
}

struct TKindCase {
  TChecksumKind kind;
  std::string (*reference)(const fs::path&);
};

TEST(Checksums, AppendMatchesSystemToolsAndCheckAcceptsIt) {
  const fs::path dir = test::ScratchDir("checksums");
  for (const TKindCase& k : {TKindCase{TChecksumKind::Md5, ReferenceMd5}, TKindCase{TChecksumKind::Crc32, ReferenceCrc32}}) {
    int n = 0;
    for (const std::string& content : Contents()) {
      const fs::path file = dir / ("f" + std::to_string(n++));
      Write(file, content);
      const std::string expected = k.reference(file);
      if (expected.empty()) GTEST_SKIP() << "no md5sum, crc32 or python3 for the reference";
      std::string text, error;
      ASSERT_TRUE(AppendFileChecksum(k.kind, file.string(), text, error)) << error;
      EXPECT_EQ(text, expected);
      EXPECT_EQ(test::FileBytes(file), content + expected);
      EXPECT_EQ(CheckFileChecksum(k.kind, file.string()), TChecksumCheck::Match);
      EXPECT_EQ(ChecksumText(k.kind, content), expected);
    }
  }
}

TEST(Checksums, CheckRefusesWhatAppendDoesNotWrite) {
  const fs::path file = test::ScratchDir("checksum-refused") / "f";
  const std::string md5 = ChecksumText(TChecksumKind::Md5, "abc");
  const std::string crc = ChecksumText(TChecksumKind::Crc32, "abc");
  std::string lowerCrc = crc;
  for (char& c : lowerCrc) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  ASSERT_NE(lowerCrc, crc) << "the CRC of abc has letters";
  struct TCase {
    TChecksumKind kind;
    std::string bytes;
    TChecksumCheck expected;
  } const cases[] = {
      {TChecksumKind::Md5, "abd" + md5, TChecksumCheck::Mismatch},
      {TChecksumKind::Md5, "abc" + md5 + "\n", TChecksumCheck::Mismatch},
      {TChecksumKind::Md5, md5.substr(1), TChecksumCheck::Mismatch},
      {TChecksumKind::Crc32, "abc" + lowerCrc, TChecksumCheck::Mismatch},
      {TChecksumKind::Crc32, "abc" + crc, TChecksumCheck::Match},
      {TChecksumKind::Crc32, "bc" + crc, TChecksumCheck::Mismatch},
      {TChecksumKind::Crc32, crc.substr(1), TChecksumCheck::Mismatch},
  };
  for (const TCase& c : cases) {
    Write(file, c.bytes);
    EXPECT_EQ(CheckFileChecksum(c.kind, file.string()), c.expected) << c.bytes;
  }
  fs::remove(file);
  EXPECT_EQ(CheckFileChecksum(TChecksumKind::Md5, file.string()), TChecksumCheck::Unreadable);
  std::string text, error;
  EXPECT_FALSE(AppendFileChecksum(TChecksumKind::Crc32, file.string(), text, error));
  EXPECT_FALSE(fs::exists(file));
}

// Reference codes computed with Python's hashlib from the rule of text_code.h.
TEST(Checksums, Cod5ReferenceCodes) {
  const std::pair<std::string, std::string> cases[] = {
      {"", "TGERS"}, {"abc", "J00N1"}, {"Velantis", "4W1NP"}, {"\xe1rbol", "TNEKG"}};
  for (const auto& [text, code] : cases) EXPECT_EQ(TextCode5(text), code) << text;
}

// The string methods as a script calls them, against md5sum.
TEST(Checksums, StringMethods) {
  const fs::path file = test::ScratchDir("md5-string") / "abc";
  Write(file, "Sierra \xd1");
  const std::string md5 = ReferenceMd5(file);
  if (md5.empty()) GTEST_SKIP() << "no md5sum";
  EXPECT_EQ(Outcome("s = \"Sierra \xd1\"; v = s.Md5() + \"|\" + \"abc\".Cod5() + s;"), "v=" + md5 + "|J00N1Sierra \xd1");
  EXPECT_EQ(Outcome("v = \"a\".Md5(1);"), "|Too few parametes in call to 'Md5' @4-6");
}

TEST(Bz2, UncompressesWhatBzip2WroteAndRefusesDamage) {
  const fs::path dir = test::ScratchDir("bz2");
  const std::string first = std::string(100000, 'x') + "track\r\n", second = "second stream";
  Write(dir / "a", first);
  Write(dir / "b", second);
  if (test::ToolOutput("bzip2 -k '" + (dir / "a").string() + "' && bzip2 -c '" + (dir / "b").string() + "' >> '" +
                       (dir / "a.bz2").string() + "' && echo ok") != "ok\n")
    GTEST_SKIP() << "no bzip2";
  const std::string out = (dir / "out").string();
  std::string error;
  ASSERT_TRUE(UncompressBz2File((dir / "a.bz2").string(), out, error)) << error;
  EXPECT_EQ(test::FileBytes(out), first + second);

  const std::string good = test::FileBytes(dir / "a.bz2");
  std::string flipped = good;
  flipped[good.size() / 3] ^= 0x10;
  const std::string damaged[] = {flipped, good.substr(0, good.size() - 5), good + "junk", "plain text", ""};
  for (const std::string& bytes : damaged) {
    Write(dir / "bad.bz2", bytes);
    fs::remove(out);
    EXPECT_FALSE(UncompressBz2File((dir / "bad.bz2").string(), out, error)) << bytes.size();
    EXPECT_FALSE(fs::exists(out)) << "no partial output";
  }
  EXPECT_FALSE(UncompressBz2File((dir / "missing.bz2").string(), out, error));
}

}  // namespace
}  // namespace velantis
