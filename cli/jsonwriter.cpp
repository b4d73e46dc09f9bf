#include "cli/jsonwriter.h"

#include <cmath>
#include <cstddef>
#include <cstdint>

#include "cli/numbertext.h"

namespace ombrix::cli {
namespace {

constexpr std::string_view kReplacement = "\\ufffd";

/// The bytes of the character of UTF-8 at the beginning of the text; 0 if there is none. Overlong
/// forms, surrogates and what lies beyond the last character are none.
std::size_t characterLength(std::string_view text) {
  const auto byte = [&](std::size_t i) {
    return i < text.size() ? static_cast<std::uint8_t>(text[i]) : std::uint8_t{0};
  };
  const auto isInside = [&](std::size_t i) { return (byte(i) & 0xC0) == 0x80; };
  const std::uint8_t first = byte(0);
  if (first < 0x80) return 1;
  if (first >= 0xC2 && first <= 0xDF) return isInside(1) ? 2 : 0;
  if (first >= 0xE0 && first <= 0xEF) {
    const bool isOverlong = first == 0xE0 && byte(1) < 0xA0;
    const bool isSurrogate = first == 0xED && byte(1) > 0x9F;
    return isInside(1) && isInside(2) && !isOverlong && !isSurrogate ? 3 : 0;
  }
  if (first < 0xF0 || first > 0xF4) return 0;
  const bool isOverlong = first == 0xF0 && byte(1) < 0x90;
  const bool isBeyond = first == 0xF4 && byte(1) > 0x8F;
  return isInside(1) && isInside(2) && isInside(3) && !isOverlong && !isBeyond ? 4 : 0;
}

std::string escapedControl(char c) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  const auto code = static_cast<std::uint8_t>(c);
  return std::string("\\u00") + kDigits[code >> 4] + kDigits[code & 15];
}

std::string quoted(std::string_view text) {
  std::string result = "\"";
  for (std::size_t i = 0; i < text.size();) {
    const char c = text[i];
    const std::size_t length = characterLength(text.substr(i));
    if (length == 0) {
      result += kReplacement;
    } else if (c == '"' || c == '\\') {
      result += {'\\', c};
    } else if (static_cast<std::uint8_t>(c) < 0x20 || c == 0x7F) {
      result += escapedControl(c);
    } else {
      result += text.substr(i, length);
    }
    i += length == 0 ? 1 : length;
  }
  return result + '"';
}

}  // namespace

void JsonWriter::key(std::string_view name) {
  separate();
  text += quoted(name);
  text += ": ";
  hasKey = true;
}

void JsonWriter::value(std::string_view content) {
  item(quoted(content));
}

void JsonWriter::value(double number) {
  if (std::isfinite(number)) {
    item(numberText(number));
  } else {
    value(numberText(number));
  }
}

void JsonWriter::open(char bracket) {
  separate();
  text += bracket;
  brackets += bracket;
  isFirst = true;
}

void JsonWriter::close(char bracket) {
  text += bracket;
  brackets.pop_back();
  isFirst = false;
  if (brackets.empty()) text += '\n';
}

void JsonWriter::item(std::string_view token) {
  separate();
  text += token;
}

/// The items of the outermost object and of the lists in it stand on lines of their own.
void JsonWriter::separate() {
  if (!hasKey && !brackets.empty()) {
    if (!isFirst) text += ',';
    const bool isLine = brackets == "{" || brackets == "{[";
    if (isLine) {
      text += '\n';
    } else if (!isFirst) {
      text += ' ';
    }
  }
  hasKey = false;
  isFirst = false;
}

}  // namespace ombrix::cli
