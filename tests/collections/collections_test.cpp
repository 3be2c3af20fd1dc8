// Lists, maps and the implementation: what they give, and what becomes of them.
#include "support/support.h"

namespace {

using support::CDoc;
using support::CIds;
using support::CText;
using support::IdOf;
using support::Name;
using support::Resolves;

class Collections : public support::CLedgerTest {
 protected:
  static std::string Names(const CIds& ids) {
    std::string names;
    for (const TSXRefId id : ids.Get()) names += Name(id) + ' ';
    return names;
  }
  // A list answers, or its object is gone.
  static bool ListLives(TSXRefId list) {
    int32_t length = 0;
    return TSXGetListLength(list, 0, &length) == 0;
  }
  static bool MapLives(TSXRefId map) {
    int32_t length = 0;
    return TSXGetNamedNodeMapLength(map, 0, &length) == 0;
  }
};

TEST_F(Collections, ListsAreLiveAndTheSameAgain) {
  CDoc doc("<r><a/>t<b><a/></b></r>");
  const TSXRefId root = doc.Root();
  CText any("*");
  CIds ids;
  EXPECT_EQ(TSXGetChildNodes(root, 0, &ids), 0);
  EXPECT_EQ(Names(ids), "a #text b ");
  const TSXRefId list = IdOf(TSXElementGetElementsByTagName, root, &any);
  EXPECT_EQ(Name(IdOf(TSXGetItem, list, 1)), "b");
  for (const int32_t outside : {-1, 3, 0x7fffffff}) EXPECT_EQ(IdOf(TSXGetItem, list, outside), 0u);
  ASSERT_EQ(TSXAppendChild(root, support::Create(doc.Id(), "late")), 0);
  EXPECT_EQ(TSXGetNodeListArray(list, 0, &ids), 0);
  EXPECT_EQ(Names(ids), "a b a late ");
  EXPECT_EQ(IdOf(TSXElementGetElementsByTagName, root, &any), list);
}

// The arrays are collected by a walk of our own: the DOM's list says what is in them.
TEST_F(Collections, ArraysByNameAreTheListsMembers) {
  CDoc doc;
  const uint8_t on = 1;
  ASSERT_EQ(TSXSetDoNamespaces(doc.Id(), 0, &on), 0);
  ASSERT_EQ(support::Load(doc.Id(),
                          "<!DOCTYPE r [<!ENTITY e '<a/>x<p:a><a/></p:a>'>]>"
                          "<!--c--><r xmlns:p='u'>&e;<a>t<a><b xmlns='u'/></a></a><![CDATA[<a/>]]>"
                          "<?a a?><p:b xmlns:p='v'><p:a/></p:b></r><?a?>"),
            0);
  const TSXRefId root = doc.Root();
  ASSERT_EQ(TSXAppendChild(root, support::Create(doc.Id(), "p:a")), 0);
  CText any("*");
  CIds fromWalk, fromList;
  ASSERT_EQ(TSXGetElementsByTagName(doc.Id(), &any, &fromWalk), 0);
  std::vector<TSXRefId> elements = fromWalk.Get();
  EXPECT_EQ(elements.size(), 10u);
  const auto expectSame = [&](TSXRefId list) {
    EXPECT_EQ(TSXGetNodeListArray(list, 0, &fromList), 0);
    EXPECT_EQ(fromWalk.Get(), fromList.Get());
  };
  for (const std::string_view nameText : {"a", "p:a", "b", "*", "", "r"}) {
    CText name(nameText);
    EXPECT_EQ(TSXGetElementsByTagName(doc.Id(), &name, &fromWalk), 0);
    expectSame(IdOf(TSXGetElementsByTagNameList, doc.Id(), &name));
    for (const TSXRefId element : elements) {
      EXPECT_EQ(TSXElementGetElementsByTagNameArray(element, &name, &fromWalk), 0);
      expectSame(IdOf(TSXElementGetElementsByTagName, element, &name));
    }
    for (const std::string_view uriText : {"u", "v", "*", ""}) {
      CText uri(uriText);
      EXPECT_EQ(TSXGetElementsByTagNameNSArray(doc.Id(), &uri, &name, &fromWalk), 0);
      expectSame(IdOf(TSXGetElementsByTagNameNS, doc.Id(), &uri, &name));
      EXPECT_EQ(TSXElementGetElementsByTagNameNSArray(root, &uri, &name, &fromWalk), 0);
      expectSame(IdOf(TSXElementGetElementsByTagNameNS, root, &uri, &name));
    }
  }
}

TEST_F(Collections, ListsAndMapsEndWithWhatHoldsThem) {
  CDoc doc("<r><a k='v'><b/></a></r>");
  const TSXRefId root = doc.Root(), a = support::FirstChild(root);
  CText any("*");
  const TSXRefId children = IdOf(TSXGetChildNodeList, a, uint64_t{0});
  const TSXRefId below = IdOf(TSXElementGetElementsByTagName, a, &any);
  const TSXRefId all = IdOf(TSXGetElementsByTagNameList, doc.Id(), &any);
  const TSXRefId map = IdOf(TSXGetAttributes, a, uint64_t{0});
  EXPECT_EQ(TSXRemoveChild(root, a), 0);
  EXPECT_FALSE(Resolves(a));
  EXPECT_FALSE(ListLives(children));
  EXPECT_FALSE(ListLives(below));
  EXPECT_FALSE(MapLives(map));
  EXPECT_TRUE(ListLives(all));
  TSXNodeListClose(children);  // of a list that is gone: ignored
  ASSERT_EQ(support::Load(doc.Id(), "<s/>"), 0);
  EXPECT_FALSE(ListLives(all));
  const TSXRefId last = IdOf(TSXGetElementsByTagNameList, doc.Id(), &any);
  doc.Close();
  EXPECT_FALSE(ListLives(last));
}

TEST_F(Collections, MapsSetRemoveAndRefuse) {
  CDoc doc("<!DOCTYPE r [<!ENTITY e 'x'><!NOTATION n SYSTEM 's'>]><r a='1' b='2'/>"), other("<o/>");
  const TSXRefId root = doc.Root();
  const TSXRefId map = IdOf(TSXGetAttributes, root, uint64_t{0});
  CText a("a"), b("b"), missing("missing");
  const TSXRefId old = IdOf(TSXGetNamedItem, map, &a);
  const TSXRefId fresh = IdOf(TSXCreateAttribute, doc.Id(), &a);
  const TSXRefId foreign = IdOf(TSXCreateAttribute, other.Id(), &a);
  EXPECT_EQ(IdOf(TSXSetNamedItem, map, fresh), old);
  EXPECT_EQ(IdOf(TSXSetNamedItem, map, fresh), fresh) << "there already";
  EXPECT_EQ(IdOf(TSXOwnerElement, fresh, uint64_t{0}), root);
  TSXNodeClose(old);
  EXPECT_FALSE(Resolves(old)) << "replaced: freed at its close";
  TSXRefId out = 0;
  EXPECT_EQ(TSXSetNamedItem(map, foreign, &out), domErrWrongDocument);
  EXPECT_EQ(TSXSetNamedItem(map, root, &out), domErrUnexpected);
  const TSXRefId second = IdOf(TSXGetAttributes, support::Create(doc.Id(), "e"), uint64_t{0});
  EXPECT_EQ(TSXSetNamedItemNS(second, fresh, &out), domErrInUseAttribute);
  EXPECT_EQ(TSXRemoveNamedItem(map, &missing, &out), domErrNotFound);
  const TSXRefId removed = IdOf(TSXRemoveNamedItem, map, &b);
  EXPECT_EQ(support::TextOf(TSXGetAttrValue, removed, uint64_t{0}), "2");
  TSXNodeClose(removed);
  EXPECT_FALSE(Resolves(removed));
  for (const int32_t outside : {-1, 1}) EXPECT_EQ(IdOf(TSXGetNamedNodeMapItem, map, outside), 0u);
  const TSXRefId type = IdOf(TSXGetDocType, doc.Id(), uint64_t{0});
  const TSXRefId entities = IdOf(TSXGetEntities, type, uint64_t{0});
  EXPECT_EQ(TSXSetNamedItem(entities, root, &out), domErrUnexpected) << "no entity";
  EXPECT_EQ(support::Parent(root), support::Parent(type)) << "still in its tree";
  EXPECT_EQ(IdOf(TSXGetAttributes, type, uint64_t{0}), 0u);
}

TEST_F(Collections, ImplementationKnowsItsFeatures) {
  CDoc doc;
  const TSXRefId impl = IdOf(TSXGetImplementation, doc.Id(), uint64_t{0});
  CText core("Core"), version("2.0"), nonsense("nonsense");
  uint8_t flag = 77;
  EXPECT_EQ(TSXHasFeature(impl, &core, &version, &flag), 0);
  EXPECT_EQ(flag, 1);
  EXPECT_EQ(TSXHasFeature(impl, &nonsense, &version, &flag), 0);
  EXPECT_EQ(flag, 0);
  TSXImplementationClose(impl);
}

}  // namespace
