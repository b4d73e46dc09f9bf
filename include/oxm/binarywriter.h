#ifndef OMBRIX_OXM_BINARYWRITER_H
#define OMBRIX_OXM_BINARYWRITER_H

#include <cstdint>
#include <map>
#include <string>

#include "oxm/gzipostream.h"
#include "oxm/oxmwriter.h"

namespace ombrix {

/// The compact encoding of a token stream: a one-byte tag for each token, integers in the smallest
/// of four widths, doubles as their eight bytes, and a cache that shortens every repeated string of
/// at most 25 bytes to an index. Reads back exactly. All numbers are little-endian.
class BinaryWriter : public OXMWriter {
public:
  /// Opens the file and writes the magic.
  BinaryWriter(const std::string& fileName, bool compress);

  void pushMap() override;
  void popMap() override;
  using OXMWriter::pushProperty;
  using OXMWriter::pushValue;
  void pushProperty(const std::string& name) override;
  void pushValue(bool value) override;
  void pushValue(double value) override;
  void pushValue(long long value) override;
  void pushValue(char value) override;
  void pushValue(const std::string& value) override;
  void pushNil() override;
  std::uint64_t getNbBytes() const override { return stream.getNbBytes(); }

private:
  void writeTag(int tag) { stream.put(static_cast<char>(tag)); }
  void writeBytes(std::uint64_t value, int nbBytes);
  void writeText(const std::string& value);
  void writeString(int inlineTag, int cachedTag, const std::string& value);

  GzipOstream stream;
  std::map<std::string, std::uint16_t> strings;
  std::int32_t depth = 0;  ///< open maps
};

}  // namespace ombrix

#endif
