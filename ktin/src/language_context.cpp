#include "ktin.h"

namespace {

struct Context {
  unsigned char codeSet = 1;
  unsigned char codeSet8 = 1;
  unsigned char codeSet16 = 253;
  unsigned char nativeCodeSet = 1;
  unsigned char language = 1;
  unsigned short cmpOp = 0x10;
};

constinit Context context;

}  // namespace

int ___KtI18NContext(int /*attach*/) { return 1; }

unsigned char KtLanguageContext::GetDefaultCodeSet() { return context.codeSet; }
unsigned char KtLanguageContext::GetDefault8CodeSet() { return context.codeSet8; }
unsigned char KtLanguageContext::GetDefault16CodeSet() { return context.codeSet16; }
unsigned char KtLanguageContext::GetNativeCodeSet() { return context.nativeCodeSet; }
unsigned char KtLanguageContext::GetDefaultLanguage() { return context.language; }
unsigned short KtLanguageContext::GetDefaultCmpOp() { return context.cmpOp; }

void KtLanguageContext::SetDefaultCodeSet(unsigned char codeSet) { context.codeSet = codeSet; }
void KtLanguageContext::SetDefault8CodeSet(unsigned char codeSet) { context.codeSet8 = codeSet; }
void KtLanguageContext::SetDefault16CodeSet(unsigned char codeSet) { context.codeSet16 = codeSet; }
void KtLanguageContext::SetNativeCodeSet(unsigned char codeSet) { context.nativeCodeSet = codeSet; }
void KtLanguageContext::SetDefaultLanguage(unsigned char language) { context.language = language; }
void KtLanguageContext::SetDefaultCmpOp(unsigned short cmpOp) { context.cmpOp = cmpOp; }
