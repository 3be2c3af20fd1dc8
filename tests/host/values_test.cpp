// The host's strings and arrays, and text on its way through the code page.
#include <random>

#include "host/text.h"
#include "support/support.h"

namespace {

using support::CIds;
using support::CText;

class Values : public support::CLedgerTest {
 protected:
  static const unsigned char* Bytes(const char* pText) {
    return reinterpret_cast<const unsigned char*>(pText);
  }
};

TEST_F(Values, CopiesSizesAndCounts) {
  CText empty, target;
  EXPECT_EQ(domCopyHStr(nullptr, nullptr), 1);
  EXPECT_EQ(domCopyHStr(*(&empty), &target), 0);
  EXPECT_TRUE(target.IsNull());
  CText five("12345");
  EXPECT_EQ(domCopyHStr(*(&five), &target), 0);
  EXPECT_EQ(target.Str(), "12345");
  EXPECT_EQ(domCopyHStr(nullptr, &target), 0);
  EXPECT_EQ(HostGetHandleSize(*(&target)), 4u);
  ASSERT_EQ(HostSetHandleSize(*(&five), 100), 0);
  CText other("abcde");
  EXPECT_EQ(domCopyHStr(*(&other), &five), 0);
  EXPECT_EQ(HostGetHandleSize(*(&five)), 100u) << "equal counts: the block is not resized";
  EXPECT_EQ(five.Str(), "abcde");
}

TEST_F(Values, AppendingShrinksOnlyWhereItSaysSo) {
  CText text("ab"), more("cd");
  ASSERT_EQ(HostSetHandleSize(*(&text), 64), 0);
  EXPECT_EQ(domHStrCatEfficient(*(&text), **(&more)), 0);
  EXPECT_EQ(HostGetHandleSize(*(&text)), 64u);
  CText none("");
  EXPECT_EQ(domHStrCat(*(&text), **(&none)), 0);
  EXPECT_EQ(HostGetHandleSize(*(&text)), 8u);
  EXPECT_EQ(domHStrAppendCStr(&text, Bytes("efg")), 0);
  EXPECT_EQ(domHStrAppendCStr(&text, nullptr), 0);
  EXPECT_EQ(text.Str(), "abcdefg");
  EXPECT_EQ(HostGetHandleSize(*(&text)), 11u);
  CText made;
  EXPECT_EQ(domHStrAppendCStr(&made, Bytes("")), 0);
  EXPECT_FALSE(made.IsNull());
  EXPECT_EQ(made.Str(), "");
}

TEST_F(Values, CStringsKeepTheirNulBytesAndNullClears) {
  CText text(std::string_view("a\0b", 3)), none;
  const std::unique_ptr<char[]> copy(HStrToCStr(&text)), empty(HStrToCStr(&none));
  EXPECT_EQ(std::string_view(copy.get(), 4), std::string_view("a\0b\0", 4));
  EXPECT_STREQ(empty.get(), "");
  EXPECT_EQ(CStrToHStr("xyz", &text), 0);
  EXPECT_EQ(text.Str(), "xyz");
  EXPECT_EQ(CStrToHStr(nullptr, &text), 0);
  EXPECT_TRUE(text.IsNull());
}

TEST_F(Values, ArraysAreEmptiedInPlaceOrDisposedOf) {
  CIds ids;
  ClearSessionArray(&ids);
  EXPECT_TRUE(ids.IsNull());
  EXPECT_EQ(domSetHandleSizeOrNewHandle(&ids, 48), 0);
  const auto handle = *(&ids);
  (*handle)->count = 5;
  ClearSessionArray(&ids);
  EXPECT_EQ(*(&ids), handle);
  EXPECT_EQ(HostGetHandleSize(handle), 8u);
  EXPECT_TRUE(ids.Get().empty());
  EXPECT_EQ(domSetHandleSizeOrNewHandle(&ids, -1), 2);
  EXPECT_EQ(ClearArray(&ids), 0);
  EXPECT_EQ(ClearArray(&ids), 0);
  EXPECT_EQ(ClearArray(nullptr), 0);
}

TEST_F(Values, RefusedMemoryIsCodeTwoAndLosesNothing) {
  CText source("source"), kept("kept"), made;
  StandinFailAllocationsFrom(1);
  EXPECT_EQ(domCopyHStr(*(&source), &made), 2);
  EXPECT_EQ(domHStrAppendCStr(&made, Bytes("x")), 2);
  EXPECT_TRUE(made.IsNull());
  EXPECT_EQ(domHStrAppendCStr(&kept, Bytes("x")), 2);
  EXPECT_EQ(domHStrCat(*(&kept), **(&source)), 2);
  EXPECT_EQ(kept.Str(), "kept");
  EXPECT_EQ(CStrToHStr("much longer than before", &kept), 2);
  EXPECT_TRUE(kept.IsNull()) << "no half-made string stays";
  CText other;
  EXPECT_EQ(StoreText(u"text", &other), 2);
  EXPECT_TRUE(other.IsNull());
  StandinFailAllocation(0);
}

// ASCII takes a short cut around the transcoder: every text must come out as the
// transcoder itself gives it, at the lengths where the short cut changes buffers.
TEST_F(Values, ShortCutsGiveWhatTheTranscoderGives) {
  std::mt19937 random(1);
  const char16_t units[] = {u'a', u'~', 1, 0x7f, 0x80, 0xe9, 0x20ac, 0xd83d, 0xde00, 0xffff};
  const unsigned char bytes[] = {'a', '~', 1, 0x7f, 0x80, 0xc3, 0xa9, 0xff, 0xf0, 0x9f, 0};
  for (const size_t length : {0u, 1u, 47u, 48u, 63u, 64u, 65u, 255u, 256u, 257u, 1000u}) {
    for (int round = 0; round < 40; ++round) {
      // Every other text is ASCII but for one unit, or altogether.
      std::u16string wide(length, u'x');
      std::string narrow(length, 'x');
      for (size_t i = 0; i < length; ++i) {
        if (round % 2 != 0 && i + 1 != length) continue;
        wide[i] = units[random() % std::size(units)];
        narrow[i] = static_cast<char>(bytes[random() % std::size(bytes)]);
      }
      CText ours, theirs, in(narrow);
      EXPECT_EQ(StoreText(wide.c_str(), &ours), 0);
      EXPECT_EQ(CStrToHStr(CLocalText(wide.c_str()).Get(), &theirs), 0);
      EXPECT_EQ(ours.Str(), theirs.Str());
      EXPECT_EQ(std::u16string(CWideText(&in).Get()),
                std::u16string(CWideText(CHostText(&in).Get()).Get()));
    }
  }
}

TEST_F(Values, VersionRecordIsReusedAndOwnsItsStrings) {
  HStrArray versions = nullptr;
  for (int turn = 0; turn < 2; ++turn) {
    ASSERT_EQ(nKelVersion_TESSEL_getVersionStringArray(&versions), 0);
    ASSERT_EQ((*versions)->count, 3);
    const HStr first = (*versions)->items[0];
    EXPECT_EQ(
        std::string(reinterpret_cast<char*>((*first)->bytes), static_cast<size_t>((*first)->count)),
        "Tessel " TESSEL_VERSION);
  }
  for (int n = 1; n <= 2; ++n) {
    StandinFailAllocation(n);
    EXPECT_EQ(nKelVersion_TESSEL_getVersionStringArray(&versions), 2) << n;
    EXPECT_EQ(versions, nullptr) << n;
    StandinFailAllocation(0);
  }
}

}  // namespace
