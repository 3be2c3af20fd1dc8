"""XML documents by Tessel, through ctypes.

    with tessel.Document.load("stock.xml") as stock:
        for item in stock.select("/stock/item[count < 10]"):
            item.first("count").text = "10"
        stock.save("stock.xml")

A document is a context manager: its end closes it and takes all its nodes along.
A node gives its reference id back when Python drops it. No node is ever handed
out that is in no tree, so none is freed while Python still holds it.

One document belongs to one thread at a time, the dropping of its nodes included.
The libraries are found as the system finds them, or in $TESSEL_LIBRARY_DIR.
"""

import collections
import contextlib
import ctypes
import os
import weakref

try:
    from tessel_status import STATUS
except ImportError:  # the table comes with the library; the codes work without it
    STATUS = {}


class Error(Exception):
    """A call that failed: `status` is the code, `name` its name, `details` the
    library's own words, one line each."""

    def __init__(self, status, details=""):
        self.status = status
        self.name, meaning = STATUS.get(status, (f"status {status}", "the call failed"))
        self.details = details.splitlines()
        super().__init__("\n".join([f"{self.name}: {meaning}", *self.details]))


# Where a node stood in the text that was loaded: from 1, and bytes from 0.
Place = collections.namedtuple("Place", "line column begin end")


# -- The libraries -------------------------------------------------------------


class _StringBlock(ctypes.Structure):
    _fields_ = [("count", ctypes.c_int32), ("bytes", ctypes.c_ubyte * 1)]


class _ArrayBlock(ctypes.Structure):
    _fields_ = [("count", ctypes.c_int32), ("zero", ctypes.c_int32), ("ids", ctypes.c_uint64 * 1)]


# A handle is a pointer to the pointer to its block.
_String = ctypes.POINTER(ctypes.POINTER(_StringBlock))
_Array = ctypes.POINTER(ctypes.POINTER(_ArrayBlock))
_Id = ctypes.c_uint64


def _open(name, mode=ctypes.DEFAULT_MODE):
    return ctypes.CDLL(os.path.join(os.environ.get("TESSEL_LIBRARY_DIR", ""), name), mode)


# The host comes first and for all to see: the library imports its functions.
_host = _open("libTesselHost.so.15", ctypes.RTLD_GLOBAL)
_library = _open("libTessel.so.15")


def _declare(library, result, name, *arguments):
    function = getattr(library, name)
    function.restype, function.argtypes = result, arguments
    return function


def _status(name, *arguments):
    """A function of the library that returns a status: failures raise."""
    function = _declare(_library, ctypes.c_int32, name, *arguments)

    def call(*values, details=()):
        status = function(*values)
        if status != 0:
            raise Error(status, "\n".join(text for text in map(_text, details) if text))

    return call


_S, _I = ctypes.POINTER(_String), ctypes.POINTER(_Id)
_string_from_text = _declare(_host, _String, "StandinStringFromText", ctypes.c_char_p,
                             ctypes.c_int32)
_path_from_text = _declare(_host, ctypes.c_void_p, "StandinPathFromText", ctypes.c_char_p)
_path_dispose = _declare(_host, ctypes.c_int32, "StandinPathDispose", ctypes.c_void_p)
_read_ledger = _declare(_host, None, "StandinReadLedger", ctypes.POINTER(ctypes.c_int64 * 9))
_clear_string = _declare(_library, ctypes.c_int32, "ClearString", _S)
_clear_array = _declare(_library, ctypes.c_int32, "ClearArray", ctypes.c_void_p)
_node_close = _declare(_library, None, "TSXNodeClose", _Id)
_document_close = _declare(_library, None, "TSXDocumentClose", _Id)

_document_open = _status("TSXDocumentOpen", ctypes.c_uint64, _I)
_load_file = _status("TSXLoadFile", _Id, ctypes.c_void_p, _S, _S)
_load_bytes = _status("TSXLoadBytes", _Id, _S, _S, _S)
_save_file = _status("TSXSaveFile", _Id, ctypes.c_void_p, _S)
_save_file_pretty = _status("TSXSaveFilePP", _Id, ctypes.c_void_p, _S)
_get_xml = _status("TSXGetXML", _Id, _S)
_set_flag = {name: _status(name, _Id, ctypes.c_uint64, ctypes.POINTER(ctypes.c_uint8))
             for name in ("TSXSetDoNamespaces", "TSXSetDoSchema", "TSXSetLoadExternalDTD",
                          "TSXSetKeepPositions")}
_set_validation = _status("TSXSetValidateOnLoad", _Id, ctypes.c_uint64,
                          ctypes.POINTER(ctypes.c_int32))
_select = _status("XPathEvaluateContextToNodeArray", _Id, _S, ctypes.POINTER(_Array), _S)
_select_first = _status("XPathEvaluateContextToNode", _Id, _S, _I, _S)
_get_root = _status("TSXGetDocumentElement", _Id, ctypes.c_uint64, _I)
_get_parent = _status("TSXGetParentNode", _Id, ctypes.c_uint64, _I)
_get_position = _status("TSXGetSourcePosition", _Id, *2 * [ctypes.POINTER(ctypes.c_int32)],
                        *2 * [ctypes.POINTER(ctypes.c_int64)])
_bind_prefix = _status("XPathBindPrefix", _Id, _S, _S)
_evaluate_number = _status("XPathEvaluateContextToNumber", _Id, _S,
                           ctypes.POINTER(ctypes.c_double), _S)
_set_schema_location = _status("TSXSetSchemaLocation", _Id, ctypes.c_uint64, _S)
_get_namespace = _status("TSXGetNamespaceName", _Id, ctypes.c_uint64, _S)
_get_name = _status("TSXGetNodeName", _Id, ctypes.c_uint64, _S)
_get_text = _status("TSXGetText", _Id, _S)
_set_text = _status("TSXSetText", _Id, _S)
_has_attribute = _status("TSXHasAttribute", _Id, _S, ctypes.POINTER(ctypes.c_uint8))
_get_attribute = _status("TSXGetAttribute", _Id, _S, _S)
_set_attribute = _status("TSXSetAttribute", _Id, _S, _S)
_remove_attribute = _status("TSXRemoveAttribute", _Id, _S)
_create_element = _status("TSXCreateElementNS", _Id, _S, _S, _I)
_append_child = _status("TSXAppendChild", _Id, _Id)
_remove_child = _status("TSXRemoveChild", _Id, _Id)


# -- Host values ---------------------------------------------------------------


def _bytes(string):
    if not string:
        return b""
    block = string.contents
    return ctypes.string_at(ctypes.addressof(block.contents.bytes), block.contents.count)


def _text(string):
    return _bytes(string).decode("utf-8", "replace")


@contextlib.contextmanager
def _strings(*texts):
    """Host strings that go with the block: null handles for None, to be filled."""
    strings = []
    try:
        for text in texts:
            data = text.encode() if isinstance(text, str) else text
            strings.append(_String() if data is None else _string_from_text(data, len(data)))
            if data is not None and not strings[-1]:
                raise MemoryError
        yield strings
    finally:
        for string in strings:
            _clear_string(string)


@contextlib.contextmanager
def _path(name):
    path = _path_from_text(os.fsencode(name))
    try:
        yield path
    finally:
        _path_dispose(path)


def left_open():
    """How many host strings, arrays and paths are alive: 0 between calls."""
    ledger = (ctypes.c_int64 * 9)()
    _read_ledger(ctypes.byref(ledger))
    return ledger[0] + ledger[3]


# -- Nodes and documents -------------------------------------------------------


class _Selecting:
    """What a document and a node have in common."""

    def select(self, expression):
        """The nodes that an XPath expression selects, in document order."""
        array = _Array()
        with _strings(expression, None) as (text, error):
            _select(self._id, text, array, error, details=[error])
        try:
            block = array.contents.contents
            ids = (_Id * block.count).from_address(ctypes.addressof(block.ids))
            return [Node(self._document, id) for id in ids]
        finally:
            _clear_array(ctypes.byref(array))

    def first(self, expression):
        """The first node that an XPath expression selects, or None."""
        node = _Id()
        with _strings(expression, None) as (text, error):
            _select_first(self._id, text, node, error, details=[error])
        return Node(self._document, node.value) if node.value else None

    def number(self, expression):
        """The value of an XPath expression as a number: count(//item)."""
        value = ctypes.c_double()
        with _strings(expression, None) as (text, error):
            _evaluate_number(self._id, text, value, error, details=[error])
        return value.value

    def to_bytes(self):
        """The XML text, in the document's encoding."""
        with _strings(None) as (xml,):
            _get_xml(self._id, xml)
            return _bytes(xml)


class Node(_Selecting):
    """An element, attribute or other node of an open document. Attributes of an
    element by subscript: node["id"], "id" in node, del node["id"]."""

    def __init__(self, document, id):
        self._document, self._id = document, id
        self._hand_out = weakref.finalize(self, _node_close, id)

    def __eq__(self, other):
        return isinstance(other, Node) and self._id == other._id

    def __hash__(self):
        return hash(self._id)

    @property
    def name(self):
        with _strings(None) as (name,):
            _get_name(self._id, 0, name)
            return _text(name)

    @property
    def place(self):
        """Where the node stood, if the document was loaded with `places`; None for
        what was not in its text."""
        numbers = ctypes.c_int32(), ctypes.c_int32(), ctypes.c_int64(), ctypes.c_int64()
        _get_position(self._id, *numbers)
        place = Place(*(number.value for number in numbers))
        return place if place.line else None

    @property
    def text(self):
        with _strings(None) as (text,):
            _get_text(self._id, text)
            return _text(text)

    @text.setter
    def text(self, value):
        with _strings(value) as (text,):
            _set_text(self._id, text)

    def __contains__(self, name):
        flag = ctypes.c_uint8()
        with _strings(name) as (text,):
            _has_attribute(self._id, text, flag)
        return bool(flag)

    def __getitem__(self, name):
        if name not in self:
            raise KeyError(name)
        with _strings(name, None) as (text, value):
            _get_attribute(self._id, text, value)
            return _text(value)

    def __setitem__(self, name, value):
        with _strings(name, value) as (text, new):
            _set_attribute(self._id, text, new)

    def __delitem__(self, name):
        with _strings(name) as (text,):
            _remove_attribute(self._id, text)

    def add(self, name, text="", **attributes):
        """A new element at the end of this one, in its namespace."""
        child = _Id()
        with _strings(None) as (uri,):
            _get_namespace(self._id, 0, uri)
            namespace = _text(uri)
        with _strings(namespace, name) as (uri, tag):
            _create_element(self._document._id, uri, tag, child)
        try:
            _append_child(self._id, child)
        except Error:
            _node_close(child)
            raise
        node = Node(self._document, child.value)
        if text:
            node.text = text
        for key, value in attributes.items():
            node[key] = value
        return node

    def remove(self):
        """Takes the node, with all below it, out of its parent. It cannot be used
        any more."""
        if self == self._document.root:
            # The document node's own id must not be asked for: giving it back
            # would end all ids of the document.
            _remove_child(self._document._id, self._id)
        else:
            parent = _Id()
            _get_parent(self._id, 0, parent)
            holder = Node(self._document, parent.value)
            _remove_child(holder._id, self._id)
        self._hand_out.detach()  # the call took the hand-out back
        self._id = 0


class Document(_Selecting):
    """A document that is open until its block ends, or close() is called."""

    def __init__(self):
        id = _Id()
        _document_open(0, id)
        self._id, self._document = id.value, self
        self._hand_out = weakref.finalize(self, _document_close, id.value)
        self._set("TSXSetDoNamespaces", True)

    @classmethod
    def load(cls, path, validate=False, external=True, schemas=None, places=False):
        """The document of a file. `validate` holds it against the schema or DTD
        that it names, `schemas` against these files by namespace; Error.details has
        a line for each fault. Without `external` the external DTD is not read,
        unless to validate; entities that the text declares itself are read in any
        case. With `places` each node knows its own."""
        return cls._read(lambda document: document._load_file(path), validate, external,
                         schemas, places)

    @classmethod
    def parse(cls, text, validate=False, external=True, schemas=None, places=False):
        """The document of XML text, or of bytes in the encoding they declare."""
        return cls._read(lambda document: document._load_text(text), validate, external,
                         schemas, places)

    def bind(self, prefix, uri):
        """What a prefix means in expressions, whatever the document declares."""
        with _strings(prefix, uri) as (text, name):
            _bind_prefix(self._id, text, name)

    @property
    def root(self):
        root = _Id()
        _get_root(self._id, 0, root)
        return Node(self, root.value) if root.value else None

    def save(self, path, pretty=False):
        write = _save_file_pretty if pretty else _save_file
        with _path(path) as native, _strings(None) as (error,):
            write(self._id, native, error, details=[error])
            if error:
                raise Error(-1, _text(error))

    def close(self):
        self._hand_out()
        self._id = 0

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    @classmethod
    def _read(cls, load, validate, external, schemas, places):
        document = cls()
        try:
            validate = bool(validate or schemas)
            document._name_schemas(schemas or {})
            document._set("TSXSetDoSchema", validate)
            document._set("TSXSetLoadExternalDTD", external)
            document._set("TSXSetKeepPositions", places)
            _set_validation(document._id, 0, ctypes.c_int32(1 if validate else 0))
            load(document)
        except BaseException:
            document.close()
            raise
        return document

    def _name_schemas(self, schemas):
        # A place is one word, and a relative one would be beside the document.
        places = [(uri, os.path.abspath(path).replace(" ", "%20"))
                  for uri, path in schemas.items()]
        with _strings(" ".join(word for pair in places for word in pair)) as (pairs,):
            _set_schema_location(self._id, 0, pairs)

    def _set(self, option, value):
        _set_flag[option](self._id, 0, ctypes.c_uint8(value))

    def _load_file(self, path):
        with _path(path) as native, _strings(None, None) as (errors, exception):
            _load_file(self._id, native, errors, exception, details=[errors, exception])

    def _load_text(self, text):
        with _strings(text, None, None) as (xml, errors, exception):
            _load_bytes(self._id, xml, errors, exception, details=[errors, exception])
