// clones.h - one macro for hot loops that are worth a second copy for wider vectors.
//
// KT_CLONES before a function compiles it twice, for plain x86-64 and for AVX2; the loader picks one. Use it on
// non-template functions with internal linkage and call them from the same file: g++ does not link the clones of a
// hidden function that another file declares. Give each a name that no other file of its library uses: clang makes
// the choosing function global. Helpers that a clone should compile for its own instructions are always_inline.
// KT_CLONES is empty where the loader cannot choose (no glibc on ELF, no x86-64), where sanitizers instrument the choice
// itself, which runs before their runtime is up, and in builds without optimisation.
// KT_FOR_AVX2 is for loops that wider vectors want to be written anew; whoever calls one asks hasAvx2() first. It is
// defined where KT_CLONES could be, under sanitizers too: an ordinary call chooses nothing before they are up.
#ifndef KT_CLONES_H
#define KT_CLONES_H

#include <cstdint>  // defines __GLIBC__ where it applies

#if defined(__has_feature)
#if __has_feature(thread_sanitizer) || __has_feature(address_sanitizer) || __has_feature(memory_sanitizer)
#define KT_SANITIZED 1
#endif
#elif defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
#define KT_SANITIZED 1
#endif

#if defined(__ELF__) && defined(__x86_64__) && defined(__GLIBC__) && defined(__OPTIMIZE__)
#define KT_FOR_AVX2 __attribute__((target("avx2")))
#endif

#if defined(KT_FOR_AVX2) && !defined(KT_SANITIZED)
#define KT_CLONES __attribute__((target_clones("avx2", "default")))
#else
#define KT_CLONES
#endif

#if defined(KT_FOR_AVX2)
namespace kt {
inline bool hasAvx2() { return __builtin_cpu_supports("avx2"); }
}  // namespace kt
#endif

#endif
