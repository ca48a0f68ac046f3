// ktapi.h - the export macro of kttm.
#ifndef KTAPI_H
#define KTAPI_H

#if defined(_WIN32)
#if defined(KTTM_BUILD)
#define KTTM_API __declspec(dllexport)
#else
#define KTTM_API __declspec(dllimport)
#endif
#else
#define KTTM_API __attribute__((visibility("default")))
#endif

#endif
