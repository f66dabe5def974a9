#pragma once

#include <locale>
#include <string>

namespace qncomm::testing {

/// While it lives the program runs in a place that writes 1.234,5 for what is 1234.5 elsewhere.
class CommaLocale {
  public:
    CommaLocale() : mFormer(std::locale::global(std::locale(std::locale(), new Punctuation))) {}
    ~CommaLocale() { std::locale::global(mFormer); }
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;

  private:
    struct Punctuation : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };

    std::locale mFormer;
};

} // namespace qncomm::testing
