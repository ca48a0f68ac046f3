// config.cpp - settings as a chain of entries, newest first: a configuration holds a handful.
#include <cstring>
#include <new>
#include <utility>

#include "ktbs.h"

namespace {

char* copyText(const char* text) {
  const std::size_t size = std::strlen(text) + 1;
  char* copy = new (std::nothrow) char[size];
  if (copy) {
    std::memcpy(copy, text, size);
  } else {
    KtCallMemoryHandler(static_cast<unsigned long>(size));
  }
  return copy;
}

// The configuration at load. Made on first use, which may be another library's static initialisation, and never
// destroyed, because other libraries may still ask while the process ends.
KtConfig* emptyConfig() {
  alignas(KtConfig) static unsigned char storage[sizeof(KtConfig)];
  static KtConfig* const config = new (storage) KtConfig;
  return config;
}

KtConfig*& defaultConfig() {
  static KtConfig* config = emptyConfig();
  return config;
}

}  // namespace

struct KtConfig::Entry {
  char* key = nullptr;
  char* qualifier = nullptr;
  short value = 0;
  Entry* next = nullptr;

  Entry() = default;
  Entry(const Entry&) = delete;
  Entry& operator=(const Entry&) = delete;
  ~Entry() {
    delete[] key;
    delete[] qualifier;
  }

  bool matches(const char* otherKey, const char* otherQualifier) const {
    if (std::strcmp(key, otherKey) != 0 || !qualifier != !otherQualifier) return false;
    return !qualifier || std::strcmp(qualifier, otherQualifier) == 0;
  }

  // Null when memory is short, which is reported.
  static Entry* make(const char* key, const char* qualifier) {
    Entry* entry = new (std::nothrow) Entry;
    if (!entry) {
      KtCallMemoryHandler(sizeof(Entry));
      return nullptr;
    }
    entry->key = copyText(key);
    if (entry->key && qualifier) entry->qualifier = copyText(qualifier);
    if (entry->key && !entry->qualifier == !qualifier) return entry;
    delete entry;
    return nullptr;
  }
};

KtConfig::KtConfig() : first_(nullptr) {}

KtConfig::~KtConfig() {
  while (Entry* entry = first_) {
    first_ = entry->next;
    delete entry;
  }
}

short KtConfig::GetShort(const char* key, const char* qualifier, short fallback) const {
  for (const Entry* entry = key ? first_ : nullptr; entry; entry = entry->next) {
    if (entry->matches(key, qualifier)) return entry->value;
  }
  return fallback;
}

void KtConfig::SetShort(const char* key, const char* qualifier, short value) {
  if (!key) return;
  Entry* entry = first_;
  while (entry && !entry->matches(key, qualifier)) entry = entry->next;
  if (!entry) {
    entry = Entry::make(key, qualifier);
    if (!entry) return;
    entry->next = first_;
    first_ = entry;
  }
  entry->value = value;
}

KtConfig* DefaultConfig() { return defaultConfig(); }

KtConfig* SetDefaultConfig(KtConfig* config) { return std::exchange(defaultConfig(), config); }
