// Numbers printed and scanned by a format: judged by snprintf and sscanf of the C locale wherever those are defined.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cfloat>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <string>
#include <vector>

#include "text/number_format.h"

namespace {

std::string printed(const std::string& format, std::int32_t value) {
  kt::NumberText out;
  kt::printInteger(out, format.c_str(), value);
  EXPECT_EQ(std::strlen(out.text), out.length);
  return out.text;
}

std::string printed(const std::string& format, double value) {
  kt::NumberText out;
  kt::printDouble(out, format.c_str(), value);
  EXPECT_EQ(std::strlen(out.text), out.length);
  return out.text;
}

template <class Value>
std::string reference(const std::string& format, Value value) {
  char out[512];
  std::snprintf(out, sizeof out, format.c_str(), value);
  return out;
}

// Every subset of the flags, some widths and precisions, with one length modifier and conversion.
template <class Check>
void forEachFormat(const std::vector<const char*>& widths, const std::vector<const char*>& precisions, const char* tail,
                   Check check) {
  for (unsigned flags = 0; flags < 32; ++flags) {
    std::string start = "<%";
    for (unsigned i = 0; i < 5; ++i) {
      if ((flags >> i & 1) != 0) start += "-+ #0"[i];
    }
    for (const char* width : widths) {
      for (const char* precision : precisions) check(start + width + precision + tail + ">");
    }
  }
}

std::vector<std::int32_t> sampleIntegers() {
  std::vector<std::int32_t> values{0,         9,         10,         99, 100, 12345,     99999999,
                                   100000000, 999999999, 1000000000, -1, -10, -100000000};
  for (unsigned bit = 7; bit < 32; bit += 8) {
    for (std::uint32_t step = 0; step < 3; ++step) values.push_back(static_cast<std::int32_t>((1U << bit) - 1 + step));
  }
  return values;
}

std::vector<double> sampleDoubles() {
  const double hard[] = {
      0.0,       1.0,           0.1,     0.5,        1.5,    2.5,    0.125,    0.375, 9.5,  99.5, 9.9999995,
      9999995.0, 0.00009999995, 0.0001,  123456.789, 1e15,   1e16,   1e17,     1e22,  1e23, 2e-7, 4503599627370497.5,
      0.045,     1.005,         DBL_MAX, DBL_MIN,    5e-324, 3e-310, INFINITY, NAN};
  std::vector<double> values(std::begin(hard), std::end(hard));
  for (int exponent = -1074; exponent < 1024; exponent += 103) {
    const double power = std::ldexp(1.0, exponent);
    values.insert(values.end(), {power, std::nextafter(power, 0.0), std::nextafter(power, INFINITY)});
  }
  const std::size_t positive = values.size();
  for (std::size_t i = 0; i < positive; i += 3) values.push_back(-values[i]);
  return values;
}

}  // namespace

TEST(NumberFormat, integers_print_as_snprintf_prints_them) {
  const std::vector<std::int32_t> values = sampleIntegers();
  for (const char* tail : {"d", "i", "u", "o", "x", "X", "hd", "hu", "hx", "hhd", "hhu", "hhX"}) {
    forEachFormat({"", "1", "7", "40", "600"}, {"", ".", ".0", ".3", ".12", ".700"}, tail,
                  [&](const std::string& format) {
                    const std::string alone = format.substr(1, format.size() - 2);
                    for (const std::int32_t value : values) {
                      ASSERT_EQ(printed(format, value), reference(format, value)) << format << " " << value;
                      ASSERT_EQ(printed(alone, value), reference(alone, value)) << alone << " " << value;
                    }
                  });
  }
}

TEST(NumberFormat, a_long_has_32_bits_under_every_modifier) {
  for (const char* modifier : {"l", "ll", "j", "z", "t", "q", "L"}) {
    const std::string start = std::string("%") + modifier;
    for (const std::int32_t value : sampleIntegers()) {
      EXPECT_EQ(printed(start + "d", value), std::to_string(value));
      EXPECT_EQ(printed(start + "u", value), std::to_string(static_cast<std::uint32_t>(value)));
    }
  }
}

TEST(NumberFormat, doubles_print_as_snprintf_prints_them) {
  const std::vector<double> values = sampleDoubles();
  for (const char* tail : {"f", "e", "g", "lG", "lF", "E", "a", "A"}) {
    forEachFormat({"", "25"}, {"", ".0", ".1", ".5", ".15", ".17"}, tail, [&](const std::string& format) {
      for (const double value : values)
        ASSERT_EQ(printed(format, value), reference(format, value)) << format << " " << value;
    });
    for (const char* rare :
         {"%.40", "%#.300", "%-.510", "%+.900", "%.2000", "%030.20", "%1500.1400", "%700.2", "%.767"}) {
      const std::string format = std::string(rare) + tail;
      for (const double value : values)
        ASSERT_EQ(printed(format, value), reference(format, value)) << format << " " << value;
    }
  }
}

TEST(NumberFormat, random_doubles_print_as_snprintf_prints_them) {
  EXPECT_EQ(printed("%#g %%", 999999.5), "1.00000e+06 %");  // one C library drops the zeros here
  std::uint64_t state = 88172645463325252U;
  for (int i = 0; i < 30000; ++i) {
    state ^= state << 13;
    state ^= state >> 7;
    state ^= state << 17;
    const double any = std::bit_cast<double>(state);
    const double middle =
        static_cast<double>(static_cast<std::int64_t>(state)) / std::ldexp(1.0, static_cast<int>(state % 80));
    // Few digits: many of these lie halfway between two results.
    const double tie = static_cast<double>(state >> 50) / 64;
    const char* const formats[] = {"%f",    "%e",    "%g",   "%.2f", "%.3g", "%.15g",
                                   "%.17g", "%.10f", "%.1e", "%.0f", "%#g",  "%.4f"};
    const char* const format = formats[i % 12];
    for (const double value : {any, middle, tie})
      ASSERT_EQ(printed(format, value), reference(format, value)) << format << " " << value;
  }
}

TEST(NumberFormat, what_is_no_accepted_conversion_is_literal_text) {
  for (const char* format : {"", "none", "%", "100%", "%5", "%l", "%-08.3", "%n", "%s%p%[a]", "%*d", "%.*f", "%1$d",
                             "%.-3d", "%D%C%S", "%hhn", "%5%"}) {
    EXPECT_EQ(printed(format, 65), format);
    EXPECT_EQ(printed(format, 0.5), format);
  }
  const char* const cases[][3] = {{"%%%", "%%", "%%"},  // the format, and what it makes of 65 and 0.5
                                  {"%d|%f", "65|%f", "%d|0.500000"},
                                  {"%f|%d", "%f|65", "0.500000|%d"},
                                  {"%d %d %s", "65 %d %s", "%d %d %s"},
                                  {"%g%g", "%g%g", "0.5%g"},
                                  {"%lc%%", "A%", "%lc%"},
                                  {"%-5c|", "A    |", "%-5c|"},
                                  {"%Lx%Lf", "41%Lf", "%Lx0.500000"}};
  for (const auto& c : cases) {
    EXPECT_EQ(printed(c[0], 65), c[1]) << c[0];
    EXPECT_EQ(printed(c[0], 0.5), c[2]) << c[0];
  }
}

TEST(NumberFormat, printing_keeps_511_characters) {
  const std::string nines(10000, '9');
  EXPECT_EQ(printed("%" + nines + "d", 7), std::string(511, ' '));
  EXPECT_EQ(printed("%-" + nines + "d", 7), std::string("7").append(510, ' '));
  EXPECT_EQ(printed("%0" + nines + "f", 7.0), std::string(511, '0'));
  EXPECT_EQ(printed("%." + nines + "d", -7), std::string("-").append(510, '0'));
  EXPECT_EQ(printed("%." + nines + "f", 7.0), std::string("7.").append(509, '0'));
  EXPECT_EQ(printed("%." + nines + "g", 0.5), "0.5");
  EXPECT_EQ(printed(std::string(505, '-') + "%d", -1234567), std::string(505, '-') + "-12345");
  EXPECT_EQ(printed(std::string(600, '-') + "%d", 1), std::string(511, '-'));
}

TEST(NumberFormat, character_zero_ends_the_text) {
  EXPECT_EQ(printed("ab%cde", 0), "ab");
  EXPECT_EQ(printed("%-3c", 256), "");
  EXPECT_EQ(printed("ab%cde", 'c'), "abcde");
}

TEST(NumberFormat, floats_print_widened) {
  kt::NumberText out;
  kt::printFloat(out, "%.10f", 0.1F);
  EXPECT_STREQ(out.text, "0.1000000015");
  kt::printFloat(out, "ldexp(%g,%d)", 3.0F);  // only doubles are taken apart
  EXPECT_STREQ(out.text, "ldexp(3,%d)");
}

TEST(NumberFormat, doubles_are_taken_apart_by_the_first_four_characters) {
  EXPECT_EQ(printed("ldexp(%g,%d)", 12.0), "ldexp(0.75,4)");
  EXPECT_EQ(printed("ldex%g %d%%", -0.375), "ldex-0.75 -1%");
  EXPECT_EQ(printed("lde%g %d", 12.0), "lde12 %d");
  EXPECT_EQ(printed("ldexp(%d,%g,%g,%d,%d)", 12.0), "ldexp(%d,0.75,%g,4,%d)");
  EXPECT_EQ(printed("ldexp(%g,%d)", 0.0), "ldexp(0,0)");
  EXPECT_EQ(printed("ldexp(%g,%d)", -INFINITY), "ldexp(-inf,0)");
}

TEST(NumberFormat, a_double_taken_apart_comes_back_bit_by_bit) {
  for (const char* format : {"ldexp(%.17g,%d)", "ldexp(%25.17lg,%5ld)", "ldexp(%-30.17g,%-6i)", "ldexp( %+.16e , %+d )",
                             "ldexp(%a;%x)", "ldex%030.20f %hd", "ldexp(%1.17g,%1d)", "ldexp(%.60f,%#o)"}) {
    for (const double value : sampleDoubles()) {
      const std::string text = printed(format, value);
      double back = -1;
      ASSERT_TRUE(kt::scanDouble(text.data(), text.size(), format, back)) << text;
      if (std::isnan(value)) {
        EXPECT_TRUE(std::isnan(back));
      } else {
        EXPECT_EQ(std::bit_cast<std::uint64_t>(back), std::bit_cast<std::uint64_t>(value)) << format << " " << text;
      }
    }
  }
}

namespace {

// Scans from memory that ends where the text ends, so that a sanitizer sees every read beyond it.
template <class Scan, class Value>
bool scanExactly(Scan scan, const std::string& text, const std::string& format, Value& value) {
  const std::vector<char> exact(text.begin(), text.end());
  return scan(exact.empty() ? "" : exact.data(), exact.size(), format.c_str(), value);
}

// The same for short texts, with digits behind them as far as may be read; longer ones are scanned like all others.
bool scanPadded(const std::string& text, const std::string& format, std::uint32_t& value) {
  if (text.empty() || text.size() > 24) return scanExactly(kt::scanInteger, text, format, value);
  std::vector<char> exact(std::max<std::size_t>(text.size(), 19), '7');
  std::copy(text.begin(), text.end(), exact.begin());
  return kt::scanPaddedInteger(exact.data(), text.size(), format.c_str(), value);
}

std::vector<std::string> split(const std::string& list) {
  std::vector<std::string> parts(1);
  for (const char c : list) {
    if (c == '|') {
      parts.emplace_back();
    } else {
      parts.back() += c;
    }
  }
  return parts;
}

}  // namespace

TEST(NumberFormat, integers_scan_as_sscanf_scans_them_and_saturate_at_32_bits) {
  const std::vector<std::string> texts = split(
      "| |0|7|-7|+7|--7|+-7|-|+| \t\n\v\f\r42|42 "
      "|00012|010|08|-010|0x1F|0X1f|-0x1f|0x|0xg|x1|ff|12ab|2147483647|2147483648|"
      "-2147483648|-2147483649|4294967295|4294967296|-4294967295|-4294967297|99999999999999999|-99999999999999999|"
      "37777777777|"
      "40000000000|0xFFFFFFFF|0x100000000|a|%5|65536|70000|-40000|300|0000000000000000000000000000000000009|1.5|"
      "12345678901|12345678|-123456789|1234567890123456|-12345678901234567|0x12345678|0x123456789|+0xfedcba9876543210|"
      "123456789x|12345678 |1234567g");
  for (const char* width : {"", "1", "2", "3", "5", "12", "0"}) {
    for (const char conversion : {'d', 'i', 'u', 'o', 'x', 'X'}) {
      for (const std::string& text : texts) {
        const bool isSigned = conversion == 'd' || conversion == 'i';
        long long wide = 77;
        const std::string wideFormat = std::string("%") + width + "ll" + conversion;
        const bool expected = std::sscanf(text.c_str(), wideFormat.c_str(), &wide) == 1;
        const bool tooBig = static_cast<unsigned long long>(wide < 0 ? -wide : wide) > UINT32_MAX;
        std::uint32_t narrow = static_cast<std::uint32_t>(wide);
        if (expected && isSigned)
          narrow = static_cast<std::uint32_t>(std::min(std::max(wide, -2147483648LL), 2147483647LL));
        if (expected && !isSigned && tooBig) narrow = UINT32_MAX;
        for (const char* modifier : {"", "l", "h", "hh"}) {
          const std::string format = std::string("%") + width + modifier + conversion;
          std::uint32_t value = 77;
          ASSERT_EQ(scanExactly(kt::scanInteger, text, format, value), expected) << format << " '" << text << "'";
          std::uint32_t stored = narrow;
          if (expected && modifier[0] == 'h') {
            const int bits = modifier[1] == 'h' ? 24 : 16;
            stored = isSigned ? static_cast<std::uint32_t>(static_cast<std::int32_t>(narrow << bits) >> bits)
                              : narrow << bits >> bits;
          }
          EXPECT_EQ(value, stored) << format << " '" << text << "'";
          std::uint32_t padded = 77;
          ASSERT_EQ(scanPadded(text, format, padded), expected) << format << " '" << text << "'";
          EXPECT_EQ(padded, stored) << format << " '" << text << "'";
        }
      }
    }
  }
}

TEST(NumberFormat, doubles_and_floats_scan_as_sscanf_scans_them) {
  std::vector<std::string> texts = split(
      "| |.|-|-.|+.5|1.| "
      "1.5|-0|+-1|1e|1e+|1e5|1E-5x|1.e5|e5|0x|0xg|0x1|0x1p|0x1.8p3|-0X.8P-1|0x1p99999|0x1p-99999|0x0p99999|"
      "1e999|-1e999|1e-999|0e999|inf|-INF|Infinity|infinit|infx|in|nan|NaN(12)|na|1,5|3.4028235677973366e38|1e-45|"
      "1.00000017881393432617187499|1.00000017881393432617187500001|2.2250738585072011e-308|4.9e-324|2.4e-324|2.5e-324|"
      "0x1.fffffffffffff8p1023|0x1.00000000000008p0|0x1.00000000000008000001p0|0x1p-1074|0x1p-1075|0x1.8p-1075|"
      "1e99999999999999999999|1e-99999999999999999999");
  texts.push_back(std::string("0.").append(800, '0') + "1e801");
  texts.push_back(std::string("1").append(800, '0') + "e-900");
  texts.push_back(std::string("0.").append(400, '0') + "1");
  for (const std::string& text : texts) {
    for (const char* width : {"", "1", "3", "6"}) {
      if (width[0] != '\0' && text.find_first_of("xXiIe") != std::string::npos)
        continue;  // libraries differ in cut numbers
      double expected = 77;
      float expectedFloat = 77;
      const bool matches = std::sscanf(text.c_str(), (std::string("%") + width + "lf").c_str(), &expected) == 1;
      std::sscanf(text.c_str(), (std::string("%") + width + "f").c_str(), &expectedFloat);
      for (const char* tail : {"f", "lg", "E", "LA"}) {
        double value = 77;
        float floatValue = 77;
        const std::string format = std::string("%") + width + tail;
        EXPECT_EQ(scanExactly(kt::scanDouble, text, format, value), matches) << format << " '" << text << "'";
        EXPECT_EQ(scanExactly(kt::scanFloat, text, format, floatValue), matches) << format << " '" << text << "'";
        if (std::isnan(expected)) {
          EXPECT_TRUE(std::isnan(value) && std::isnan(floatValue));
        } else {
          EXPECT_EQ(std::bit_cast<std::uint64_t>(value), std::bit_cast<std::uint64_t>(expected)) << text;
          EXPECT_EQ(std::bit_cast<std::uint32_t>(floatValue), std::bit_cast<std::uint32_t>(expectedFloat)) << text;
        }
      }
    }
  }
}

TEST(NumberFormat, scan_formats_match_blanks_and_literals) {
  const struct {
    const char* format;
    const char* text;
    std::uint32_t value;
  } cases[] = {
      {"#%lu", "#7", 7},
      {" # %lu", "\n#  7", 7},
      {"a b%d", "a \t b5", 5},
      {"a b%d", "ab5", 5},
      {"%%%d", " %5", 5},
      {"%d)", "5", 5},
      {"%s%d", "%s8", 8},
      {"%*d%d", "%*d8", 8},
      {"%f%d", "%f8", 8},
      {"%c", " ", ' '},
      {"%3c", "\xE9z", 0xE9},
      {"(%c", "(\t", '\t'},
      {"%99999999999999999999d", "12", 12},
  };
  for (const auto& c : cases) {
    std::uint32_t value = 0;
    EXPECT_TRUE(scanExactly(kt::scanInteger, c.text, c.format, value)) << c.format;
    EXPECT_EQ(value, c.value) << c.format;
  }
  const char* const mismatches[][2] = {{"#%lu", "7"}, {"#%lu", " #7"}, {"%5%%d", "%5%d"}, {"%*d %d", "1 8"},
                                       {"%n%d", "8"}, {"%-5d", "5"},   {"%.3d", "5"},     {"%", "%"},
                                       {"%3", "%3"},  {"%c", ""},      {"", ""}};
  for (const auto& c : mismatches) {
    std::uint32_t value = 77;
    EXPECT_FALSE(scanExactly(kt::scanInteger, c[1], c[0], value)) << c[0];
    EXPECT_EQ(value, 77U) << c[0];
  }
}

TEST(NumberFormat, a_double_taken_apart_needs_both_parts) {
  const struct {
    const char* format;
    const char* text;
    bool matches;
    double value;
  } cases[] = {
      {"ldexp(%lf,%d)", "ldexp(0.75,4)", true, 12},
      {"ldexp(%lf,%d)", "ldexp(0.75", false, -1},
      {"ldexp(%lf,%d)", "ldexp(0.75,x", false, -1},
      {"ldexp(%lf,%d)", "ldexp(x,4)", false, -1},
      {"ldexp(%lf)", "ldexp(0.75)", true, 0.75},
      {"ldexp(%d)", "ldexp(%d)", false, -1},
      {"ldexp(%g,%d)", "ldexp(1,99999999999)", true, INFINITY},
      {"ldexp(%g,%d)", "ldexp(1,-99999999999)", true, 0},
      {"%.17g", "0.5", false, -1},
      {"(%lf", "(0.5", true, 0.5},
  };
  for (const auto& c : cases) {
    double value = -1;
    EXPECT_EQ(scanExactly(kt::scanDouble, c.text, c.format, value), c.matches) << c.format << " " << c.text;
    EXPECT_EQ(value, c.value) << c.format << " " << c.text;
  }
}

TEST(NumberFormat, hex_codes_need_the_prefix) {
  for (const char* text :
       {"0x41", "0x41zz", "0X41", "x41", "41", "0x", "0xg", "0", "", "0x 7", "0x-1", "0x123456789", " 0x41"}) {
    unsigned expected = 77;
    std::uint32_t value = 77;
    const bool matches = std::sscanf(text, "0x%x", &expected) == 1;
    EXPECT_EQ(kt::scanHexCode(text, std::strlen(text), value), matches) << text;
    EXPECT_TRUE(value == expected || std::strlen(text) > 10) << text;
  }
}

TEST(NumberFormat, the_locale_of_the_process_does_not_matter) {
  const char* const previous = std::setlocale(LC_ALL, nullptr);
  const std::string saved = previous == nullptr ? "C" : previous;
  for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "German"}) {
    if (std::setlocale(LC_ALL, name) != nullptr) break;
  }
  double value = 0;
  EXPECT_EQ(printed("%.2f", 1234.5), "1234.50");
  EXPECT_TRUE(kt::scanDouble("1.25", 4, "%lf", value));
  EXPECT_EQ(value, 1.25);
  std::setlocale(LC_ALL, saved.c_str());
}
