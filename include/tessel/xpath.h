/* XPath. PLACEHOLDER NOTES */
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
