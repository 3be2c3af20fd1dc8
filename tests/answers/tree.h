// Trees and nodes as the rows write them. The DOM is asked directly, so that no answer
// is judged by the functions that gave it.
#pragma once

#include <string>
#include <string_view>
#include <xercesc/dom/DOM.hpp>

namespace answers {

// A node as text: <r a='1'><b/>text<!--c--></r>. A default attribute ends in "*", "|"
// stands between neighbouring text nodes, bytes outside ASCII are \xHH.
std::string Dump(const xercesc::DOMNode& node);

// The node that the steps lead to ("/r/b[2]/@k", "/text()", "/doctype"), null for none.
xercesc::DOMNode* Follow(xercesc::DOMNode* pFrom, std::string_view steps);

// The steps from the top of a node's tree, and that top.
std::string StepsTo(const xercesc::DOMNode* pNode, const xercesc::DOMNode*& pTop);

// The entity or notation of a name, null for none.
xercesc::DOMNode* Declared(const xercesc::DOMDocument& document, std::string_view kind,
                           std::string_view name);

// How the steps call a node: its name, "@k", "text()", "entity(e)".
std::string StepOf(const xercesc::DOMNode& node);

std::string Escaped(std::string_view bytes);
std::string Quoted(std::string_view bytes);

}  // namespace answers
