#include "lmdb.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <set>

namespace atlas {
namespace {

constexpr unsigned kMostTrees = 256;
constexpr mdb_mode_t kFileMode = 0644;
constexpr unsigned kMetaPages = 2;
// DISK: what LMDB writes into the first page.
constexpr unsigned long kMagicAt = 16;
constexpr std::uint32_t kMagic = 0xBEEFC0DE;
constexpr unsigned long kPageSizeAt = 40;
constexpr std::uint32_t kLeastPage = 512, kGreatestPage = 65536;

std::string quoted(const std::string& file) { return "\"" + file + "\""; }

bool isPageSize(std::uint32_t size) { return size >= kLeastPage && size <= kGreatestPage && (size & (size - 1)) == 0; }

// A number of the file; 0 behind its end.
std::uint32_t numberAt(std::istream& in, unsigned long at) {
  std::uint32_t number = 0;
  in.seekg(static_cast<std::streamoff>(at));
  in.read(reinterpret_cast<char*>(&number), sizeof number);
  return in ? number : 0;
}

// Without touching anything: LMDB would leave a lock file even beside a file that is not its own. It divides by the page
// size, whatever that is, and takes it from the one or the other of its two first pages.
void checkLooksLikeLmdb(const std::string& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) throw Error(kExitBroken, "cannot open " + quoted(file) + ": " + std::strerror(errno));
  if (numberAt(in, kMagicAt) != kMagic) throw Error(kExitDatabase, quoted(file) + " is no atlas database");
  const std::uint32_t pageSize = numberAt(in, kPageSizeAt);
  if (isPageSize(pageSize) && numberAt(in, pageSize + kPageSizeAt) == pageSize) return;
  throw Error(kExitBroken, quoted(file) + " is truncated or damaged: its first pages do not tell the page size");
}

// LMDB ends the process when it finds its pages damaged; what it calls does not come back.
void answerFailedAssertion(MDB_env*, const char* what) {
  std::fflush(stdout);
  std::fprintf(stderr, "atlas: the database is damaged; restore it from a copy (%s)\n", what);
  _exit(kExitBroken);
}

unsigned long long sizeOf(const std::string& file) {
  struct stat status;
  if (stat(file.c_str(), &status) != 0) return 0;
  return static_cast<unsigned long long>(status.st_size);
}

// Pages that were allocated and given back before they were written may lie behind the end of a sound file: the list of
// free pages, tree 0, has them.
bool missingPagesAreFree(MDB_env* env, unsigned long long first, unsigned long long last) {
  MDB_txn* txn = nullptr;
  MDB_cursor* cursor = nullptr;
  if (mdb_txn_begin(env, nullptr, MDB_RDONLY, &txn) != 0) return false;
  std::set<std::size_t> missing;
  for (unsigned long long page = first; page <= last && last - first < 1000; ++page) missing.insert(page);
  bool allFree = !missing.empty() && mdb_cursor_open(txn, 0, &cursor) == 0;
  MDB_val key, data;
  while (allFree && mdb_cursor_get(cursor, &key, &data, MDB_NEXT) == 0) {
    for (std::size_t at = sizeof(std::size_t); at + sizeof(std::size_t) <= data.mv_size; at += sizeof(std::size_t)) {
      std::size_t page;
      std::memcpy(&page, static_cast<const char*>(data.mv_data) + at, sizeof page);
      missing.erase(page);
    }
  }
  if (cursor != nullptr) mdb_cursor_close(cursor);
  mdb_txn_abort(txn);
  return allFree && missing.empty();
}

void checkNotTruncated(MDB_env* env, const std::string& file) {
  MDB_envinfo info;
  MDB_stat stat;
  checkLmdb(mdb_env_info(env, &info), "look at the database");
  checkLmdb(mdb_env_stat(env, &stat), "look at the database");
  const unsigned long long pages = sizeOf(file) / stat.ms_psize;
  if (pages > info.me_last_pgno || missingPagesAreFree(env, pages, info.me_last_pgno)) return;
  throw Error(kExitBroken, quoted(file) + " is truncated: it has " + std::to_string(pages) + " pages of " +
                               std::to_string(info.me_last_pgno + 1) + "; restore it from a copy");
}

ExitCode exitCodeOf(int result) {
  switch (result) {
    case MDB_MAP_FULL:
    case ENOSPC:
    case EFBIG:
    case EDQUOT: return kExitFull;
    case MDB_INVALID:
    case MDB_VERSION_MISMATCH: return kExitDatabase;
    default: return kExitBroken;
  }
}

}  // namespace

void checkLmdb(int result, const char* action) {
  if (result == MDB_SUCCESS) return;
  std::string message = std::string("cannot ") + action + ": " + mdb_strerror(result);
  if (result == MDB_MAP_FULL) message = "the database is full; give it more room by --map-size";
  if (result == ENOSPC || result == EFBIG || result == EDQUOT) message = std::string("the disk is full: ") + message;
  throw Error(exitCodeOf(result), message);
}

Env::Env(const Options& options) : file_(options.file) {
  const unsigned long long size = sizeOf(file_);
  if (size == 0 && options.readOnly) throw Error(kExitDatabase, "there is no database " + quoted(file_));
  if (size != 0) checkLooksLikeLmdb(file_);
  MDB_env* env = nullptr;
  checkLmdb(mdb_env_create(&env), "begin");
  env_.reset(env);
  checkLmdb(mdb_env_set_assert(env, answerFailedAssertion), "begin");
  MDB_stat page;
  checkLmdb(mdb_env_set_maxdbs(env, kMostTrees), "begin");
  if (options.mapSize != 0) checkLmdb(mdb_env_set_mapsize(env, options.mapSize), "set the map size");
  const unsigned flags = MDB_NOSUBDIR | MDB_NOTLS | (options.readOnly ? MDB_RDONLY : 0U);
  const std::string action = "open " + quoted(file_);
  const int opened = mdb_env_open(env, file_.c_str(), flags, kFileMode);
  if (opened == ENOMEM) throw Mistake("no address space for a map of this size; give less room by --map-size");
  checkLmdb(opened, action.c_str());
  checkLmdb(mdb_env_stat(env, &page), "look at the database");
  if (sizeOf(file_) < kMetaPages * page.ms_psize) throw Error(kExitBroken, quoted(file_) + " is truncated");
  checkNotTruncated(env, file_);
}

void Txn::begin() {
  checkLmdb(mdb_txn_begin(env_->get(), nullptr, readOnly_ ? MDB_RDONLY : 0U, &txn_), "begin a transaction");
}

void Txn::commit() {
  MDB_txn* ended = txn_;
  txn_ = nullptr;
  const int result = mdb_txn_commit(ended);
  // LMDB calls a write that was cut short so: nearly always the disk had no more room.
  if (result == EIO) throw Error(kExitFull, "cannot commit: the disk is full, or fails");
  checkLmdb(result, "commit");
  begin();
}

void Txn::abort() {
  if (txn_ != nullptr) mdb_txn_abort(txn_);
  txn_ = nullptr;
}

Tree Txn::open(const char* name, unsigned flags, MDB_cmp_func* keys, MDB_cmp_func* duplicates, bool create) {
  Tree tree = 0;
  const int result = mdb_dbi_open(txn_, name, flags | (create ? MDB_CREATE : 0U), &tree);
  if (result == MDB_NOTFOUND || result == MDB_INCOMPATIBLE) {
    throw Error(kExitDatabase, quoted(env_->file()) + " is no atlas database: it has no tree " + name);
  }
  checkLmdb(result, "open a tree");
  if (keys != nullptr) checkLmdb(mdb_set_compare(txn_, tree, keys), "order a tree");
  if (duplicates != nullptr) checkLmdb(mdb_set_dupsort(txn_, tree, duplicates), "order a tree");
  return tree;
}

unsigned long Txn::entries(Tree tree) const {
  MDB_stat stat;
  checkLmdb(mdb_stat(txn_, tree, &stat), "look at a tree");
  return stat.ms_entries;
}

Cursor::Cursor(const Txn& txn, Tree tree) {
  MDB_cursor* cursor = nullptr;
  checkLmdb(mdb_cursor_open(txn.get(), tree, &cursor), "read");
  cursor_.reset(cursor);
}

bool Cursor::move(MDB_cursor_op op, MDB_val& key, MDB_val& data) {
  const int result = mdb_cursor_get(cursor_.get(), &key, &data, op);
  if (result == MDB_NOTFOUND) return false;
  checkLmdb(result, "read");
  if (key.mv_size == 0) throw Error(kExitBroken, "the database is damaged: an entry has no key");
  return true;
}

bool Cursor::put(Bytes key, Bytes data, unsigned flags) {
  MDB_val keyVal = valOf(key), dataVal = valOf(data);
  const int result = mdb_cursor_put(cursor_.get(), &keyVal, &dataVal, flags);
  if (result == MDB_KEYEXIST) return false;
  checkLmdb(result, "write");
  return true;
}

void* Cursor::reserve(Bytes key, unsigned long size, unsigned flags) {
  MDB_val keyVal = valOf(key), room{size, nullptr};
  checkLmdb(mdb_cursor_put(cursor_.get(), &keyVal, &room, flags | MDB_RESERVE), "write");
  return room.mv_data;
}

void Cursor::putMany(Bytes key, const void* data, unsigned long size, unsigned long count, unsigned flags) {
  MDB_val keyVal = valOf(key);
  MDB_val many[2] = {{size, const_cast<void*>(data)}, {count, nullptr}};
  checkLmdb(mdb_cursor_put(cursor_.get(), &keyVal, many, flags | MDB_MULTIPLE), "write");
}

}  // namespace atlas
