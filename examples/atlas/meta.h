// meta.h - what a database says about itself: texts under names, in a tree of their own.
#ifndef EXAMPLES_ATLAS_META_H
#define EXAMPLES_ATLAS_META_H

#include "batch.h"

#include <optional>
#include <string>

namespace atlas {

constexpr char kMetaTree[] = "meta";          // DISK
constexpr char kFormatVersion[] = "atlas 2";  // DISK: changes when the layout of any stored byte does

class Meta {
public:
  Meta(const Txn& txn, Tree tree) : txn_(&txn), tree_(tree) {}

  // All but find throw Error(kExitBroken) when the database does not say it, or what it says cannot be.
  std::optional<std::string> find(const std::string& name) const;
  std::string get(const std::string& name) const;
  unsigned long long number(const std::string& name, unsigned long long most) const;
  void set(const std::string& name, const std::string& text);

  Counters counters(const Schema& schema) const;
  void setCounters(const Counters& counters, const Schema& schema);

  // The settings of an index; nothing: it was never made.
  std::optional<IndexSettings> settings(const std::string& index) const;
  void setSettings(const std::string& index, const IndexSettings& settings);

private:
  const Txn* txn_;
  Tree tree_;
};

}  // namespace atlas

#endif
