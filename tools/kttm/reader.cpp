#include "reader.h"

#include "error.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <utility>

namespace tool {
namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// Lower case, single blanks, none at the ends, numbers without leading zeros.
std::string normalised(const std::string& text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    const bool afterDigit = i > 0 && isDigit(text[i - 1]);
    if (isBlank(c)) {
      if (!result.empty() && result.back() != ' ') result += ' ';
    } else if (c == '0' && !afterDigit) {
      while (i + 1 < text.size() && text[i] == '0' && isDigit(text[i + 1])) ++i;
      result += text[i];
    } else {
      result += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
  }
  if (!result.empty() && result.back() == ' ') result.pop_back();
  return result;
}

std::string trimmed(const std::string& text) {
  const auto first = std::find_if_not(text.begin(), text.end(), isBlank);
  const auto last = std::find_if_not(text.rbegin(), text.rend(), isBlank).base();
  return first < last ? std::string(first, last) : std::string();
}

// The whole text as a number, decimal or hexadecimal.
std::optional<double> realOf(const std::string& text) {
  char* end = nullptr;
  const double value = std::strtod(text.c_str(), &end);
  if (text.empty() || *end != '\0' || !std::isfinite(value)) return std::nullopt;
  return value;
}

// The whole text as an integer whose base its prefix tells.
std::optional<double> integerOf(const std::string& text) {
  char* end = nullptr;
  const long long value = std::strtoll(text.c_str(), &end, 0);
  if (text.empty() || *end != '\0') return std::nullopt;
  return static_cast<double>(value);
}

// A print of a real number is rounded, at the sixth decimal or digit; one of an integer is exact.
bool sameNumber(const std::string& text, const std::string& shown) {
  constexpr double kRounding = 1e-6;
  const std::optional<double> value = realOf(shown);
  if (!value) return false;
  const bool isReal = shown.find_first_of(".eEpP") != std::string::npos;
  const double slack = isReal ? kRounding * std::max(1.0, std::fabs(*value)) : 0.0;
  const std::array<std::optional<double>, 2> readings{realOf(trimmed(text)), integerOf(trimmed(text))};
  return std::any_of(readings.begin(), readings.end(),
                     [&](const auto& reading) { return reading && std::fabs(*reading - *value) <= slack; });
}

bool isNegative(const std::string& text) {
  const std::optional<double> value = realOf(text);
  return value && *value < 0;
}

// The type's conversion, where it says what the value is: that of an unsigned number is the signed one of the same bits,
// whose sign may not be that of the print.
std::optional<std::string> trueConversion(const Type& type, void* value) {
  std::optional<std::string> conversion = conversionOf(type, value);
  if (conversion && isNegative(*conversion) != isNegative(printed(type, value, nullptr, false))) conversion.reset();
  return conversion;
}

// A value that scanning is tried on. Fixed-length values are filled with `byte`; handles cannot be, so they get what
// the type's conversion makes of that byte as a number.
Values trialValue(const Type& type, unsigned char byte) {
  if (!type.fixed) return Values::converted(type, KtString(static_cast<int>(byte)));
  Values value(type, 1);
  std::memset(value.at(0), byte, manager().MemLenGet(type.id, 1));
  return value;
}

constexpr unsigned char kTrialBytes[] = {0x00, 0xFF};

}  // namespace

Reader::Reader(const Type& type, ReadOptions options)
    : type_(type), options_(std::move(options)), format_(options_.format ? formatFrom(*options_.format) : type.format) {
  requireValues(type_);
  // The library compares a format with 8-bit text byte by byte: both are in the default code set, where the text fits.
  if (type_.fixed) options_.text.codeSet.reset();
  if (options_.converted) return;
  Values value = trialValue(type_, kTrialBytes[0]);
  KtString text("?");
  manager().ScanFromKtString(type_.id, value.at(0), text, format(), 1);
  nonsense_ = stored(type_.id, value.at(0), kAnyDiskForm, 1);
}

Values Reader::readAll(const std::vector<std::string>& texts) const {
  Values values(type_, texts.size());
  for (std::size_t i = 0; i < texts.size(); ++i) read(texts[i], values.at(i));
  return values;
}

void Reader::read(const std::string& text, void* target) const {
  if (options_.converted) {
    convert(text, target);
  } else {
    if (!options_.lenient && !scanDecides(text)) refuse(text, "");
    scan(text, target);
  }
  if (options_.lenient || tellsTheSame(text, target) || isOwnWord(text, target)) return;
  refuse(text, options_.converted ? trueConversion(type_, target).value_or(printed(type_, target, nullptr, false))
                                  : shown(target));
}

void Reader::scan(const std::string& text, void* target) const {
  KtString in = fromTerminal(text, options_.text);
  manager().ScanFromKtString(type_.id, target, in, format(), 1);
}

void Reader::convert(const std::string& text, void* target) const {
  KtString in = fromTerminal(text, options_.text);
  if (type_.hasNull && text == toTerminal(KtTypeMgr::GetNullPrintString())) in.SetNullValue();
  const Values value = Values::converted(type_, in);
  manager().AssignmentPtrGet(type_.id)(target, value.at(0), 1, 1);
}

bool Reader::scanDecides(const std::string& text) const {
  std::array<Bytes, 2> results;
  for (std::size_t i = 0; i < results.size(); ++i) {
    Values value = trialValue(type_, kTrialBytes[i]);
    scan(text, value.at(0));
    results[i] = stored(type_.id, value.at(0), kAnyDiskForm, 1);
  }
  return results[0] == results[1];
}

bool Reader::tellsTheSame(const std::string& text, void* value) const {
  const std::string print = shown(value);
  return text == print || normalised(text) == normalised(print) || sameNumber(text, print) || saysNumber(text, value);
}

bool Reader::saysNumber(const std::string& text, void* value) const {
  if (sameNumber(text, printed(type_, value, nullptr, false))) return true;
  const std::optional<std::string> conversion = trueConversion(type_, value);
  return conversion && sameNumber(text, *conversion);
}

bool Reader::isOwnWord(const std::string& text, void* value) const {
  if (options_.converted || std::strchr(format(), '%') != nullptr || realOf(shown(value))) return false;
  return text == "0" || stored(type_.id, value, kAnyDiskForm, 1) != nonsense_;
}

void Reader::refuse(const std::string& text, const std::string& becomes) const {
  std::string message = type_.name + " cannot read " + quoted(text);
  if (!options_.converted) message += " under the format " + quoted(options_.format.value_or(type_.format));
  if (!becomes.empty()) message += ": it would become " + quoted(becomes) + " (--lenient takes that)";
  throw Error(message);
}

}  // namespace tool
