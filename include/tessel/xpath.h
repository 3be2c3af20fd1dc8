/* XPath 1.0, evaluated at a node.
 *
 * Any thread may call, each on documents of its own. The context is any registered
 * node; a document id stands for its document. Expressions are host strings in the
 * local code page. Every id written is one hand-out, owed back with TSXNodeClose;
 * it is the same id that navigation gives for the node. The evaluation changes
 * nothing: nodes are looked at as the expression reaches them, so "@id" or "../x[1]"
 * cost the same in a document of any size. The hundred expressions used last, those of
 * at most 1000 code units, are kept ready, for all threads. Expressions of every day are
 * evaluated on the tree itself: paths over all axes except "following", "preceding" and
 * "namespace"; predicates that compare or connect paths, quoted texts, numbers, counts
 * and positions; position, last, count, not, contains, starts-with, string,
 * string-length, normalize-space, number, boolean, name and local-name. Their positions
 * end a step early where they can, and where one node is asked for such a path mostly
 * ends at the first. Other expressions cost several times as much for each node.
 *
 * Names. A prefix means what XPathBindPrefix has bound it to in the document, else what
 * it means at the context node (at a document: at its root element); "xml" always has
 * its meaning; one that is not declared there is a
 * parse error, "xmlns" too. A name without prefix means no namespace: the default
 * namespace does not apply, so an element in it needs a declared prefix, or
 * "*[local-name() = 'x']". In a document that was read with namespaces off, names
 * match as they are written if they have no prefix; any prefix but "xml" is a parse
 * error, and "*[name() = 'p:x']" finds what is called so. "namespace::*" gives the
 * declaration attributes in scope, those of ancestors included unless hidden by a
 * nearer one, without "xml"; their parent is the element that has them. "@*" leaves
 * declarations out.
 *
 * Nodes. Entity references are nodes, and not seen through: "string()" and "x/text()"
 * miss what is in them, "//text()" finds it. CDATA sections are part of "string()"
 * but never match "text()". Attributes that the grammar supplied are there like any.
 * The document type is a child of the document that "node()" matches. Attributes have
 * no children here. "id()" knows attributes that a grammar declares as ID.
 *
 * Contexts outside a document. The evaluation stays in the tree that the context
 * hangs in: "/x" and "//x" search that tree, "following" and "preceding" end with it,
 * "id()" finds only what hangs in it.
 *   a fragment, or a node below one   "/" is the fragment
 *   any other detached node           its top has no parent, and "/" selects nothing
 *   a loose attribute                 the same; "//@name" finds it
 *   a node inside an attribute        the attribute is "/" and the last ancestor
 *   an entity, a notation             trees of their own; what is in an entity is its
 *                                     children
 * A document without a root element is searched like any.
 *
 * Departures. "/" before an operator or a bracket is a parse error: write "(/) | a".
 * ".[...]" is one, write "self::node()[...]"; so is "- -1". A variable is never bound:
 * as the whole expression it is domErrXPathConversion, in a predicate it is false
 * without a word. "<=" between two truth values means "<", ">=" means ">".
 * "@node()" selects declarations, too. The functions of XSLT (key, current, document, generate-id,
 * format-number, system-property, function-available, element-available,
 * unparsed-entity-uri) do not exist: domErrXPathXSL. The message of a failed
 * conversion names the expression's type rightly and the wanted one wrongly.
 *
 * Limits. Beyond these the answer is domErrXPathParse with a message that begins
 * "The expression has"; what is within them needs at most 120 KB of stack:
 *   100 brackets, round or square, open at once
 *   500 operators in all (or and = != < <= > >= + - * div mod; not "|" and "/")
 *   80 digits and points in one number
 * Text in quotes, unions and the number of names are not limited. Beyond these the
 * answer is domErrXPathXSL with a message:
 *   a calculated number of more than 80 digits
 *   a text value taken of a tree deeper, or a path of more steps, than the calling
 *   thread's stack has room for, at 32 and 150 bytes each after a reserve of 64 KB:
 *   about 5,800 levels or 1,200 steps on 256 KB, 250,000 levels on 8 MB. Walking a
 *   tree has no such limit: "//x" and "ancestor::x" work at any depth.
 * Faulty text takes time with the square of its length: a second at about 10,000
 * tokens. */
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

/* Evaluates an expression of any type at a node and gives its value as a string, as
 * XPath's string() does: of a set of nodes the text of the first one in document order,
 * an empty string for none; "NaN", "Infinity", "true". Outside of predicates position()
 * and last() are 1.
 *   domErrXPathConversion  the expression is a variable, which is never bound
 *   domErrXPathContext, domErrXPathParse, domErrXPathXSL, domErrUnexpected as for
 *                          XPathEvaluateContextToNode
 *   2                      the host refused memory for the string
 * On failure *valueOut is cleared. */
TSX_API TSXStatus XPathEvaluateContextToString(TSXRefId context, HStr* expression, HStr* valueOut,
                                               HStr* errorText);

/* As XPathEvaluateContextToString, as a number, as number() does: NaN for text that is
 * none and for an empty set of nodes, 1 and 0 for truth values; infinities are such.
 * 0 on failure. */
TSX_API TSXStatus XPathEvaluateContextToNumber(TSXRefId context, HStr* expression, double* valueOut,
                                               HStr* errorText);

/* As XPathEvaluateContextToString, as a truth value, as boolean() does: 1 for a set that
 * has a node, a string that is not empty, a number that is neither 0 nor NaN; else 0.
 * 0 on failure. */
TSX_API TSXStatus XPathEvaluateContextToBoolean(TSXRefId context, HStr* expression,
                                                uint8_t* valueOut, HStr* errorText);

/* Tells the type of an expression: 1 a set of nodes, 2 a string, 3 a number, 4 a truth
 * value; 0 on failure. Nothing is evaluated; the context serves for prefixes only.
 *   domErrXPathConversion  the expression is a variable, which is never bound
 *   domErrXPathXSL         it is a function of XSLT
 *   domErrXPathContext, domErrXPathParse, domErrUnexpected as for
 *                          XPathEvaluateContextToNode */
TSX_API TSXStatus XPathGetExpressionType(TSXRefId context, HStr* expression, int32_t* typeOut,
                                         HStr* errorText);

/* Binds a prefix to a namespace for every later evaluation at a node of the document,
 * also after a reload; it comes before what the document declares. An empty URI unbinds
 * the prefix. Costs an evaluation with a prefix one look-up.
 *   domErrRefDocument       no document object
 *   domErrInvalidCharacter  the prefix is no name, or has a colon
 *   domErrNamespace         the prefix is "xml" or "xmlns"
 *   domErrUnexpected        any exception */
TSX_API TSXStatus XPathBindPrefix(TSXRefId document, HStr* prefix, HStr* namespaceURI);

#endif
