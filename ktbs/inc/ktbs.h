// ktbs.h - base services of the database: stored integer types, typed disk conversion, memory files,
// assertion and memory handlers, configuration, version check and the clock.
//
// Threads: the typed stores, loads and sizes are pure and may be called from any thread. The handlers, the
// default configuration and the clock are process-wide and unguarded: set them before concurrent use begins.
#ifndef KTBS_H
#define KTBS_H

#include <cstdint>

#if defined(_WIN32)
#if defined(KTBS_BUILD)
#define KTBS_API __declspec(dllexport)
#else
#define KTBS_API __declspec(dllimport)
#endif
#else
#define KTBS_API __attribute__((visibility("default")))
#endif

// ---------------------------------------------------------------------------------------------------------
// Stored integer types: the same width on every platform.
// ---------------------------------------------------------------------------------------------------------
using KtByte = std::uint8_t;
using KtWord = std::uint16_t;
using KtDWord = std::uint32_t;
using KtLong = std::int32_t;
using BlockId = std::uint32_t;

// ---------------------------------------------------------------------------------------------------------
// Typed disk conversion.
//
// Format code, low four bits (the others are ignored here):
//   0  little-endian          4  little-endian, `int` and `unsigned` in two bytes
//   2  big-endian             1, 8  the byte order of the host
// These are all; other codes are not to be used. Here they act as 0, but to kttm 9 to 15 are now a disk form, now
// values in memory. Types of kttm that do not follow the host under 1 and 8 say so on their page in docs/formats; which
// operations take 8 for values in memory stands in docs/formats/README.md.
//
// An `int` or `unsigned` takes 4 bytes in every code but 4, where it takes 2: stored modulo 65,536, loaded
// sign-extended by IntLoad and zero-extended by UnsignedLoad.
//
// dst and src may be unaligned and must not overlap, unless they are equal. The fixed-size functions are their
// own inverse and serve both directions.
// Result: the disk bytes written (...Store) or read (...Load); 0 for a count of 0.
// ---------------------------------------------------------------------------------------------------------
KTBS_API unsigned long CharStore(void* dst, const void* src, unsigned char format, unsigned long count);
KTBS_API unsigned long ShortStore(void* dst, const void* src, unsigned char format, unsigned long count);
KTBS_API unsigned long LongStore(void* dst, const void* src, unsigned char format, unsigned long count);
KTBS_API unsigned long FloatStore(void* dst, const void* src, unsigned char format, unsigned long count);
KTBS_API unsigned long DoubleStore(void* dst, const void* src, unsigned char format, unsigned long count);
KTBS_API unsigned long IntStore(void* dst, const void* src, unsigned char format, unsigned long count);
KTBS_API unsigned long IntLoad(void* dst, const void* src, unsigned char format, unsigned long count);
KTBS_API unsigned long UnsignedStore(void* dst, const void* src, unsigned char format, unsigned long count);
KTBS_API unsigned long UnsignedLoad(void* dst, const void* src, unsigned char format, unsigned long count);

// Disk bytes of `count` values in `format`. values may be null and is not read; givenFormat (the form that values
// is in) is accepted for the common signature and ignored.
KTBS_API unsigned long CharSizeGet(const void* values, unsigned char givenFormat, unsigned char format,
                                   unsigned long count);
KTBS_API unsigned long ShortSizeGet(const void* values, unsigned char givenFormat, unsigned char format,
                                    unsigned long count);
KTBS_API unsigned long LongSizeGet(const void* values, unsigned char givenFormat, unsigned char format,
                                   unsigned long count);
KTBS_API unsigned long FloatSizeGet(const void* values, unsigned char givenFormat, unsigned char format,
                                    unsigned long count);
KTBS_API unsigned long DoubleSizeGet(const void* values, unsigned char givenFormat, unsigned char format,
                                     unsigned long count);
KTBS_API unsigned long IntSizeGet(const void* values, unsigned char givenFormat, unsigned char format,
                                  unsigned long count);

// Disk bytes that `count` null values occupy (the widest form: 4 a value for Int).
KTBS_API unsigned long CharNullSizeGet(unsigned long count);
KTBS_API unsigned long ShortNullSizeGet(unsigned long count);
KTBS_API unsigned long LongNullSizeGet(unsigned long count);
KTBS_API unsigned long FloatNullSizeGet(unsigned long count);
KTBS_API unsigned long DoubleNullSizeGet(unsigned long count);
KTBS_API unsigned long IntNullSizeGet(unsigned long count);

// ---------------------------------------------------------------------------------------------------------
// MemFile: a read cursor over bytes that it does not own.
//
// Range:  positions 0 to length, in bytes.
// Null:   without bytes the length counts as 0, and Seek answers null.
// Status: Seek answers null for what is outside, and the position stays.
// Owner:  the bytes must outlive it.
// Threads: belongs to one thread at a time.
// ---------------------------------------------------------------------------------------------------------
class KTBS_API MemFile {
public:
  enum { Begin = 0, Current = 1, End = 2 };

  MemFile(const void* bytes, unsigned long length);

  // Moves to `offset` relative to the beginning, the current position or the end, and returns the address there.
  // Outside, or for any other whence: null, and the position stays.
  const char* Seek(long offset, int whence);

  unsigned long Tell() const;       // bytes from the beginning to the position
  unsigned long Remaining() const;  // bytes from the position to the end

private:
  const char* bytes_;
  unsigned long length_;
  unsigned long position_;
};

// ---------------------------------------------------------------------------------------------------------
// Assertions and memory.
// ---------------------------------------------------------------------------------------------------------

// Reports a broken internal rule to the assertion handler and returns: the caller goes on. The texts may be null: the
// default handler prints "?" for them.
KTBS_API void KATO_assert(const char* message, const char* source, int line);

using KtAssertHandler = void (*)(const char* message, const char* source, int line);
// Returns the old handler, never null. Null restores the default, which writes one line to stderr and goes on.
KTBS_API KtAssertHandler KtSetAssertHandler(KtAssertHandler handler);

// Reports a failed allocation of `size` bytes to the memory handler and returns.
KTBS_API void KtCallMemoryHandler(unsigned long size);

// How often the calling thread has reported one. Who takes many steps learns from it whether one of them lacked memory.
KTBS_API unsigned long KtFailedAllocations();

using KtMemoryHandler = void (*)(unsigned long size);
// Returns the old handler, never null. Null restores the default, which does nothing.
KTBS_API KtMemoryHandler KtSetMemoryHandler(KtMemoryHandler handler);

// ---------------------------------------------------------------------------------------------------------
// KtConfig: 16-bit settings by key and qualifier.
//
// Range:  every value; keys and qualifiers are equal byte by byte.
// Null:   a null qualifier is a qualifier of its own; a null key is never set.
// Status: the caller's fallback answers for what is not set. A failed allocation calls the memory handler and leaves the
//         configuration unchanged.
// Owner:  the configuration copies keys and qualifiers.
// Threads: may read one concurrently while none sets.
// ---------------------------------------------------------------------------------------------------------
class KTBS_API KtConfig {
public:
  KtConfig();
  ~KtConfig();
  KtConfig(const KtConfig&) = delete;
  KtConfig& operator=(const KtConfig&) = delete;

  // The value set for exactly this key and qualifier, else `fallback`.
  short GetShort(const char* key, const char* qualifier, short fallback) const;
  void SetShort(const char* key, const char* qualifier, short value);  // sets or replaces

private:
  struct Entry;
  Entry* first_;
};

// The process-wide configuration: empty at load, not null. Null after SetDefaultConfig(nullptr).
KTBS_API KtConfig* DefaultConfig();
// Returns the old one. The caller keeps ownership of what it sets; the one at load is never destroyed.
KTBS_API KtConfig* SetDefaultConfig(KtConfig* config);

// 1 when this release (9.5.23.262.0) serves a caller built against the given version, else 0: the major number must be
// equal and (minor, build, revision, patch) must not be newer than this release. flags are reserved.
KTBS_API int CheckKtVersionNumber(int major, int minor, int build, int revision, int patch, int flags);

// ---------------------------------------------------------------------------------------------------------
// The clock.
// ---------------------------------------------------------------------------------------------------------
struct KtDateRecord {
  short year;              // the full year
  signed char month, day;  // 1 to 12, 1 to 31
};
struct KtTimeRecord {
  signed char hour, minute, second;
};

// KtClock: a source of time. The process uses the system's clock unless KtSetClock replaced it.
//
// Range:  offsets -1440 to 1440. kttm takes other numbers for not known, too, where it converts between time zones.
// Status: -2171 for an offset that is not known; local time is UTC then.
// Owner:  who sets a clock keeps it, for as long as it is in use.
// Threads: whichever asks for the time calls the clock in use.
class KTBS_API KtClock {
public:
  virtual ~KtClock();
  virtual long long UtcMilliseconds() = 0;  // since 1970-01-01 00:00:00 UTC
  virtual int OffsetMinutes() = 0;          // to add to UTC for local time
};

// Null restores the system's clock. Returns the clock that was set (null: the system's).
KTBS_API KtClock* KtSetClock(KtClock* clock);

// A year outside 16 bits is cut to them.
KTBS_API void bksgetdate(KtDateRecord& date);                            // local date
KTBS_API void bksgettime(KtTimeRecord& time);                            // local time of day
KTBS_API void bksgetsystemtime(KtTimeRecord& time, KtDateRecord& date);  // UTC, both of one reading
// OffsetMinutes of the clock in use; -2171 also where the system cannot tell.
KTBS_API int bksgettimezone();
KTBS_API long long bksgetmilliseconds();  // UtcMilliseconds of the clock in use

static_assert(sizeof(KtDateRecord) == 4 && sizeof(KtTimeRecord) == 3);

#endif
