// reading.h - texts to values, with an answer to "could the type read this?" that scanning itself never gives.
#ifndef EXAMPLES_ATLAS_READING_H
#define EXAMPLES_ATLAS_READING_H

#include "value.h"

#include <optional>
#include <string>
#include <string_view>

namespace atlas {

// Both throw Mistake with the reason when the value that a text becomes does not say what the text says: the same text
// but for case and leading or trailing zeros, or the same number.
void readScanned(Value& value, std::string_view utf8, const Field& field, unsigned char language);
void readConverted(Value& value, std::string_view utf8, const Field& field);

// The type's conversion from and to strings, whose bytes are taken as they are. conversionOf: nothing where it is not
// offered, or the value is null; convertText then leaves the value as it is.
void convertText(Value& value, const std::string& text);
std::optional<std::string> conversionOf(const Value& value);

}  // namespace atlas

#endif
