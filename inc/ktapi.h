// ktapi.h - the export macros of kttm: KTTM_API for classes and functions; KTTM_INLINE for member functions of such classes
// that stand in line and are exported as well, for programs that were built when they did not and import them.
#ifndef KTAPI_H
#define KTAPI_H

#if !defined(_WIN32)
#define KTTM_API __attribute__((visibility("default")))
#elif defined(KTTM_BUILD)
#define KTTM_API __declspec(dllexport)
#else
#define KTTM_API __declspec(dllimport)
#endif

#if defined(_WIN32) && !defined(KTTM_BUILD)
#define KTTM_INLINE inline
#else
#define KTTM_INLINE inline KTTM_API
#endif

#endif
