#ifndef OMBRIX_CLI_JSONWRITER_H
#define OMBRIX_CLI_JSONWRITER_H

#include <concepts>
#include <string>
#include <string_view>

namespace ombrix::cli {

/// Builds the text of one JSON value from front to back: the calls come in the order of the text,
/// and commas and line breaks are its own business. Doubles are written with as many digits as
/// bring back the same number; JSON has none for NaN and the infinities, which become the strings
/// "nan", "inf" and "-inf".
class JsonWriter {
public:
  void beginObject() { open('{'); }
  void endObject() { close('}'); }
  void beginArray() { open('['); }
  void endArray() { close(']'); }
  /// The name of the member of which the value comes next.
  void key(std::string_view name);

  /// Bytes that are no UTF-8 become the replacement character.
  void value(std::string_view content);
  void value(const char* content) { value(std::string_view(content)); }
  void value(bool truth) { item(truth ? "true" : "false"); }
  void value(double number);
  void value(std::integral auto number) { item(std::to_string(number)); }

  template <typename Value>
  void member(std::string_view name, const Value& content) {
    key(name);
    value(content);
  }

  const std::string& getText() const { return text; }

private:
  void open(char bracket);
  void close(char bracket);
  void item(std::string_view token);
  void separate();

  std::string text;
  std::string brackets;  ///< the open ones
  bool isFirst = true;   ///< in the innermost one
  bool hasKey = false;   ///< and the value comes next
};

}  // namespace ombrix::cli

#endif
