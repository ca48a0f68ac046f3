// The module: attaching, the default manager, and what the library says of itself.
#include "kttypmgr.h"

#include <ktbs.h>
#include <ktin.h>

#include <new>

namespace {

KtTypeMgr* defaultManager = nullptr;

constexpr int kMajor = 9;
constexpr int kMinor = 5;
constexpr int kBuild = 23;
constexpr int kRevision = 262;
constexpr int kPatch = 0;
constexpr unsigned long kDefaultVersion = 5;
constexpr const char* kName = "Kato Typemanager";
constexpr const char* kNameAndVersion = "Kato Typemanager 9.5.23.262.0 ";
constexpr const char* kInternalName = "kttms";
// Not __DATE__: the same sources give the same bytes.
constexpr const char* kBuildDate = "release 9.5.23.262.0";

#if defined(__clang__)
constexpr int kCompilerVersion = __clang_major__ * 100 + __clang_minor__;
#elif defined(__GNUC__)
constexpr int kCompilerVersion = __GNUC__ * 100 + __GNUC_MINOR__;
#else
constexpr int kCompilerVersion = 0;
#endif
#if defined(__VERSION__)
constexpr const char* kCompiler = __VERSION__;
#else
constexpr const char* kCompiler = "unknown compiler";
#endif

template <class Out, class Value>
void give(Out* out, Value value) {
  if (out != nullptr) *out = value;
}

}  // namespace

int ___KtTypemgrContext(int attach) {
  const int result = ___KtI18NContext(attach);
  if (attach == 0) {
    delete defaultManager;
    defaultManager = nullptr;
    return result;
  }
  defaultManager = new (std::nothrow) KtTypeMgr(kDefaultVersion);
  if (defaultManager == nullptr) KtCallMemoryHandler(sizeof(KtTypeMgr));
  return result;
}

KtTypeMgr* DefaultTypeMgr(KtTypeMgr* mgr) {
  KtTypeMgr* old = defaultManager;
  if (mgr != nullptr) defaultManager = mgr;
  return old;
}

int KtCheckDll(int flags) { return CheckKtVersionNumber(kMajor, kMinor, kBuild, kRevision, kPatch, flags | 3); }

const char* KtDescribeDll(int* major, int* minor, int* build, int* revision, int* patch, const char** internalName,
                          const char** buildDate, const char** unknown, int* compilerVersion, const char** compiler,
                          const char** extra) {
  give(major, kMajor);
  give(minor, kMinor);
  give(build, kBuild);
  give(revision, kRevision);
  give(patch, kPatch);
  give(internalName, kInternalName);
  give(buildDate, kBuildDate);
  give(unknown, "unknown");
  give(compilerVersion, kCompilerVersion);
  give(compiler, kCompiler);
  give(extra, "");
  return kName;
}

void GetKtTypeMgrInfo(const char** compiler, int* compilerVersion, const char** description, const char** date,
                      const char** internalName) {
  give(compiler, kCompiler);
  give(compilerVersion, kCompilerVersion);
  give(description, kNameAndVersion);
  give(date, kBuildDate);
  give(internalName, kInternalName);
}
