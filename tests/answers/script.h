// Runs the statements of a row.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "answers/calls.h"
#include "answers/tree.h"

namespace answers {

// The documents, files and names that a row works with. All that it opened is closed
// with it.
class CScene : public CNames {
 public:
  CScene(std::string_view xml, bool namespaces);
  ~CScene() override;
  CScene(const CScene&) = delete;
  CScene& operator=(const CScene&) = delete;

  struct CResult {
    TSXStatus m_Status = 0;
    std::string m_Answer;
    CRef m_First;                     // the first id that was given
    std::vector<std::string> m_Outs;  // as the answer tells them
    bool m_IsRefused = false;         // the host refused memory
  };

  // What the statements answer: that of the last one, and before it those that are no
  // "ok". An assignment that works answers nothing. Of the last one an allocation is
  // refused, as CCall::Run says.
  std::string Run(std::string_view statements, int64_t refused = 0);
  const CResult& Last() const { return m_Last; }

  // The document as it is now; "empty" without any node, "closed" once
  // its id names nothing.
  std::string Tree() const;

  TSXRefId IdOf(std::string_view operand) override { return Resolve(operand).m_Id; }
  std::string FileOf(std::string_view name) override;

 private:
  CResult Statement(std::string_view statement);
  CResult Call(std::string_view name, const std::vector<std::string_view>& operands);
  // What helps the rows and is no function of the library.
  std::string Help(std::string_view name, const std::vector<std::string_view>& operands);

  // The tree of a document object; null for any other id.
  static xercesc::DOMDocument* DocumentOf(TSXRefId id);

  CRef Resolve(std::string_view operand);
  CRef HandOut(xercesc::DOMNode* pNode);
  // Where the steps of an operand that begins with this head start.
  xercesc::DOMNode* Base(std::string_view head);
  TSXRefId Other();

  std::string Describe(const COut& out, const CResult& result, Registry registry) const;
  std::string NameOf(CRef ref) const;
  std::string NameOf(const xercesc::DOMNode* pNode) const;
  std::string NameOfTop(const xercesc::DOMNode& top) const;

  TSXRefId m_Document = 0;
  TSXRefId m_Other = 0;  // opened when a row asks for it
  std::map<std::string, CRef, std::less<>> m_Variables;
  std::vector<CRef> m_Issued;
  support::CPath m_Folder{"answers"};
  int64_t m_Refused = 0;  // of the next call
  CResult m_Last;
};

}  // namespace answers
