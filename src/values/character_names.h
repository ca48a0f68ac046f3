// character_names.h - what the characters of code set 1 are called.
#ifndef KT_CHARACTER_NAMES_H
#define KT_CHARACTER_NAMES_H

namespace kt {

extern const char* const kCharacterNames[256];  // Unicode names in lower case, by character; none is null

}  // namespace kt

#endif
