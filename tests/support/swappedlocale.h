#ifndef OMBRIX_TESTS_SUPPORT_SWAPPEDLOCALE_H
#define OMBRIX_TESTS_SUPPORT_SWAPPEDLOCALE_H

#include <locale>
#include <string>

namespace ombrix::test {

/// While it stands, the locale of the host has decimal point and thousands separator
/// swapped: 1.234,5.
class SwappedLocale {
public:
  SwappedLocale()
      : before(std::locale::global(std::locale(std::locale::classic(), new Punctuation))) {}
  ~SwappedLocale() { std::locale::global(before); }
  SwappedLocale(const SwappedLocale&) = delete;
  SwappedLocale& operator=(const SwappedLocale&) = delete;

private:
  class Punctuation : public std::numpunct<char> {
  protected:
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
  };

  std::locale before;
};

}  // namespace ombrix::test

#endif
