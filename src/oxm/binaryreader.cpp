#include "oxm/binaryreader.h"

#include <bit>

#include "common/failure.h"
#include "oxm/binarytags.h"

namespace ombrix {

namespace {

constexpr int kEnd = GzipIstream::kEndOfInput;
// No 16-bit index reaches a later entry, so a file cannot fill the memory with definitions.
constexpr std::size_t kMaxAddressableStrings = 65536;

}  // namespace

BinaryReader::BinaryReader(const std::string& fileName) : TokenReader(fileName) {
  checkMagic(kBinaryMagic, "ombrix::BinaryReader::readHeader");
}

void BinaryReader::next() {
  kind = kNoToken;
  tag = 0;
  int byte = stream.get();
  for (; byte == kStringDefinitionTag; byte = stream.get()) {
    readText();
    if (cache.size() < kMaxAddressableStrings) cache.push_back(text);
  }
  ended = byte == kEnd;
  if (ended) return;
  tag = byte;
  kind = tag;
  switch (tag) {
    case kMapStartTag:
    case kMapEndTag:
    case kNilTag:
    case kFalseTag:
    case kTrueTag:
      return;
    case kInlinePropertyTag:
    case kInlineStringTag:
      return readText();
    case kCachedPropertyTag:
      kind = kPropertyToken;
      return readCachedString();
    case kCachedStringTag:
      kind = kStringToken;
      return readCachedString();
    case kInt8Tag:
      return readInteger(1);
    case kInt16Tag:
      return readInteger(2);
    case kInt32Tag:
      return readInteger(4);
    case kInt64Tag:
      return readInteger(8);
    case kDoubleTag:
      doubleValue = std::bit_cast<double>(readBytes(8));
      return;
    default:
      fail(kInputOutput, OMBRIX_HERE("BinaryReader::next"), "File is corrupted : wrong value type");
  }
}

std::uint64_t BinaryReader::readBytes(int nbBytes) {
  std::uint64_t value = 0;
  for (int i = 0; i < nbBytes; ++i) {
    const int byte = stream.get();
    if (byte == kEnd) GzipIstream::failToRead();
    value |= static_cast<std::uint64_t>(byte) << (8 * i);
  }
  return value;
}

void BinaryReader::readText() {
  text.clear();
  for (int c = stream.get(); c != 0; c = stream.get()) {
    if (c == kEnd) GzipIstream::failToRead();
    text.push_back(static_cast<char>(c));
  }
}

void BinaryReader::readCachedString() {
  const auto index = static_cast<std::size_t>(readBytes(2));
  if (index >= cache.size()) {
    fail(kInputOutput, OMBRIX_HERE("BinaryReader::next"),
         "File is corrupted : wrong string cache index");
  }
  text = cache[index];
}

void BinaryReader::readInteger(int nbBytes) {
  kind = kIntegerToken;
  const int unusedBits = 64 - 8 * nbBytes;
  intValue = static_cast<std::int64_t>(readBytes(nbBytes) << unusedBits) >> unusedBits;
}

void BinaryReader::failType(const char* word) {
  fail(kInputOutput, OMBRIX_HERE("BinaryReader::checkType"),
       "Unexpected token. Token expected : '" + std::string(word) +
           "', token id in cache : " + std::to_string(tag));
}

void BinaryReader::failProperty(const std::string& expected) {
  fail(kInputOutput, OMBRIX_HERE("BinaryReader::nextProperty"),
       "Unexpected property. Expected property '" + expected + "'. Property found '" + text + "'");
}

void BinaryReader::failAtEnd() {
  GzipIstream::failToRead();
}

}  // namespace ombrix
