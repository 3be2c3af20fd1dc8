// What becomes of exceptions that no tree makes the DOM throw.
#include "document/xercesdom.h"
#include "dom/parts.h"
#include "support/support.h"

namespace {

using support::CText;
using xercesc::DOMException;

class CThrower : public xercesc::DOMElementImpl {
 public:
  explicit CThrower(xercesc::DOMDocument& document) : DOMElementImpl(&document, u"n") {}
  NodeType getNodeType() const override {
    Throw();
    return DOMElementImpl::getNodeType();
  }
  const XMLCh* getNodeValue() const override {
    Throw();
    return nullptr;
  }

  bool m_Throws = false;

 private:
  void Throw() const {
    if (m_Throws) throw DOMException(DOMException::DOMSTRING_SIZE_ERR);
  }
};

class Frame : public support::CLedgerTest {};

TEST_F(Frame, GettersDropTheCodeAndTheNodeTypeHasItsOwn) {
  support::CDoc doc("<r/>");
  const TSXRefId id = doc.Root();
  xercesc::DOMNode* pRoot = g_NodeSessMap.GetPtrBySess(id);
  CThrower node(*pRoot->getOwnerDocument());
  g_NodeSessMap.ResetPtr(&node, id);
  node.m_Throws = true;
  int32_t type = 77;
  EXPECT_EQ(TSXGetNodeType(id, 0, &type), domErrRefGetNodeType);
  EXPECT_EQ(type, 0);
  CText value("junk"), text("junk");
  EXPECT_EQ(TSXGetNodeValue(id, 0, &value), 0);
  EXPECT_TRUE(value.IsNull());
  EXPECT_EQ(TSXGetText(id, &text), 0);
  EXPECT_TRUE(text.IsNull());
  node.m_Throws = false;
  g_NodeSessMap.ResetPtr(pRoot, id);
}

}  // namespace
