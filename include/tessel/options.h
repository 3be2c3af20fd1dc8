/* Parser options: how a document's parser reads what is loaded into it.
 *
 * Each document has a parser of its own, so options are per document. An option
 * holds for every later TSXLoadFile, TSXLoadString, TSXLoadBytes and TSXElementSetXML
 * of that document, until it is set again or the document is closed; what has been
 * read stays as it is.
 *
 * Any thread may call, but two threads must not work on one document at the
 * same time, loading included. `document` is a document id as TSXDocumentOpen,
 * TSXCreateDocument and TSXGetOwnerDocument give it; for any other id the
 * entry's code is returned and *value is neither read nor written. Pointers
 * must not be null; `ignored` is never read. A flag is one byte: a setter takes
 * any non-zero value as true, a getter writes 0 or 1. Nothing else can fail, except
 * where an entry says so, and nothing leaves as an exception.
 *
 * A fresh parser checks that the text is well-formed, applies what a DTD
 * declares, validates nothing, and reads whatever the document names. For
 * documents from strangers see TSXSetExternalAccess. */
#ifndef TESSEL_OPTIONS_H
#define TESSEL_OPTIONS_H

#include <stdint.h>
#include <tessel/export.h>
#include <tessel/host.h>

/* Namespaces. Default: off. When on, an undeclared prefix is an error, and
 * elements and attributes have namespace URIs, prefixes and local names. When
 * off, names are read as written, TSXGetNamespaceName and its siblings give
 * nothing, and schemas cannot work. The set and get codes are also the
 * validation scheme's: domErrRefSetDoNamespaces, domErrRefGetDoNamespaces. */
TSX_API TSXStatus TSXSetDoNamespaces(TSXRefId document, uint64_t ignored, const uint8_t* value);
TSX_API TSXStatus TSXGetDoNamespaces(TSXRefId document, uint64_t ignored, uint8_t* value);

/* Validation scheme, a number. Default: 0. 0 never validates; 1 always does, so
 * that a document without grammar has an error for every element; 2 does where
 * the document names a DTD or a schema; one that cannot be found is then a mere
 * warning, and nothing is checked. Any other number is accepted and read back as
 * 2. Violations are lines in the load's parseErrors, and the tree is
 * built all the same. Codes shared with namespaces: domErrRefSetDoNamespaces,
 * domErrRefGetDoNamespaces. */
TSX_API TSXStatus TSXSetValidateOnLoad(TSXRefId document, uint64_t ignored, const int32_t* value);
TSX_API TSXStatus TSXGetValidateOnLoad(TSXRefId document, uint64_t ignored, int32_t* value);

/* Schemas. Default: off. When on, the schemas that a document names with
 * xsi:schemaLocation and xsi:noNamespaceSchemaLocation are read and used, and
 * those that the host names by TSXSetSchemaLocation. Needs namespaces on, and
 * validation scheme 1 or 2 to check the document against them.
 * domErrRefSetDoSchema, domErrRefGetDoSchema. */
TSX_API TSXStatus TSXSetDoSchema(TSXRefId document, uint64_t ignored, const uint8_t* value);
TSX_API TSXStatus TSXGetDoSchema(TSXRefId document, uint64_t ignored, uint8_t* value);

/* Full checking of the schemas themselves. Default: off. When on, costly rules
 * are checked too: unique particle attribution and restriction of particles.
 * Matters only where schemas are on. domErrRefSetValidationSchemaFullChecking,
 * domErrRefGetValidationSchemaFullChecking. */
TSX_API TSXStatus TSXSetValidationSchemaFullChecking(TSXRefId document, uint64_t ignored,
                                                     const uint8_t* value);
TSX_API TSXStatus TSXGetValidationSchemaFullChecking(TSXRefId document, uint64_t ignored,
                                                     uint8_t* value);

/* External DTD. Default: on. When off, the DTD file that a document names is
 * not read, and what it would supply (entities, default attributes) is missing.
 * A DTD that is read and cannot be opened is a fatal error of the load. Only
 * validation scheme 0 looks at the option: with 1 and 2 the DTD is read in any
 * case. domErrRefSetLoadExternalDTD, domErrRefGetLoadExternalDTD. */
TSX_API TSXStatus TSXSetLoadExternalDTD(TSXRefId document, uint64_t ignored, const uint8_t* value);
TSX_API TSXStatus TSXGetLoadExternalDTD(TSXRefId document, uint64_t ignored, uint8_t* value);

/* Ignorable whitespace. Default: kept. When off, white space between elements
 * is left out of the tree where the DTD or the schema allows no text there. Only a load that
 * validates (schemes 1 and 2) knows such places: with 0 all white space is
 * kept. domErrRefSetPreserveWhitespace, domErrRefGetPreserveWhitespace. */
TSX_API TSXStatus TSXSetPreserveWhitespace(TSXRefId document, uint64_t ignored,
                                           const uint8_t* value);
TSX_API TSXStatus TSXGetPreserveWhitespace(TSXRefId document, uint64_t ignored, uint8_t* value);

/* What a document may read beside itself, a number. Default: 0.
 *   0  everything: files of any kind, and the network
 *   1  files of any kind, nothing by network
 *   2  regular files in the document's own folder or below, once ".." and
 *      symbolic links are followed. A document that is loaded from a text or an
 *      address has no folder and reads nothing, as in TSXElementSetXML
 *   3  nothing
 * Any other number counts as 3 and is read back as 3. The option holds for
 * entities, general and parameter, for document types, and for schemas with
 * what they include, import or redefine, however the name is spelled; not for
 * the file that TSXLoadFile is given, nor for the schemas that the host names by
 * TSXSetSchemaLocation, whose entry says what these may name in turn. What is
 * refused is not opened. It is a fatal error whose line names it and says that
 * access was refused, and the load ends there; except an external document type
 * in a load that does not validate (scheme 0), and that of a schema in any, which
 * are passed over as if they were empty. In any mode a name of more than 8,192
 * units is refused, and in mode 1 a file: URL of any host other than localhost. A
 * folder or a file that is replaced while it is read cannot lead elsewhere; a hard
 * link is a file of its folder. In mode 2 each file takes a few system calls more.
 * Both: domErrRefDocument. */
TSX_API TSXStatus TSXSetExternalAccess(TSXRefId document, uint64_t ignored, const int32_t* value);
TSX_API TSXStatus TSXGetExternalAccess(TSXRefId document, uint64_t ignored, int32_t* value);

/* Limit of expanded text: how many UTF-16 code units the expansions of one load
 * may add in all. Default: 50,000,000, in memory a hundred megabytes of text, or
 * three gigabytes where they are nothing but tags or default attributes. 0 is no
 * limit; below 0, nothing may be added. Counted are the texts of entities at
 * each reference, in content, attribute values, default values and
 * declarations, as well as those that they refer to. So is each attribute that
 * an element has by default, with its name, its value and 16 units for its
 * nodes. Beyond the limit the load ends with a fatal error that says so.
 * Whatever the limit, a load ends at 50,000 expansions. Both: domErrRefDocument. */
TSX_API TSXStatus TSXSetEntityTextLimit(TSXRefId document, uint64_t ignored, const int64_t* value);
TSX_API TSXStatus TSXGetEntityTextLimit(TSXRefId document, uint64_t ignored, int64_t* value);

/* Positions. Default: off. When on, a later TSXLoadFile, TSXLoadString or
 * TSXLoadBytes notes where each node stands, for TSXGetSourcePosition;
 * TSXElementSetXML never does. The text is read once more after the parse, from
 * memory, which takes 45 ns a node and 1.5 ns a byte: half as long as the load
 * without it where the text is all small elements, as long where it is long runs
 * of text. Where attributes stand in the place of defaults it is 280 ns a node.
 * The positions take 34 bytes a node while the document lives, and the text is
 * kept until the load ends. Without the option a load takes nothing of that.
 * Both: domErrRefDocument. */
TSX_API TSXStatus TSXSetKeepPositions(TSXRefId document, uint64_t ignored, const uint8_t* value);
TSX_API TSXStatus TSXGetKeepPositions(TSXRefId document, uint64_t ignored, uint8_t* value);

/* Schemas of the host's own. Default: none. A schema location is pairs of a namespace
 * and the place of its schema, parted by white space, as in xsi:schemaLocation; the
 * other is the place of the schema for elements in no namespace. The setters take text
 * in the local code page up to its first NUL; a null or empty one names nothing. The
 * getters copy it as it was set, and clear *value where there is none.
 *
 * A place is a path or a file: URL, relative to the document's own (a text lies in the
 * current folder), or an http:, https: or ftp: URL. In a pair a blank of a path is
 * written %20; in a place alone it may stand as it is.
 *
 * The schemas are used, and looked at, only in loads that validate by schemas: with
 * namespaces and schemas on, and validation scheme 1 or 2. They come first: what a
 * document names for a namespace that they have is not read. Of two schemas of one
 * namespace the first counts, be it one that another imports; an import that names no
 * place finds what was named before it.
 *
 * A fault of a schema is an error line in front of those of the document, "Line 3,
 * Column 7,  Message: schema 'order.xsd': ...", with the place that the host gave, or the
 * whole name of a file that is included or imported. So is, at line 0, column 0, that a
 * place cannot be read or has another namespace, or that a value is no pairs. The load
 * goes on with what came of them: where there is nothing, scheme 1 has an error for each
 * element, and scheme 2 checks nothing.
 *
 * TSXSetExternalAccess does not hold for the places that the host gives; these are read
 * in every mode. What the schemas include, import, redefine or have as entities may be
 *   in mode 0          anywhere
 *   in mode 1          any file
 *   in modes 2 and 3   a regular file in the folder of the schema that the host named,
 *                      or below
 * and is else refused in a line. What a document names obeys its mode as ever, a schema
 * for a namespace that the host's have not included.
 *
 * Schemas stay parsed for the next load of the process, in whichever document, that
 * names the same places with the same mode and full checking, as long as every file of
 * them has the inode, size and times that it had. The last four such sets stay in
 * memory. Parsed for one load only are schemas with a fault; with anything that came by
 * network; with a file that changed in the last 20 ms, or 2 s where the file system
 * counts seconds; for a document that had a schema of its own read; and while a load on
 * another thread uses the same. A document of 700 bytes takes 9.6 ms with a schema of
 * 500 types (97 KB) that is parsed for it, 0.10 ms with the one that is kept, and
 * 0.06 ms without validation; with a schema of five declarations 0.12, 0.04 and 0.04 ms.
 *   domErrRefDocument   no document object
 *   domErrUnexpected    a setter: the heap is exhausted; nothing changed
 *   host code           a getter: the host refused the string, which is cleared */
TSX_API TSXStatus TSXSetSchemaLocation(TSXRefId document, uint64_t ignored, HStr* value);
TSX_API TSXStatus TSXGetSchemaLocation(TSXRefId document, uint64_t ignored, HStr* value);
TSX_API TSXStatus TSXSetNoNamespaceSchemaLocation(TSXRefId document, uint64_t ignored, HStr* value);
TSX_API TSXStatus TSXGetNoNamespaceSchemaLocation(TSXRefId document, uint64_t ignored, HStr* value);

#endif
