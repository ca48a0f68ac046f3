// format_or.h - what stands for a format that was not given.
#ifndef KT_FORMAT_OR_H
#define KT_FORMAT_OR_H

namespace kt {

// own: the format of the row, or of the class, that is asked without one.
constexpr const char* formatOr(const char* format, const char* own) { return format != nullptr ? format : own; }

}  // namespace kt

#endif
