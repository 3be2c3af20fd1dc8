/* Navigation: walk a tree, ask what a node is, clone it, normalise it.
 *
 * Any thread may call, but two threads must not work on one document at the
 * same time: no lock is held during the DOM call. Ids come from the node
 * registry. Every id written is one hand-out, owed back with TSXNodeClose; a
 * node that has an id keeps it. "Document" in an entry means a document id as
 * TSXDocumentOpen, TSXCreateDocument and TSXGetOwnerDocument give it.
 *
 * Pointers must not be null. A string in is in the local code page, and its
 * null handle is an empty string. A flag is one byte, any non-zero value true,
 * written as 0 or 1. `ignored` is never read. A result is 0 or a code of
 * <tessel/status.h>; ids, flags and counts are 0 beside a failure.
 *
 * An entry's reference code answers to id 0, to an id never issued, given back
 * or withdrawn, and to a node of a kind that the entry does not accept. A node
 * that does not exist is no failure: the result is 0 and the id is 0. No
 * handler is installed, since the DOM calls cannot fail: only the exhaustion of
 * memory leaves these functions as a C++ exception. */
#ifndef TESSEL_NAVIGATION_H
#define TESSEL_NAVIGATION_H

#include <stdint.h>
#include <tessel/export.h>
#include <tessel/host.h>

/* -- Neighbours ----------------------------------------------------------- */

/* Gives the parent of any node; 0 for a document, an attribute and a detached
 * node. The parent of the document element is the bare document node, whose id
 * is not the document's and is refused where a document is asked for.
 * TSXNodeClose on the last hand-out of that id drops EVERY node id of the
 * document, however often handed out; tree and document id stay.
 * domErrRefGetParentNode. */
TSX_API TSXStatus TSXGetParentNode(TSXRefId node, uint64_t ignored, TSXRefId* parentOut);

/* Gives the first child of any node, 0 for none. Attributes are no children of
 * their element; their own children are text nodes. domErrRefGetFirstChild. */
TSX_API TSXStatus TSXGetFirstChild(TSXRefId node, uint64_t ignored, TSXRefId* childOut);

/* Gives the last child of any node, 0 for none, at the same cost as the first.
 * domErrRefGetLastChild. */
TSX_API TSXStatus TSXGetLastChild(TSXRefId node, uint64_t ignored, TSXRefId* childOut);

/* Gives the sibling after any node; 0 for the last one, an attribute and a
 * detached node. Going from sibling to sibling is the cheap way through the
 * children: one step a call. domErrRefGetNextSibling. */
TSX_API TSXStatus TSXGetNextSibling(TSXRefId node, uint64_t ignored, TSXRefId* siblingOut);

/* Gives the sibling before any node; 0 for the first one, an attribute and a
 * detached node. domErrRefGetPreviousSibling. */
TSX_API TSXStatus TSXGetPreviousSibling(TSXRefId node, uint64_t ignored, TSXRefId* siblingOut);

/* -- Documents and owners ------------------------------------------------- */

/* Gives the document of any node as the id that document functions accept: one
 * more hand-out of it, owed back with TSXDocumentClose. 0 for a document
 * itself, a document type that no document uses and a node of a cloned
 * document. domErrRefGetOwnerDocument. */
TSX_API TSXStatus TSXGetOwnerDocument(TSXRefId node, uint64_t ignored, TSXRefId* documentOut);

/* Gives the document element of a document, 0 while there is none. Any other
 * node, the bare document node included, is refused with
 * domErrRefGetDocumentElement. */
TSX_API TSXStatus TSXGetDocumentElement(TSXRefId document, uint64_t ignored, TSXRefId* elementOut);

/* Gives the document type of a document, 0 where the document declares none.
 * Any other node is refused with domErrRefGetDocType. */
TSX_API TSXStatus TSXGetDocType(TSXRefId document, uint64_t ignored, TSXRefId* typeOut);

/* Gives the element that an attribute belongs to, 0 for a detached attribute;
 * TSXGetParentNode of an attribute is always 0. domErrRefOwnerElement. */
TSX_API TSXStatus TSXOwnerElement(TSXRefId attribute, uint64_t ignored, TSXRefId* elementOut);

/* -- Questions ------------------------------------------------------------ */

/* Tells whether a node has attributes: false for all but elements. Shares
 * domErrRefHasAttributes with TSXHasChildNodes. */
TSX_API TSXStatus TSXHasAttributes(TSXRefId node, uint8_t* flagOut);

/* Tells whether any node has children. domErrRefHasAttributes, the code of
 * TSXHasAttributes, is also this function's. */
TSX_API TSXStatus TSXHasChildNodes(TSXRefId node, uint8_t* flagOut);

/* Tells whether an attribute was written in the document or set since; false
 * for one that a default of the grammar supplied. domErrRefGetSpecified. */
TSX_API TSXStatus TSXGetSpecified(TSXRefId attribute, uint64_t ignored, uint8_t* flagOut);

/* Tells whether the DOM behind any node supports a feature ("Core", "XML",
 * "LS", in either case) in a version ("2.0"; an empty one asks for any
 * version). An unknown or empty feature is false, not an error.
 * domErrRefIsSupported. */
TSX_API TSXStatus TSXIsSupported(TSXRefId node, HStr* feature, HStr* version, uint8_t* flagOut);

/* Gives the kind of any node: 1 element, 2 attribute, 3 text, 4 CDATA section,
 * 5 entity reference, 6 entity, 7 processing instruction, 8 comment, 9
 * document, 10 document type, 11 document fragment, 12 notation. This one is
 * guarded, and a failure of the DOM is its own code too,
 * domErrRefGetNodeType. */
TSX_API TSXStatus TSXGetNodeType(TSXRefId node, uint64_t ignored, int32_t* typeOut);

/* -- Places --------------------------------------------------------------- */

/* Tells where a node stood in the file or string that its document was loaded
 * from, if TSXSetKeepPositions was on at that load. *line and *column are those
 * of its first character, from 1; a column counts UTF-16 code units, and what is
 * beyond 2,147,483,647 is told as that. A line ends
 * with CR, LF or both, in XML 1.1 also with NEL, CR and NEL, or the line
 * separator. The node is the bytes from *begin on and before *end, counted from
 * 0 in the encoding of the text, with the byte order mark. Bytes that only shift
 * what follows belong to the character before them.
 *
 * An element goes from its start tag to its end tag; an attribute has its name
 * and its quotes, the text below it is what stands between these. Text is as it
 * stood, with its references. CDATA sections, comments, processing
 * instructions, entity references and document types have their delimiters. A
 * document is the whole text without the byte order mark.
 *
 * What was not in that text has 0, 0, -1, -1, and the result is 0 all the same:
 * nodes that were made, split off, cloned or imported; what an entity or a
 * default supplied; entities and notations; all nodes of TSXElementSetXML; and,
 * after a load that a fatal error ended, whatever the parser saw no end of. An
 * edited or moved node keeps where it stood, until the document is loaded again.
 *
 * Costs a search among the document's positions. A failure leaves 0, 0, -1, -1,
 * too: domErrRefGetSourcePosition. */
TSX_API TSXStatus TSXGetSourcePosition(TSXRefId node, int32_t* line, int32_t* column,
                                       int64_t* begin, int64_t* end);

/* -- Whole subtrees ------------------------------------------------------- */

/* Clones any node, with its descendants where *deep is true and always with its
 * attributes; the clone hangs nowhere. On failure, and where the DOM makes no
 * clone, *cloneOut is left as it was: set it to 0 before. A clone that is never
 * attached is freed with its document, not by TSXNodeClose. The clone of a
 * document is a bare document node that belongs to no document object, and the
 * clone of a document type that no document has taken belongs to nothing: each is
 * freed with the last hand-out of its id. Any depth is cloned on any stack.
 * domErrRefCloneNode. */
TSX_API TSXStatus TSXCloneNode(TSXRefId node, const uint8_t* deep, TSXRefId* cloneOut);

/* Merges neighbouring text nodes below any node into the first of them, with
 * the elements below it; CDATA sections stay. A text node that was merged into
 * another hangs nowhere afterwards, and its id stays valid. Walks the whole
 * subtree, however deep. domErrRefNormalize. */
TSX_API TSXStatus TSXNormalize(TSXRefId node);

#endif
