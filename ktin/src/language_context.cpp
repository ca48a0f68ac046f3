#include "ktin.h"

constinit unsigned char KtLanguageContext::codeSet_ = 1;
constinit unsigned char KtLanguageContext::codeSet8_ = 1;
constinit unsigned char KtLanguageContext::codeSet16_ = 253;
constinit unsigned char KtLanguageContext::native_ = 1;
constinit unsigned char KtLanguageContext::language_ = 1;
constinit unsigned short KtLanguageContext::cmpOp_ = 0x10;

int ___KtI18NContext(int /*attach*/) { return 1; }
