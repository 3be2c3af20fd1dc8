// One change to the nodes that an expression selects.
#ifndef TESSEL_TOOLS_EDIT_H
#define TESSEL_TOOLS_EDIT_H

#include <functional>
#include <string>

#include "nodes.h"

enum class EAction { kSet, kSetAttribute, kDelete, kRename, kInsert };
// Where content goes, seen from the node that was selected.
enum class EPlace { kBefore, kAfter, kFirst, kLast };
// What the value of an insertion is.
enum class EContent { kXML, kText, kComment, kElement };

struct CEdit {
  EAction m_Action = EAction::kSet;
  std::string m_Expression;
  std::string m_Name = {};   // of the attribute, or the new one
  std::string m_Value = {};  // the text, or the content
  EPlace m_Place = EPlace::kLast;
  EContent m_Content = EContent::kXML;
};

// Changes the document, after `look` was given the nodes that the edit selects. Throws a CFailure
// about `file`, with the document changed in part, where nothing is selected or a node cannot be
// changed in this way.
void Apply(const CEdit& edit, const CDocument& document, const std::string& file,
           const std::function<void(CNodeArray&)>& look);

#endif
