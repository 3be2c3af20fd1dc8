#include "edit.h"

#include <vector>

#include "insert.h"
#include "message.h"
#include "namespaces.h"
#include "value.h"

namespace {

// What the changes of one edit share.
struct CContext {
  const CEdit& m_Edit;
  const CDocument& m_Document;
  const std::string& m_File;
};

[[noreturn]] void Refuse(const CContext& context, EKind kind, const char* pWhy) {
  throw CFailure(Line(context.m_File, OneOf(kind) + ' ' + pWhy));
}

// -- Deletion ------------------------------------------------------------------------

void DeleteAttribute(const CNode& attribute, const std::string& file) {
  CNode element;
  Require(TSXOwnerElement(attribute.Get(), 0, element.Out()), file);
  Require(TSXRemoveAttributeNode(element.Get(), attribute.Get()), file);
}

void DeleteNode(CNode& node, const CContext& context) {
  const EKind kind = KindOf(node.Get());
  if (kind == EKind::kAttribute) return DeleteAttribute(node, context.m_File);
  if (kind == EKind::kDocument) Refuse(context, kind, "cannot be deleted");
  const CNode parent = Parent(node.Get());
  if (kind == EKind::kElement && KindOf(parent.Get()) == EKind::kDocument) {
    throw CFailure(Line(context.m_File, "the document element cannot be deleted"));
  }
  Require(TSXRemoveChild(parent.Get(), node.Get()), context.m_File);
  node.Forget();  // the removal took the hand-out
}

void DeleteChildren(const CNode& node, const CContext& context) {
  for (CNode child = FirstChild(node.Get()); child; child = FirstChild(node.Get())) {
    Require(TSXRemoveChild(node.Get(), child.Get()), context.m_File);
    child.Forget();
  }
}

// -- Values --------------------------------------------------------------------------

// An empty text would be none when it is read again, so none is made.
void SetNode(CNode& node, const CContext& context) {
  const EKind kind = KindOf(node.Get());
  RequireValue(context.m_Edit.m_Value, kind, context.m_File);
  CText value(context.m_Edit.m_Value);
  switch (kind) {
    case EKind::kElement:
      if (context.m_Edit.m_Value.empty()) return DeleteChildren(node, context);
      return Require(TSXSetText(node.Get(), value.Get()), context.m_File);
    case EKind::kAttribute:
      return Require(TSXSetAttrValue(node.Get(), 0, value.Get()), context.m_File);
    case EKind::kText:
      if (context.m_Edit.m_Value.empty()) return DeleteNode(node, context);
      [[fallthrough]];
    case EKind::kCDATA:
    case EKind::kComment:
    case EKind::kProcessingInstruction:
      return Require(TSXSetNodeValue(node.Get(), 0, value.Get()), context.m_File);
    default:
      Refuse(context, kind, "has no value that can be set");
  }
}

void SetAttribute(TSXRefId element, const std::string& name, std::string_view value,
                  const std::string& file) {
  CText uri(NamespaceOfAttribute(element, name, file));
  CText nameText(name);
  CText valueText(value);
  RequireName(TSXSetAttributeNS(element, uri.Get(), nameText.Get(), valueText.Get()), name, file);
}

void SetAttributeOf(const CNode& node, const CContext& context) {
  const EKind kind = KindOf(node.Get());
  if (kind != EKind::kElement) Refuse(context, kind, "has no attributes");
  RequireValue(context.m_Edit.m_Value, EKind::kAttribute, context.m_File);
  SetAttribute(node.Get(), context.m_Edit.m_Name, context.m_Edit.m_Value, context.m_File);
}

// -- Names ---------------------------------------------------------------------------

// An attribute that the grammar supplies is not written, so it is not copied.
void CopyAttributes(TSXRefId from, TSXRefId to, const std::string& file) {
  const CNodeArray attributes = AttributesOf(from);
  for (size_t i = 0; i < attributes.Size(); ++i) {
    const TSXRefId attribute = attributes.At(i);
    uint8_t isSpecified = 1;
    Require(TSXGetSpecified(attribute, 0, &isSpecified), file);
    if (isSpecified == 0) continue;
    CText uri = Property(attribute, TSXGetNamespaceName);
    CText name = Property(attribute, TSXName);
    CText value = Property(attribute, TSXGetAttrValue);
    Require(TSXSetAttributeNS(to, uri.Get(), name.Get(), value.Get()), file);
  }
}

void MoveChildren(TSXRefId from, TSXRefId to, const std::string& file) {
  while (const CNode child = FirstChild(from)) Require(TSXAppendChild(to, child.Get()), file);
}

void Exchange(const CNode& oldNode, const CNode& newNode, const std::string& file) {
  const CNode parent = Parent(oldNode.Get());
  Require(TSXReplaceChild(parent.Get(), newNode.Get(), oldNode.Get()), file);
}

void RenameElement(const CNode& element, const CContext& context) {
  const std::string& name = context.m_Edit.m_Name;
  CText uri(NamespaceOfElement(element.Get(), name, context.m_File));
  CText nameText(name);
  CNode renamed;
  RequireName(
      TSXCreateElementNS(context.m_Document.Get(), uri.Get(), nameText.Get(), renamed.Out()), name,
      context.m_File);
  CopyAttributes(element.Get(), renamed.Get(), context.m_File);
  MoveChildren(element.Get(), renamed.Get(), context.m_File);
  Exchange(element, renamed, context.m_File);
}

void RenameAttribute(const CNode& attribute, const CContext& context) {
  const std::string& name = context.m_Edit.m_Name;
  CNode element;
  Require(TSXOwnerElement(attribute.Get(), 0, element.Out()), context.m_File);
  if (Property(attribute.Get(), TSXName).View() == name) return;
  CText nameText(name);
  uint8_t isThere = 0;
  Require(TSXHasAttribute(element.Get(), nameText.Get(), &isThere), context.m_File);
  if (isThere != 0) {
    throw CFailure(Line(context.m_File, "the element has an attribute " + name + " already"));
  }
  SetAttribute(element.Get(), name, Property(attribute.Get(), TSXGetAttrValue).View(),
               context.m_File);
  Require(TSXRemoveAttributeNode(element.Get(), attribute.Get()), context.m_File);
}

void RenameInstruction(const CNode& instruction, const CContext& context) {
  CText target(context.m_Edit.m_Name);
  CText data = Property(instruction.Get(), TSXGetData);
  CNode renamed;
  RequireName(TSXCreateProcessingInstruction(context.m_Document.Get(), target.Get(), data.Get(),
                                             renamed.Out()),
              context.m_Edit.m_Name, context.m_File);
  Exchange(instruction, renamed, context.m_File);
}

void RenameNode(const CNode& node, const CContext& context) {
  switch (const EKind kind = KindOf(node.Get())) {
    case EKind::kElement:
      return RenameElement(node, context);
    case EKind::kAttribute:
      return RenameAttribute(node, context);
    case EKind::kProcessingInstruction:
      return RenameInstruction(node, context);
    default:
      Refuse(context, kind, "has no name that can be changed");
  }
}

// ------------------------------------------------------------------------------------

void ApplyTo(CNode& node, const CContext& context) {
  switch (context.m_Edit.m_Action) {
    case EAction::kSet:
      return SetNode(node, context);
    case EAction::kSetAttribute:
      return SetAttributeOf(node, context);
    case EAction::kDelete:
      return DeleteNode(node, context);
    case EAction::kRename:
      return RenameNode(node, context);
    case EAction::kInsert:
      return Insert(context.m_Edit, node.Get(), context.m_Document, context.m_File);
  }
}

}  // namespace

void Apply(const CEdit& edit, const CDocument& document, const std::string& file,
           const std::function<void(CNodeArray&)>& look) {
  // Kept until all is done, or its closing would take the ids of all nodes along.
  CNode element;
  Require(TSXGetDocumentElement(document.Get(), 0, element.Out()), file);
  const CNode bareDocument = Parent(element.Get());
  CNodeArray nodes = Select(document, file, edit.m_Expression);
  if (nodes.Size() == 0) throw CFailure(Line(file, "nothing found: " + edit.m_Expression));
  look(nodes);
  const CContext context{edit, document, file};
  // From the last to the first, so that no node goes before one that it holds.
  for (size_t i = nodes.Size(); i-- > 0;) {
    CNode node = nodes.Take(i);
    ApplyTo(node, context);
  }
}
