#include "oxm/textwriter.h"

#include <charconv>
#include <cmath>

#include "common/failure.h"

namespace ombrix {

namespace {

constexpr const char* kHeader = "<OXM01>\r\n";
constexpr int kDoublePrecision = 17;

/// The form "%.17g", whatever the locale of the host.
std::string formatDouble(double value) {
  char digits[64];
  const auto end = std::to_chars(digits, digits + sizeof digits, value, std::chars_format::general,
                                 kDoublePrecision);
  return std::string(digits, end.ptr);
}

}  // namespace

TextWriter::TextWriter(const std::string& fileName, bool compress) : stream(fileName, compress) {
  stream.write(kHeader);
}

void TextWriter::pushMap() {
  if (!counts.empty()) beforeValue();
  stream.write("\n{");
  counts.push_back(0);
  afterProperty.push_back(false);
}

void TextWriter::popMap() {
  if (counts.empty()) {
    fail(kInputOutput, OMBRIX_HERE("TextWriter::popMap"), "There is no map to pop");
  }
  counts.pop_back();
  afterProperty.pop_back();
  stream.put('}');
  afterValue();
}

void TextWriter::pushProperty(const std::string& name) {
  if (counts.empty()) {
    fail(kInputOutput, OMBRIX_HERE("TextWriter::pushProperty"),
         "Cannot push a property outside a map");
  }
  if (counts.back() != 0) stream.put(',');
  stream.put('"');
  stream.write(name);
  stream.write("\"=");
  afterProperty.back() = true;
}

void TextWriter::pushValue(bool value) {
  writeValue(value ? "true" : "false");
}

void TextWriter::pushValue(double value) {
  if (std::isfinite(value)) {
    writeValue(formatDouble(value));
    return;
  }
  // Without afterValue: the files of this format have always been written so.
  beforeValue();
  stream.write(std::isnan(value) ? "nan" : value > 0 ? "inf" : "-inf");
}

void TextWriter::pushValue(long long value) {
  char digits[24];
  const auto end = std::to_chars(digits, digits + sizeof digits, value);
  writeValue(std::string_view(digits, static_cast<std::size_t>(end.ptr - digits)));
}

void TextWriter::pushValue(char value) {
  writeValue(std::string_view(&value, 1));
}

void TextWriter::pushValue(const std::string& value) {
  beforeValue();
  stream.put('"');
  for (const char c : value) {
    if (c == '\\' || c == '"') stream.put('\\');
    stream.put(c);
  }
  stream.put('"');
  afterValue();
}

void TextWriter::pushNil() {
  writeValue("nil");
}

void TextWriter::beforeValue() {
  if (counts.empty()) {
    fail(kInputOutput, OMBRIX_HERE("TextWriter::beforeValue"), "Cannot push a value outside a map");
  }
  if (!afterProperty.back() && counts.back() != 0) stream.put(',');
}

void TextWriter::afterValue() {
  if (counts.empty()) return;
  ++counts.back();
  afterProperty.back() = false;
}

void TextWriter::writeValue(std::string_view word) {
  beforeValue();
  stream.write(word);
  afterValue();
}

}  // namespace ombrix
