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

TEST_F(Values, CopiesOfNothingAndIntoBlocksThatAreLarger) {
  CText target, five("12345"), other("abcde");
  EXPECT_EQ(domCopyHStr(nullptr, nullptr), 1);
  EXPECT_EQ(domCopyHStr(nullptr, &target), 0);
  EXPECT_TRUE(target.IsNull());
  ASSERT_EQ(HostSetHandleSize(*(&five), 100), 0);
  EXPECT_EQ(domCopyHStr(*(&other), &five), 0);
  EXPECT_EQ(HostGetHandleSize(*(&five)), 100u) << "equal counts: the block is not resized";
  EXPECT_EQ(domCopyHStr(nullptr, &five), 0);
  EXPECT_EQ(HostGetHandleSize(*(&five)), 4u);
}

// A negative count means no bytes, and must not shorten what is asked of the host.
TEST_F(Values, DamagedCountsAreNoCounts) {
  CText text("abcdefg"), damaged("abc"), made;
  (**(&damaged))->count = -10;
  EXPECT_EQ(domHStrCatEfficient(*(&damaged), **(&text)), 0);
  EXPECT_EQ(damaged.Str(), "abcdefg");
  EXPECT_EQ(HostGetHandleSize(*(&damaged)), 11u);
  (**(&damaged))->count = -1;
  EXPECT_EQ(domHStrCat(*(&text), **(&damaged)), 0);
  EXPECT_EQ(domHStrAppendCStr(&damaged, Bytes("x")), 0);
  EXPECT_EQ(damaged.Str(), "x");
  EXPECT_EQ(text.Str(), "abcdefg");
  EXPECT_EQ(domHStrAppendCStr(&made, Bytes("")), 0);
  EXPECT_FALSE(made.IsNull());
}

TEST_F(Values, ArraysAreEmptiedInPlace) {
  CIds ids;
  EXPECT_EQ(domSetHandleSizeOrNewHandle(&ids, 48), 0);
  const auto handle = *(&ids);
  (*handle)->count = 5;
  ClearSessionArray(&ids);
  EXPECT_EQ(*(&ids), handle);
  EXPECT_EQ(HostGetHandleSize(handle), 8u);
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
  for (const char16_t* pText : {u"text", u"t\u00e9xt", u"t\xd800xt"}) {
    EXPECT_EQ(StoreText(pText, &made), 2);
    EXPECT_TRUE(made.IsNull());
    EXPECT_EQ(StoreText(pText, nullptr), 1);
  }
  StandinFailAllocation(0);
}

// Text takes short cuts around the transcoder: every text must come out as the
// transcoder itself gives it, whatever the local code page is.
class ShortCuts : public Values {
 protected:
  static void ExpectOut(const std::u16string& text) {
    CText ours, theirs;
    ASSERT_EQ(StoreText(text.c_str(), &ours), 0);
    ASSERT_EQ(CStrToHStr(CLocalText(text.c_str()).Get(), &theirs), 0);
    ASSERT_EQ(ours.Str(), theirs.Str()) << testing::PrintToString(text);
    ASSERT_EQ(HostGetHandleSize(*(&ours)), 4 + ours.Str().size());
  }

  // The transcoder has no text at all for what it refuses.
  static void ExpectIn(std::string_view text) {
    CText in(text);
    const CWideText ours(&in), theirs(CHostText(&in).Get());
    ASSERT_EQ(ours.Get() == nullptr, theirs.Get() == nullptr);
    if (ours.Get() == nullptr) return;
    ASSERT_TRUE(xercesc::XMLString::equals(ours.Get(), theirs.Get()))
        << testing::PrintToString(text);
  }

  // The text, and what the transcoder makes of it.
  static void ExpectBothWays(const std::u16string& text) {
    ExpectOut(text);
    const CLocalText local(text.c_str());
    if (local.Get() != nullptr) ExpectIn(local.Get());
  }
};

TEST_F(ShortCuts, EveryCodeGoesBothWays) {
  constexpr char32_t kTogether = 64;
  for (char32_t first = 0; first < 0x110000; first += kTogether) {
    std::u16string text;
    for (char32_t code = first; code < first + kTogether; ++code) {
      if (code == 0 || (code & ~0x7FFu) == 0xD800) continue;
      if (code < 0x10000) {
        text += static_cast<char16_t>(code);
      } else {
        text += static_cast<char16_t>(0xD7C0 + (code >> 10));
        text += static_cast<char16_t>(0xDC00 + (code & 0x3FF));
      }
    }
    ExpectBothWays(text);
    if (HasFatalFailure()) return;
  }
}

TEST_F(ShortCuts, EveryLoneSurrogateIsTheTranscoders) {
  for (char16_t unit = 0xD800; unit < 0xE000 && !HasFatalFailure(); ++unit) {
    const std::u16string one(1, unit);
    for (const std::u16string& text :
         {one, u"a" + one, one + u"\u8a9e", one + one, one + u"\xdc00", u"\xd800" + one,
          std::u16string(255, u'x') + one + u"y", std::u16string(256, u'x') + one}) {
      ExpectBothWays(text);
    }
  }
}

// All pairs of bytes, and longer ones of those where the rules change.
TEST_F(ShortCuts, BrokenBytesAreTheTranscoders) {
  for (int both = 0; both < 0x10000 && !HasFatalFailure(); ++both) {
    ExpectIn(std::string{static_cast<char>(both >> 8), static_cast<char>(both & 0xff)});
  }
  const std::string edges =
      "A\x7f\x80\x8f\x90\x9f\xa0\xbf\xc1\xc2\xdf\xe0\xe1\xec\xed\xef\xf0\xf3\xf4\xf5\xf8\xff";
  for (const char lead : std::string("\xe0\xe1\xed\xef\xf0\xf1\xf4\xf5\xf8")) {
    for (const char second : edges) {
      for (const char third : edges) {
        for (const char fourth : edges) ExpectIn(std::string{lead, second, third, fourth});
        ExpectIn(std::string{lead, second, third});
      }
    }
    if (HasFatalFailure()) return;
  }
}

// At the lengths where buffers and blocks change; every other text is of one kind but
// for its last unit.
TEST_F(ShortCuts, MixedTextsGoBothWays) {
  std::mt19937 random(1);
  const char16_t units[] = {u'a', u'~', 1, 0x7f, 0x80, 0xe9, 0x7ff, 0x20ac, 0xd83d, 0xde00, 0xffff};
  const std::string broken[] = {"\xc3", "\xe8\xaa", "\xf0\x9f\x98", "\xa9", std::string(1, '\0')};
  for (const size_t length : {0u, 1u, 15u, 16u, 17u, 47u, 48u, 63u, 64u, 65u, 255u, 256u, 1000u}) {
    for (int round = 0; round < 60; ++round) {
      std::u16string wide(length, round % 4 == 0 ? u'x' : u'\u8a9e');
      for (size_t i = 0; i < length; ++i) {
        if (round % 2 != 0 || i + 1 == length) wide[i] = units[random() % std::size(units)];
      }
      ExpectBothWays(wide);
      std::erase_if(wide, [](char16_t unit) { return (unit & 0xf800) == 0xd800; });
      const CLocalText local(wide.c_str());
      const std::string narrow = local.Get() != nullptr ? local.Get() : "";
      ExpectIn(narrow + broken[random() % std::size(broken)] + "z");
      ExpectIn(narrow + broken[random() % std::size(broken)]);
      if (HasFatalFailure()) return;
    }
  }
}

TEST_F(Values, VersionRecordIsReusedAndOwnsItsStrings) {
  HStrArray versions = nullptr;
  for (int turn = 0; turn < 2; ++turn) {
    ASSERT_EQ(nKelVersion_TESSEL_getVersionStringArray(&versions), 0);
    ASSERT_EQ((*versions)->count, 3);
    CText first;
    EXPECT_EQ(domCopyHStr((*versions)->items[0], &first), 0);
    EXPECT_EQ(first.Str(), "Tessel " TESSEL_VERSION);
  }
  for (int n = 1; n <= 2; ++n) {
    StandinFailAllocation(n);
    EXPECT_EQ(nKelVersion_TESSEL_getVersionStringArray(&versions), 2) << n;
    EXPECT_EQ(versions, nullptr) << n;
    StandinFailAllocation(0);
  }
}

}  // namespace
