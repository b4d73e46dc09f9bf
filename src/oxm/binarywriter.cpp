#include "oxm/binarywriter.h"

#include <bit>
#include <limits>

#include "oxm/binarytags.h"

namespace ombrix {

namespace {

template <typename Integer>
bool fits(long long value) {
  return value >= std::numeric_limits<Integer>::min() &&
         value <= std::numeric_limits<Integer>::max();
}

}  // namespace

BinaryWriter::BinaryWriter(const std::string& fileName, bool compress)
    : stream(fileName, compress) {
  stream.write(kBinaryMagic);
}

void BinaryWriter::pushMap() {
  writeTag(kMapStartTag);
  ++depth;
}

void BinaryWriter::popMap() {
  --depth;
  writeTag(kMapEndTag);
}

void BinaryWriter::pushProperty(const std::string& name) {
  writeString(kInlinePropertyTag, kCachedPropertyTag, name);
}

void BinaryWriter::pushValue(bool value) {
  writeTag(value ? kTrueTag : kFalseTag);
}

void BinaryWriter::pushValue(double value) {
  writeTag(kDoubleTag);
  writeBytes(std::bit_cast<std::uint64_t>(value), 8);
}

void BinaryWriter::pushValue(long long value) {
  const auto bits = static_cast<std::uint64_t>(value);
  if (fits<std::int8_t>(value)) {
    writeTag(kInt8Tag);
    writeBytes(bits, 1);
  } else if (fits<std::int16_t>(value)) {
    writeTag(kInt16Tag);
    writeBytes(bits, 2);
  } else if (fits<std::int32_t>(value)) {
    writeTag(kInt32Tag);
    writeBytes(bits, 4);
  } else {
    writeTag(kInt64Tag);
    writeBytes(bits, 8);
  }
}

// The signed reading of a char, also on a platform whose chars are unsigned.
void BinaryWriter::pushValue(char value) {
  pushValue(static_cast<long long>(static_cast<signed char>(value)));
}

void BinaryWriter::pushValue(const std::string& value) {
  writeString(kInlineStringTag, kCachedStringTag, value);
}

void BinaryWriter::pushNil() {
  writeTag(kNilTag);
}

void BinaryWriter::writeBytes(std::uint64_t value, int nbBytes) {
  for (int i = 0; i < nbBytes; ++i) stream.put(static_cast<char>(value >> (8 * i)));
}

/// A text ends at its first zero byte: the format has no other end for it.
void BinaryWriter::writeText(const std::string& value) {
  stream.write(value.c_str());
  stream.put('\0');
}

void BinaryWriter::writeString(int inlineTag, int cachedTag, const std::string& value) {
  if (value.size() <= kMaxCachedLength) {
    auto known = strings.find(value);
    if (known == strings.end() && strings.size() < kMaxCacheSize) {
      known = strings.emplace(value, static_cast<std::uint16_t>(strings.size())).first;
      writeTag(kStringDefinitionTag);
      writeText(value);
    }
    if (known != strings.end()) {
      writeTag(cachedTag);
      writeBytes(known->second, 2);
      return;
    }
  }
  writeTag(inlineTag);
  writeText(value);
}

}  // namespace ombrix
