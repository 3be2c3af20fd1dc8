/* Documents: create, open and close them, and give node ids back.
 *
 * Any thread may call. Locks are taken one after another and held for a look-up
 * only; two threads must not work on one document at the same time, closing
 * included. Ids come from the node registry, each id written is one hand-out and
 * is owed back: TSXDocumentClose for document ids, TSXNodeClose for all others.
 * Strings in are host-owned and in the local code page; a null handle is an empty
 * string.
 *
 * A document id stands for the document object: the tree, its parser with its
 * options, and its messages. The bare document node below it, which
 * TSXGetParentNode of the document element gives, has an id of its own and is
 * refused by every function that asks for a document.
 *
 * What ends which id. An id that ends answers with each function's reference code
 * from then on, as an id that was never issued, and its close is ignored. "Its own"
 * is the id of the node that the call names; "below" are the ids of everything in
 * that node, with attributes and their texts, and of the lists and maps that belong
 * to any of these nodes. They end however often they were handed out.
 *
 *   what happens                          its own           below
 *   the last hand-out comes back          ends; the node    stay
 *                                         stays in its tree
 *   TSXNodeClose, the node was created    ends, at every    end: the node is
 *     or detached and is in no tree       close             freed
 *   TSXRemoveChild, last hand-out         ends              end: the child is freed
 *   TSXRemoveChild, hand-outs left        one is given back stay
 *   TSXReplaceChild, the old child        stays             stay
 *   TSXRemoveAttribute(NS)                ends              end
 *   TSXRemoveAttributeNode                ends              end
 *   TSXSetAttributeNode(NS),              stays             stay
 *     TSXSetNamedItem(NS), the replaced
 *   TSXRemoveNamedItem(NS)                stays             stay
 *   a new value or text of an attribute   stays             end
 *   a new text of any other node          stays             stay; the old children
 *                                                           hang nowhere
 *   TSXNormalize                          stays             stay; merged texts hang
 *                                                           nowhere
 *   TSXElementSetXML                      moves to the      end
 *                                         new element
 *   a load into the document              the document's    end, the bare document
 *                                         stays             node's too
 *   last TSXDocumentClose, and the        ends              end, the bare document
 *     host's cleanup procedure                              node's too
 *   last TSXNodeClose of a document id    ends              node ids end; lists and
 *     or of the bare document node's                        maps stay
 *
 * A list or map ends with the node that it belongs to; the list of a node that
 * cannot have children belongs to none, and its id ends with its last close only. */
#ifndef TESSEL_DOCUMENT_H
#define TESSEL_DOCUMENT_H

#include <stdint.h>
#include <tessel/export.h>
#include <tessel/host.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Opens a new document without any node and writes its id. Always 0. An
 * exhausted heap leaves as a C++ exception, with nothing half made. */
TSX_API TSXStatus TSXDocumentOpen(uint64_t ignored, TSXRefId* documentOut);

/* Creates a document with a document element. `implementation` comes from
 * TSXGetImplementation, `documentType` from TSXCreateDocumentType or is 0 for
 * none. Writes the document's id, 0 on failure.
 *   domErrRefCreateDocument         no such implementation
 *   domErrRefCreateDocumentDocType  documentType is not 0 and no document type
 *   domErrInvalidCharacter          the name is no XML name, or empty
 *   domErrNamespace                 the name and the URI contradict each other
 *   domErrWrongDocument             the type belongs to another document
 *   domErrNotSupported, domErrUnexpected
 * The document type is part of the document from then on, and its id ends with
 * it; after a failure it may be used for another try. An exhausted heap while
 * the strings are converted leaves as a C++ exception. */
TSX_API TSXStatus TSXCreateDocument(TSXRefId implementation, HStr* namespaceURI,
                                    HStr* qualifiedName, TSXRefId documentType,
                                    TSXRefId* documentOut);

/* Gives one hand-out of a document id back. The last one frees the document with
 * all its nodes, attached or not, and takes the ids of all of them along,
 * however often they were handed out; the id of the bare document node and the
 * ids of the document's lists and maps go too. Costs what the document's own ids
 * and its lists and maps cost, beside freeing the tree. Ids that are unknown or 0 are
 * ignored. The id of another node is given back; with its last hand-out goes what
 * belongs to no document object, the clone of a document or a document type that no
 * document has taken, and nothing else.
 *
 * Up to 256 MB of the memory of closed documents wait for the next one. The system may
 * take them where it runs short; what is beyond goes back to it at once. */
TSX_API void TSXDocumentClose(TSXRefId document);

/* Gives one hand-out of a node's id back. Unknown ids and 0 are ignored.
 *
 * A node that was created and that no tree owns yet, and an attribute or item that
 * another replaced or that was taken out of its map, is freed with everything below
 * it, ids included, at EVERY close, also when other hand-outs of its id are open:
 * those then answer with each function's reference code. A copy, and a child that was
 * removed or replaced, is freed with its document.
 *
 * On the last hand-out of the bare document node's id (TSXGetParentNode of the
 * document element) every node id of that document is dropped; the tree and the
 * document id stay, but the tree of a cloned document goes. On the last hand-out of
 * a document id the node ids go too, but the document object is not freed: use
 * TSXDocumentClose for those. A document type that no document has taken goes with
 * the last hand-out of its id. */
TSX_API void TSXNodeClose(TSXRefId node);

#ifdef __cplusplus
}

/* The host's cleanup procedure: frees a document that its program left open.
 * `data` points to 8 bytes with the document id. The ids of the document and of
 * its nodes answer with each function's reference code from then on, however many
 * hand-outs are open. Exported under its C++ name, _Z21CleanupProcCXercesDOMPh,
 * which is the symbol that a host asks for. */
__attribute__((visibility("default"))) void CleanupProcCXercesDOM(unsigned char* data);
#endif

#endif
