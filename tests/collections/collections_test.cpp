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

TEST_F(Collections, ArraysAndListsAgreeInOrder) {
  CDoc doc;
  const uint8_t on = 1;
  ASSERT_EQ(TSXSetDoNamespaces(doc.Id(), 0, &on), 0);
  ASSERT_EQ(support::Load(doc.Id(), "<r xmlns:p='u'><a/>t<b><a/></b><p:a/></r>"), 0);
  const TSXRefId root = doc.Root();
  CText a("a"), any("*"), u("u"), none;
  CIds ids;
  EXPECT_EQ(TSXGetChildNodes(root, 0, &ids), 0);
  EXPECT_EQ(Names(ids), "a #text b p:a ");
  EXPECT_EQ(TSXGetElementsByTagName(doc.Id(), &a, &ids), 0);
  EXPECT_EQ(Names(ids), "a a ");
  EXPECT_EQ(TSXGetElementsByTagNameNSArray(doc.Id(), &u, &any, &ids), 0);
  EXPECT_EQ(Names(ids), "p:a ");
  EXPECT_EQ(TSXElementGetElementsByTagNameArray(root, &any, &ids), 0);
  EXPECT_EQ(Names(ids), "a b a p:a ");
  EXPECT_EQ(TSXElementGetElementsByTagNameNSArray(root, &none, &a, &ids), 0);
  EXPECT_EQ(Names(ids), "a a ");
  const TSXRefId list = IdOf(TSXElementGetElementsByTagName, root, &any);
  int32_t length = 0;
  EXPECT_EQ(TSXGetListLength(list, 0, &length), 0);
  EXPECT_EQ(length, 4);
  EXPECT_EQ(Name(IdOf(TSXGetItem, list, 1)), "b");
  for (const int32_t outside : {-1, 4, 0x7fffffff}) EXPECT_EQ(IdOf(TSXGetItem, list, outside), 0u);
  ASSERT_EQ(TSXAppendChild(root, support::Create(doc.Id(), "late")), 0);
  EXPECT_EQ(TSXGetNodeListArray(list, 0, &ids), 0);
  EXPECT_EQ(Names(ids), "a b a p:a late ") << "a list is live";
  EXPECT_EQ(IdOf(TSXElementGetElementsByTagName, root, &any), list) << "the same list again";
  TSXNodeListClose(list);
  EXPECT_TRUE(ListLives(list));
  TSXNodeListClose(list);
  EXPECT_FALSE(ListLives(list));
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
  const TSXRefId ofDocument = IdOf(TSXGetChildNodeList, doc.Id(), uint64_t{0});
  EXPECT_EQ(TSXRemoveChild(root, a), 0);
  EXPECT_FALSE(Resolves(a));
  EXPECT_FALSE(ListLives(children));
  EXPECT_FALSE(ListLives(below));
  EXPECT_FALSE(MapLives(map));
  EXPECT_TRUE(ListLives(all));
  TSXNodeListClose(children);  // of a list that is gone: ignored
  ASSERT_EQ(support::Load(doc.Id(), "<s/>"), 0);
  EXPECT_FALSE(ListLives(all));
  EXPECT_FALSE(ListLives(ofDocument));
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
  TSXRefId out = 77;
  EXPECT_EQ(TSXSetNamedItem(map, foreign, &out), domErrWrongDocument);
  EXPECT_EQ(out, 0u);
  EXPECT_EQ(TSXSetNamedItem(map, root, &out), domErrUnexpected);
  const TSXRefId element = support::Create(doc.Id(), "e");
  const TSXRefId second = IdOf(TSXGetAttributes, element, uint64_t{0});
  EXPECT_EQ(TSXSetNamedItemNS(second, fresh, &out), domErrInUseAttribute);
  EXPECT_EQ(TSXRemoveNamedItem(map, &missing, &out), domErrNotFound);
  const TSXRefId removed = IdOf(TSXRemoveNamedItem, map, &b);
  EXPECT_EQ(support::TextOf(TSXGetAttrValue, removed, uint64_t{0}), "2");
  TSXNodeClose(removed);
  EXPECT_FALSE(Resolves(removed));
  int32_t length = 0;
  EXPECT_EQ(TSXGetNamedNodeMapLength(map, 0, &length), 0);
  EXPECT_EQ(length, 1);
  for (const int32_t outside : {-1, 1}) EXPECT_EQ(IdOf(TSXGetNamedNodeMapItem, map, outside), 0u);
  const TSXRefId type = IdOf(TSXGetDocType, doc.Id(), uint64_t{0});
  const TSXRefId entities = IdOf(TSXGetEntities, type, uint64_t{0});
  EXPECT_EQ(TSXSetNamedItem(entities, root, &out), domErrUnexpected) << "no entity";
  EXPECT_EQ(support::Parent(root), support::Parent(type)) << "still in its tree";
  EXPECT_EQ(IdOf(TSXGetAttributes, type, uint64_t{0}), 0u);
}

TEST_F(Collections, RefusedMemoryLeavesNoArrayAndNoIds) {
  CDoc doc("<r><a/><b/><c/></r>");
  const TSXRefId root = doc.Root();
  const size_t before = support::LiveIds();
  CIds fresh, used;
  EXPECT_EQ(domSetHandleSizeOrNewHandle(&used, 8), 0);
  for (GenericRefObjSessionArray* pIds : {&fresh, &used}) {
    StandinFailAllocation(1);
    EXPECT_EQ(TSXGetChildNodes(root, 0, pIds), 0);
    StandinFailAllocation(0);
    EXPECT_EQ(*pIds, nullptr);
    EXPECT_EQ(support::LiveIds(), before);
  }
}

TEST_F(Collections, FiftyThousandChildrenAreOnePass) {
  std::string xml = "<r>";
  for (int i = 0; i < 50000; ++i) xml += "<a/>";
  CDoc doc(xml + "</r>");
  CIds ids;
  EXPECT_EQ(TSXGetChildNodes(doc.Root(), 0, &ids), 0);
  EXPECT_EQ(ids.Get().size(), 50000u);
  EXPECT_EQ(ids.Get()[0], support::FirstChild(doc.Root()));
}

TEST_F(Collections, ImplementationOutlivesItsDocument) {
  CDoc doc;
  const TSXRefId impl = IdOf(TSXGetImplementation, doc.Id(), uint64_t{0});
  doc.Close();
  CText core("Core"), version("2.0"), nonsense("nonsense");
  uint8_t flag = 77;
  EXPECT_EQ(TSXHasFeature(impl, &core, &version, &flag), 0);
  EXPECT_EQ(flag, 1);
  EXPECT_EQ(TSXHasFeature(impl, &nonsense, &version, &flag), 0);
  EXPECT_EQ(flag, 0);
  TSXImplementationClose(impl);
  EXPECT_EQ(TSXHasFeature(impl, &core, &version, &flag), domErrRefHasFeature);
}

}  // namespace
