#include "insert.h"

#include "markup.h"
#include "message.h"
#include "namespaces.h"
#include "value.h"

namespace {

// A start tag in which the prefixes stand for what they do at the parent.
std::string StartTag(TSXRefId parent) {
  std::string tag = "<content";
  for (const auto& [prefix, uri] : NamespacesAt(parent)) {
    tag += (prefix.empty() ? " xmlns" : " xmlns:" + prefix) + "=\"" + Escaped(uri) + '"';
  }
  return tag + '>';
}

void RequireWellFormed(TSXStatus status, const CText& lines, const std::string& file) {
  if (status != domErrParse) return Require(status, file);
  const std::vector<CFault> faults = ParserFaults(file, lines.View());
  const std::string text = faults.empty() ? "it could not be read" : faults.front().m_Message;
  throw CFailure(Line(file, "what should be inserted is not well-formed: " + text));
}

// The content is read as that of an element in the fragment, which then goes.
void FillWithXML(const CNode& fragment, TSXRefId parent, const CEdit& edit,
                 const CDocument& document, const std::string& file) {
  CText name("content");
  CNode wrapper;
  Require(TSXCreateElement(document.Get(), name.Get(), wrapper.Out()), file);
  Require(TSXAppendChild(fragment.Get(), wrapper.Get()), file);
  CText xml(StartTag(parent) + edit.m_Value + "</content>");
  CText lines;
  CText exception;
  RequireWellFormed(TSXElementSetXML(wrapper.Get(), xml.Get(), lines.Get(), exception.Get()), lines,
                    file);
  while (const CNode child = FirstChild(wrapper.Get())) {
    Require(TSXInsertBefore(fragment.Get(), wrapper.Get(), child.Get()), file);
  }
  Require(TSXRemoveChild(fragment.Get(), wrapper.Get()), file);
  wrapper.Forget();  // the removal took the hand-out
}

void FillWithElement(const CNode& fragment, TSXRefId parent, const CEdit& edit,
                     const CDocument& document, const std::string& file) {
  CText name(edit.m_Value);
  CText uri(NamespaceOfElement(parent, edit.m_Value, file));
  CNode element;
  RequireName(TSXCreateElementNS(document.Get(), uri.Get(), name.Get(), element.Out()),
              edit.m_Value, file);
  Require(TSXAppendChild(fragment.Get(), element.Get()), file);
}

void FillWithData(const CNode& fragment, const CEdit& edit, const CDocument& document,
                  const std::string& file) {
  const auto create = edit.m_Content == EContent::kText ? TSXCreateTextNode : TSXCreateComment;
  CText data(edit.m_Value);
  CNode node;
  Require(create(document.Get(), data.Get(), node.Out()), file);
  Require(TSXAppendChild(fragment.Get(), node.Get()), file);
}

void Fill(const CNode& fragment, TSXRefId parent, const CEdit& edit, const CDocument& document,
          const std::string& file) {
  switch (edit.m_Content) {
    case EContent::kXML:
      RequireValue(edit.m_Value, EKind::kElement, file);
      return FillWithXML(fragment, parent, edit, document, file);
    case EContent::kElement:
      RequireValue(edit.m_Value, EKind::kElement, file);
      return FillWithElement(fragment, parent, edit, document, file);
    case EContent::kText:
      RequireValue(edit.m_Value, EKind::kText, file);
      return FillWithData(fragment, edit, document, file);
    case EContent::kComment:
      RequireValue(edit.m_Value, EKind::kComment, file);
      return FillWithData(fragment, edit, document, file);
  }
}

}  // namespace

void Insert(const CEdit& edit, TSXRefId node, const CDocument& document, const std::string& file) {
  const EKind kind = KindOf(node);
  const bool isBeside = edit.m_Place == EPlace::kBefore || edit.m_Place == EPlace::kAfter;
  const CNode above = Parent(node);
  const TSXRefId parent = isBeside ? above.Get() : node;
  const bool isPlace = isBeside ? parent != 0 : kind == EKind::kElement || kind == EKind::kDocument;
  if (!isPlace) {
    throw CFailure(Line(file, "nothing can be inserted " +
                                  std::string(isBeside ? "beside " : "into ") + OneOf(kind)));
  }
  CNode fragment;
  Require(TSXCreateDocumentFragment(document.Get(), fragment.Out()), file);
  Fill(fragment, parent, edit, document, file);
  CNode next;
  if (edit.m_Place == EPlace::kFirst) next = FirstChild(node);
  if (edit.m_Place == EPlace::kAfter) Require(TSXGetNextSibling(node, 0, next.Out()), file);
  Require(
      TSXInsertBefore(parent, edit.m_Place == EPlace::kBefore ? node : next.Get(), fragment.Get()),
      file);
}
