/* Creating nodes, and moving them into, within and out of a tree.
 *
 * Any thread may call, but two threads must not work on one document at the
 * same time: no lock is held during the DOM call. Ids come from the node
 * registry; every id written is one hand-out, owed back with TSXNodeClose.
 * Pointers must not be null. Strings are host handles with bytes in the local
 * code page; a NUL byte ends the text. A null handle is refused where an entry
 * says so and is an empty string elsewhere; a handle of count 0 is an empty
 * string everywhere.
 *
 * A result is 0 or a code of <tessel/status.h>; an id out is 0 beside a
 * failure. A reference code answers to id 0, to an id never issued, given back
 * or withdrawn, and to a node of a kind that the entry does not accept.
 * Functions that name domErrUnexpected guard their DOM call; the others install
 * no handler, since theirs cannot fail. Only the exhaustion of memory, while a
 * string is converted or in an unguarded call, leaves as a C++ exception. A
 * failed call changes neither the tree nor any id.
 *
 * Who frees what: a tree owns the nodes in it. A created node that is in no
 * tree yet is freed by TSXNodeClose, at EVERY close of its id, and at the
 * latest with its document. A copy (TSXCloneNode, TSXImportNode) and a node
 * taken out of a tree while ids are open are freed with their document only.
 * <tessel/document.h> says what ends which id. */
#ifndef TESSEL_MUTATION_H
#define TESSEL_MUTATION_H

#include <stdint.h>
#include <tessel/export.h>
#include <tessel/host.h>

/* -- Creating: `document` is a document id, anything else is refused ------- */

/* Creates an element. domErrRefCreateElement, domErrEmptyCreateElement for a
 * null handle as name, domErrInvalidCharacter for a name that XML forbids (an
 * empty one too), domErrUnexpected. */
TSX_API TSXStatus TSXCreateElement(TSXRefId document, HStr* tagName, TSXRefId* elementOut);

/* Creates an element in a namespace. Both strings need a handle; a URI of count
 * 0 means no namespace. domErrRefCreateElementNS, domErrEmptyCreateElementNS
 * for a null handle, domErrInvalidCharacter, domErrNotSupported,
 * domErrNamespace where the prefix does not fit the URI (a prefix without URI,
 * xml with another), domErrUnexpected. */
TSX_API TSXStatus TSXCreateElementNS(TSXRefId document, HStr* namespaceURI, HStr* qualifiedName,
                                     TSXRefId* elementOut);

/* Creates an attribute, to be hung on an element with TSXSetAttributeNode.
 * Unlike all others it has no reference code: a bad document id gives 0 and the
 * id 0, so look at the id. domErrEmptyCreateEntityReference (a shared number)
 * for a null handle as name, domErrInvalidCharacter, domErrUnexpected. */
TSX_API TSXStatus TSXCreateAttribute(TSXRefId document, HStr* name, TSXRefId* attributeOut);

/* Creates an attribute in a namespace; strings as for TSXCreateElementNS.
 * domErrRefCreateAttributeNS, domErrEmptyCreateAttributeNS for a null handle,
 * domErrInvalidCharacter, domErrNotSupported, domErrNamespace,
 * domErrUnexpected. */
TSX_API TSXStatus TSXCreateAttributeNS(TSXRefId document, HStr* namespaceURI, HStr* qualifiedName,
                                       TSXRefId* attributeOut);

/* Creates a text node. domErrRefCreateTextNode. */
TSX_API TSXStatus TSXCreateTextNode(TSXRefId document, HStr* text, TSXRefId* nodeOut);

/* Creates a comment. The text is not checked: two hyphens in it make a document
 * that cannot be read again. domErrRefCreateComment. */
TSX_API TSXStatus TSXCreateComment(TSXRefId document, HStr* text, TSXRefId* nodeOut);

/* Creates a CDATA section. The text is not checked for the section's end mark.
 * domErrRefCreateCDATASection, domErrNotSupported, domErrUnexpected. */
TSX_API TSXStatus TSXCreateCDATASection(TSXRefId document, HStr* text, TSXRefId* nodeOut);

/* Creates a processing instruction; no data is a null handle, no target is
 * refused. domErrRefCreateProcessingInstruction,
 * domErrEmptyCreateProcessingInstruction for a null handle as target,
 * domErrInvalidCharacter, domErrNotSupported, domErrUnexpected. */
TSX_API TSXStatus TSXCreateProcessingInstruction(TSXRefId document, HStr* target, HStr* data,
                                                 TSXRefId* nodeOut);

/* Creates an entity reference. It is read-only, and its children are a copy of
 * the entity's where the document type has that entity.
 * domErrRefCreateEntityReference, domErrEmptyCreateEntityReference for a null
 * handle as name, domErrInvalidCharacter, domErrNotSupported,
 * domErrUnexpected. */
TSX_API TSXStatus TSXCreateEntityReference(TSXRefId document, HStr* name, TSXRefId* nodeOut);

/* Creates a document fragment. Attaching it moves its children, all of them or,
 * where one may not stand there, none; it is then empty, hangs nowhere and is freed
 * with its document only.
 * domErrRefCreateDocumentFragment. */
TSX_API TSXStatus TSXCreateDocumentFragment(TSXRefId document, TSXRefId* fragmentOut);

/* Copies a node of any document into this one, with its descendants where *deep
 * is true and always with an element's specified attributes; the copy hangs
 * nowhere. What is recorded as owned by this document is the SOURCE, not the
 * copy: closing the source's id frees it if it is in no tree, and the copy is
 * freed with the document. The two reference codes are shared with
 * TSXInsertBefore.
 *   domErrRefImportNode     the document's id
 *   domErrRefImportNodeArg  the source's id
 *   domErrNotSupported      the source is a document or a document type
 *   domErrUnexpected */
TSX_API TSXStatus TSXImportNode(TSXRefId document, TSXRefId source, const uint8_t* deep,
                                TSXRefId* copyOut);

/* -- Moving ---------------------------------------------------------------
 *
 * A new child that is in a tree already is moved. Of several bad ids the first
 * in the order of the codes below decides. All four share these codes where
 * they name them: domErrHierarchyRequest (the kind may not stand there, the
 * child holds the parent, or a second document element), domErrWrongDocument
 * (another document's: import it), domErrNoModificationAllowed (read-only),
 * domErrNotFound (not a child of the parent). */

/* Appends a node to the children of another. domErrRefAppendChild for the
 * parent, domErrRefAppendChildArg for the child and for a child that is the
 * parent itself; domErrHierarchyRequest, domErrWrongDocument,
 * domErrNoModificationAllowed, domErrUnexpected. */
TSX_API TSXStatus TSXAppendChild(TSXRefId parent, TSXRefId child);

/* Inserts a node before a child. Mind the order: the REFERENCE child comes
 * second, the new child third. The reference child is not checked: 0, and an id
 * that names no node, append at the end; a node that is no child of the parent
 * is domErrNotFound. domErrRefImportNode for the parent, domErrRefImportNodeArg
 * for the new child (both shared with TSXImportNode), domErrHierarchyRequest,
 * domErrWrongDocument, domErrNoModificationAllowed, domErrNotFound,
 * domErrUnexpected. */
TSX_API TSXStatus TSXInsertBefore(TSXRefId parent, TSXRefId referenceChild, TSXRefId newChild);

/* Puts a node in the place of a child. The old child hangs nowhere afterwards
 * and keeps its id; it may be attached again, and is freed with its document
 * only. A child in its own place is removed in this way. domErrRefReplaceChild
 * for the parent, domErrRefReplaceChildNew, domErrRefReplaceChildOld,
 * domErrHierarchyRequest, domErrWrongDocument, domErrNoModificationAllowed,
 * domErrNotFound, domErrUnexpected. */
TSX_API TSXStatus TSXReplaceChild(TSXRefId parent, TSXRefId newChild, TSXRefId oldChild);

/* Removes a child and gives one hand-out of its id back. On the last one the
 * node is freed with everything below it, and all their ids end, which costs a walk
 * over the subtree. With other hand-outs open the node lives on, hangs nowhere,
 * may be attached again, and is freed with its document only.
 * domErrRefRemoveChild for the parent, domErrRefRemoveChildArg for the child,
 * domErrNoModificationAllowed, domErrNotFound, domErrUnexpected. */
TSX_API TSXStatus TSXRemoveChild(TSXRefId parent, TSXRefId child);

#endif
