// Trees that are too deep for a recursion: an answer, never an overflow.
#include "document/depth.h"

#include <thread>

#include <pthread.h>

#include "support/support.h"

namespace {

using support::CDoc;
using support::CText;
using support::IdOf;

std::string Nested(int levels) {
  std::string xml;
  for (int i = 0; i < levels; ++i) xml += "<d>";
  xml += "x";
  for (int i = 0; i < levels; ++i) xml += "</d>";
  return xml;
}

class Depth : public support::CLedgerTest {
 protected:
  // Runs on a thread with a small stack.
  template <class Work>
  static void OnSmallStack(Work work) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, size_t{256} * 1024), 0);
    pthread_t thread;
    const auto run = [](void* pWork) -> void* {
      (*static_cast<Work*>(pWork))();
      return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, run, &work), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
  }

  // Every call that goes down a tree, on one of the given depth: `fits` says whether
  // the stack holds it.
  static void CallEverything(int levels, bool fits) {
    CDoc doc(Nested(levels)), target("<t/>");
    const TSXRefId root = doc.Root();
    const uint8_t deep = 1;
    CText text, xml(Nested(levels)), errors, exception;
    EXPECT_EQ(TSXGetXML(doc.Id(), &text), fits ? 0 : domErrSerialize);
    TSXRefId copy = 0;
    EXPECT_EQ(TSXCloneNode(root, &deep, &copy), fits ? 0 : domErrUnexpected);
    EXPECT_EQ(TSXImportNode(target.Id(), root, &deep, &copy), fits ? 0 : domErrUnexpected);
    EXPECT_EQ(TSXElementSetXML(target.Root(), &xml, &errors, &exception),
              fits ? 0 : domErrUnexpected);
    EXPECT_EQ(support::TextOf(TSXGetText, root), "x");
    EXPECT_EQ(TSXNormalize(root), 0);
    CText expression("//d[last()]");
    XPathEvaluateContextToNode(doc.Id(), &expression, &copy, &errors);
    EXPECT_EQ(TSXRemoveChild(doc.Id(), root), 0);
    EXPECT_TRUE(support::Resolves(root)) << "another hand-out is open";
  }
};

TEST_F(Depth, CallsOnASmallStackAnswer) {
  OnSmallStack([] { CallEverything(500, true); });
  OnSmallStack([] { CallEverything(20000, false); });
}

TEST_F(Depth, AHundredThousandLevelsAnswer) { CallEverything(100000, false); }

TEST_F(Depth, TooDeepComesBeforeAnEncodingThatNobodyHas) {
  CText unknown("nobody-s"), text;
  for (const int levels : {10, 100000}) {
    CDoc doc(Nested(levels));
    ASSERT_EQ(TSXSetEncoding(doc.Id(), 0, &unknown), 0);
    EXPECT_EQ(TSXGetXML(doc.Id(), &text), levels == 10 ? domErrInvalidCharacter : domErrSerialize);
  }
}

TEST_F(Depth, DeepSubtreesAreFreedPieceByPiece) {
  OnSmallStack([] {
    CDoc doc(Nested(100000));
    const TSXRefId root = doc.Root();
    TSXRefId deep = root;
    for (int i = 0; i < 50000; ++i) deep = support::FirstChild(deep);
    EXPECT_EQ(TSXRemoveChild(doc.Id(), root), 0);  // the only hand-out: freed
    EXPECT_FALSE(support::Resolves(root));
    EXPECT_FALSE(support::Resolves(deep));
  });
}

}  // namespace
