#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "oxm/gzipistream.h"
#include "oxm/gzipostream.h"
#include "support/failures.h"
#include "support/tokenfiles.h"

namespace ombrix {
namespace {

using test::expectFailure;
using test::gzipped;
using test::TemporaryFile;

std::string readAll(const std::string& path) {
  GzipIstream stream(path);
  std::string bytes;
  for (int c = stream.get(); c != GzipIstream::kEndOfInput; c = stream.get()) {
    bytes.push_back(static_cast<char>(c));
  }
  return bytes;
}

/// Every byte value, over more than one block of either stream.
std::string manyBytes() {
  std::string bytes;
  unsigned x = 1;
  for (int i = 0; i < 200000; ++i) {
    x = x * 1664525U + 1013904223U;
    bytes.push_back(static_cast<char>(x >> 24));
  }
  return bytes;
}

TEST(GzipOstreamTest, WritesPlainBytesAsTheyAre) {
  const TemporaryFile file("old contents", ".gz");
  const std::string bytes = manyBytes();
  {
    GzipOstream stream(file.path(), false);
    stream.write(bytes);
    stream.put('\0');
    stream.put('x');
  }
  EXPECT_EQ(test::bytesOf(file.path()), bytes + std::string("\0x", 2));
}

TEST(GzipOstreamTest, CompressesWhateverTheName) {
  const TemporaryFile file("", ".dat");
  const std::string bytes = manyBytes();
  {
    GzipOstream stream(file.path(), true);
    for (const char c : bytes) stream.put(c);
  }
  EXPECT_EQ(test::bytesOf(file.path()).substr(0, 2), "\x1f\x8b");
  EXPECT_EQ(test::inflatedBytesOf(file.path()), bytes);
}

TEST(GzipOstreamTest, CountsTheBytesThatTheFileMustHold) {
  for (const bool compress : {false, true}) {
    GzipOstream stream("/dev/full", compress);
    stream.write(manyBytes());
    stream.put('x');
    EXPECT_EQ(stream.getNbBytes(), 200001U);
  }
}

TEST(GzipOstreamTest, AFileThatCannotBeOpenedIsNamed) {
  for (const bool compress : {false, true}) {
    expectFailure(1, "GzipOstream::GzipOstream", "Cannot open file /nonexistent/a.oxm",
                  [&] { GzipOstream("/nonexistent/a.oxm", compress); });
  }
}

TEST(GzipIstreamTest, ReadsPlainAndCompressedFilesAlikeWhateverTheName) {
  const std::string bytes = manyBytes();
  EXPECT_EQ(readAll(TemporaryFile(bytes, ".oxm").path()), bytes);
  EXPECT_EQ(readAll(TemporaryFile(bytes, ".gz").path()), bytes);
  EXPECT_EQ(readAll(TemporaryFile(gzipped(bytes), ".gz").path()), bytes);
  EXPECT_EQ(readAll(TemporaryFile(gzipped(bytes), ".oxm").path()), bytes);
}

TEST(GzipIstreamTest, BytesAreUnsignedAndTheEndStaysTheEnd) {
  const TemporaryFile file("\xff", ".dat");
  GzipIstream stream(file.path());
  EXPECT_EQ(stream.get(), 255);
  EXPECT_EQ(stream.get(), -1);
  EXPECT_EQ(stream.get(), -1);
}

TEST(GzipIstreamTest, PutsACharacterBackAlsoAtTheBordersOfBlocks) {
  const std::string bytes = manyBytes();
  const TemporaryFile file(bytes, ".dat");
  GzipIstream stream(file.path());
  for (const char expected : bytes) {
    const int c = stream.get();
    ASSERT_EQ(c, static_cast<unsigned char>(expected));
    stream.unget();
    ASSERT_EQ(stream.get(), c);
  }
}

TEST(GzipIstreamTest, AShortReadLeavesTheRestOfTheBuffer) {
  const TemporaryFile file("abc", ".dat");
  GzipIstream stream(file.path());
  char buffer[] = "zzzzz";
  EXPECT_EQ(stream.read(buffer, 5), 3U);
  EXPECT_STREQ(buffer, "abczz");
}

TEST(GzipIstreamTest, AFileThatDoesNotExistIsNamed) {
  expectFailure(1, "GzipIstream::GzipIstream", "Cannot open file no such file.oxm",
                [] { GzipIstream("no such file.oxm"); });
}

TEST(GzipIstreamTest, ATruncatedGzipFileReadsAsTheEndOfInput) {
  const std::string bytes = manyBytes();
  const std::string packed = gzipped(bytes);
  const std::string read =
      readAll(TemporaryFile(packed.substr(0, packed.size() / 2), ".gz").path());
  EXPECT_GT(read.size(), bytes.size() / 3);
  EXPECT_EQ(read, bytes.substr(0, read.size()));
  EXPECT_EQ(readAll(TemporaryFile(packed.substr(0, packed.size() - 8), ".gz").path()), bytes);
}

TEST(GzipIstreamTest, CorruptCompressedDataIsAFailureBehindWhatStandsBeforeIt) {
  const std::string bytes(100000, 'a');
  std::string packed = gzipped(bytes);
  packed[packed.size() - 6] ^= 1;  // in the checksum, which is met at the end
  const TemporaryFile file(packed, ".gz");
  GzipIstream stream(file.path());
  for (std::size_t i = 0; i < 80000; ++i) ASSERT_EQ(stream.get(), 'a');
  expectFailure(1, "GzipIstream::read", "Error while reading file.", [&] {
    while (stream.get() != GzipIstream::kEndOfInput) {
    }
  });
}

TEST(GzipIstreamTest, AFolderCannotBeRead) {
  GzipIstream stream(std::filesystem::temp_directory_path().string());
  expectFailure(1, "GzipIstream::read", "Error while reading file.", [&] { stream.get(); });
}

}  // namespace
}  // namespace ombrix
