#include "solver/kernel/oxvalue.h"

#include <boost/lexical_cast/try_lexical_convert.hpp>
#include <limits>
#include <locale>
#include <sstream>
#include <string_view>

#include "common/failure.h"

namespace ombrix {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}
bool isSign(char c) {
  return c == '+' || c == '-';
}
bool isExponent(char c) {
  return c == 'e' || c == 'E';
}

/// What a scan of a number has met so far.
struct LiteralScan {
  bool pointSeen = false;
  bool exponentSeen = false;
  bool mantissaDigitSeen = false;
  bool exponentDigitSeen = false;

  /// False if the character cannot stand here.
  bool accept(char c) {
    if (isSign(c)) return (!mantissaDigitSeen || exponentSeen) && !exponentDigitSeen;
    if (isDigit(c)) return mark(exponentSeen ? exponentDigitSeen : mantissaDigitSeen);
    if (c == '.') return !pointSeen && !exponentSeen && mark(pointSeen);
    if (isExponent(c)) return mantissaDigitSeen && !exponentSeen && mark(exponentSeen);
    return false;
  }

private:
  static bool mark(bool& flag) {
    flag = true;
    return true;
  }
};

std::size_t skipSign(std::string_view text, std::size_t at) {
  return at < text.size() && isSign(text[at]) ? at + 1 : at;
}

std::size_t skipDigits(std::string_view text, std::size_t at) {
  while (at < text.size() && isDigit(text[at])) ++at;
  return at;
}

/// An optional sign, then digits: the casts of the library also take group separators of the
/// locale.
bool isIntegerForm(std::string_view text) {
  const std::size_t first = skipSign(text, 0);
  return first < text.size() && skipDigits(text, first) == text.size();
}

/// An optional sign, digits around an optional point, an optional exponent that has digits: the
/// casts of the library also take words for infinity and NaN in other spellings.
bool isDecimalForm(std::string_view text) {
  const std::size_t first = skipSign(text, 0);
  std::size_t at = skipDigits(text, first);
  std::size_t nbDigits = at - first;
  if (at < text.size() && text[at] == '.') {
    const std::size_t fraction = at + 1;
    at = skipDigits(text, fraction);
    nbDigits += at - fraction;
  }
  if (nbDigits == 0) return false;
  if (at < text.size() && isExponent(text[at])) return isIntegerForm(text.substr(at + 1));
  return at == text.size();
}

/// boost::lexical_cast reads doubles through a stream in the locale of the host; this is that
/// stream in the classic one.
bool readDecimal(const std::string& text, double& value) {
  std::istringstream in(text);
  in.imbue(std::locale::classic());
  return static_cast<bool>(in >> value);
}

}  // namespace

bool isDoubleLiteral(const char* text) {
  const std::string_view literal(text);
  if (literal == "inf" || literal == "nan" || literal == "+inf" || literal == "-inf") return true;
  LiteralScan scan;
  for (const char c : literal) {
    if (!scan.accept(c)) return false;
  }
  return scan.pointSeen || scan.exponentSeen;
}

std::int64_t castToOxInt(const std::string& text) {
  std::int64_t value = 0;
  if (!isIntegerForm(text) || !boost::conversion::try_lexical_convert(text, value)) {
    fail(kInternal, OMBRIX_HERE("castToOxInt"),
         "Cannot cast '" + text +
             "' to int (max value allowed : 9223372036854775807, min value allowed : "
             "-9223372036854775808).");
  }
  return value;
}

double castToOxDouble(const std::string& text) {
  if (text == "inf" || text == "+inf") return kInfinity;
  if (text == "-inf") return -kInfinity;
  if (text == "nan") return std::numeric_limits<double>::quiet_NaN();
  double value = 0.0;
  if (!isDecimalForm(text) || !readDecimal(text, value)) {
    fail(kInternal, OMBRIX_HERE("castToOxDouble"), "Cannot cast '" + text + "' to double.");
  }
  return value;
}

}  // namespace ombrix
