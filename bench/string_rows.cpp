#include <cstring>
#include <xercesc/util/XMLString.hpp>

#include "documents.h"
#include "libraries.h"
#include "rows.h"

namespace bench {
namespace {

// The XML library's own function for texts, by itself.
constexpr const char* kTranscode = "transcode";

// -- To the host, compared with transcoding and releasing alone ---------------

CRow NamesOut(const CSizes& sizes) {
  struct CState {
    explicit CState(size_t count)
        : m_Documents(LongNamesXml(count)),
          m_Ids(Children<CTesselTree>(m_Documents.Root())),
          m_Nodes(Children<CXercesTree>(m_Documents.m_Xerces.Root())) {}
    CDocuments m_Documents;
    CIds m_Ids;
    std::vector<xercesc::DOMNode*> m_Nodes;
    CText m_Out;
  };
  const auto state = std::make_shared<CState>(sizes.m_Calls);
  return {"name",
          sizes.m_Calls,
          {{"Tessel",
            [=] {
              uint64_t sum = 0;
              for (const TSXRefId id : state->m_Ids.Get()) {
                Require(TSXGetNodeName(id, 0, state->m_Out.Get()), "TSXGetNodeName");
                sum += state->m_Out.View().size();
              }
              return sum;
            }},
           {kTranscode, [=] {
              uint64_t sum = 0;
              for (xercesc::DOMNode* pNode : state->m_Nodes) {
                sum += TranscodeOut(pNode->getNodeName());
              }
              return sum;
            }}}};
}

CRow TextOut(const std::string& text) {
  struct CState {
    explicit CState(const std::string& content) : m_Documents("<list>" + content + "</list>") {
      Require(TSXGetFirstChild(m_Documents.Root(), 0, m_Text.Out()), "TSXGetFirstChild");
    }
    CDocuments m_Documents;
    CNode m_Text;
    CText m_Out;
  };
  const auto state = std::make_shared<CState>(text);
  return {
      "text",
      1,
      {{"Tessel",
        [=] {
          Require(TSXGetNodeValue(state->m_Text.Get(), 0, state->m_Out.Get()), "TSXGetNodeValue");
          return state->m_Out.View().size();
        }},
       {kTranscode, [=] {
          return TranscodeOut(state->m_Documents.m_Xerces.Root()->getFirstChild()->getNodeValue());
        }}}};
}

// -- From the host: a name that no attribute has, so that the DOM does little --

CRow TextIn(const CSizes& sizes, const std::string& text, size_t count) {
  struct CState {
    explicit CState(const std::string& content) : m_Source(content), m_Name(content) {}
    CDocuments m_Documents{"<list/>"};
    std::string m_Source;
    CText m_Name;
  };
  const auto state = std::make_shared<CState>(text);
  const size_t repeats = count == 0 ? sizes.m_Calls : count;
  return {"text",
          repeats,
          {{"Tessel",
            [=] {
              uint64_t found = 0;
              for (size_t i = 0; i < repeats; ++i) {
                uint8_t flag = 0;
                Require(TSXHasAttribute(state->m_Documents.Root(), state->m_Name.Get(), &flag),
                        "TSXHasAttribute");
                found += flag;
              }
              return found;
            }},
           {kTranscode, [=] {
              uint64_t empty = 0;
              for (size_t i = 0; i < repeats; ++i) {
                XMLCh* pText = xercesc::XMLString::transcode(state->m_Source.c_str());
                empty += *pText == 0;
                xercesc::XMLString::release(&pText);
              }
              return empty;
            }}}};
}

}  // namespace

CRowTable StringRows() {
  constexpr size_t kAllCalls = 0;
  return {
      {"string.name", "A name of 8 to 20 characters to the host", Times(0.45, kTranscode),
       NamesOut},
      {"string.ascii", "100 KB of ASCII text to the host", Times(0.5, kTranscode),
       [](const CSizes& sizes) { return TextOut(AsciiText(sizes.m_TextBytes)); }},
      {"string.mixed", "100 KB of mixed text to the host", Times(0.8, kTranscode),
       [](const CSizes& sizes) { return TextOut(MixedText(sizes.m_TextBytes)); }},
      {"string.in.name", "A name of 13 characters from the host", Times(1, kTranscode),
       [](const CSizes& sizes) { return TextIn(sizes, "a-longer-name", kAllCalls); }},
      {"string.in.ascii", "100 KB of ASCII text from the host", Times(1, kTranscode),
       [](const CSizes& sizes) { return TextIn(sizes, AsciiText(sizes.m_TextBytes), 1); }},
      {"string.in.mixed", "100 KB of mixed text from the host", Times(1, kTranscode),
       [](const CSizes& sizes) { return TextIn(sizes, MixedText(sizes.m_TextBytes), 1); }},
  };
}

}  // namespace bench
