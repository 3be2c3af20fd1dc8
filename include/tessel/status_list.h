/* Every status code that a function returns: the one list behind the C enum,
 * the texts that a program shows and the tests' completeness check.
 *
 * TSX_STATUS_LIST(X) expands X once for each code, highest number first, with
 *   number     the value, part of the interface: never changed, never reused
 *   name       the enumerator
 *   functions  who returns it; a number with several functions is shared on
 *              purpose and stays shared
 *   meaning    one line for a person
 *   advice     what to do about it, for the author of a host program
 * The last three are string literals. The list is data only: it declares
 * nothing and needs no other header.
 *
 * A DOM exception is -(2599 + its code) in the functions named by that row and
 * domErrUnexpected in all others. "Names no ..." covers id 0, an id never
 * issued or given back, an id whose object is gone, and one of another kind.
 *
 * No function returns -2605, -2610 to -2612, -2614, -2615, -2617 to -2624,
 * -2627, -2654, -2696 to -2698, -2710, -2735 or -2765: these stay free. */
#ifndef TESSEL_STATUS_LIST_H
#define TESSEL_STATUS_LIST_H

/* A row is broken between its fields, which the formatter would not keep. */
/* clang-format off */
#define TSX_STATUS_LIST(X) \
  X(-2600, domErrIndexSize, "TSXSplitText, TSXInsertData, TSXDeleteData, TSXReplaceData", \
    "an offset lies outside the text", \
    "keep the offset between 0 and the length in UTF-16 code units") \
  X(-2601, domErrStringSize, "TSXSetText", "the text is too long for the DOM", \
    "set a shorter text") \
  X(-2602, domErrHierarchyRequest, "TSXAppendChild, TSXInsertBefore, TSXReplaceChild", \
    "the new child may not stand there: wrong kind, an ancestor of its parent, or a second " \
    "root", "check the kinds of parent and child, and that the child does not hold the parent") \
  X(-2603, domErrWrongDocument, \
    "TSXCreateDocument, TSXSetAttributeNode, TSXSetAttributeNodeNS, TSXSetNamedItem, " \
    "TSXSetNamedItemNS, TSXAppendChild, TSXInsertBefore, TSXReplaceChild", \
    "the node belongs to another document, or the document type is in use", \
    "import the node first; use a document type for one document only") \
  X(-2604, domErrInvalidCharacter, \
    "TSXCreateDocument, TSXCreateDocumentType, TSXCreateElement, TSXCreateElementNS, " \
    "TSXCreateAttribute, TSXCreateAttributeNS, TSXCreateEntityReference, " \
    "TSXCreateProcessingInstruction, TSXSetAttribute, TSXSetAttributeNS, TSXSetEncoding, " \
    "TSIGetXMLCommon, TSXGetXML, TSXGetXMLPP, XPathBindPrefix", \
    "a name holds a character that XML forbids there, or the writer refused the node", \
    "correct the name; when writing, set an encoding that the writer supports") \
  X(-2606, domErrNoModificationAllowed, \
    "TSXSetNodeValue, TSXSetAttrValue, TSXSetCharacterDataData, TSXAppendData, TSXInsertData, " \
    "TSXDeleteData, TSXReplaceData, TSXSplitText, TSXSetText, TSXSetData, TSXSetAttribute, " \
    "TSXSetAttributeNS, TSXRemoveAttribute, TSXRemoveAttributeNS, TSXSetAttributeNode, " \
    "TSXSetAttributeNodeNS, TSXRemoveAttributeNode, TSXSetNamedItem, TSXSetNamedItemNS, " \
    "TSXRemoveNamedItem, TSXRemoveNamedItemNS, TSXAppendChild, TSXInsertBefore, " \
    "TSXReplaceChild, TSXRemoveChild", \
    "the node is read-only, as everything below an entity or its reference is", \
    "change a clone, and put that in the place of the entity reference") \
  X(-2607, domErrNotFound, \
    "TSXRemoveAttributeNode, TSXRemoveNamedItem, TSXRemoveNamedItemNS, TSXInsertBefore, " \
    "TSXReplaceChild, TSXRemoveChild", \
    "the node named is not a child, an attribute or an item of that one", \
    "ask the node for its parent or owner element and call on that") \
  X(-2608, domErrNotSupported, \
    "TSXCreateDocument, TSXCreateDocumentType, TSXCreateElementNS, TSXCreateAttributeNS, " \
    "TSXCreateEntityReference, TSXCreateProcessingInstruction, TSXCreateCDATASection, " \
    "TSXImportNode", "the DOM does not support the operation on this kind of node", \
    "import the children of a document instead of the document") \
  X(-2609, domErrInUseAttribute, \
    "TSXSetAttributeNode, TSXSetAttributeNodeNS, TSXSetNamedItem, TSXSetNamedItemNS", \
    "the attribute node already belongs to an element", \
    "clone the attribute, or remove it from its element first") \
  X(-2613, domErrNamespace, \
    "TSXCreateDocument, TSXCreateDocumentType, TSXCreateElementNS, TSXCreateAttributeNS, " \
    "TSXSetAttributeNS, TSXSetPrefixName, XPathBindPrefix", \
    "the qualified name or prefix does not fit the namespace URI", \
    "give a prefixed name a namespace URI, and keep xml and xmlns for their own URIs") \
  X(-2616, domErrSerialize, "TSIGetXMLCommon, TSXGetXML, TSXGetXMLPP", \
    "the text of the node would be no XML", \
    "look for content that XML cannot hold, such as a comment with two hyphens") \
  X(-2625, domErrSaveFile, "TSXSaveFile, TSXSaveFilePP", "the file could not be written", \
    "check the folder, the permissions, the free space and the document's encoding") \
  X(-2626, domErrRefDocument, \
    "TSXLoadString, TSXLoadBytes, TSXElementSetXML, TSXGetEncoding, TSXSetEncoding, " \
    "TSXSetWriteDeclaration, TSXGetWriteDeclaration, TSXSetExternalAccess, " \
    "TSXGetExternalAccess, TSXSetEntityTextLimit, TSXGetEntityTextLimit, " \
    "TSXSetKeepPositions, TSXGetKeepPositions, TSXSetSchemaLocation, TSXGetSchemaLocation, " \
    "TSXSetNoNamespaceSchemaLocation, TSXGetNoNamespaceSchemaLocation, XPathBindPrefix", \
    "the id names no document, or for TSXElementSetXML no element with a parent in a document", \
    "pass the id of an open document, or of an attached element") \
  X(-2628, domErrParse, "TSXLoadFile, TSXLoadString, TSXLoadBytes, TSXElementSetXML", \
    "the parser reported errors or gave up", \
    "show the lines in parseErrors and the text in exceptionText") \
  X(-2629, domErrUnexpected, \
    "every function that guards a call into the libraries below: loading, element replacement, " \
    "the setters of encoding and schemas, TSXCreateDocument, the creators but those of text, " \
    "comment and fragment, TSXImportNode, the setters and removers of strings, character data, " \
    "attributes and children, TSXSplitText, the collection functions but the close functions, " \
    "the XPath functions", "a failure that the function has no code of its own for", \
    "report it with the call's arguments: it is not an answer that a program can act on") \
  X(-2630, domErrRefGetNodeType, "TSXGetNodeType", \
    "the id names no node, or the DOM failed to tell its type", \
    "pass the id of a node that is still open") \
  X(-2631, domErrRefGetNodeName, "TSXGetNodeName", "the id names no node", \
    "pass the id of a node that is still open") \
  X(-2632, domErrRefGetNodeValue, "TSXGetNodeValue", "the id names no node", \
    "pass the id of a node that is still open") \
  X(-2633, domErrRefGetChildNodeList, "TSXGetChildNodeList, TSXGetChildNodes", \
    "the id names no node", "pass the id of a node that is still open") \
  X(-2634, domErrRefGetFirstChild, "TSXGetFirstChild", "the id names no node", \
    "pass the id of a node that is still open") \
  X(-2635, domErrRefGetLastChild, "TSXGetLastChild", "the id names no node", \
    "pass the id of a node that is still open") \
  X(-2636, domErrRefGetParentNode, "TSXGetParentNode", "the id names no node", \
    "pass the id of a node that is still open") \
  X(-2637, domErrRefGetNextSibling, "TSXGetNextSibling", "the id names no node", \
    "pass the id of a node that is still open") \
  X(-2638, domErrRefGetPreviousSibling, "TSXGetPreviousSibling", "the id names no node", \
    "pass the id of a node that is still open") \
  X(-2639, domErrRefGetOwnerDocument, "TSXGetOwnerDocument", "the id names no node", \
    "pass the id of a node that is still open") \
  X(-2640, domErrRefGetBaseName, "TSXGetBaseName", "the id names no node", \
    "pass the id of a node that is still open") \
  X(-2641, domErrRefGetPrefixName, "TSXGetPrefixName", "the id names no node", \
    "pass the id of a node that is still open") \
  X(-2642, domErrRefGetNamespaceName, "TSXGetNamespaceName", "the id names no node", \
    "pass the id of a node that is still open") \
  X(-2643, domErrRefGetAttributes, "TSXGetAttributes", "the id names no node", \
    "pass the id of a node that is still open") \
  X(-2644, domErrRefSetNodeValue, "TSXSetNodeValue", "the id names no node", \
    "pass the id of a node that is still open") \
  X(-2645, domErrRefRemoveChild, "TSXRemoveChild", "the parent's id names no node", \
    "pass the id of a parent that is still open") \
  X(-2646, domErrRefRemoveChildArg, "TSXRemoveChild", "the child's id names no node", \
    "pass the id of a child that is still open") \
  X(-2647, domErrRefAppendChild, "TSXAppendChild", "the parent's id names no node", \
    "pass the id of a parent that is still open") \
  X(-2648, domErrRefAppendChildArg, "TSXAppendChild", \
    "the child's id names no node, or names the parent", \
    "pass the id of another node than the parent") \
  X(-2649, domErrRefGetText, "TSXGetText", "the id names no node", \
    "pass the id of a node that is still open") \
  X(-2650, domErrRefSetText, "TSXSetText", "the id names no node", \
    "pass the id of a node that is still open") \
  X(-2651, domErrRefCloneNode, "TSXCloneNode", "the id names no node", \
    "pass the id of a node that is still open") \
  X(-2652, domErrRefHasAttributes, "TSXHasAttributes, TSXHasChildNodes", "the id names no node", \
    "pass the id of a node that is still open") \
  X(-2653, domErrRefGetXMLCommon, "TSIGetXMLCommon, TSXGetXML, TSXGetXMLPP", \
    "the id names no node", "pass the id of a node that is still open") \
  X(-2655, domErrRefNormalize, "TSXNormalize", "the id names no node", \
    "pass the id of a node that is still open") \
  X(-2656, domErrRefImportNode, "TSXImportNode, TSXInsertBefore", \
    "the id names no document (TSXImportNode) or the parent's no node (TSXInsertBefore)", \
    "pass the id of an open document, or of an open parent") \
  X(-2657, domErrRefImportNodeArg, "TSXImportNode, TSXInsertBefore", \
    "the id of the node to import or to insert names no node", \
    "pass the id of a node that is still open") \
  X(-2658, domErrRefReplaceChild, "TSXReplaceChild", "the parent's id names no node", \
    "pass the id of a parent that is still open") \
  X(-2659, domErrRefReplaceChildNew, "TSXReplaceChild", "the new child's id names no node", \
    "pass the id of a new child that is still open") \
  X(-2660, domErrRefReplaceChildOld, "TSXReplaceChild", "the old child's id names no node", \
    "pass the id of an old child that is still open") \
  X(-2661, domErrRefGetSpecified, "TSXGetSpecified", "the id names no attribute", \
    "pass the id of an attribute that is still open") \
  X(-2662, domErrRefSplitText, "TSXSplitText", "the id names no text or CDATA node", \
    "pass the id of a text or CDATA node that is still open") \
  X(-2663, domErrRefGetTarget, "TSXGetTarget", "the id names no processing instruction", \
    "pass the id of a processing instruction that is still open") \
  X(-2664, domErrRefGetData, "TSXGetData", "the id names no processing instruction", \
    "read other nodes with TSXGetCharacterDataData or TSXGetNodeValue") \
  X(-2665, domErrRefSetData, "TSXSetData", "the id names no processing instruction", \
    "write other nodes with TSXSetCharacterDataData or TSXSetNodeValue") \
  X(-2666, domErrRefGetEntityPublicId, "TSXGetEntityPublicId", "the id names no entity", \
    "pass the id of an entity that is still open") \
  X(-2667, domErrRefGetEntitySystemId, "TSXGetEntitySystemId", "the id names no entity", \
    "pass the id of an entity that is still open") \
  X(-2668, domErrRefGetNotationName, "TSXGetNotationName", "the id names no entity", \
    "pass the id of an entity that is still open") \
  X(-2669, domErrRefHasFeature, "TSXHasFeature", "the id names no DOM implementation", \
    "pass the id of a DOM implementation that is still open") \
  X(-2670, domErrRefGetName, "TSXGetName", "the id names no document type", \
    "pass the id of a document type that is still open") \
  X(-2671, domErrRefGetEntities, "TSXGetEntities", "the id names no document type", \
    "pass the id of a document type that is still open") \
  X(-2672, domErrRefGetNotations, "TSXGetNotations", "the id names no document type", \
    "pass the id of a document type that is still open") \
  X(-2673, domErrRefLoadFile, "TSXLoadFile", "the id names no document", \
    "pass the id that opening, creating or TSXGetOwnerDocument gave") \
  X(-2674, domErrRefSaveFilePP, "TSXSaveFile, TSXSaveFilePP", "the id names no document", \
    "pass the id that opening, creating or TSXGetOwnerDocument gave") \
  X(-2675, domErrRefGetDocumentElement, "TSXGetDocumentElement", "the id names no document", \
    "pass the id that opening, creating or TSXGetOwnerDocument gave") \
  X(-2676, domErrRefCreateComment, "TSXCreateComment", "the id names no document", \
    "pass the id that opening, creating or TSXGetOwnerDocument gave") \
  X(-2677, domErrEmptyCreateElement, "TSXCreateElement", "the tag name is a null handle", \
    "pass a handle with the name") \
  X(-2678, domErrRefCreateElement, "TSXCreateElement", "the id names no document", \
    "pass the id that opening, creating or TSXGetOwnerDocument gave") \
  X(-2679, domErrRefCreateCDATASection, "TSXCreateCDATASection", "the id names no document", \
    "pass the id that opening, creating or TSXGetOwnerDocument gave") \
  X(-2680, domErrEmptyCreateEntityReference, "TSXCreateEntityReference, TSXCreateAttribute", \
    "the name is a null handle", "pass a handle with the name") \
  X(-2681, domErrRefCreateEntityReference, "TSXCreateEntityReference", "the id names no document", \
    "pass the id that opening, creating or TSXGetOwnerDocument gave") \
  X(-2682, domErrEmptyCreateProcessingInstruction, "TSXCreateProcessingInstruction", \
    "the target is a null handle", "pass a handle with the target") \
  X(-2683, domErrRefCreateProcessingInstruction, "TSXCreateProcessingInstruction", \
    "the id names no document", "pass the id that opening, creating or TSXGetOwnerDocument gave") \
  X(-2684, domErrRefCreateDocumentFragment, "TSXCreateDocumentFragment", \
    "the id names no document", "pass the id that opening, creating or TSXGetOwnerDocument gave") \
  X(-2685, domErrRefCreateTextNode, "TSXCreateTextNode", "the id names no document", \
    "pass the id that opening, creating or TSXGetOwnerDocument gave") \
  X(-2686, domErrRefGetDocType, "TSXGetDocType", "the id names no document", \
    "pass the id that opening, creating or TSXGetOwnerDocument gave") \
  X(-2687, domErrRefGetElementsByTagNameList, \
    "TSXGetElementsByTagNameList, TSXGetElementsByTagName, TSXGetElementsByTagNameNSArray", \
    "the id names no document", "pass the id that opening, creating or TSXGetOwnerDocument gave") \
  X(-2688, domErrRefGetDoNamespaces, "TSXGetDoNamespaces, TSXGetValidateOnLoad", \
    "the id names no document", "pass the id that opening, creating or TSXGetOwnerDocument gave") \
  X(-2689, domErrRefSetDoNamespaces, "TSXSetDoNamespaces, TSXSetValidateOnLoad", \
    "the id names no document", "pass the id that opening, creating or TSXGetOwnerDocument gave") \
  X(-2690, domErrRefGetImplementation, "TSXGetImplementation", "the id names no document", \
    "pass the id that opening, creating or TSXGetOwnerDocument gave") \
  X(-2691, domErrRefGetPreserveWhitespace, "TSXGetPreserveWhitespace", "the id names no document", \
    "pass the id that opening, creating or TSXGetOwnerDocument gave") \
  X(-2692, domErrRefSetPreserveWhitespace, "TSXSetPreserveWhitespace", "the id names no document", \
    "pass the id that opening, creating or TSXGetOwnerDocument gave") \
  X(-2693, domErrRefGetArray, "TSXGetArray", "the id names no named node map", \
    "pass the id of a named node map that is still open") \
  X(-2694, domErrRefGetNamedItem, "TSXGetNamedItem", "the id names no named node map", \
    "pass the id of a named node map that is still open") \
  X(-2695, domErrRefRemoveNamedItem, "TSXRemoveNamedItem", "the id names no named node map", \
    "pass the id of a named node map that is still open") \
  X(-2699, domErrRefSetPrefixName, "TSXSetPrefixName", "the id names no node", \
    "pass the id of a node that is still open") \
  X(-2700, domErrRefIsSupported, "TSXIsSupported", "the id names no node", \
    "pass the id of a node that is still open") \
  X(-2701, domErrRefName, "TSXName", "the id names no attribute", \
    "pass the id of an attribute that is still open") \
  X(-2702, domErrRefGetAttrValue, "TSXGetAttrValue", "the id names no attribute", \
    "pass the id of an attribute that is still open") \
  X(-2703, domErrRefSetAttrValue, "TSXSetAttrValue", "the id names no attribute", \
    "pass the id of an attribute that is still open") \
  X(-2704, domErrRefOwnerElement, "TSXOwnerElement", "the id names no attribute", \
    "pass the id of an attribute that is still open") \
  X(-2705, domErrRefCreateDocumentType, "TSXCreateDocumentType", \
    "the id names no DOM implementation", \
    "pass the id of a DOM implementation that is still open") \
  X(-2706, domErrRefCreateDocument, "TSXCreateDocument", "the id names no DOM implementation", \
    "pass the id of a DOM implementation that is still open") \
  X(-2707, domErrRefGetDocTypePublicID, "TSXGetDocTypePublicID", "the id names no document type", \
    "pass the id of a document type that is still open") \
  X(-2708, domErrRefGetDocTypeSystemID, "TSXGetDocTypeSystemID", "the id names no document type", \
    "pass the id of a document type that is still open") \
  X(-2709, domErrRefGetInternalSubset, "TSXGetInternalSubset", "the id names no document type", \
    "pass the id of a document type that is still open") \
  X(-2711, domErrPathLoadFile, "TSXLoadFile", "the path is not valid or empty", \
    "pass a path that names a file") \
  X(-2712, domErrPathSaveFile, "TSXSaveFile, TSXSaveFilePP", "the path is not valid or empty", \
    "pass a path that names a file") \
  X(-2713, domErrRefGetDoSchema, "TSXGetDoSchema", "the id names no document", \
    "pass the id that opening, creating or TSXGetOwnerDocument gave") \
  X(-2714, domErrRefSetDoSchema, "TSXSetDoSchema", "the id names no document", \
    "pass the id that opening, creating or TSXGetOwnerDocument gave") \
  X(-2715, domErrEmptyCreateElementNS, "TSXCreateElementNS", \
    "the namespace URI or the qualified name is a null handle", \
    "pass handles for both; an empty string with a handle means no namespace") \
  X(-2716, domErrRefCreateElementNS, "TSXCreateElementNS", "the id names no document", \
    "pass the id that opening, creating or TSXGetOwnerDocument gave") \
  X(-2717, domErrEmptyCreateAttributeNS, "TSXCreateAttributeNS", \
    "the namespace URI or the qualified name is a null handle", \
    "pass handles for both; an empty string with a handle means no namespace") \
  X(-2718, domErrRefCreateAttributeNS, "TSXCreateAttributeNS", "the id names no document", \
    "pass the id that opening, creating or TSXGetOwnerDocument gave") \
  X(-2719, domErrRefGetElementsByTagNameNS, "TSXGetElementsByTagNameNS", \
    "the id names no document", "pass the id that opening, creating or TSXGetOwnerDocument gave") \
  X(-2720, domErrRefGetElementById, "TSXGetElementById", "the id names no document", \
    "pass the id that opening, creating or TSXGetOwnerDocument gave") \
  X(-2721, domErrRefRemoveNamedItemNS, "TSXRemoveNamedItemNS", "the id names no named node map", \
    "pass the id of a named node map that is still open") \
  X(-2722, domErrRefSetNamedItem, "TSXSetNamedItem", "the id names no named node map", \
    "pass the id of a named node map that is still open") \
  X(-2723, domErrRefSetNamedItemArg, "TSXSetNamedItem", "the id names no node", \
    "pass the id of a node that is still open") \
  X(-2724, domErrRefGetNamedItemNS, "TSXGetNamedItemNS", "the id names no named node map", \
    "pass the id of a named node map that is still open") \
  X(-2725, domErrRefSetNamedItemNS, "TSXSetNamedItemNS", "the id names no named node map", \
    "pass the id of a named node map that is still open") \
  X(-2726, domErrRefSetNamedItemNSArg, "TSXSetNamedItemNS", "the id names no node", \
    "pass the id of a node that is still open") \
  X(-2727, domErrRefGetNamedNodeMapItem, "TSXGetNamedNodeMapItem", \
    "the id names no named node map", "pass the id of a named node map that is still open") \
  X(-2728, domErrRefGetNamedNodeMapLength, "TSXGetNamedNodeMapLength", \
    "the id names no named node map", "pass the id of a named node map that is still open") \
  X(-2729, domErrRefGetListLength, "TSXGetListLength", "the id names no node list", \
    "pass the id of a node list that is still open") \
  X(-2730, domErrRefGetItem, "TSXGetItem, TSXGetNodeListArray", "the id names no node list", \
    "pass the id of a node list that is still open") \
  X(-2731, domErrRefElementGetElementsByTagName, \
    "TSXElementGetElementsByTagName, TSXElementGetElementsByTagNameArray", \
    "the id names no element", "pass the id of an element that is still open") \
  X(-2732, domErrRefGetTagName, "TSXGetTagName", "the id names no element", \
    "pass the id of an element that is still open") \
  X(-2733, domErrRefGetAttribute, "TSXGetAttribute", "the id names no element", \
    "pass the id of an element that is still open") \
  X(-2734, domErrRefGetAttributeNode, "TSXGetAttributeNode", "the id names no element", \
    "pass the id of an element that is still open") \
  X(-2736, domErrRefSetAttribute, "TSXSetAttribute, TSXSetAttributeNode", \
    "the id names no element", "pass the id of an element that is still open") \
  X(-2737, domErrRefSetAttributeNodeArg, "TSXSetAttributeNode", \
    "the attribute's id names no node", "pass the id of an attribute that is still open") \
  X(-2738, domErrRefRemoveAttribute, "TSXRemoveAttribute", "the id names no element", \
    "pass the id of an element that is still open") \
  X(-2739, domErrRefRemoveAttributeNode, "TSXRemoveAttributeNode", "the id names no element", \
    "pass the id of an element that is still open") \
  X(-2740, domErrRefRemoveAttributeNodeArg, "TSXRemoveAttributeNode", \
    "the attribute's id names no node", "pass the id of an attribute that is still open") \
  X(-2741, domErrRefGetAttributeNS, "TSXGetAttributeNS", "the id names no element", \
    "pass the id of an element that is still open") \
  X(-2742, domErrRefSetAttributeNS, "TSXSetAttributeNS", "the id names no element", \
    "pass the id of an element that is still open") \
  X(-2743, domErrRefRemoveAttributeNS, "TSXRemoveAttributeNS", "the id names no element", \
    "pass the id of an element that is still open") \
  X(-2744, domErrRefGetAttributeNodeNS, "TSXGetAttributeNodeNS", "the id names no element", \
    "pass the id of an element that is still open") \
  X(-2745, domErrRefSetAttributeNodeNS, "TSXSetAttributeNodeNS", "the id names no element", \
    "pass the id of an element that is still open") \
  X(-2746, domErrRefSetAttributeNodeNSArg, "TSXSetAttributeNodeNS", \
    "the attribute's id names no node", "pass the id of an attribute that is still open") \
  X(-2747, domErrRefElementGetElementsByTagNameNS, \
    "TSXElementGetElementsByTagNameNS, TSXElementGetElementsByTagNameNSArray", \
    "the id names no element", "pass the id of an element that is still open") \
  X(-2748, domErrRefHasAttribute, "TSXHasAttribute", "the id names no element", \
    "pass the id of an element that is still open") \
  X(-2749, domErrRefHasAttributeNS, "TSXHasAttributeNS", "the id names no element", \
    "pass the id of an element that is still open") \
  X(-2750, domErrRefGetCharacterDataData, "TSXGetCharacterDataData", \
    "the id names no text, CDATA or comment node", \
    "pass the id of a text, CDATA or comment node that is still open") \
  X(-2751, domErrRefSetCharacterDataData, "TSXSetCharacterDataData", \
    "the id names no text, CDATA or comment node", \
    "pass the id of a text, CDATA or comment node that is still open") \
  X(-2752, domErrRefGetCharacterDataLength, "TSXGetCharacterDataLength", \
    "the id names no text, CDATA or comment node", \
    "pass the id of a text, CDATA or comment node that is still open") \
  X(-2753, domErrRefGetSubstringData, "TSXGetSubstringData", \
    "the id names no text, CDATA or comment node", \
    "pass the id of a text, CDATA or comment node that is still open") \
  X(-2754, domErrRefAppendData, "TSXAppendData", "the id names no text, CDATA or comment node", \
    "pass the id of a text, CDATA or comment node that is still open") \
  X(-2755, domErrRefInsertData, "TSXInsertData", "the id names no text, CDATA or comment node", \
    "pass the id of a text, CDATA or comment node that is still open") \
  X(-2756, domErrRefDeleteData, "TSXDeleteData", "the id names no text, CDATA or comment node", \
    "pass the id of a text, CDATA or comment node that is still open") \
  X(-2757, domErrRefReplaceData, "TSXReplaceData", "the id names no text, CDATA or comment node", \
    "pass the id of a text, CDATA or comment node that is still open") \
  X(-2758, domErrRefGetNotationPublicID, "TSXGetNotationPublicID", "the id names no notation", \
    "pass the id of a notation that is still open") \
  X(-2759, domErrRefGetNotationSystemID, "TSXGetNotationSystemID", "the id names no notation", \
    "pass the id of a notation that is still open") \
  X(-2760, domErrRefGetValidationSchemaFullChecking, "TSXGetValidationSchemaFullChecking", \
    "the id names no document", "pass the id that opening, creating or TSXGetOwnerDocument gave") \
  X(-2761, domErrRefSetValidationSchemaFullChecking, "TSXSetValidationSchemaFullChecking", \
    "the id names no document", "pass the id that opening, creating or TSXGetOwnerDocument gave") \
  X(-2762, domErrRefGetLoadExternalDTD, "TSXGetLoadExternalDTD", "the id names no document", \
    "pass the id that opening, creating or TSXGetOwnerDocument gave") \
  X(-2763, domErrRefSetLoadExternalDTD, "TSXSetLoadExternalDTD", "the id names no document", \
    "pass the id that opening, creating or TSXGetOwnerDocument gave") \
  X(-2764, domErrRefCreateDocumentDocType, "TSXCreateDocument", \
    "the document type's id is neither 0 nor that of a document type", \
    "pass 0 for none, or what TSXCreateDocumentType gave") \
  X(-2766, domErrXPathContext, \
    "XPathEvaluateContextToNode, XPathEvaluateContextToNodeArray, " \
    "XPathEvaluateContextToString, XPathEvaluateContextToNumber, " \
    "XPathEvaluateContextToBoolean, XPathGetExpressionType", \
    "the context's id names no node", "pass the id of a node that is still open") \
  X(-2767, domErrXPathXSL, \
    "XPathEvaluateContextToNode, XPathEvaluateContextToNodeArray, " \
    "XPathEvaluateContextToString, XPathEvaluateContextToNumber, " \
    "XPathEvaluateContextToBoolean, XPathGetExpressionType", \
    "the evaluation failed", "show the error text") \
  X(-2768, domErrXPathParse, \
    "XPathEvaluateContextToNode, XPathEvaluateContextToNodeArray, " \
    "XPathEvaluateContextToString, XPathEvaluateContextToNumber, " \
    "XPathEvaluateContextToBoolean, XPathGetExpressionType", \
    "the expression is not XPath, or is too deep or too long", \
    "show the error text and correct the expression") \
  X(-2769, domErrXPathConversion, \
    "XPathEvaluateContextToNode, XPathEvaluateContextToNodeArray, " \
    "XPathEvaluateContextToString, XPathEvaluateContextToNumber, " \
    "XPathEvaluateContextToBoolean, XPathGetExpressionType", \
    "the expression's value is not a set of nodes, or it is a variable", \
    "ask for its string, number or truth value; no variable is ever bound") \
  X(-2780, domErrRefGetSourcePosition, "TSXGetSourcePosition", "the id names no node", \
    "pass the id of a node that is still open")
/* clang-format on */

#endif
