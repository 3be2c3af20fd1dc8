#include <libxml/tree.h>

#include <cstring>
#include <xercesc/util/XMLString.hpp>

#include "documents.h"
#include "libraries.h"
#include "rows.h"

namespace bench {
namespace {

// Names are ready, as a program keeps them in constants; values are data and
// cross the boundary, or are transcoded, every time.
const xmlChar* Xml(const char* pText) { return reinterpret_cast<const xmlChar*>(pText); }
constexpr const char* kValue = "a new value";
constexpr const char* kAlone = "no open maps";

uint64_t Libxml2Length(xmlChar* pText) {
  const uint64_t length = std::strlen(reinterpret_cast<const char*>(pText));
  xmlFree(pText);
  return length;
}

void SetXercesAttribute(xercesc::DOMElement& element) {
  XMLCh* pValue = xercesc::XMLString::transcode(kValue);
  element.setAttribute(u"id", pValue);
  xercesc::XMLString::release(&pValue);
}

// -- Creating -----------------------------------------------------------------

CContestant TesselCreate(size_t count) {
  struct CState {
    CDocument m_Document;
    CNode m_Root;
    CText m_Tag{"item"}, m_Name{"id"}, m_Value{kValue};
  };
  auto state = std::make_shared<CState>();
  const auto work = [=] {
    for (size_t i = 0; i < count; ++i) {
      CNode element;
      Require(TSXCreateElement(state->m_Document.Get(), state->m_Tag.Get(), element.Out()),
              "TSXCreateElement");
      Require(TSXSetAttribute(element.Get(), state->m_Name.Get(), state->m_Value.Get()),
              "TSXSetAttribute");
      Require(TSXAppendChild(state->m_Root.Get(), element.Get()), "TSXAppendChild");
    }
    return 0;
  };
  const auto before = [=] {
    state->m_Document = OpenDocument("<list/>");
    Require(TSXGetDocumentElement(state->m_Document.Get(), 0, state->m_Root.Out()),
            "TSXGetDocumentElement");
  };
  return {.m_Name = "Tessel", .m_Work = work, .m_Before = before, .m_Check = [=] {
            return Walk(CTesselTree(), state->m_Root.Get());
          }};
}

CContestant XercesCreate(size_t count) {
  auto document = std::make_shared<std::unique_ptr<CXercesDocument>>();
  const auto work = [=] {
    xercesc::DOMDocument& owner = *(*document)->Get();
    xercesc::DOMElement* pRoot = owner.getDocumentElement();
    for (size_t i = 0; i < count; ++i) {
      xercesc::DOMElement* pElement = owner.createElement(u"item");
      SetXercesAttribute(*pElement);
      pRoot->appendChild(pElement);
    }
    return 0;
  };
  return {.m_Name = kXerces,
          .m_Work = work,
          .m_Before = [=] { *document = std::make_unique<CXercesDocument>("<list/>"); },
          .m_Check = [=] { return Walk(CXercesTree(), (*document)->Root()); }};
}

CContestant Libxml2Create(size_t count) {
  auto document = std::make_shared<CLibxml2Document>();
  const auto work = [=] {
    xmlNode* pRoot = xmlDocGetRootElement(document->get());
    for (size_t i = 0; i < count; ++i) {
      xmlNode* pElement = xmlNewDocNode(document->get(), nullptr, Xml("item"), nullptr);
      xmlNewProp(pElement, Xml("id"), Xml(kValue));
      xmlAddChild(pRoot, pElement);
    }
    return 0;
  };
  return {.m_Name = kLibxml2,
          .m_Work = work,
          .m_Before = [=] { *document = ParseLibxml2("<list/>"); },
          .m_Check = [=] { return Walk(CLibxml2Tree(), xmlDocGetRootElement(document->get())); }};
}

CContestant PugixmlCreate(size_t count) {
  auto document = std::make_shared<pugi::xml_document>();
  const auto work = [=] {
    pugi::xml_node root = document->document_element();
    for (size_t i = 0; i < count; ++i) {
      root.append_child("item").append_attribute("id").set_value(kValue);
    }
    return 0;
  };
  return {.m_Name = kPugixml,
          .m_Work = work,
          .m_Before = [=] { document->load_string("<list/>"); },
          .m_Check = [=] { return Walk(CPugixmlTree(), document->document_element()); }};
}

CRow Create(const CSizes& sizes) {
  const size_t count = sizes.m_Elements;
  return {"element",
          count,
          {TesselCreate(count), XercesCreate(count), Libxml2Create(count), PugixmlCreate(count)}};
}

// -- Attributes of the items of the medium document ---------------------------

struct CItems {
  explicit CItems(const CSizes& sizes)
      : m_Documents(ItemsXml(sizes.m_MediumItems)),
        m_Tessel(Children<CTesselTree>(m_Documents.Root())),
        m_Libxml2(Children<CLibxml2Tree>(m_Documents.Libxml2Root())),
        m_Pugixml(Children<CPugixmlTree>(m_Documents.PugixmlRoot())) {
    for (xercesc::DOMNode* pNode : Children<CXercesTree>(m_Documents.m_Xerces.Root())) {
      m_Xerces.push_back(static_cast<xercesc::DOMElement*>(pNode));
    }
  }

  // The name of each item takes its place.
  void TakeNames() {
    for (TSXRefId& id : m_Tessel.Get()) {
      const CNode item(id);
      id = CTesselTree::First(id);
    }
    for (auto& pNode : m_Xerces) pNode = pNode->getFirstElementChild();
    for (auto& pNode : m_Libxml2) pNode = pNode->children;
    for (auto& node : m_Pugixml) node = node.first_child();
  }

  CDocuments m_Documents;
  CIds m_Tessel;
  std::vector<xercesc::DOMElement*> m_Xerces;
  std::vector<xmlNode*> m_Libxml2;
  std::vector<pugi::xml_node> m_Pugixml;
  CText m_Name{"id"}, m_Value{kValue}, m_Out;
};

// A row that does one thing to every item and adds up what comes back.
template <class Tessel, class Xerces, class Libxml2, class Pugixml>
CRow ItemsRow(const std::shared_ptr<CItems>& items, Tessel tessel, Xerces xerces, Libxml2 libxml2,
              Pugixml pugixml) {
  const auto each = [](auto& elements, auto work) {
    uint64_t sum = 0;
    for (auto& element : elements) sum += static_cast<uint64_t>(work(element));
    return sum;
  };
  return {"element",
          items->m_Xerces.size(),
          {{"Tessel",
            [=] {
              return each(items->m_Tessel.Get(), [&](TSXRefId id) { return tessel(*items, id); });
            }},
           {kXerces, [=] { return each(items->m_Xerces, xerces); }},
           {kLibxml2, [=] { return each(items->m_Libxml2, libxml2); }},
           {kPugixml, [=] { return each(items->m_Pugixml, pugixml); }}}};
}

CRow GetAttribute(const CSizes& sizes) {
  return ItemsRow(
      std::make_shared<CItems>(sizes),
      [](CItems& items, TSXRefId id) {
        Require(TSXGetAttribute(id, items.m_Name.Get(), items.m_Out.Get()), "TSXGetAttribute");
        return items.m_Out.View().size();
      },
      [](xercesc::DOMElement* pElement) { return TranscodeOut(pElement->getAttribute(u"id")); },
      [](xmlNode* pElement) { return Libxml2Length(xmlGetProp(pElement, Xml("id"))); },
      [](pugi::xml_node element) { return std::strlen(element.attribute("id").value()); });
}

CRow SetAttribute(const CSizes& sizes) {
  return ItemsRow(
      std::make_shared<CItems>(sizes),
      [](CItems& items, TSXRefId id) {
        Require(TSXSetAttribute(id, items.m_Name.Get(), items.m_Value.Get()), "TSXSetAttribute");
        return 1;
      },
      [](xercesc::DOMElement* pElement) { return SetXercesAttribute(*pElement), 1; },
      [](xmlNode* pElement) { return xmlSetProp(pElement, Xml("id"), Xml(kValue)) != nullptr; },
      [](pugi::xml_node element) { return element.attribute("id").set_value(kValue); });
}

// -- The same while another document has open maps ------------------------------

// Keeps a map open for each of many elements of its document, on demand.
class CMaps {
 public:
  explicit CMaps(const CSizes& sizes) : m_Document(OpenDocument(ItemsXml(sizes.m_OpenMaps))) {
    CNode root;
    Require(TSXGetDocumentElement(m_Document.Get(), 0, root.Out()), "TSXGetDocumentElement");
    m_Elements.Get() = Children<CTesselTree>(root.Get());
  }
  void Open() {
    for (const TSXRefId element : m_Elements.Get()) {
      if (m_Maps.size() == m_Elements.Get().size()) return;
      Require(TSXGetAttributes(element, 0, m_Maps.emplace_back().Out()), "TSXGetAttributes");
    }
  }
  void Close() { m_Maps.clear(); }

 private:
  CDocument m_Document;
  CIds m_Elements;
  std::vector<CNodeMap> m_Maps;
};

CRow SetBesideMaps(const CSizes& sizes) {
  const auto items = std::make_shared<CItems>(sizes);
  const auto maps = std::make_shared<CMaps>(sizes);
  const auto set = [=] {
    for (const TSXRefId id : items->m_Tessel.Get()) {
      Require(TSXSetAttribute(id, items->m_Name.Get(), items->m_Value.Get()), "TSXSetAttribute");
    }
    return 0;
  };
  return {"element",
          sizes.m_MediumItems,
          {{.m_Name = "Tessel", .m_Work = set, .m_Before = [=] { maps->Open(); }},
           {.m_Name = kAlone, .m_Work = set, .m_Before = [=] { maps->Close(); }}},
          true};
}

// -- Text content -------------------------------------------------------------

CRow SmallText(const CSizes& sizes) {
  const auto names = std::make_shared<CItems>(sizes);
  names->TakeNames();
  return ItemsRow(
      names,
      [](CItems& items, TSXRefId id) {
        Require(TSXGetText(id, items.m_Out.Get()), "TSXGetText");
        return items.m_Out.View().size();
      },
      [](xercesc::DOMElement* pElement) { return TranscodeOut(pElement->getTextContent()); },
      [](xmlNode* pElement) { return Libxml2Length(xmlNodeGetContent(pElement)); },
      [](pugi::xml_node element) { return std::strlen(element.child_value()); });
}

CRow TextContent(const CSizes& sizes) {
  const auto documents = std::make_shared<CDocuments>(ItemsXml(sizes.m_MediumItems));
  const auto text = std::make_shared<CText>();
  return {"text",
          1,
          {{"Tessel",
            [=] {
              Require(TSXGetText(documents->Root(), text->Get()), "TSXGetText");
              return text->View().size();
            }},
           {kXerces, [=] { return TranscodeOut(documents->m_Xerces.Root()->getTextContent()); }},
           {kLibxml2, [=] { return Libxml2Length(xmlNodeGetContent(documents->Libxml2Root())); }}}};
}

}  // namespace

CRowTable EditRows() {
  return {
      {"edit.create", "Create and append 100,000 elements with an attribute", Times(4, kLibxml2),
       Create},
      {"attribute.get", "Get an attribute's value", Times(1.5, kLibxml2), GetAttribute},
      {"text.small", "Text of a small element", Times(1.5, kLibxml2), SmallText},
      {"attribute.set", "Set an attribute's value", Times(4, kLibxml2), SetAttribute},
      {"attribute.maps", "Set an attribute beside 50,000 open maps of another document",
       Times(1.5, kAlone), SetBesideMaps},
      {"text.content", "Text content of an element with 100,000 nodes", kNoAim, TextContent},
  };
}

}  // namespace bench
