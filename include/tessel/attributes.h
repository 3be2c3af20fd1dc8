/* Attributes of an element: test, read, set and remove them by name or by
 * namespace, as values or as attribute nodes; find an element by its ID.
 *
 * Any thread may call, but two threads must not work on one document at the
 * same time: no lock is held during the DOM call. Ids come from the node
 * registry; every id written is one hand-out, owed back with TSXNodeClose.
 * Pointers must not be null. Strings are host handles with bytes in the local
 * code page; in a string in, a null handle is an empty string, and a NUL byte
 * ends the text. A flag is one byte, 0 or 1.
 *
 * The functions without NS compare whole names, prefix included. Those with NS
 * compare namespace URI and local name; an empty URI means no namespace, and an
 * attribute that was made without namespaces counts with its whole name as
 * local name, or to an empty local name. A missing attribute is no failure: flag 0,
 * id 0, empty string.
 *
 * A result is 0 or a code of <tessel/status.h>; beside a failure ids and flags
 * are 0 and a string out is a null handle. The reference code, named first,
 * answers to an element id that is 0, was never issued, given back or
 * withdrawn, or names another kind of node. Functions that name
 * domErrUnexpected guard their DOM call; the others install no handler, since
 * theirs cannot fail. Only the exhaustion of memory, while a string is
 * converted or in an unguarded call, leaves as a C++ exception. */
#ifndef TESSEL_ATTRIBUTES_H
#define TESSEL_ATTRIBUTES_H

#include <stdint.h>
#include <tessel/export.h>
#include <tessel/host.h>

/* -- By name -------------------------------------------------------------- */

/* Tells whether an element has an attribute, also one that the grammar
 * supplied. domErrRefHasAttribute. */
TSX_API TSXStatus TSXHasAttribute(TSXRefId element, HStr* name, uint8_t* flagOut);

/* As TSXHasAttribute, by namespace. domErrRefHasAttributeNS. */
TSX_API TSXStatus TSXHasAttributeNS(TSXRefId element, HStr* namespaceURI, HStr* localName,
                                    uint8_t* flagOut);

/* Gives the value of an attribute; a missing one gives a string of count 0, as
 * an empty value does: TSXHasAttribute tells them apart. May return the
 * positive code of a host that refused memory. domErrRefGetAttribute. */
TSX_API TSXStatus TSXGetAttribute(TSXRefId element, HStr* name, HStr* valueOut);

/* As TSXGetAttribute, by namespace. domErrRefGetAttributeNS. */
TSX_API TSXStatus TSXGetAttributeNS(TSXRefId element, HStr* namespaceURI, HStr* localName,
                                    HStr* valueOut);

/* Sets the value of an attribute, making the attribute where it is missing.
 * Text nodes below an existing attribute are freed and their ids withdrawn. The
 * element code is shared with TSXSetAttributeNode: domErrRefSetAttribute.
 * Others: domErrInvalidCharacter for a name that XML forbids,
 * domErrNoModificationAllowed, domErrUnexpected. */
TSX_API TSXStatus TSXSetAttribute(TSXRefId element, HStr* name, HStr* value);

/* As TSXSetAttribute, by namespace. A name without a prefix gives the value to the
 * attribute that is there, which keeps its own prefix. A name with a prefix makes a
 * new attribute each time; the one that it replaces, and its id, live on and belong
 * to no element. domErrRefSetAttributeNS, domErrInvalidCharacter,
 * domErrNoModificationAllowed, domErrNamespace where the prefix does not fit
 * the URI, domErrUnexpected. */
TSX_API TSXStatus TSXSetAttributeNS(TSXRefId element, HStr* namespaceURI, HStr* qualifiedName,
                                    HStr* value);

/* Removes an attribute and frees it with its text; their ids are withdrawn. A
 * missing one is 0. Where the grammar has a default, the attribute comes back
 * with it as a new node. domErrRefRemoveAttribute, domErrNoModificationAllowed,
 * domErrUnexpected. */
TSX_API TSXStatus TSXRemoveAttribute(TSXRefId element, HStr* name);

/* As TSXRemoveAttribute, by namespace. domErrRefRemoveAttributeNS,
 * domErrNoModificationAllowed, domErrUnexpected. */
TSX_API TSXStatus TSXRemoveAttributeNS(TSXRefId element, HStr* namespaceURI, HStr* localName);

/* -- As nodes ------------------------------------------------------------- */

/* Gives the id of an attribute node, 0 for a missing one.
 * domErrRefGetAttributeNode. */
TSX_API TSXStatus TSXGetAttributeNode(TSXRefId element, HStr* name, TSXRefId* attributeOut);

/* As TSXGetAttributeNode, by namespace. domErrRefGetAttributeNodeNS. */
TSX_API TSXStatus TSXGetAttributeNodeNS(TSXRefId element, HStr* namespaceURI, HStr* localName,
                                        TSXRefId* attributeOut);

/* Hangs an attribute node on an element and gives the one of the same name that
 * it replaced, or 0. The replaced one stays usable, belongs to the document and
 * is freed by TSXNodeClose. An attribute that the element already has gives its
 * own id and stays where it is.
 *   domErrRefSetAttribute         the element's id, as in TSXSetAttribute
 *   domErrRefSetAttributeNodeArg  the attribute's id names no node; its kind is not
 *                                 looked at, and another kind is domErrWrongDocument
 *   domErrWrongDocument           the attribute is another document's
 *   domErrInUseAttribute          it belongs to another element
 *   domErrNoModificationAllowed, domErrUnexpected */
TSX_API TSXStatus TSXSetAttributeNode(TSXRefId element, TSXRefId attribute, TSXRefId* replacedOut);

/* As TSXSetAttributeNode, where the same namespace URI and local name decide.
 * An attribute that the element already has is domErrInUseAttribute; another
 * kind of node is domErrUnexpected, or domErrWrongDocument if it is another
 * document's. domErrRefSetAttributeNodeNS, domErrRefSetAttributeNodeNSArg,
 * domErrWrongDocument, domErrInUseAttribute, domErrNoModificationAllowed,
 * domErrUnexpected. */
TSX_API TSXStatus TSXSetAttributeNodeNS(TSXRefId element, TSXRefId attribute,
                                        TSXRefId* replacedOut);

/* Removes an attribute node from its element and frees it at once, however many
 * hand-outs are open: its id ends, and so do those of its texts.
 *   domErrRefRemoveAttributeNode     the element's id
 *   domErrRefRemoveAttributeNodeArg  the attribute's id names no node
 *   domErrNotFound                   the element does not have it, or it is another
 *                                    kind of node
 *   domErrNoModificationAllowed, domErrUnexpected */
TSX_API TSXStatus TSXRemoveAttributeNode(TSXRefId element, TSXRefId attribute);

/* -- By ID ---------------------------------------------------------------- */

/* Gives the element of a document whose ID attribute has the value, 0 for none.
 * Only an attribute that a grammar declares as ID counts, whatever its name.
 * Costs one table look-up. Takes a document id; any other node is refused with
 * domErrRefGetElementById. */
TSX_API TSXStatus TSXGetElementById(TSXRefId document, HStr* elementId, TSXRefId* elementOut);

#endif
