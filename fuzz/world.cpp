#include "world.h"

namespace fuzz {

namespace {

// An entity is a subtree with every kind of node that can stand in one; the same
// subtree stands in the tree itself.
constexpr char kDocumentText[] =
    "<!DOCTYPE r [<!NOTATION n SYSTEM 's'><!ENTITY u SYSTEM 'f' NDATA n><!ENTITY i 'x'>"
    "<!ENTITY e '<m k=\"v\">in<![CDATA[c]]><?p d?><!--o--><b/>&i;</m>'>"
    "<!ATTLIST r d CDATA 'def' id ID #IMPLIED>]>"
    "<r a='1' id='x'><m k='v'>in<![CDATA[c]]><?p d?><!--o--><b/>&i;</m>&e;t</r>";
constexpr char kOtherText[] = "<!DOCTYPE r [<!ENTITY i 'y'>]><r><m k='v'>in<b/>&i;</m></r>";

void Require(TSXStatus status, const char* pWhat) {
  if (status != 0) Fail(std::string("the world cannot be made: ") + pWhat);
}

}  // namespace

// -- Ids and their count ----------------------------------------------------------

TSXRefId CWorld::Count(Registry registry, TSXRefId id, unsigned kind) {
  if (id == 0) Fail("the world lacks a node");
  CHandedOut& handedOut = m_HandedOut[static_cast<size_t>(registry)][id];
  if (kind != 0) handedOut.m_Kind = kind;
  ++handedOut.m_Count;
  return id;
}

template <auto kFunction, class... Args>
TSXRefId CWorld::From(Registry registry, Args... args) {
  TSXRefId id = 0;
  Require(kFunction(args..., &id), "an id");
  return Count(registry, id);
}

TSXRefId CWorld::Load(const char* pXml) {
  TSXRefId document = 0;
  Require(TSXDocumentOpen(0, &document), "a document");
  CText text(pXml), errors, exception;
  Require(TSXLoadString(document, text.Out(), errors.Out(), exception.Out()), "a load");
  return Document(document);
}

TSXRefId CWorld::Child(TSXRefId node, int index) {
  TSXRefId child = Get<TSXGetFirstChild>(node, uint64_t{0});
  for (int i = 0; i < index; ++i) child = Get<TSXGetNextSibling>(child, uint64_t{0});
  return child;
}

TSXRefId CWorld::Item(TSXRefId map, const char* pName) {
  CText name(pName);
  return Get<TSXGetNamedItem>(map, name.Out());
}

TSXRefId CWorld::Clone(TSXRefId node) {
  const uint8_t isDeep = 1;
  return Get<TSXCloneNode>(node, &isDeep);
}

// -- What is tried ------------------------------------------------------------------

void CWorld::Add(const std::string& state, TSXRefId id, Rank rank) {
  m_Subjects[static_cast<size_t>(Registry::kNode)].push_back({state, id, rank});
}

void CWorld::AddCollection(const std::string& state, Registry registry, TSXRefId id) {
  m_Subjects[static_cast<size_t>(registry)].push_back({state, id, Rank::kAlone});
}

// An element `m` as in the texts above. The nodes below it are only paired where
// the rank says so; the element and its attribute always are.
void CWorld::AddSubtree(const std::string& place, TSXRefId root, Rank rank) {
  Add("element " + place, root);
  const TSXRefId map = From<TSXGetAttributes>(Registry::kMap, root, uint64_t{0});
  AddCollection("attributes " + place, Registry::kMap, map);
  AddCollection("children " + place, Registry::kList,
                From<TSXGetChildNodeList>(Registry::kList, root, uint64_t{0}));
  CText name("b");
  AddCollection("elements below " + place, Registry::kList,
                From<TSXElementGetElementsByTagName>(Registry::kList, root, name.Out()));
  const TSXRefId attribute = Item(map, "k");
  Add("attribute " + place, attribute);
  Add("text of attribute " + place, Child(attribute, 0), rank);
  TSXRefId child = 0;
  TSXGetFirstChild(root, 0, &child);
  for (int i = 0; child != 0; ++i) {
    Add("child " + std::to_string(i) + " " + place, Count(Registry::kNode, child), rank);
    TSXRefId below = 0;
    TSXGetFirstChild(child, 0, &below);
    if (below != 0) Add("in reference " + place, Count(Registry::kNode, below), rank);
    const TSXRefId last = child;
    TSXGetNextSibling(last, 0, &child);
  }
}

void CWorld::AddInTree() {
  m_Document = Load(kDocumentText);
  m_Root = Get<TSXGetDocumentElement>(m_Document, uint64_t{0});
  m_Bare = Get<TSXGetParentNode>(m_Root, uint64_t{0});
  m_Type = Get<TSXGetDocType>(m_Document, uint64_t{0});
  m_Implementation = From<TSXGetImplementation>(Registry::kImplementation, m_Document, uint64_t{0});
  Add("document", m_Document);
  Add("bare document", m_Bare);
  Add("root", m_Root);
  Add("last text", Child(m_Root, 2));
  AddSubtree("in tree", Child(m_Root, 0), Rank::kPaired);
  const TSXRefId attributes = From<TSXGetAttributes>(Registry::kMap, m_Root, uint64_t{0});
  AddCollection("attributes of root", Registry::kMap, attributes);
  for (const char* pName : {"a", "d", "id"}) {
    Add(std::string("attribute of root ") + pName, Item(attributes, pName), Rank::kAlone);
  }
  CText name("b");
  AddCollection("elements of document", Registry::kList,
                From<TSXGetElementsByTagNameList>(Registry::kList, m_Document, name.Out()));
  AddCollection("implementation", Registry::kImplementation, m_Implementation);
}

void CWorld::AddEntities() {
  const TSXRefId reference = Child(m_Root, 1);
  Add("reference", reference);
  AddSubtree("in reference", Child(reference, 0));
  Add("clone of reference", Clone(reference));
  const TSXRefId entities = From<TSXGetEntities>(Registry::kMap, m_Type, uint64_t{0});
  const TSXRefId notations = From<TSXGetNotations>(Registry::kMap, m_Type, uint64_t{0});
  AddCollection("entities", Registry::kMap, entities);
  AddCollection("notations", Registry::kMap, notations);
  const TSXRefId entity = Item(entities, "e");
  Add("entity", entity);
  AddSubtree("in entity", Child(entity, 0));
  Add("unparsed entity", Item(entities, "u"), Rank::kAlone);
  const TSXRefId notation = Item(notations, "n");
  Add("notation", notation);
  Add("clone of entity", Clone(entity));
  Add("clone of notation", Clone(notation));
}

// Created, and put nowhere or below what was put nowhere.
void CWorld::AddCreated() {
  CText name("a"), entity("i"), unknown("zz"), value("v");
  Add("created element", Get<TSXCreateElement>(m_Document, name.Out()));
  Add("created attribute", Get<TSXCreateAttribute>(m_Document, name.Out()));
  Add("created text", Get<TSXCreateTextNode>(m_Document, name.Out()));
  Add("created section", Get<TSXCreateCDATASection>(m_Document, name.Out()), Rank::kAlone);
  Add("created comment", Get<TSXCreateComment>(m_Document, name.Out()), Rank::kAlone);
  Add("created instruction",
      Get<TSXCreateProcessingInstruction>(m_Document, name.Out(), value.Out()), Rank::kAlone);
  Add("created reference", Get<TSXCreateEntityReference>(m_Document, entity.Out()));
  Add("reference to nothing", Get<TSXCreateEntityReference>(m_Document, unknown.Out()),
      Rank::kAlone);
  Add("empty fragment", Get<TSXCreateDocumentFragment>(m_Document), Rank::kAlone);
  const TSXRefId fragment = Get<TSXCreateDocumentFragment>(m_Document);
  Add("fragment", fragment);
  const TSXRefId inside = Clone(Child(m_Root, 0));
  Require(TSXAppendChild(fragment, inside), "a fragment");
  AddSubtree("in fragment", inside);
  AddSubtree("cloned", Clone(Child(m_Root, 0)));
}

// Out of a tree while ids are open: the library frees these with their document only.
void CWorld::AddTakenOut() {
  const TSXRefId removed = Clone(Child(m_Root, 0));
  Require(TSXAppendChild(m_Root, removed), "an append");
  Child(m_Root, 3);  // one more hand-out, so that the removal frees nothing
  Require(TSXRemoveChild(m_Root, removed), "a removal");
  --m_HandedOut[static_cast<size_t>(Registry::kNode)][removed].m_Count;
  AddSubtree("removed", removed);
  CText name("a"), value("v");
  const TSXRefId replaced = Get<TSXCreateElement>(m_Document, name.Out());
  const TSXRefId inPlace = Get<TSXCreateElement>(m_Document, name.Out());
  Require(TSXAppendChild(m_Root, replaced), "an append");
  Require(TSXReplaceChild(m_Root, inPlace, replaced), "a replacement");
  Add("replaced element", replaced);
  Require(TSXSetAttribute(m_Root, name.Out(), value.Out()), "an attribute");
  const TSXRefId map = From<TSXGetAttributes>(Registry::kMap, inPlace, uint64_t{0});
  Require(TSXSetAttribute(inPlace, name.Out(), value.Out()), "an attribute");
  Add("attribute out of a map", Get<TSXRemoveNamedItem>(map, name.Out()));
}

void CWorld::AddTypes() {
  Add("type", m_Type);
  Add("clone of type", Clone(m_Type));
  CText name("r"), none;
  Add("free type",
      Get<TSXCreateDocumentType>(m_Implementation, name.Out(), none.Out(), none.Out()));
  const TSXRefId taken =
      Get<TSXCreateDocumentType>(m_Implementation, name.Out(), none.Out(), none.Out());
  TSXRefId created = 0;
  Require(TSXCreateDocument(m_Implementation, none.Out(), name.Out(), taken, &created),
          "a document with a type");
  Add("created document", Document(created));
  Add("taken type", taken);
}

void CWorld::AddDocuments() {
  TSXRefId empty = 0;
  Require(TSXDocumentOpen(0, &empty), "a document");
  Add("empty document", Document(empty));
  const TSXRefId copy = Clone(m_Bare);
  Add("clone of document", copy);
  TSXRefId below = 0;
  for (TSXGetFirstChild(copy, 0, &below); below != 0;) {
    Add("in clone of document", Count(Registry::kNode, below));
    const TSXRefId last = below;
    TSXGetNextSibling(last, 0, &below);
  }
}

void CWorld::AddForeign() {
  const TSXRefId other = Load(kOtherText);
  const TSXRefId root = Get<TSXGetDocumentElement>(other, uint64_t{0});
  Add("other document", other, Rank::kAlone);
  Add("other type", Get<TSXGetDocType>(other, uint64_t{0}));
  AddSubtree("in other document", Child(root, 0));
  const uint8_t isDeep = 1;
  AddSubtree("imported", Get<TSXImportNode>(m_Document, Child(root, 0), &isDeep));
}

// Ids that name nothing: never issued, given back, or of what has been freed.
void CWorld::AddStale() {
  Add("null", 0);
  const TSXRefId closed = Load(kOtherText);
  const TSXRefId root = Get<TSXGetDocumentElement>(closed, uint64_t{0});
  const TSXRefId list = From<TSXGetChildNodeList>(Registry::kList, root, uint64_t{0});
  const TSXRefId map = From<TSXGetAttributes>(Registry::kMap, root, uint64_t{0});
  TSXDocumentClose(closed);
  Add("closed document", closed);
  Add("in closed document", root);
  AddCollection("list of closed document", Registry::kList, list);
  AddCollection("map of closed document", Registry::kMap, map);
  const TSXRefId loadedTwice = Load(kOtherText);
  const TSXRefId old = Get<TSXGetDocumentElement>(loadedTwice, uint64_t{0});
  CText text(kOtherText), errors, exception;
  Require(TSXLoadString(loadedTwice, text.Out(), errors.Out(), exception.Out()), "a load");
  Add("in tree before the load", old, Rank::kAlone);
  for (size_t registry = 0; registry < kRegistries; ++registry) {
    for (const TSXRefId invented : {TSXRefId{0}, TSXRefId{1} << 40, ~TSXRefId{0}}) {
      m_Subjects[registry].push_back({"invented", invented, Rank::kAlone});
    }
  }
}

CWorld::CWorld() {
  AddInTree();
  AddEntities();
  AddCreated();
  AddTakenOut();
  AddTypes();
  AddDocuments();
  AddForeign();
  AddStale();
}

}  // namespace fuzz
