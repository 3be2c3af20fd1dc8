/* Character data: read and edit the text of text, CDATA and comment nodes, the
 * text content of any node, and the data of processing instructions.
 *
 * Any thread may call, but two threads must not work on one document at the
 * same time: no lock is held during the DOM call. Ids come from the node
 * registry; an id written is one hand-out, owed back with TSXNodeClose.
 * `ignored` is never read. Pointers must not be null. Strings are host handles
 * with bytes in the local code page; in a string in, a null handle is an empty
 * string, and a NUL byte ends the text.
 *
 * Offsets and counts are UTF-16 code units, so a character beyond U+FFFF counts
 * 2. They are signed 32-bit; a negative one is taken as larger than any text:
 * as an offset it lies outside, as a count it means "to the end", as does every
 * count that runs past the end.
 *
 * A result is 0 or a code of <tessel/status.h>; beside a failure ids and counts
 * are 0 and a string out is a null handle. An entry's reference code, named
 * first, answers to id 0, to an id never issued, given back or withdrawn, and
 * to a node of a kind that the entry does not accept. "Text node" covers CDATA
 * sections.
 *
 * DOM calls are guarded. The string getters DROP the code of a failed DOM call:
 * the out is a null handle and the result 0, on purpose. They may also return
 * the positive code of a host that refused memory. Only the exhaustion of
 * memory, while a string is converted or in TSXGetCharacterDataLength, which is
 * unguarded, leaves as a C++ exception. */
#ifndef TESSEL_CHARACTERDATA_H
#define TESSEL_CHARACTERDATA_H

#include <stdint.h>
#include <tessel/export.h>
#include <tessel/host.h>

/* -- Text nodes and comments ---------------------------------------------- */

/* Gives the length of a text or comment node's data in UTF-16 code units, not
 * in bytes of the host string. domErrRefGetCharacterDataLength. */
TSX_API TSXStatus TSXGetCharacterDataLength(TSXRefId node, uint64_t ignored, int32_t* lengthOut);

/* Gives the data of a text or comment node. The DOM's code is dropped.
 * domErrRefGetCharacterDataData. */
TSX_API TSXStatus TSXGetCharacterDataData(TSXRefId node, uint64_t ignored, HStr* dataOut);

/* Replaces the data of a text or comment node. domErrRefSetCharacterDataData,
 * domErrNoModificationAllowed, domErrUnexpected. */
TSX_API TSXStatus TSXSetCharacterDataData(TSXRefId node, uint64_t ignored, HStr* data);

/* Gives `count` units of a text or comment node's data from `offset` on; a
 * negative or huge count gives the rest. An offset outside the text gives an
 * empty string and 0, never domErrIndexSize, because the code is dropped. A run
 * that starts or ends inside a surrogate pair holds half a character, which the
 * transcoder replaces. The document keeps a copy of each different run.
 * domErrRefGetSubstringData. */
TSX_API TSXStatus TSXGetSubstringData(TSXRefId node, int32_t offset, int32_t count, HStr* dataOut);

/* Appends to the data of a text or comment node. Maps no code but the read-only
 * one. domErrRefAppendData, domErrNoModificationAllowed, domErrUnexpected. */
TSX_API TSXStatus TSXAppendData(TSXRefId node, HStr* data);

/* Inserts into the data of a text or comment node before `offset`; the length
 * as offset appends. domErrRefInsertData, domErrIndexSize for an offset outside
 * the text, domErrNoModificationAllowed, domErrUnexpected. */
TSX_API TSXStatus TSXInsertData(TSXRefId node, int32_t offset, HStr* data);

/* Deletes `count` units of a text or comment node's data from `offset` on.
 * domErrRefDeleteData, domErrIndexSize for an offset outside the text,
 * domErrNoModificationAllowed, domErrUnexpected. */
TSX_API TSXStatus TSXDeleteData(TSXRefId node, int32_t offset, int32_t count);

/* Puts `data` in the place of `count` units of a text or comment node's data
 * from `offset` on. domErrRefReplaceData, domErrIndexSize for an offset outside
 * the text, domErrNoModificationAllowed, domErrUnexpected. */
TSX_API TSXStatus TSXReplaceData(TSXRefId node, int32_t offset, int32_t count, HStr* data);

/* Splits a text node (a comment is refused): the node keeps what lies before
 * `offset`, a new node of the same kind, whose id is given, has the rest and
 * follows it as its sibling. Without a parent the new node hangs nowhere and is
 * freed with its document, not by TSXNodeClose. A split inside a surrogate pair
 * leaves half a character in each. domErrRefSplitText, domErrIndexSize for an
 * offset outside the text, domErrNoModificationAllowed, domErrUnexpected. */
TSX_API TSXStatus TSXSplitText(TSXRefId node, int32_t offset, TSXRefId* restOut);

/* -- Text content --------------------------------------------------------- */

/* Gives the text content of any node: of an element, fragment, entity or entity
 * reference the text below it, comments and processing instructions left out;
 * of a leaf its value; of a document, document type or notation an empty
 * string. One pass over the subtree. domErrRefGetText. */
TSX_API TSXStatus TSXGetText(TSXRefId node, HStr* textOut);

/* Sets the text content of any node: an element or fragment gets one text node
 * in the place of all its children, which then hang nowhere and keep their ids;
 * a leaf or an attribute gets a new value, as from TSXSetNodeValue; a document,
 * document type or notation nothing, with 0. domErrRefSetText,
 * domErrStringSize, domErrNoModificationAllowed, domErrUnexpected. */
TSX_API TSXStatus TSXSetText(TSXRefId node, HStr* text);

/* -- Processing instructions ---------------------------------------------- */

/* Gives the data of a processing instruction; comments and text have
 * TSXGetCharacterDataData. The DOM's code is dropped. domErrRefGetData. */
TSX_API TSXStatus TSXGetData(TSXRefId instruction, uint64_t ignored, HStr* dataOut);

/* Sets the data of a processing instruction. domErrRefSetData,
 * domErrNoModificationAllowed, domErrUnexpected. */
TSX_API TSXStatus TSXSetData(TSXRefId instruction, uint64_t ignored, HStr* data);

#endif
