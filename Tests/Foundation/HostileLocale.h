#pragma once

#include <clocale>
#include <cstdlib>
#include <locale>

/// Makes this test's process look like a Turkish one whose decimal point is a comma, as far as the machine
/// has such a locale; the C++ locale needs none installed. Every TEST runs in a process of its own.
inline void useHostileLocale() {
    class CommaPoint final : public std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    setenv("LC_ALL", "tr_TR.UTF-8", 1);
    setenv("LANG", "tr_TR.UTF-8", 1);
    setenv("TZ", "Asia/Kathmandu", 1);
    std::setlocale(LC_ALL, "");
    std::locale::global(std::locale(std::locale::classic(), new CommaPoint));
}
