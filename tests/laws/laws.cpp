#include "laws/laws.h"

#include "laws/values.h"
#include "string_bytes.h"
#include "table/type_table.h"

#include <ktbs.h>

#include <array>
#include <map>
#include <sstream>
#include <utility>

namespace kt_laws {

namespace {

using kt_test::Bytes;

constexpr unsigned char kMemory = 8;
constexpr unsigned char kForms[] = {kMemory, 0, 1, 2, 4};
constexpr unsigned char kFill = 0xEE;
constexpr unsigned short kOptions = KtCMP_NO_WILDCARDS;

template <class... Parts>
std::string textOf(const Parts&... parts) {
  std::ostringstream text;
  (text << ... << parts);
  return text.str();
}

std::string code(unsigned char format) {
  return textOf("code ", format & 15, (format & 0xF0) != 0 ? " with high bits" : "");
}

template <class... Parts>
void require(bool holds, Findings& findings, const Parts&... parts) {
  if (!holds) findings.push_back({textOf(parts...)});
}

// --- values in memory and on disk -----------------------------------------------------------------------------------

// A run on disk, at an odd address and between two guards.
struct Disk {
  Bytes room;
  explicit Disk(unsigned long size = 0, unsigned char fill = kFill) : room(size + 2, fill) {}
  unsigned char* at() { return room.data() + 1; }
  unsigned long size() const { return static_cast<unsigned long>(room.size() - 2); }
  bool isGuarded(unsigned char fill) const { return room.front() == fill && room.back() == fill; }
};

// Stores twice over different bytes, so that a byte that is not written shows.
Disk store(const Row& row, const Values& values, unsigned char format, Findings& findings) {
  const KtTypeMgr& mgr = managerOf(row);
  const unsigned long size = mgr.DiskLenGet(row.id, values.get(), format, values.count(), kMemory);
  Disk disk(size);
  Disk twin(size, 0x11);
  const unsigned long written = mgr.Store(row.id, disk.at(), values.get(), format, values.count());
  mgr.Store(row.id, twin.at(), values.get(), format, values.count());
  require(written == size, findings, code(format), ": size ", size, ", written ", written);
  require(disk.isGuarded(kFill) && twin.isGuarded(0x11), findings, code(format), ": written outside");
  twin.room.front() = twin.room.back() = kFill;
  require(disk.room == twin.room, findings, code(format), ": bytes left unwritten");
  return disk;
}

Disk store(const Row& row, const Values& values, unsigned char format) {
  Findings ignored;
  return store(row, values, format, ignored);
}

const KtTypeDescriptor& descriptorOf(const Row& row) {
  return *(row.version == 12 ? kt::currentTypeTable() : kt::legacyTypeTable())[static_cast<unsigned char>(row.id)];
}

long signOf(long value) { return (value > 0) - (value < 0); }

long compare(const Row& row, void* a, void* b, unsigned char format) {
  return signOf(managerOf(row).Cmp(row.id, a, b, kOptions, 1, format));
}

KtString convertTo(const Row& row, void* value) {
  KtTypeConvertData* holder = managerOf(row).ConvertTo(row.id, value, 1);
  KtString text = *holder->GetString(0);
  delete holder;
  return text;
}

KtString print(const Row& row, void* value) {
  KtString out;
  if (row.format != nullptr) managerOf(row).PrintToKtString(row.id, out, value, row.format, 1);
  return out;
}

// Whether all that the manager shows of two values is alike.
bool isSame(const Row& row, void* a, void* b) {
  const auto stored = [&](void* value) {
    Values one(row, 1);
    managerOf(row).AssignmentPtrGet(row.id)(one.get(), value, 1, 0);
    return store(row, one, 2).room;
  };
  const auto isAlike = [](const KtString& x, const KtString& y) {
    return x.IsNullValue() == y.IsNullValue() && x.Compare(y, -1, KtCMP_BINARY | KtCMP_NO_WILDCARDS) == 0;
  };
  return stored(a) == stored(b) && compare(row, a, b, kMemory) == 0 && isAlike(convertTo(row, a), convertTo(row, b)) &&
         isAlike(print(row, a), print(row, b));
}

bool isNull(const Row& row, void* value) { return managerOf(row).IsNullValue(row.id, value) != 0; }

std::vector<unsigned char> allFormats(const Row& row) {
  std::vector<unsigned char> formats;
  for (int code = 0; code < 16; ++code) {
    formats.push_back(static_cast<unsigned char>(code));
    formats.push_back(static_cast<unsigned char>(code | row.highBits));
  }
  return formats;
}

// --- storage ----------------------------------------------------------------------------------------------------------

void checkLoad(const Row& row, const Values& values, unsigned char format, Findings& findings) {
  Disk disk = store(row, values, format, findings);
  const Values back(row, values.count());
  const unsigned long read = managerOf(row).Load(row.id, back.get(), disk.at(), format, values.count());
  require(read == disk.size(), findings, code(format), ": read ", read, " of ", disk.size());
  for (unsigned long i = 0; i < values.count(); ++i)
    require(isSame(row, values.at(i), back.at(i)), findings, code(format), ": value ", i, " loads as another");
}

void storeLoad(const Row& row, const Sample* sample, Findings& findings) {
  const Values value = make(row, *sample);
  for (const unsigned char format : allFormats(row)) checkLoad(row, value, format, findings);
}

// Told from the bytes on disk, the size is that told from memory.
void sizes(const Row& row, const Sample* sample, Findings& findings) {
  const KtTypeMgr& mgr = managerOf(row);
  const Values value = make(row, *sample);
  for (const unsigned char format : allFormats(row)) {
    Disk disk = store(row, value, format, findings);
    MemFile file(disk.room.data(), disk.size() + 2);
    file.Seek(1, MemFile::Begin);
    const unsigned long inFile = mgr.DiskLenGetFromMemFile(row.id, &file, format, 1);
    require(inFile == disk.size() && file.Tell() == 1, findings, code(format), ": in a file ", inFile);
    if ((format & kMemory) != 0) continue;
    const unsigned long onDisk = mgr.DiskLenGet(row.id, disk.at(), format, 1, format);
    require(onDisk == disk.size(), findings, code(format), ": on disk ", onDisk);
  }
}

bool isSameRun(const Row& row, const Values& a, const Values& b) {
  for (unsigned long i = 0; i < a.count(); ++i) {
    if (!isSame(row, a.at(i), b.at(i))) return false;
  }
  return true;
}

void translateOnDisk(const Row& row, Disk& disk, unsigned char form, unsigned long count, Findings& findings) {
  constexpr unsigned long kMore = 3;
  Disk copy(disk.size() + kMore);
  const unsigned long copied =
      managerOf(row).Translate(row.id, copy.at(), form, copy.size(), disk.at(), form, disk.size(), count);
  Bytes expected(disk.at(), disk.at() + disk.size());
  expected.resize(copy.size(), 0);
  require(copied == disk.size() && Bytes(copy.at(), copy.at() + copy.size()) == expected && copy.isGuarded(kFill),
          findings, code(form), ": disk to disk is no padded copy");
}

// Between memory and the disk form: what Store and Load do.
void translateRun(const Row& row, const Values& run, unsigned char form, Findings& findings) {
  const KtTypeMgr& mgr = managerOf(row);
  const unsigned long count = run.count();
  const unsigned long length = count * mgr.MemLenGet(row.id, 1);
  Disk disk = store(row, run, form);
  Disk target(disk.size());
  const unsigned long stored = mgr.Translate(row.id, target.at(), form, disk.size(), run.get(), kMemory, length, count);
  require(stored == disk.size() && target.room == disk.room, findings, code(form), ": is no store");
  const Values back(row, count);
  const unsigned long loaded = mgr.Translate(row.id, back.get(), kMemory, length, disk.at(), form, disk.size(), count);
  require(loaded == disk.size() && isSameRun(row, run, back), findings, code(form), ": is no load");
  translateOnDisk(row, disk, form, count, findings);
}

void translateInMemory(const Row& row, const Values& run, Findings& findings) {
  const unsigned long length = run.count() * managerOf(row).MemLenGet(row.id, 1);
  const Values back(row, run.count());
  const unsigned long assigned =
      managerOf(row).Translate(row.id, back.get(), kMemory, length, run.get(), kMemory, length, run.count());
  require(assigned == length && isSameRun(row, run, back), findings, "memory to memory is no assignment");
}

void translate(const Row& row, const Sample* sample, Findings& findings) {
  const Values value = make(row, *sample);
  for (unsigned char form = 0; form < kMemory; ++form) translateRun(row, value, form, findings);
  translateInMemory(row, value, findings);
}

// --- order and hash ---------------------------------------------------------------------------------------------------

// A sample in all forms, with its place in the declared order.
struct Made {
  const Sample* sample;
  long rank;
  Values memory;
  std::map<unsigned char, Disk> disks;

  void* in(unsigned char form) { return form == kMemory ? memory.get() : disks[form].at(); }
};

std::vector<Made> makeAll(const Row& row, const Sample* first) {
  std::vector<Made> all;
  long rank = 0;
  for (const Sample& sample : row.samples) {
    if (!sample.isEqual) ++rank;
    Made made{&sample, rank, make(row, sample), {}};
    for (const unsigned char form : kForms) made.disks[form] = store(row, made.memory, form);
    all.push_back(std::move(made));
    if (&sample == first) std::swap(all.front(), all.back());
  }
  return all;
}

void order(const Row& row, const Sample* sample, Findings& findings) {
  std::vector<Made> all = makeAll(row, sample);
  Made& a = all.front();
  for (const unsigned char form : kForms) {
    for (Made& b : all) {
      const long result = compare(row, a.in(form), b.in(form), form);
      if (result != signOf(a.rank - b.rank))
        findings.push_back({textOf(code(form), ": compared with ", b.sample->name, ": ", result), b.sample->name});
    }
  }
}

// Reflexive, antisymmetric, transitive in each form by itself; and equal bytes are equal, equal values have equal bytes.
void totalOrder(const Row& row, const Sample* sample, Findings& findings) {
  std::vector<Made> all = makeAll(row, sample);
  Made& a = all.front();
  for (const unsigned char form : kForms) {
    for (Made& b : all) {
      const auto say = [&](const char* rule, const char* with) {
        findings.push_back({textOf(code(form), ": ", rule, ": ", b.sample->name, " ", with), b.sample->name, with});
      };
      const long ab = compare(row, a.in(form), b.in(form), form);
      if (ab != -compare(row, b.in(form), a.in(form), form)) say("not antisymmetric", "");
      const bool isSameBytes = a.disks[form].room == b.disks[form].room;
      if (isSameBytes != (ab == 0)) say(ab == 0 ? "equal with other bytes" : "unequal with the same bytes", "");
      for (Made& c : all) {
        const long bc = compare(row, b.in(form), c.in(form), form);
        const long ac = compare(row, a.in(form), c.in(form), form);
        if (ab <= 0 && bc <= 0 && ac != (ab < bc ? ab : bc)) say("not transitive", c.sample->name);
      }
    }
  }
}

unsigned long hashOf(const Row& row, Made& made, unsigned char form, Findings& findings) {
  int status = 1;
  const unsigned long hash = managerOf(row).Hash(row.id, 0, made.in(form), 1, form, status);
  require(status == 0, findings, code(form), ": status ", status);
  return hash;
}

// Equal values hash alike, in each form and across all forms.
void hash(const Row& row, const Sample* sample, Findings& findings) {
  std::vector<Made> all = makeAll(row, sample);
  Made& a = all.front();
  const unsigned long inMemory = hashOf(row, a, kMemory, findings);
  for (const unsigned char form : kForms) {
    const unsigned long own = hashOf(row, a, form, findings);
    require(own == inMemory, findings, code(form), ": unlike memory");
    for (Made& b : all) {
      const bool isEqual = compare(row, a.in(form), b.in(form), form) == 0;
      if (isEqual && hashOf(row, b, form, findings) != own)
        findings.push_back({textOf(code(form), ": unlike its equal ", b.sample->name), b.sample->name});
    }
  }
}

// No law of hashing, but a hash that forgets a field shows here.
void hashSpreads(const Row& row, const Sample* sample, Findings& findings) {
  std::vector<Made> all = makeAll(row, sample);
  Made& a = all.front();
  for (Made& b : all) {
    if (a.rank != b.rank && hashOf(row, a, kMemory, findings) == hashOf(row, b, kMemory, findings))
      findings.push_back({textOf("hashes as ", b.sample->name), b.sample->name});
  }
}

// --- estimates ----------------------------------------------------------------------------------------------------------

constexpr unsigned char kKeyBit = 0x80;  // strings in indexes are keys; other types do not read the bit

Bytes keyOf(const Row& row, const Made& made, unsigned char form) {
  const auto keyForm = static_cast<unsigned char>(form | kKeyBit);
  Bytes key(managerOf(row).DiskLenGet(row.id, made.memory.get(), keyForm, 1, kMemory));
  managerOf(row).Translate(row.id, key.data(), keyForm, key.size(), made.memory.get(), kMemory, 0, 1);
  return key;
}

using Shares = std::array<float, 8>;  // by flags

Shares sharesOf(const Row& row, Made& key, unsigned char form, const Made& lowest, const Made& highest) {
  Bytes low = keyOf(row, lowest, form);
  Bytes high = keyOf(row, highest, form);
  KtIdxBounds range{low.data(), high.data(), static_cast<unsigned char>(low.size()),
                    static_cast<unsigned char>(high.size())};
  Shares shares;
  for (unsigned short flags = 0; flags < shares.size(); ++flags)
    shares[flags] = managerOf(row).EvalAndBound(row.id, &range, flags, key.in(form), form, 1, nullptr, nullptr);
  return shares;
}

void checkShares(const Shares& shares, unsigned char form, Findings& findings) {
  for (unsigned flags = 0; flags < shares.size(); ++flags) {
    require(shares[flags] >= 0 && shares[flags] <= 1, findings, code(form), ": share ", shares[flags]);
    for (const unsigned bit : {1u, 2u, 4u})
      require(shares[flags & ~bit] <= shares[flags], findings, code(form), ": shrinks by flag ", bit);
  }
}

// What satisfies the flags lies within the bounds, by the order on disk; a bound that is set stays.
void checkBounds(const Row& row, Made& key, std::vector<Made>& all, unsigned char form, unsigned short flags,
                 Findings& findings) {
  const KtTypeMgr& mgr = managerOf(row);
  const auto place = [&](Bytes sample, void* bound, unsigned long length) {
    int status = 0;
    const auto keyForm = static_cast<unsigned char>(form | kKeyBit);
    return mgr.Cmp(row.id, sample.size(), sample.data(), length, bound, kOptions, 1, keyForm, status);
  };
  KtIdxBounds bounds;
  mgr.EvalAndBound(row.id, nullptr, flags, key.in(form), form, 1, &bounds, nullptr);
  const KtIdxBounds first = bounds;
  for (Made& other : all) {
    const long order = compare(row, other.in(form), key.in(form), form);
    const bool isSelected = (flags & (order == 0 ? 1 : order < 0 ? 2 : 4)) != 0;
    const bool isInside = (!first.lowKey || place(keyOf(row, other, form), first.lowKey, first.lowKeyLength) >= 0) &&
                          (!first.highKey || place(keyOf(row, other, form), first.highKey, first.highKeyLength) <= 0);
    require(!isSelected || isInside, findings, code(form), ": flags ", flags, " exclude ", other.sample->name);
    mgr.EvalAndBound(row.id, nullptr, flags, other.in(form), form, 1, &bounds, nullptr);
    require(bounds.lowKey == first.lowKey && bounds.highKey == first.highKey, findings, "a bound is replaced");
  }
  KtFreeIdxBounds(&bounds);
}

void estimate(const Row& row, const Sample* sample, Findings& findings) {
  if (descriptorOf(row).EvalAndBound == kt::currentTypeTable()[KT_ID_illegal]->EvalAndBound) return;
  std::vector<Made> all = makeAll(row, sample);
  for (const unsigned char form : kForms) {
    if (form == kMemory) continue;
    Made* low = nullptr;  // the range of all but nulls
    Made* high = nullptr;
    for (Made& a : all) {
      for (Made& b : all) checkShares(sharesOf(row, all.front(), form, a, b), form, findings);
      if (a.sample->source == Sample::kNull) continue;
      if (low == nullptr || compare(row, a.in(form), low->in(form), form) < 0) low = &a;
      if (high == nullptr || compare(row, a.in(form), high->in(form), form) > 0) high = &a;
    }
    for (unsigned short flags = 0; flags < 8; ++flags) checkBounds(row, all.front(), all, form, flags, findings);
    const Shares ofAll = sharesOf(row, all.front(), form, *low, *high);
    if (sample->source == Sample::kNull) {
      require(ofAll[2] < 0.5F, findings, code(form), ": less than null are ", ofAll[2]);
    } else {
      require(ofAll[7] > 0.999F, findings, code(form), ": of all it selects ", ofAll[7]);
    }
  }
}

// --- text ---------------------------------------------------------------------------------------------------------------

void convert(const Row& row, const Sample* sample, Findings& findings) {
  const Values value = make(row, *sample);
  const KtString text = convertTo(row, value.get());
  const Values back = convertFrom(row, text);
  require(isSame(row, value.get(), back.get()), findings, "does not come back from ", text.StrGet());
}

void printScan(const Row& row, const Sample* sample, Findings& findings) {
  if (row.format == nullptr) return;
  const Values value = make(row, *sample);
  KtString text = print(row, value.get());
  const Values back(row, 1);
  managerOf(row).ScanFromKtString(row.id, back.get(), text, row.scanFormat != nullptr ? row.scanFormat : row.format, 1);
  require(isSame(row, value.get(), back.get()), findings, "does not come back from ", text.StrGet());
}

// --- rows as a whole ------------------------------------------------------------------------------------------------------

// SetNullValue gives the default where there is no null.
void checkNoNull(const Row& row, Findings& findings) {
  KtTypeMgr& mgr = managerOf(row);
  const Values byDefault(row, 1, mgr.DefaultValue(row.id, 1, 1));
  for (const Sample& sample : row.samples) {
    const Values value = make(row, sample);
    require(!isNull(row, value.get()), findings, sample.name, ": null in a type without null");
    require(mgr.SetNullValue(row.id, value.get()) == 0, findings, sample.name, ": SetNullValue fails");
    require(isSame(row, value.get(), byDefault.get()), findings, sample.name, ": SetNullValue is no default");
  }
}

void checkNullRun(const Row& row, unsigned long count, Findings& findings) {
  const Values nulls(row, count, managerOf(row).DefaultValue(row.id, count, 1));
  for (unsigned long i = 0; i < count; ++i)
    require(isNull(row, nulls.at(i)), findings, "default ", i, " of ", count, " is no null");
  checkLoad(row, nulls, 2, findings);
  const unsigned long told = descriptorOf(row).NullSizeGet(count);
  const unsigned long size = store(row, nulls, 0).size();
  require(told == size, findings, "null size ", told, " of ", size);
}

void checkNullText(const Row& row, const Sample& sample, const Sample& null, Findings& findings) {
  KtTypeMgr& mgr = managerOf(row);
  const Values nothing = make(row, null);
  KtString text("replaced");
  mgr.PrintToKtString(row.id, text, nothing.get(), nullptr, 1);
  require(text == KtTypeMgr::GetNullPrintString(), findings, "null prints ", text.StrGet());
  const KtString converted = convertTo(row, nothing.get());
  require(converted.IsNullValue() || converted == text, findings, "null converts to ", converted.StrGet());
  const Values scanned = make(row, sample);
  mgr.ScanFromKtString(row.id, scanned.get(), text, nullptr, 1);
  require(isNull(row, scanned.get()), findings, sample.name, ": scans no null");
  const Values set = make(row, sample);
  require(!isNull(row, set.get()), findings, sample.name, ": is null already");
  require(mgr.SetNullValue(row.id, set.get()) == 0 && isSame(row, set.get(), nothing.get()), findings, sample.name,
          ": is not set to null");
}

void null(const Row& row, const Sample*, Findings& findings) {
  KtTypeMgr& mgr = managerOf(row);
  const Sample& first = row.samples.front();
  if (mgr.SupportsNullValue(row.id) == 0) return checkNoNull(row, findings);
  require(first.source == Sample::kNull, findings, "null is not the first sample");
  for (const unsigned long count : {0ul, 1ul, 2ul, 17ul}) checkNullRun(row, count, findings);
  for (const Sample& sample : row.samples) {
    if (&sample != &first) checkNullText(row, sample, first, findings);
  }
  const Values byDefault(row, 1, mgr.DefaultValue(row.id, 1, 0));
  require(!isNull(row, byDefault.get()), findings, "the default is null");
  const Values missing(row, 1, mgr.ConvertFrom(row.id, nullptr, 1));
  require(isNull(row, missing.get()), findings, "a missing string is not null");
}

void checkCopies(const Row& row, const Values& run, Findings& findings) {
  const KtTypeMgr& mgr = managerOf(row);
  const unsigned long count = run.count();
  for (const int fill : {0, 1}) {
    const Values assigned(row, count);
    const Values copied(row, count);
    mgr.DestructorPtrGet(row.id)(copied.get(), count, 0);
    mgr.AssignmentPtrGet(row.id)(assigned.get(), run.get(), count, fill);
    mgr.CopyPtrGet(row.id)(copied.get(), run.get(), count, fill);
    for (unsigned long i = 0; i < count; ++i) {
      void* const expected = run.at(fill != 0 ? 0 : i);
      require(isSame(row, assigned.at(i), expected), findings, "assigned ", i, " of ", count, ", fill ", fill);
      require(isSame(row, copied.at(i), expected), findings, "copied ", i, " of ", count, ", fill ", fill);
    }
  }
}

void checkRunForm(const Row& row, const Values& run, unsigned char form, Findings& findings) {
  KtTypeMgr& mgr = managerOf(row);
  checkLoad(row, run, form, findings);
  if (form == kMemory) return translateInMemory(row, run, findings);
  translateRun(row, run, form, findings);
  Disk disk = store(row, run, form);
  Disk twin = disk;
  int status = 0;
  const unsigned long inMemory = mgr.Hash(row.id, 0, run.get(), run.count(), kMemory, status);
  require(mgr.Hash(row.id, 0, disk.at(), run.count(), form, status) == inMemory, findings, "code ", int{form},
          ": run hashes unlike memory");
  require(mgr.Cmp(row.id, disk.size(), disk.at(), twin.size(), twin.at(), kOptions, run.count(), form, status) == 0 &&
              status == 0,
          findings, code(form), ": a run of ", run.count(), " is not itself, status ", status);
}

void runs(const Row& row, const Sample*, Findings& findings) {
  const kt_test::CaughtAssertions caught;  // of a refused translation, which is a finding already
  KtTypeMgr& mgr = managerOf(row);
  const Values one(row, 1, mgr.DefaultValue(row.id, 1, 0));
  for (const unsigned long count : {0ul, 1ul, 2ul, 5ul, 17ul}) {
    const Values run = makeRun(row, count);
    require(run.get() != nullptr, findings, "no array of ", count);
    if (count != 0) checkCopies(row, run, findings);
    for (const unsigned char form : kForms) checkRunForm(row, run, form, findings);
    const Values defaults(row, count, mgr.DefaultValue(row.id, count, 0));
    KtTypeConvertData* texts = mgr.ConvertTo(row.id, run.get(), count);
    for (unsigned long i = 0; i < count; ++i) {
      require(isSame(row, defaults.at(i), one.get()), findings, "default ", i, " of ", count);
      require(*texts->GetString(static_cast<int>(i)) == convertTo(row, run.at(i)), findings, "text ", i, " of ", count);
    }
    delete texts;
  }
}

// Both runs of two equal values, of which `length` bytes are there.
void checkShort(const Row& row, void* cut, unsigned long length, void* whole, unsigned char form, Findings& findings) {
  const KtTypeMgr& mgr = managerOf(row);
  int a = 0, b = 0, h = 0;
  const long results = mgr.Cmp(row.id, length, cut, 0, whole, kOptions, 2, form, a) |
                       mgr.Cmp(row.id, 0, whole, length, cut, kOptions, 2, form, b);
  mgr.Hash(row.id, length, cut, 2, form, h);
  require(results == 0 && a == KtERR_OVERRUN && b == KtERR_OVERRUN, findings, code(form), ": compare of ", length,
          " bytes: status ", a, " and ", b);
  require(h == KtERR_OVERRUN, findings, code(form), ": hash of ", length, " bytes: status ", h);
}

void overrun(const Row& row, const Sample*, Findings& findings) {
  const Values last = make(row, row.samples.back());
  const Values pair(row, 2);
  managerOf(row).AssignmentPtrGet(row.id)(pair.get(), last.get(), 2, 1);
  for (const unsigned char form : kForms) {
    Disk disk = store(row, pair, form);
    const bool inMemory = form == kMemory;
    const unsigned long size = inMemory ? 2ul * managerOf(row).MemLenGet(row.id, 1) : disk.size();
    void* const whole = inMemory ? pair.get() : disk.at();
    for (unsigned long length = 1; length < size; ++length) {
      // A block of its own, so that the address sanitizer sees a read behind it.
      const kt_test::Block block(Bytes(disk.at(), disk.at() + disk.size()), inMemory ? 0 : length);
      void* const cut = inMemory || row.readsWholeRuns ? whole : block.get();
      checkShort(row, cut, length, whole, form, findings);
    }
  }
}

}  // namespace

const Law kStoreLoad{"store_load", storeLoad};
const Law kSizes{"sizes", sizes};
const Law kTranslate{"translate", translate};
const Law kOrder{"order", order};
const Law kTotalOrder{"total_order", totalOrder};
const Law kHash{"hash", hash};
const Law kHashSpreads{"hash_spreads", hashSpreads};
const Law kEstimate{"estimate", estimate};
const Law kConvert{"convert", convert};
const Law kPrintScan{"print_scan", printScan};
const Law kNull{"null", null};
const Law kRuns{"runs", runs};
const Law kOverrun{"overrun", overrun};

}  // namespace kt_laws
