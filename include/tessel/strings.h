/* String properties: read names, values and identifiers, write the three of
 * them that can be set.
 *
 * Any thread may call, but two threads must not work on one document at the
 * same time: no lock is held during the DOM call. Ids come from the node
 * registry. `ignored` is never read. Pointers must not be null. Strings are
 * host handles with bytes in the local code page; what the code page cannot
 * hold comes out as the transcoder makes it. In a string in, a null handle is
 * an empty string, and a NUL byte ends the text.
 *
 * A getter replaces its out. A property that the node does not have leaves a
 * null handle and 0; an empty one is a handle of count 0. Beside a failure the
 * handle is null. A result is 0, a code of <tessel/status.h>, or, from a
 * getter, the positive code of a host that refused the memory.
 *
 * An entry's reference code, named first, answers to id 0, to an id never
 * issued, given back or withdrawn, and to a node of a kind that the entry does
 * not accept. Getters install no handler, since their DOM call cannot fail;
 * setters guard the DOM call. The exhaustion of memory, while a string is
 * converted or in an unguarded call, leaves any of them as a C++ exception. */
#ifndef TESSEL_STRINGS_H
#define TESSEL_STRINGS_H

#include <stdint.h>
#include <tessel/export.h>
#include <tessel/host.h>

/* -- Any node ------------------------------------------------------------- */

/* Gives the name of any node: an element's tag, an attribute's name, a target,
 * an entity's or document type's name, or "#text", "#comment",
 * "#cdata-section", "#document", "#document-fragment". domErrRefGetNodeName. */
TSX_API TSXStatus TSXGetNodeName(TSXRefId node, uint64_t ignored, HStr* nameOut);

/* Gives the namespace URI of an element or attribute; none for other kinds, for
 * a node without namespace and where the document was read with namespaces off.
 * domErrRefGetNamespaceName. */
TSX_API TSXStatus TSXGetNamespaceName(TSXRefId node, uint64_t ignored, HStr* uriOut);

/* Gives the namespace prefix of an element or attribute, none as for
 * TSXGetNamespaceName and for a name without prefix. domErrRefGetPrefixName. */
TSX_API TSXStatus TSXGetPrefixName(TSXRefId node, uint64_t ignored, HStr* prefixOut);

/* Gives the local name (the part behind the prefix) of an element or attribute;
 * none for other kinds, for a node made without a namespace function, and where
 * the document was read with namespaces off. domErrRefGetBaseName. */
TSX_API TSXStatus TSXGetBaseName(TSXRefId node, uint64_t ignored, HStr* localNameOut);

/* Gives the value of a text, CDATA, comment, attribute or
 * processing-instruction node; none for the other kinds. Guarded, and the code
 * is dropped: a failure of the DOM gives a null handle and 0, never a DOM code.
 * domErrRefGetNodeValue. */
TSX_API TSXStatus TSXGetNodeValue(TSXRefId node, uint64_t ignored, HStr* valueOut);

/* Sets the value of a text, CDATA, comment, attribute or processing-instruction
 * node, and does nothing, with 0, to the other kinds. For an attribute, as
 * TSXSetAttrValue. domErrRefSetNodeValue, domErrNoModificationAllowed,
 * domErrUnexpected. */
TSX_API TSXStatus TSXSetNodeValue(TSXRefId node, uint64_t ignored, HStr* value);

/* Sets the prefix of an element or attribute that has a namespace, and its name
 * with it; an empty prefix takes it away. A node without namespace, a prefix
 * with a colon and one reserved for another namespace give domErrNamespace; one
 * that is no XML name, and a read-only node, give domErrUnexpected. Others:
 * domErrRefSetPrefixName. */
TSX_API TSXStatus TSXSetPrefixName(TSXRefId node, uint64_t ignored, HStr* prefix);

/* -- Elements, attributes, processing instructions ------------------------ */

/* Gives the tag name of an element, prefix included. domErrRefGetTagName. */
TSX_API TSXStatus TSXGetTagName(TSXRefId element, uint64_t ignored, HStr* nameOut);

/* Gives the name of an attribute, prefix included. domErrRefName. */
TSX_API TSXStatus TSXName(TSXRefId attribute, uint64_t ignored, HStr* nameOut);

/* Gives the value of an attribute with its entities resolved; an attribute
 * without text has an empty value. domErrRefGetAttrValue. */
TSX_API TSXStatus TSXGetAttrValue(TSXRefId attribute, uint64_t ignored, HStr* valueOut);

/* Sets the value of an attribute: one new text node takes the place of its
 * children, which are freed and their ids withdrawn. The attribute counts as
 * specified from then on. domErrRefSetAttrValue, domErrNoModificationAllowed,
 * domErrUnexpected. */
TSX_API TSXStatus TSXSetAttrValue(TSXRefId attribute, uint64_t ignored, HStr* value);

/* Gives the target of a processing instruction; its data is TSXGetData's.
 * domErrRefGetTarget. */
TSX_API TSXStatus TSXGetTarget(TSXRefId instruction, uint64_t ignored, HStr* targetOut);

/* -- Document types, notations, entities ---------------------------------- */

/* Gives the name of a document type: the document element's.
 * domErrRefGetName. */
TSX_API TSXStatus TSXGetName(TSXRefId documentType, uint64_t ignored, HStr* nameOut);

/* Gives the public id of a document type, none where it has none.
 * domErrRefGetDocTypePublicID. */
TSX_API TSXStatus TSXGetDocTypePublicID(TSXRefId documentType, uint64_t ignored, HStr* idOut);

/* Gives the system id of a document type, none where it has none.
 * domErrRefGetDocTypeSystemID. */
TSX_API TSXStatus TSXGetDocTypeSystemID(TSXRefId documentType, uint64_t ignored, HStr* idOut);

/* Gives the text between the brackets of a document type, none where there are no
 * brackets: character for character as it was read, line ends as line feeds, whatever
 * the tree has become since. domErrRefGetInternalSubset. */
TSX_API TSXStatus TSXGetInternalSubset(TSXRefId documentType, uint64_t ignored, HStr* subsetOut);

/* Gives the public id of a notation, none where it has none.
 * domErrRefGetNotationPublicID. */
TSX_API TSXStatus TSXGetNotationPublicID(TSXRefId notation, uint64_t ignored, HStr* idOut);

/* Gives the system id of a notation, none where it has none.
 * domErrRefGetNotationSystemID. */
TSX_API TSXStatus TSXGetNotationSystemID(TSXRefId notation, uint64_t ignored, HStr* idOut);

/* Gives the public id of an entity, none where it has none.
 * domErrRefGetEntityPublicId. */
TSX_API TSXStatus TSXGetEntityPublicId(TSXRefId entity, uint64_t ignored, HStr* idOut);

/* Gives the system id of an entity, none for an internal one.
 * domErrRefGetEntitySystemId. */
TSX_API TSXStatus TSXGetEntitySystemId(TSXRefId entity, uint64_t ignored, HStr* idOut);

/* Gives the name of the notation that an unparsed ENTITY is written in, none
 * for a parsed one. It takes an entity, not a notation; a notation's own name
 * is TSXGetNodeName's. domErrRefGetNotationName. */
TSX_API TSXStatus TSXGetNotationName(TSXRefId entity, uint64_t ignored, HStr* nameOut);

#endif
