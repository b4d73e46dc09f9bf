#ifndef OMBRIX_OXM_TEXTWRITER_H
#define OMBRIX_OXM_TEXTWRITER_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "oxm/gzipostream.h"
#include "oxm/oxmwriter.h"

namespace ombrix {

/// The text encoding of a token stream: no indentation and no blanks, structure by braces, commas,
/// quotes and equal signs.
///
/// What text loses: a double with a whole value is written without a point, and a non-finite double
/// does not count as an item, so that no comma follows it and not every such file can be read back.
class TextWriter : public OXMWriter {
public:
  /// Opens the file and writes the header.
  TextWriter(const std::string& fileName, bool compress);

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
  void beforeValue();
  void afterValue();
  void writeValue(std::string_view word);

  GzipOstream stream;
  std::vector<std::int32_t> counts;  ///< per open map: the items written so far
  std::vector<bool> afterProperty;   ///< per open map: a name was written and its value is pending
};

}  // namespace ombrix

#endif
