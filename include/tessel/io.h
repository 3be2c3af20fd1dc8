/* Loading, saving, encodings, and replacing an element by XML text.
 *
 * Any thread may call, but two threads must not work on one document at once.
 * File operations of all threads are done one after another; strings are loaded
 * and written without that lock. Ids come from the node registry. Strings are
 * host-owned handles; a null one is empty. No exception leaves a function of
 * this header.
 *
 * Loads report in two strings. `parseErrors` receives the parser's lines when the
 * parser counted errors ("Line 3, Column 7,  Message: ..."; each line ends in
 * CR LF but a fatal error's, which has no line break) and is cleared when it
 * counted none. `exceptionText` receives the text of an exception that aborted
 * the call, and is otherwise left alone; so is `parseErrors` when there was an
 * exception. Lines that an aborted load collected are reported by the next load
 * of the same document that counts errors, before its own. Warnings are not
 * reported. Lines and columns count from 1, columns in UTF-16 code units. */
#ifndef TESSEL_IO_H
#define TESSEL_IO_H

#include <stdbool.h>
#include <stdint.h>
#include <tessel/export.h>
#include <tessel/host.h>

#ifdef __cplusplus
extern "C" {
#endif

/* -- Loading --------------------------------------------------------------
 *
 * What a document names is fetched while it loads, unless TSXSetExternalAccess
 * refuses it: entities always, a document type from elsewhere and schemas as the
 * other options say (SECURITY.md has the table).
 * A name is a path or a file: URL, relative to the document's own, or an http:,
 * https: or ftp: URL; file operations wait for the network, too. What is missing,
 * a directory, or cannot be reached is a fatal error with a line; a schema that is
 * missing shows only in the errors that follow from it, unless the host has named it.
 *
 * Elements may be nested to any depth. Beyond these limits a text gets a fatal error:
 *   50,000 expansions of entities in one load, those in attributes, in default
 *   attributes and of parameter entities included
 *   as much expanded text as TSXSetEntityTextLimit says
 *   250 levels, elements and references, from a reference to an entity down
 *   with validation, a content model of more names than the calling thread's stack
 *   has room for, at 208 bytes each after a reserve of 64 KB: 900 on 256 KB,
 *   40,000 on 8 MB
 *   with schemas, a pattern that is too large, that needs more stack for a value than the
 *   calling thread has, or that takes too many steps (SECURITY.md has the figures)
 *   with schemas, types, elements and groups nested too deep for that stack, and a type
 *   that repeats groups of more than 20,000 elements in all, where a reference to a named
 *   group counts as one
 * Even so a schema can take time and memory without end: load none from strangers. */

/* Reads a file into a document and replaces its tree; the document id and the
 * parser's options stay. The new tree is what the parser produced, also when it
 * counted errors: all of it after validation errors, the part before a fatal
 * error. A file that cannot be opened is an error line, and the old tree stays.
 * The file is read as it is at each moment: one that is removed or replaced
 * meanwhile is read to its end, one that is cut or grows is what it has become.
 * Devices and pipes are read to their end, too; a pipe that nobody writes to, or a
 * source without end, keeps the call from returning, and all other file operations.
 *
 * The ids of the old tree end, those of its bare document node, lists and maps
 * included; <tessel/document.h> has the table.
 *   domErrRefLoadFile   no document object
 *   domErrPathLoadFile  not a path, or an empty one
 *   domErrParse         errors were counted, or the parser or the DOM raised
 *   domErrUnexpected    any other exception
 *   2                   the host refused the native path; nothing was read */
TSX_API TSXStatus TSXLoadFile(TSXRefId document, HostPath path, HStr* parseErrors,
                              HStr* exceptionText);

/* As TSXLoadFile, from XML text: bytes in whatever encoding the text declares, up
 * to the first NUL byte. Text in UTF-16 or UTF-32 holds NUL bytes: that is what
 * TSXLoadBytes is for. Relative references resolve against "LoadXMLString", and what may be
 * read at all is said by TSXSetExternalAccess.
 *   domErrRefDocument   no document object
 *   domErrParse, domErrUnexpected */
TSX_API TSXStatus TSXLoadString(TSXRefId document, HStr* xmlText, HStr* parseErrors,
                                HStr* exceptionText);

/* TSXLoadString with all bytes of the string, NUL bytes too: text as a file would hold
 * it, in any encoding. Without a declaration that names it, UTF-16 and UTF-32 are known
 * by a byte order mark, and all else is UTF-8. The parser takes a character NUL for the
 * end of the text, also in a file. The bytes are copied once. */
TSX_API TSXStatus TSXLoadBytes(TSXRefId document, HStr* bytes, HStr* parseErrors,
                               HStr* exceptionText);

/* Replaces an element, tag and attributes included, by the root element of an XML
 * document, parsed with the options of the element's document. The element's id
 * moves to the new element with its hand-outs; ids of the old element's
 * attributes and descendants are withdrawn. Comments, processing instructions
 * and the document type around the new root are dropped, and with them what its
 * entities stand for. Malformed text whose
 * root the parser had begun replaces the element by what was read; text without
 * any root leaves it where it is.
 *   domErrRefDocument   no element, an element without parent, or one of a
 *                       cloned document, which no document object stands behind
 *   domErrParse         errors were counted, or the parser or the DOM raised, as
 *                       for a place that is read-only
 *   domErrUnexpected    any other exception */
TSX_API TSXStatus TSXElementSetXML(TSXRefId element, HStr* xmlText, HStr* parseErrors,
                                   HStr* exceptionText);

/* -- Writing -------------------------------------------------------------- */

/* Writes a node with all below it as XML text, in the encoding of its document,
 * and copies it to *xmlOut in one step: bytes in that encoding, not in the local
 * code page, and without a byte order mark. A document id writes the XML declaration
 * too, unless TSXSetWriteDeclaration says otherwise. A tree of any depth is written.
 *
 * What is written can be read again and means the same:
 *   A character that the encoding lacks is a reference in text, values, and the values
 *   that the internal subset declares; a CDATA section is split for it, for a carriage
 *   return and for "]]>".
 *   The internal subset stands as it was read. Attributes with their default value are
 *   left out, and the entity references of the tree are references.
 *   A prefix that an element or attribute uses is declared there unless it is already;
 *   one that the tree binds to two namespaces at once is exchanged for another. Nodes
 *   made without namespaces are written as they are named.
 *
 * Refused is what no parser takes: a comment with "--" inside or a hyphen at its end,
 * an instruction's data with "?>" or with the target "xml", characters that the
 * document's version of XML does not have, identifiers with both kinds of quotes, two
 * attributes of one name, a notation alone. A carriage return in a comment or an
 * instruction is read again as a line feed. Not looked at is whether a document has
 * one root and whether references name an entity.
 *   domErrRefGetXMLCommon   no node; *xmlOut is cleared
 *   domErrSerialize         the text would not be well-formed, or there is no memory
 *                           for it; *xmlOut is left alone, as below
 *   domErrInvalidCharacter  an encoding that nobody knows, or one that lacks a
 *                           character where no reference can stand: in a name, a
 *                           comment, an instruction, an identifier
 *   host code               the host refused the string */
TSX_API TSXStatus TSIGetXMLCommon(TSXRefId node, HStr* xmlOut, bool prettyPrint);

/* TSIGetXMLCommon as the tree stands. */
TSX_API TSXStatus TSXGetXML(TSXRefId node, HStr* xmlOut);

/* TSIGetXMLCommon with each node on a line of its own, two blanks deeper than its
 * parent. White space is added, and white space of the tree replaced, only between the
 * children of an element that has elements among them and no text, CDATA section or
 * reference with more than white space; nowhere inside one that has; and nowhere under
 * xml:space="preserve". Pretty text that is read and written once more stays as it is. */
TSX_API TSXStatus TSXGetXMLPP(TSXRefId node, HStr* xmlOut);

/* Writes a document to a file, which is created, or truncated when the whole text is
 * made; it may be the one that the document was loaded from. What a failure leaves on
 * the disk:
 *   the document cannot be written           the file as it was
 *   the file could not be opened             the file as it was
 *   a full disk, or a process that is ended  the beginning of the text
 * So write beside the target and rename where the old content matters. Nothing is
 * forced to the disk. After any failure *errorText is "Failed to write file"; on
 * success it is left alone.
 *   domErrRefSaveFilePP  no document object; *errorText is left alone
 *   domErrPathSaveFile   not a path, or an empty one; *errorText is left alone
 *   domErrSaveFile       the file could not be opened or written, or TSXGetXML would
 *                        refuse the document
 *   2                    the host refused the native path; nothing was written */
TSX_API TSXStatus TSXSaveFile(TSXRefId document, HostPath path, HStr* errorText);

/* TSXSaveFile with the text of TSXGetXMLPP. */
TSX_API TSXStatus TSXSaveFilePP(TSXRefId document, HostPath path, HStr* errorText);

/* -- Declaration and encoding --------------------------------------------- */

/* Whether the texts and files of a document begin with an XML declaration, one byte: any
 * value but 0 is true, and 1 is read back. Default: 1. It holds for TSXGetXML,
 * TSXGetXMLPP and both saves until it is set again, also after a reload; the text of an
 * element or another node never has one.
 *
 * Without it encoding and version of the document stay what they are, and the text does
 * not say them. UTF-8 is what a reader takes such text for. In UTF-16 and UTF-32 a byte
 * order mark stands in front, by which readers know both. A text in any other encoding
 * is read wrongly, or refused, where it has characters beyond ASCII: set UTF-8 by
 * TSXSetEncoding, US-ASCII, which has references in their place, or tell the reader the
 * encoding by another way. Text of XML 1.1 is read as XML 1.0, which refuses control
 * characters; that a document is standalone is lost.
 *   domErrRefDocument       no document object; *value is neither read nor written */
TSX_API TSXStatus TSXSetWriteDeclaration(TSXRefId document, uint64_t ignored, const uint8_t* value);
TSX_API TSXStatus TSXGetWriteDeclaration(TSXRefId document, uint64_t ignored, uint8_t* value);

/* Sets the encoding that the document is written in and declares. The name must
 * be an XML encoding name (a letter, then letters, digits, ".", "_" or "-"); it is
 * not looked up, so an unknown one fails at writing.
 *   domErrRefDocument       no document object
 *   domErrInvalidCharacter  no encoding name; nothing changed
 *   domErrUnexpected        the heap is exhausted; nothing changed */
TSX_API TSXStatus TSXSetEncoding(TSXRefId document, uint64_t ignored, HStr* encoding);

/* Copies the document's encoding: what its XML declaration named when it was
 * loaded, or what was set since. Cleared when there is none; the document is then
 * written as it was read, or in UTF-8.
 *   domErrRefDocument       no document object; *encodingOut is left alone
 *   host code               the host refused the string */
TSX_API TSXStatus TSXGetEncoding(TSXRefId document, uint64_t ignored, HStr* encodingOut);

#ifdef __cplusplus
}
#endif

#endif
