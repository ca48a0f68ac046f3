// The setting "oldIndexUnicodeOrder" is read once a process, when the first key is made: hence a program of its own.
#include "ops/string_ops.h"
#include "string_bytes.h"

#include <gtest/gtest.h>

namespace {

using namespace kt_test;

Bytes keyOf(KtString s, unsigned long room = 64) {
  Block target(Bytes(room, 0));
  const unsigned long size = kt::StringOps::translate(target.get(), 0x82, room, &s, 8, 0, 1);
  return Bytes(target.get(), target.get() + size);
}

TEST(OldUnicodeOrder, unicode_texts_keep_their_code_set_and_the_setting_is_read_once) {
  DefaultConfig()->SetShort("oldIndexUnicodeOrder", nullptr, 1);
  const Bytes expected = hex("00 0C FD 01 01 40 0C 20 01 40 10 00 00 FF");
  EXPECT_EQ(keyOf(makeString(u"aB", 253, 1)), expected);
  DefaultConfig()->SetShort("oldIndexUnicodeOrder", nullptr, 0);
  EXPECT_EQ(keyOf(makeString(u"aB", 253, 1)), expected);
  EXPECT_EQ(keyOf(makeString(u"aB", 253, 1), 10), hex("00 08 FD 01 01 40 0C 20 FF FF"));  // cut
  // Keys of both orders differ in the code set only, which is no part of what sorts.
  EXPECT_EQ(keyOf(makeString(u"aB", 1, 1)), hex("00 0C 01 01 01 40 0C 20 01 40 10 00 00 FF"));
}

}  // namespace
