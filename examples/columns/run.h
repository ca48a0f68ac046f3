// run.h - a column of values, known by its type id alone.
#ifndef EXAMPLES_COLUMNS_RUN_H
#define EXAMPLES_COLUMNS_RUN_H

#include <kttm.h>

#include <memory>
#include <string>
#include <vector>

// A run of `count` values in memory form, made and freed by the type manager.
class Run {
public:
  Run(KtTypeMgr& mgr, char id, unsigned long count)
      : mgr_(mgr), id_(id), count_(count), values_(mgr.Create(id, count)) {
    if (values_ == nullptr) throw std::bad_alloc();
  }
  ~Run() { mgr_.Delete(id_, values_, count_); }
  Run(const Run&) = delete;
  Run& operator=(const Run&) = delete;

  char id() const { return id_; }
  unsigned long count() const { return count_; }
  void* data() const { return values_; }
  void* at(unsigned long i) const { return mgr_.GetArrayElement(id_, values_, i, count_); }

  // Reads a UTF-8 text into value i; an empty one makes it null (or what the type takes for it).
  void set(unsigned long i, const std::string& utf8, unsigned char language, const char* format = nullptr);
  // The same by the type's conversion from text, which knows no format: dates, for example, come as day numbers.
  void convert(unsigned long i, const std::string& text);
  // The printed value in UTF-8.
  std::string text(unsigned long i, const char* format = nullptr) const;
  unsigned long nulls() const;

private:
  KtTypeMgr& mgr_;
  char id_;
  unsigned long count_;
  void* values_;
};

#endif
