/* Collections: node lists, named node maps and the DOM implementation.
 *
 * Any thread may call, but two threads must not work on one document at the
 * same time: no lock is held during the DOM call. Lists, maps and
 * implementations have ids from registries of their own, so a list and a node
 * may have the same number. Every id written, each id in an array included, is
 * one hand-out: owed back with TSXNodeListClose, TSXNamedNodeMapClose,
 * TSXImplementationClose, or for nodes TSXNodeClose. "Document" means a
 * document id as TSXGetOwnerDocument gives it. Pointers must not be null;
 * `ignored` is never read.
 *
 * Lists and maps are LIVE: they follow every change of the tree. The DOM keeps
 * one object for a question asked twice, so the same id comes again, with one
 * more hand-out; the empty child lists of all leaf nodes are one list. The id of a
 * list or map ends with the node that it belongs to, and so with its document:
 * <tessel/document.h> has the table.
 *
 * Strings are host handles with bytes in the local code page; a null handle is
 * an empty string, and a NUL byte ends the text. In a name lookup "*" matches
 * every name and, as namespace URI, every namespace; an empty URI means no
 * namespace. Elements that were read with namespaces off have no local name,
 * and only "*" finds them by namespace.
 *
 * A result is 0 or a code of <tessel/status.h>. A reference code answers to id
 * 0, to an id never issued, given back or withdrawn, and to one of another kind. Beside a
 * failure an id, flag or count is 0 and an array is a null handle. An array
 * without members has a handle and count 0; a null handle with the result 0
 * means that the host refused the memory, and no id was handed out. DOM calls
 * are guarded: what an entry does not name is domErrUnexpected. Only the
 * exhaustion of memory, while a string is converted or a result registered, leaves
 * as a C++ exception. */
#ifndef TESSEL_COLLECTIONS_H
#define TESSEL_COLLECTIONS_H

#include <stdint.h>
#include <tessel/export.h>
#include <tessel/host.h>

/* -- Node lists: where they come from ------------------------------------- */

/* Gives the list of any node's children. Cheap itself, but see TSXGetItem.
 * domErrRefGetChildNodeList. */
TSX_API TSXStatus TSXGetChildNodeList(TSXRefId node, uint64_t ignored, TSXRefId* listOut);

/* Gives the ids of all children of any node in one pass.
 * domErrRefGetChildNodeList. */
TSX_API TSXStatus TSXGetChildNodes(TSXRefId node, uint64_t ignored,
                                   GenericRefObjSessionArray* nodesOut);

/* Gives the list of a document's elements with a tag name (prefix included), in
 * document order. domErrRefGetElementsByTagNameList. */
TSX_API TSXStatus TSXGetElementsByTagNameList(TSXRefId document, HStr* name, TSXRefId* listOut);

/* As TSXGetElementsByTagNameList, as an array, in one pass over the document.
 * domErrRefGetElementsByTagNameList. */
TSX_API TSXStatus TSXGetElementsByTagName(TSXRefId document, HStr* name,
                                          GenericRefObjSessionArray* nodesOut);

/* Gives the list of a document's elements with a namespace and a local name, in
 * document order. domErrRefGetElementsByTagNameNS. */
TSX_API TSXStatus TSXGetElementsByTagNameNS(TSXRefId document, HStr* namespaceURI, HStr* localName,
                                            TSXRefId* listOut);

/* As TSXGetElementsByTagNameNS, as an array, but with the code of the functions
 * without namespace: domErrRefGetElementsByTagNameList. */
TSX_API TSXStatus TSXGetElementsByTagNameNSArray(TSXRefId document, HStr* namespaceURI,
                                                 HStr* localName,
                                                 GenericRefObjSessionArray* nodesOut);

/* Gives the list of the elements below an element, itself not counted, with a
 * tag name. domErrRefElementGetElementsByTagName. */
TSX_API TSXStatus TSXElementGetElementsByTagName(TSXRefId element, HStr* name, TSXRefId* listOut);

/* As TSXElementGetElementsByTagName, as an array.
 * domErrRefElementGetElementsByTagName. */
TSX_API TSXStatus TSXElementGetElementsByTagNameArray(TSXRefId element, HStr* name,
                                                      GenericRefObjSessionArray* nodesOut);

/* Gives the list of the elements below an element with a namespace and a local
 * name. domErrRefElementGetElementsByTagNameNS. */
TSX_API TSXStatus TSXElementGetElementsByTagNameNS(TSXRefId element, HStr* namespaceURI,
                                                   HStr* localName, TSXRefId* listOut);

/* As TSXElementGetElementsByTagNameNS, as an array.
 * domErrRefElementGetElementsByTagNameNS. */
TSX_API TSXStatus TSXElementGetElementsByTagNameNSArray(TSXRefId element, HStr* namespaceURI,
                                                        HStr* localName,
                                                        GenericRefObjSessionArray* nodesOut);

/* -- Node lists: what they hold ------------------------------------------- */

/* Gives the member at an index from 0; an index that is negative or out of
 * range gives 0 and status 0. In a list by tag name the next index is one step
 * on from the last one asked for; an earlier index, a change anywhere in the
 * document and TSXGetListLength start again from the front, so ask for the
 * length once, before the loop. A child list walks from the member last asked
 * for, or from the first, whichever is nearer, so a loop takes a step for each
 * member, forwards and backwards; after a change anywhere in the document the
 * first call walks from the first child. domErrRefGetItem. */
TSX_API TSXStatus TSXGetItem(TSXRefId list, int32_t index, TSXRefId* nodeOut);

/* Gives the number of members. A list by tag name counts them at every call,
 * with a walk over the whole subtree, a child list at the first call after a
 * change of the document. domErrRefGetListLength. */
TSX_API TSXStatus TSXGetListLength(TSXRefId list, uint64_t ignored, int32_t* lengthOut);

/* Gives the ids of all members as they are now, in one pass. domErrRefGetItem,
 * shared with TSXGetItem. */
TSX_API TSXStatus TSXGetNodeListArray(TSXRefId list, uint64_t ignored,
                                      GenericRefObjSessionArray* nodesOut);

/* Gives one hand-out of a list's id back; its nodes keep theirs. Unknown ids
 * and 0 are ignored. */
TSX_API void TSXNodeListClose(TSXRefId list);

/* -- Named node maps: where they come from -------------------------------- */

/* Gives the map of an element's attributes; any other kind of node has none, id
 * 0 and status 0. domErrRefGetAttributes. */
TSX_API TSXStatus TSXGetAttributes(TSXRefId node, uint64_t ignored, TSXRefId* mapOut);

/* Gives the map of a document type's entities. The map can be changed.
 * domErrRefGetEntities. */
TSX_API TSXStatus TSXGetEntities(TSXRefId documentType, uint64_t ignored, TSXRefId* mapOut);

/* Gives the map of a document type's notations. The map can be changed.
 * domErrRefGetNotations. */
TSX_API TSXStatus TSXGetNotations(TSXRefId documentType, uint64_t ignored, TSXRefId* mapOut);

/* -- Named node maps: what they hold -------------------------------------- */

/* Gives the ids of all items in no particular order. domErrRefGetArray. */
TSX_API TSXStatus TSXGetArray(TSXRefId map, uint64_t ignored, GenericRefObjSessionArray* nodesOut);

/* Gives the item with a name (prefix included), 0 for none.
 * domErrRefGetNamedItem. */
TSX_API TSXStatus TSXGetNamedItem(TSXRefId map, HStr* name, TSXRefId* nodeOut);

/* Gives the item with a namespace and a local name, 0 for none; "*" is not
 * special here. domErrRefGetNamedItemNS. */
TSX_API TSXStatus TSXGetNamedItemNS(TSXRefId map, HStr* namespaceURI, HStr* localName,
                                    TSXRefId* nodeOut);

/* Enters a node and gives the one of the same name that it replaced, or 0. The
 * replaced one stays usable and is freed by TSXNodeClose. A node that is there
 * already gives its own id. A node that an attribute map cannot take is
 * domErrUnexpected.
 *   domErrRefSetNamedItem     the map's id
 *   domErrRefSetNamedItemArg  the node's id names no node; its kind is not looked at
 *   domErrWrongDocument       the node is another document's
 *   domErrInUseAttribute      it is another element's attribute
 *   domErrNoModificationAllowed, domErrUnexpected */
TSX_API TSXStatus TSXSetNamedItem(TSXRefId map, TSXRefId node, TSXRefId* replacedOut);

/* As TSXSetNamedItem, where the same namespace URI and local name decide; a
 * node that is there already is domErrInUseAttribute. domErrRefSetNamedItemNS,
 * domErrRefSetNamedItemNSArg, domErrWrongDocument, domErrInUseAttribute,
 * domErrNoModificationAllowed, domErrUnexpected. */
TSX_API TSXStatus TSXSetNamedItemNS(TSXRefId map, TSXRefId node, TSXRefId* replacedOut);

/* Takes the item with a name out of the map and gives its id: it lives on, in
 * no tree, and is freed by TSXNodeClose. An attribute that the grammar has a
 * default for is replaced by a new one. domErrRefRemoveNamedItem,
 * domErrNotFound for a missing item, domErrNoModificationAllowed,
 * domErrUnexpected. */
TSX_API TSXStatus TSXRemoveNamedItem(TSXRefId map, HStr* name, TSXRefId* removedOut);

/* As TSXRemoveNamedItem, by namespace. domErrRefRemoveNamedItemNS,
 * domErrNotFound, domErrNoModificationAllowed, domErrUnexpected. */
TSX_API TSXStatus TSXRemoveNamedItemNS(TSXRefId map, HStr* namespaceURI, HStr* localName,
                                       TSXRefId* removedOut);

/* Gives the item at an index from 0, in no particular order; an index that is
 * negative or out of range gives 0 and status 0.
 * domErrRefGetNamedNodeMapItem. */
TSX_API TSXStatus TSXGetNamedNodeMapItem(TSXRefId map, int32_t index, TSXRefId* nodeOut);

/* Gives the number of items. domErrRefGetNamedNodeMapLength. */
TSX_API TSXStatus TSXGetNamedNodeMapLength(TSXRefId map, uint64_t ignored, int32_t* lengthOut);

/* Gives one hand-out of a map's id back; its nodes keep theirs. Unknown ids and
 * 0 are ignored. */
TSX_API void TSXNamedNodeMapClose(TSXRefId map);

/* -- The DOM implementation ----------------------------------------------- */

/* Gives the implementation behind a document. There is one for the whole
 * process: its id is good for every document and outlives them all.
 * domErrRefGetImplementation. */
TSX_API TSXStatus TSXGetImplementation(TSXRefId document, uint64_t ignored,
                                       TSXRefId* implementationOut);

/* Tells whether the implementation supports a feature ("Core", "XML", "LS", in
 * either case) in a version ("2.0"; an empty one asks for any version).
 * domErrRefHasFeature. */
TSX_API TSXStatus TSXHasFeature(TSXRefId implementation, HStr* feature, HStr* version,
                                uint8_t* flagOut);

/* Creates a document type without entities, to be given to TSXCreateDocument.
 * It belongs to no document, and so outlives them all, until one uses it; from
 * then on its id goes with that document. Unused, it is freed with the last
 * hand-out of its id. domErrRefCreateDocumentType,
 * domErrInvalidCharacter for a name that XML forbids (an empty one too),
 * domErrNamespace for a misplaced colon, domErrNotSupported,
 * domErrUnexpected. */
TSX_API TSXStatus TSXCreateDocumentType(TSXRefId implementation, HStr* qualifiedName,
                                        HStr* publicId, HStr* systemId, TSXRefId* typeOut);

/* Gives one hand-out of an implementation's id back. Unknown ids and 0 are
 * ignored. */
TSX_API void TSXImplementationClose(TSXRefId implementation);

/* -- Fillers, for C++ glue code that holds the DOM's own objects ---------- */

/* Makes *array hold the ids of a list's members, `nodeList` being a
 * xercesc::DOMNodeList*: one new hand-out each, in list order. A null list
 * leaves the array untouched. Reports nothing: a null *array afterwards means
 * that the host refused the memory. */
TSX_API void TSUNodeListToArray(GenericRefObjSessionArray* array, void* nodeList);

/* As TSUNodeListToArray for the items of a map, `namedNodeMap` being a
 * xercesc::DOMNamedNodeMap*, which must not be null. */
TSX_API void TSUNamedNodeMapToArray(GenericRefObjSessionArray* array, void* namedNodeMap);

#endif
