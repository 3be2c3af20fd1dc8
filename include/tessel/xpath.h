/* XPath 1.0, evaluated at a node.
 *
 * Any thread may call, each on documents of its own. The context is any registered
 * node; a document id stands for its document. Expressions are host strings in the
 * local code page. Every id written is one hand-out, owed back with TSXNodeClose;
 * it is the same id that navigation gives for the node. The evaluation changes
 * nothing and keeps nothing; what it costs beside the search itself is a view of
 * the tree, made for each call.
 *
 * Prefixes mean what they mean at the context node, "xml" included; one that is not
 * declared there is a parse error. A name without prefix means no namespace: the
 * default namespace does not apply, so elements in it need a prefix that is
 * declared. In a document that was read with namespaces off, names match as they
 * are written, and any prefix is a parse error. "namespace::*" gives the element's
 * own declarations only.
 *
 * Not seen through: entity reference nodes ("string()" and "x/text()" miss what is
 * in them, "//text()" finds it). CDATA sections are part of "string()" but never
 * match "text()". An unbound variable inside a predicate is false without a word.
 * The functions of XSLT (key, current, document, generate-id, format-number) do
 * not exist: domErrXPathXSL.
 *
 * Nodes that hang in no document, loose attributes and what is below a fragment are
 * contexts as good as any; "/" then means the top of what they hang in. A fragment
 * itself is no node of XPath's model, and "preceding" and "following" end at the top.
 *
 * Limits that hold on a stack of 256 KB, beyond which the answer is domErrXPathParse
 * with a message: 100 brackets open at once, 500 operators, 80 digits in one number.
 * A tree too deep for the thread's stack is domErrXPathXSL with a message. */
#ifndef TESSEL_XPATH_H
#define TESSEL_XPATH_H

#include <stdint.h>
#include <tessel/export.h>
#include <tessel/host.h>

/* Evaluates an XPath 1.0 expression at a node and gives the first node of the
 * result in document order, 0 where there is none. A document id stands for its
 * document.
 *   domErrXPathContext     the context's id names no node
 *   domErrXPathParse       the expression is no XPath, or too deep or too long
 *   domErrXPathConversion  its value is no set of nodes ("count(//a)", "true()")
 *   domErrXPathXSL         the evaluation failed otherwise
 *   domErrUnexpected       any other exception
 * On failure *nodeOut is 0 and *errorText the message, where there is one; on
 * success *errorText is cleared. */
TSX_API TSXStatus XPathEvaluateContextToNode(TSXRefId context, HStr* expression, TSXRefId* nodeOut,
                                             HStr* errorText);

/* As XPathEvaluateContextToNode, with all nodes of the result in document order,
 * none twice, one hand-out each. On failure the array has no ids; an existing
 * handle is kept with count 0. Where the host refuses memory for the array, no id
 * is handed out and *nodesOut is null. */
TSX_API TSXStatus XPathEvaluateContextToNodeArray(TSXRefId context, HStr* expression,
                                                  GenericRefObjSessionArray* nodesOut,
                                                  HStr* errorText);

#endif
