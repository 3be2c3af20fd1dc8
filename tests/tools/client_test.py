"""Runs the client on small documents and compares all that it says.

Usage: client_test.py CLIENT [TEST...]
"""

import collections
import contextlib
import functools
import http.server
import os
import pty
import re
import resource
import signal
import stat
import struct
import subprocess
import sys
import tempfile
import threading
import unittest

CLIENT = os.path.abspath(sys.argv.pop(1))
# Of the surroundings only these count; what is suppressed is not to be listed.
SANITIZERS = {name: value for name, value in os.environ.items() if name.endswith("SAN_OPTIONS")}
SANITIZERS["LSAN_OPTIONS"] = SANITIZERS.get("LSAN_OPTIONS", "") + ":print_suppressions=0"

CATALOGUE = """<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE catalogue [<!ENTITY place "Zürich">]>
<catalogue><!-- two --><tile id="t1" size="20"><colour>crème 😀</colour>\
<origin>&place;</origin></tile><?print wide?><tile id="t2" size="35">\
<note><![CDATA[a < b]]></note></tile></catalogue>"""

CATALOGUE_TREE = """\
0 document
1   document-type catalogue
2     entity place
3       text "Zürich"
1   element catalogue
2     comment " two "
2     element tile
3       attribute id "t1"
3       attribute size "20"
3       element colour
4         text "crème 😀"
3       element origin
4         entity-reference place
5           text "Zürich"
2     processing-instruction print "wide"
2     element tile
3       attribute id "t2"
3       attribute size "35"
3       element note
4         cdata "a < b"
"""

# Whatever a writer would tidy up.
UNTIDY = """<?xml version='1.0'   encoding='ENCODING'?>\r
<!-- head --><!DOCTYPE r [<!ENTITY place "Zürich"> <!ATTLIST a d CDATA "dd">]>\r
\r
<r  xmlns:p = "urn:p"   z='1' b="2">
   <a  id='x'   size = "3" ><b/>text &amp; &#x21;&place; more<b  /></a  >
  <![CDATA[ raw ]]><?pi   data?>
 <a>two</a></r>
<!-- tail -->

"""

# What a writer may get wrong, as it must come back.
WRITTEN = [
    """<!DOCTYPE r [<!ENTITY q '"x"'>]><r>&q;</r>""",
    '<!DOCTYPE r [<!ENTITY l "&#38;#60;">]><r>&l;</r>',
    '<!DOCTYPE r [<!ENTITY % p "x"><!ENTITY p "y">]><r>&p;</r>',
    """<!DOCTYPE r [<!ENTITY % p "<!ENTITY q 'h'>">%p;]><r>&q;</r>""",
    '<!DOCTYPE r [<!NOTATION x SYSTEM "v"><!ATTLIST r n NOTATION (x) #IMPLIED>]><r n="x"/>',
    """<!DOCTYPE r [<!NOTATION n PUBLIC "-//n"><!ATTLIST r f CDATA #FIXED 'a"b' d CDATA "'">]><r/>""",
    "<!DOCTYPE r [<!--a-->\n <?p  q?>\t]><r/>",
    '<r xmlns="urn:a" xmlns:b="urn:b"><b:c xmlns=""><d b:e="1" xmlns:b="urn:c"/></b:c></r>',
    "<r><![CDATA[]]]]><![CDATA[>]]>]]&gt;</r>",
    '<r a="&#xA;&#x9;&quot;">&#xD;\t</r>',
    '<?xml version="1.1"?><r>&#x1;<\U00020000/></r>',
]

HEAD = '<?xml version="1.0" encoding="UTF-8" standalone="no" ?>'

KINDS = """<!DOCTYPE k PUBLIC "-//T//K" "k.dtd" [
<!NOTATION gif PUBLIC "pub" "viewer"><!ENTITY pic SYSTEM "x.gif" NDATA gif>
<!ELEMENT k ANY><!ATTLIST k size CDATA "20" name CDATA #IMPLIED>]>
<k name='a"b'>tab\t\\
&#13;</k>"""

SCHEMA = """<xs:schema xmlns:xs="http://www.w3.org/2001/XMLSchema">
<xs:element name="n" type="xs:int"/></xs:schema>"""
# Two ways to read one element: only the full check minds.
AMBIGUOUS = """<xs:schema xmlns:xs="http://www.w3.org/2001/XMLSchema">
<xs:element name="n"><xs:complexType><xs:sequence>
<xs:element name="a" minOccurs="0"/><xs:element name="a"/>
</xs:sequence></xs:complexType></xs:element></xs:schema>"""


def schema_of(namespace, content):
    target = f' targetNamespace="{namespace}"' if namespace else ""
    return f'<xs:schema xmlns:xs="http://www.w3.org/2001/XMLSchema"{target}>{content}</xs:schema>'


def by_schema(schema, content):
    return ('<n xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance" '
            f'xsi:noNamespaceSchemaLocation="{schema}">{content}</n>')


FILES = {
    "cat.xml": CATALOGUE,
    "latin1.xml": CATALOGUE.replace("UTF-8", "ISO-8859-1").replace(" 😀", "").encode("latin-1"),
    "utf16.xml": CATALOGUE.replace("UTF-8", "UTF-16").encode("utf-16"),
    "Zürich:1.xml": "<a/>",
    "kinds.xml": KINDS,
    "k.dtd": "",
    "broken.xml": "<a>\n <b></a>",
    "valid.xml": "<!DOCTYPE a [<!ELEMENT a (b)><!ELEMENT b EMPTY>]>\n<a><b/></a>",
    "invalid.xml": "<!DOCTYPE a [<!ELEMENT a (b)><!ELEMENT b EMPTY>]>\n<a>\n<c/></a>",
    "nodtd.xml": '<!DOCTYPE a SYSTEM "gone.dtd"><a><b/></a>',
    "number.xsd": SCHEMA,
    "ambiguous.xsd": AMBIGUOUS,
    "one list.xsd": schema_of("urn:l", '<xs:element name="l"><xs:complexType><xs:sequence>'
                              '<xs:any maxOccurs="9"/></xs:sequence></xs:complexType></xs:element>'),
    "two.xsd": schema_of("urn:l", '<xs:element name="n" type="xs:int"/>'),
    "other.xsd": schema_of("urn:o", '<xs:element name="n" type="xs:date"/>'),
    "including.xsd": schema_of("", '<xs:include schemaLocation="gone.xsd"/>'),
    "list.xml": '<l xmlns="urn:l" xmlns:o="urn:o"><n>5</n><o:n>2000-01-01</o:n></l>',
    "wrong.xml": '<l xmlns="urn:l" xmlns:o="urn:o"><n>x</n><o:n>5</o:n><m/></l>',
    "nosuch.xml": by_schema("gone.xsd", "<a/>"),
    "noschema.xml": by_schema("no.xsd", "<a/>"),
    "badschema.xml": by_schema("bad.xsd", "<a/>"),
    "no.xsd": "<r/>",
    "bad.xsd": schema_of("", "")[:-12],
    "number.xml": by_schema("number.xsd", "5"),
    "word.xml": by_schema("number.xsd", "five"),
    "ambiguous.xml": by_schema("ambiguous.xsd", "<a/>"),
    "elsewhere.xml": '<!DOCTYPE a SYSTEM "elsewhere.dtd"><a/>',
    "elsewhere.dtd": "<!ELEMENT a EMPTY>\n<!ELEMENT a ANY>",
    "faults.xml": b"<a>\n\t<b>z\xc3\xbcrich \xf0\x9f\x98\x80\x7f</b>&x;<c/>\n" + b"-" * 64 + b"&y;"
                  + b"+" * 99 + b"\n" + b"&z;" * 20 + b"\n</a>",
    "latin.xml": b'<?xml version="1.0" encoding="ISO-8859-1"?>\n<a>\xe9&x;</a>',
    "laughs.xml": '<!DOCTYPE a [<!ENTITY a "">' + "".join(
        f'<!ENTITY {b} "{10 * f"&{a};"}">' for a, b in zip("abcdef", "bcdefg")) + "]><a>&g;</a>",
    "parameters.xml": '<!DOCTYPE a [<!ENTITY % a "">' + "".join(
        f'<!ENTITY % {b} "{10 * f"&#37;{a};"}">' for a, b in zip("abcdef", "bcdefg"))
        + "%g;]><a/>",
    "defaults.xml": '<!DOCTYPE a [<!ENTITY a "">' + "".join(
        f'<!ENTITY {b} "{10 * f"&{a};"}">' for a, b in zip("abcdef", "bcdefg"))
        + '<!ATTLIST a x CDATA "&g;">]><a/>',
    "model.xml": f"<!DOCTYPE a [<!ELEMENT a ({'b,' * 200000}b)>]><a/>",
    "unreachable.xml": '<!DOCTYPE a [<!ENTITY e SYSTEM "http://127.0.0.1:1/">]><a>&e;</a>',
    "external.xml": '<!DOCTYPE a [<!ENTITY f SYSTEM "text.ent">]>\n<a x="">&f;</a>',
    "text.ent": "from the file",
    "nested.xml": "<r><a>1<a>2</a></a><b/></r>",
    "text.xml": "<t a='é'>1</t>",
    "spaces.xml": '<r>\n <a/>   <b> x <c/></b><d xml:space="preserve"> <e/></d>'
                  '<f><!-- > --><?g h?><i><![CDATA[ ]]></i></f></r>',
    "mixed.xml": '<r><p>See <a>the manual</a>, <b>bold</b>!</p><d xml:space="preserve"><e/></d></r>',
    "names.xml": '<p:a xmlns:p="urn:p"><p:b>1</p:b></p:a>',
    "apart.xml": "<r>a<!--c-->b<d/></r>",
    "typed.xml": '<!DOCTYPE r [<!ATTLIST a i ID #IMPLIED>]><r><a/></r>',
    "edit.xml": '<r xmlns="urn:d" xmlns:p="urn:p" k="1"><p:a p:i="2">x</p:a><!--c--><?t d?></r>',
}

NO_COLOR = {"NO_COLOR": "1"}

Case = collections.namedtuple("Case", "args status out err stdin", defaults=("", "", None))

OWN_SCHEMAS = ["check", *(f"--xsd={name}.xsd" for name in ("one list", "two", "other"))]

# The first fault of broken.xml, and what the parser finds when it goes on.
BROKEN = """\
{0}:2:7: expected end of tag 'b'
   <b></a>
        ^
"""
BROKEN_ON = BROKEN + """\
{0}:2:9: input ended before all started tags were ended; last tag started is 'a'
   <b></a>
          ^
"""

SHOWN = r"  .*\n *\^\n"

NOT_FOUND = "No such file or directory"
RUN_HELP = "Run with --help for more information.\n"



def edited(*changes):
    """What becomes of edit.xml: each first text in it replaced by the second."""
    text = FILES["edit.xml"]
    for before, after in zip(changes[::2], changes[1::2]):
        assert before in text, before
        text = text.replace(before, after)
    return text


def refused(problem):
    """What is said of edit.xml, a regular expression."""
    return re.compile(f"tessel: edit\\.xml: {problem}\n")


CASES = [
    # Trees.
    Case("tree cat.xml", 0, CATALOGUE_TREE),
    Case("tree latin1.xml", 0, CATALOGUE_TREE.replace(" 😀", "")),
    Case("tree -", 0, CATALOGUE_TREE, stdin="utf16.xml"),
    Case("tree Zürich:1.xml", 0, "0 document\n1   element a\n"),
    Case("tree kinds.xml", 0, """\
0 document
1   document-type k public "-//T//K" system "k.dtd"
2     entity pic system "x.gif" notation "gif"
2     notation gif public "pub" system "viewer"
1   element k
2     attribute name "a\\"b"
2     attribute size "20" default
2     text "tab\\t\\\\\\n\\x0d"
"""),
    Case("tree --no-attributes text.xml", 0, '0 document\n1   element t\n2     text "1"\n'),
    # A relative reference from standard input is one from the working directory.
    Case("query --text - a", 1, stdin="external.xml",
         err=re.compile("-:2:.*'text.ent' was refused: .*; --network allows it\n")),
    Case("--network query --text - a", 0, "from the file\n", stdin="external.xml"),
    # What cannot be read.
    Case("tree broken.xml", 1, err=BROKEN.format("broken.xml")),
    Case("tree -", 1, err=BROKEN.format("-"), stdin="broken.xml"),
    Case("tree gone.xml", 1, err=f"tessel: gone.xml: {NOT_FOUND}\n"),
    Case("tree .", 1, err="tessel: .: Is a directory\n"),
    # Writing back.
    Case("format cat.xml", 0, HEAD + CATALOGUE.split("?>\n", 1)[1].replace("\n", "", 1)),
    Case("format --pretty nested.xml", 0,
         HEAD + "\n<r>\n  <a>1<a>2</a></a>\n  <b/>\n</r>\n"),
    Case("format --pretty mixed.xml", 0, HEAD + """
<r>
  <p>See <a>the manual</a>, <b>bold</b>!</p>
  <d xml:space="preserve"><e/></d>
</r>
"""),
    Case("format --encoding ISO-8859-1 latin1.xml", 0,
         (HEAD.replace("UTF-8", "ISO-8859-1")
          + FILES["latin1.xml"].decode("latin-1").split("?>\n", 1)[1].replace("\n", "", 1))
         .encode("latin-1")),
    Case("format --encoding no-such valid.xml", 1,
         err="tessel: valid.xml: domErrInvalidCharacter (-2604): "
             "it cannot be written in no-such\n"),
    Case("format -o - --no-declaration text.xml", 0, '<t a="é">1</t>'),
    Case("format --no-declaration --encoding UTF-16 text.xml", 0,
         '<t a="é">1</t>'.encode("utf-16")),
    Case("format --no-declaration --encoding ISO-8859-1 text.xml", 1,
         err="tessel: text.xml: ISO-8859-1 must be declared\n"),
    Case("format --indent 1 spaces.xml", 0, HEAD + """
<r>
 <a/>
 <b> x <c/></b>
 <d xml:space="preserve"> <e/></d>
 <f>
  <!-- > -->
  <?g h?>
  <i><![CDATA[ ]]></i>
 </f>
</r>
"""),
    Case("format --indent 0 --no-declaration kinds.xml", 0, re.compile(
        r"<!DOCTYPE k [^\0]*ANY>[^\0]*\]>\n<k [^\0]*</k>\n")),
    Case("format -o gone/x.xml valid.xml", 1,
         err=f"tessel: gone: no file can be made in this folder: {NOT_FOUND}\n"),
    # Checking.
    Case("check cat.xml utf16.xml valid.xml invalid.xml word.xml", 0),
    Case("check valid.xml broken.xml gone.xml -", 1, stdin="broken.xml",
         err=f"{BROKEN_ON.format('broken.xml')}tessel: gone.xml: {NOT_FOUND}\n"
             f"{BROKEN_ON.format('-')}"),
    Case("check --dtd invalid.xml valid.xml elsewhere.xml", 1, err="""\
invalid.xml:3:3: no declaration found for element 'c'
  <c/></a>
    ^
invalid.xml:3:9: element 'c' is not allowed for content model '(b)'
  <c/></a>
          ^
elsewhere.dtd:2:12: element 'a' has already been declared
  <!ELEMENT a ANY>
             ^
"""),
    # Wide characters, controls, long lines, and no more than ten.
    Case("check faults.xml", 1, err="""\
faults.xml:2:22: entity 'x' not found
  \t<b>zürich 😀?</b>&x;<c/>
  \t                    ^
faults.xml:3:68: entity 'y' not found
  ...""" + "-" * 57 + "&y;" + "+" * 20 + """...
     """ + " " * 60 + """^
""" + "".join(f"""\
faults.xml:4:{4 + 3 * i}: entity 'z' not found
  """ + "&z;" * (i + 1) + ("&z;" * 7)[:20] + """...
  """ + " " * (3 + 3 * i) + """^
""" for i in range(8))),
    Case("check laughs.xml", 1, err=re.compile(
        r"laughs\.xml:1:\d+: .*'50000' entity expansions.*\n" + SHOWN)),
    Case("check --dtd model.xml", 1, err=re.compile(
        r"model\.xml:1:\d+: the content model is too large for the stack .*\n" + SHOWN)),
    Case("check parameters.xml defaults.xml", 1, err=re.compile(
        r"parameters\.xml:1:\d+: .*'50000' entity expansions.*\n" + SHOWN
        + r"defaults\.xml:1:\d+: .*'50000' entity expansions.*\n" + SHOWN)),
    Case("check unreachable.xml", 1, err=re.compile(
        r"unreachable\.xml:1:\d+: access to 'http://127.0.0.1:1/' was refused: .* by network; "
        "--network allows it\n" + SHOWN)),
    Case("check latin.xml", 1, err="latin.xml:2:8: entity 'x' not found\n"
         "  <a>?&x;</a>\n         ^\n"),
    Case("check --schema number.xml ambiguous.xml", 0),
    Case("check --schema word.xml", 1, err=re.compile(r"word\.xml:1:\d+: .*'five'.*\n" + SHOWN)),
    Case("check --full number.xml ambiguous.xml", 1,
         err=re.compile(r"ambiguous\.xml:\d+:\d+: .* the unique particle attribution rule .*\n" + SHOWN
        + r"ambiguous\.xml:\d+:\d+: .*\n" + SHOWN)),
    Case("check --no-external-dtd nodtd.xml", 0),
    # What is not there is said once, and not of every name that it would declare.
    *[Case(f"check {args}", 1, err=re.compile(f"{place}: {problem}\n{SHOWN}"))
      for args, place, problem in (
          ("nodtd.xml", r"nodtd\.xml:1:\d+", ".*gone\\.dtd'"),
          ("--dtd nodtd.xml", r"nodtd\.xml:1:\d+", ".*gone\\.dtd'"),
          ("--dtd nested.xml", "nested\\.xml:1:3", "the document has no DTD"),
          ("--schema nested.xml", "nested\\.xml:1:4", "the document names no schema"),
          ("--schema nosuch.xml", r"nosuch\.xml:1:\d+", "unable to open the schema 'gone.xsd'"),
          ("--schema badschema.xml", r"bad\.xsd:1:\d+", "input ended.*"))],
    Case("check --schema noschema.xml", 1, err=re.compile(
        r"no\.xsd:1:5: .*must be 'schema'\n" + SHOWN + r"no\.xsd:1:5: .*\n" + SHOWN)),
    # Schemas of one's own, two of them for one namespace.
    Case([*OWN_SCHEMAS, "list.xml"], 0),
    Case([*OWN_SCHEMAS, "wrong.xml", "list.xml"], 1, err=re.compile(
        r"wrong\.xml:1:\d+: .*'x'.*\n" + SHOWN + r"wrong\.xml:1:\d+: .*'5'.*\n" + SHOWN
        + r"wrong\.xml:1:\d+: .*element 'm'\n" + SHOWN)),
    Case("check --xsd number.xsd --xsd gone.xsd list.xml", 1,
         err=f"tessel: gone.xsd: {NOT_FOUND}\n"),
    Case("check --xsd including.xsd list.xml", 1,
         err="tessel: including.xsd: unable to open the schema 'gone.xsd'\n"),
    # Queries.
    Case("query cat.xml //@*[.>20]|//note/text()|//comment()", 0, '<!-- two -->\nsize="35"\n'),
    Case("query --text cat.xml //@id|//colour", 0, "t1\ncrème 😀\nt2\n"),
    Case("query --text nested.xml /", 0, "12\n"),
    Case("query --lines latin1.xml //@id|//colour/text()|//@*[.>20]", 0,
         'latin1.xml:3:30: id="t1"\nlatin1.xml:3:56: crème\nlatin1.xml:3:121: id="t2"\nlatin1.xml:3:129: size="35"\n'),
    Case("query --lines - /k/@*", 0, '-:4:4: name="a&quot;b"\n-: size="20"\n', stdin="kinds.xml"),
    Case("query --count cat.xml //tile", 0, "2\n"),
    Case("query --count cat.xml tree", 1, "0\n"),
    Case(["query", "--count", "cat.xml", "//colour[.='crème 😀']"], 0, "1\n"),
    Case("query --count --no-namespaces names.xml //p:b", 1, err=re.compile(
        r"tessel: names\.xml: domErrXPathParse \(-2768\): .+\n")),
    *[Case(["query", "cat.xml", expression], 0, value + "\n") for expression, value in (
        ("count(//tile)", "2"), ("sum(//@size) div 2", "27.5"), ("1 div 0", "Infinity"),
        ("string(//colour)", "crème 😀"), ("//@size > 34", "true"), ("not(//tile)", "false"))],
    Case("query --count cat.xml count(//tile)", 1, err=re.compile(
        r"tessel: cat\.xml: domErrXPathConversion \(-2769\): .+\n")),
    Case("query cat.xml $x", 1, err=re.compile(
        r"tessel: cat\.xml: domErrXPathConversion \(-2769\): .+\n")),
    Case("query -N p=urn:d --namespace d=urn:p edit.xml //p:r/d:a/@d:i", 0, 'p:i="2"\n'),
    Case("query -N 1=urn:d edit.xml //p:a", 1, err=re.compile(
        r"tessel: 1=urn:d: domErrInvalidCharacter \(-2604\): .+\n")),
    # Edits.
    Case("set nested.xml //b -5", 0, "<r><a>1<a>2</a></a><b>-5</b></r>"),
    Case("set nested.xml //a Zürich", 0, "<r><a>Zürich</a><b/></r>"),
    Case(["set", "nested.xml", "//a/text()", ""], 0, "<r><a><a></a></a><b/></r>"),
    Case(["set", "nested.xml", "//a|//b", ""], 0, "<r><a></a><b/></r>"),
    Case("set - //p:b 2", 0, '<p:a xmlns:p="urn:p"><p:b>2</p:b></p:a>',
         stdin="names.xml"),
    Case("set kinds.xml //@name x", 0, KINDS.replace('a"b', "x")),
    # What the text of one document names cannot be read again, and a default attribute is
    # in no text.
    Case("set external.xml /a/@x v", 0, re.compile(r'<\?xml .*<a x="v">&f;</a>', re.S),
         "tessel: external.xml: its text cannot be changed in part, so it is written anew\n"),
    Case("delete kinds.xml //@size", 0, re.compile(r'<\?xml .*<k name="a&quot;b">.*', re.S),
         "tessel: kinds.xml: its text cannot be changed in part, so it is written anew\n"),
    Case("edit --delete //@size --set-attribute /* xmlns:z urn:z kinds.xml", 1,
         err="tessel: kinds.xml: a namespace is declared only in a text that is kept\n"),
    Case("set nested.xml / x", 1,
         err="tessel: nested.xml: a document has no value that can be set\n"),
    Case("set nested.xml //gone x", 1, err="tessel: nested.xml: nothing found: //gone\n"),
    Case("set cat.xml //origin//text() x", 1, err=re.compile(
        r"tessel: cat\.xml: domErrNoModificationAllowed \(-2606\): .+\n")),
    Case("delete cat.xml //@id|//comment()|//colour|//origin|//note|/processing-instruction()", 0,
         re.sub(r' id="t."|<!--.*?-->|<(colour|origin|note)>.*?</\1>', "", CATALOGUE)),
    Case("delete nested.xml /r", 1,
         err="tessel: nested.xml: the document element cannot be deleted\n"),
    Case("set --attribute p:n edit.xml /* v", 0, edited('k="1"', 'k="1" p:n="v"')),
    # A prefix of the command line has its meaning in each expression, and there alone.
    Case("edit -N d=urn:d --set /d:r/@k 2 --insert-last /d:r <p:b/> edit.xml", 0,
         edited('k="1"', 'k="2"', "</r>", "<p:b/></r>")),
    Case("set -N q=urn:p edit.xml //q:a y", 0, edited(">x<", ">y<")),
    Case("delete -N q=urn:p edit.xml //q:a", 0, edited('<p:a p:i="2">x</p:a>', "")),
    Case("insert -N q=urn:p --after edit.xml //q:a t", 0, edited("</p:a>", "</p:a>t")),
    Case("rename -N q=urn:p edit.xml //q:a q:b", 1,
         err="tessel: edit.xml: no namespace is declared here for the prefix q\n"),
    Case("set --attribute q:n edit.xml /* v", 1,
         err="tessel: edit.xml: no namespace is declared here for the prefix q\n"),
    Case("set --attribute 1 edit.xml /* v", 1,
         err='tessel: edit.xml: "1" is no name that can stand here\n'),
    Case("set --attribute a edit.xml //comment() v", 1,
         err="tessel: edit.xml: a comment has no attributes\n"),
    *[Case(["edit", *edit.split(), "apart.xml"], 1, err=f"tessel: apart.xml: a document {problem}\n")
      for edit, problem in (("--set / x", "has no value that can be set"),
                            ("--set-attribute / k x", "has no attributes"),
                            ("--delete /", "cannot be deleted"),
                            ("--rename / x", "has no name that can be changed"))],
    *[Case(["set", "edit.xml", expression, value], 1,
           err=refused("the value cannot stand in " + re.escape(problem)))
      for expression, value, problem in (
          ("//comment()", "a -- b", 'a comment: it holds "--"'),
          ("//comment()", "a-", 'a comment: it ends in "-"'),
          ("//comment()", "a\rb", "a comment: it holds a carriage return"),
          ("//processing-instruction()", "?>", 'a processing-instruction: it holds "?>"'),
          ("//processing-instruction()", " x",
           "a processing-instruction: it begins with white space"),
          ("//@k", "\x01", "an attribute: XML cannot hold the character U+0001"),
          ("//p:a", "\uffff", "an element: XML cannot hold the character U+FFFF"),
          ("//p:a", b"\xed\xa0\x80", "an element: it is not UTF-8"),
          ("//p:a", b"a\xc0\x80", "an element: it is not UTF-8"),
          ("//p:a/text()", b"\xf0\x9f\x98", "a text: it is not UTF-8"))],
    Case(["set", "cat.xml", "//note/node()", "]]>"], 1,
         err='tessel: cat.xml: the value cannot stand in a cdata: it holds "]]>"\n'),
    Case("rename edit.xml //*|//@p:i n", 0,
         edited("<r ", "<n ", "</r>", "</n>", "p:a p:i", "n n", "/p:a", "/n")),
    Case("rename edit.xml /processing-instruction()|//processing-instruction() u", 0,
         edited("<?t", "<?u")),
    Case("rename nested.xml //a c", 0, "<r><c>1<c>2</c></c><b/></r>"),
    Case("rename edit.xml //comment() n", 1,
         err="tessel: edit.xml: a comment has no name that can be changed\n"),
    Case("rename cat.xml //tile/@id size", 1,
         err="tessel: cat.xml: the element has an attribute size already\n"),
    *[Case(["insert", *options, "edit.xml", where, content], 0, edited(before, after))
      for options, where, content, before, after in (
          ([], "/*", "<p:z k='&amp;'/>t", "</r>", "<p:z k='&amp;'/>t</r>"),
          (["--first"], "//p:a", "<!--n-->", ">x", "><!--n-->x"),
          (["--before", "--text"], "//p:a", "<&>", "<p:a", "&lt;&amp;&gt;<p:a"),
          (["--after", "--comment"], "//p:a", "n", "<!--", "<!--n--><!--"),
          (["--last", "--element"], "//p:a", "p:n", "x</p", "x<p:n/></p"),
          (["--before", "--comment"], "/*", "n", "<r", "<!--n--><r"))],
    *[Case(["insert", *options, "edit.xml", where, content], 1, err=refused(problem))
      for options, where, content, problem in (
          ([], "/*", "</content><content>", "what .* is not well-formed: .*"),
          ([], "/*", "<q:n/>", "what .* is not well-formed: prefix 'q' .*"),
          ([], "/*", "<n>", "what .* is not well-formed: .*"),
          (["--comment"], "/*", "a--b", 'the value cannot stand in a comment: it holds "--"'),
          (["--after"], "//@k", "<n/>", "nothing can be inserted beside an attribute"),
          ([], "//comment()", "<n/>", "nothing can be inserted into a comment"),
          ([], "/", "<n/>", r"domErrHierarchyRequest \(-2602\): .*"))],
    # Each edit sees what those before it did.
    Case(["edit", "--rename", "//p:a", "p:b", "--set-attribute", "//p:b", "k", "v",
          "--delete", "//*[@k='v']", "--insert-first", "/*", "<p:f/>",
          "--insert-before", "//p:f", "<g/>", "--insert-after", "//p:f", "1",
          "--insert-last", "/*", "<h/>", "--set", "//comment()", "-n", "edit.xml"], 0,
         edited('<p:a p:i="2">x</p:a><!--c-->', "<g/><p:f/>1<!---n-->", "</r>", "<h/></r>")),
    Case("edit --delete //gone --delete //comment() edit.xml", 1,
         err="tessel: edit.xml: nothing found: //gone\n"),
    # One edit finds what those before it have made, as it is when it is read again.
    Case("edit --delete //comment() --set //text()[1] x apart.xml", 0, "<r>x<d/></r>"),
    Case("edit --delete //comment() --insert-last /r[count(text())=2] <x/> apart.xml", 1,
         err="tessel: apart.xml: nothing found: /r[count(text())=2]\n"),
    Case("edit --set-attribute //a i x --insert-last id('x') <b/> typed.xml", 0,
         FILES["typed.xml"].replace("<a/>", '<a i="x"><b/></a>')),
    # What names stand for stays.
    *[Case(f"edit {edit} edit.xml", 1, err=refused("names that stand there need the namespace declared"))
      for edit in ("--set-attribute /* xmlns urn:x", "--set //namespace::p urn:x",
                   "--insert-last /* <e/> --delete //namespace::p --delete //comment()")],
    Case("edit --set-attribute /* xmlns:q urn:q --insert-last /* <q:e/> edit.xml", 0,
         edited(' k="1"', ' k="1" xmlns:q="urn:q"', "</r>", "<q:e/></r>")),
    Case("edit edit.xml", 2, err="at least one edit is required\n" + RUN_HELP),
    Case("edit --delete //x cat.xml edit.xml", 2, err=re.compile(f".*--in-place only\n{RUN_HELP}")),
    # Codes.
    Case("explain -2766", 0, """\
domErrXPathContext (-2766)
  Meaning:     the context's id names no node
  Returned by: XPathEvaluateContextToNode, XPathEvaluateContextToNodeArray, \
XPathEvaluateContextToString, XPathEvaluateContextToNumber, XPathEvaluateContextToBoolean, \
XPathGetExpressionType
  What to do:  pass the id of a node that is still open
"""),
    Case("explain -2605", 1, err="tessel: -2605: no function returns this code\n"),
    Case("--version", 0, re.compile(r"Tessel \d+\.\d+\.\d+\nXerces-C .+\nXalan-C .+\n")),
    # Wrong usage.
    Case("", 2, err="A subcommand is required\n" + RUN_HELP),
    Case("explain", 2, err="CODE or --all is required\n" + RUN_HELP),
    Case("tree cat.xml --gone", 2, err=re.compile(f".*--gone\n{RUN_HELP}")),
    *[Case(f"query {names} cat.xml a", 2, err=re.compile(f".*{problem}.*\n{RUN_HELP}"))
      for names, problem in (("-N p", "is not PREFIX=URI"), ("-N =u", "is not PREFIX=URI"),
                             ("-N p=", "is not PREFIX=URI"),
                             ("-N p=u --no-namespaces", "excludes"))],
    Case("set --in-place - //b x", 2, err=re.compile(f".*--in-place.*\n{RUN_HELP}")),
    Case("set --in-place -o x cat.xml //b x", 2, err=re.compile(f".*excludes.*\n{RUN_HELP}")),
    Case("check --dtd --no-external-dtd valid.xml", 2, err=re.compile(f".*excludes.*\n{RUN_HELP}")),
]


def words(args):
    return args.split() if isinstance(args, str) else args


def locales_of(case):
    """C.UTF-8, and C where something is read or said that has not only ASCII characters."""
    read = (FILES.get(name, "") for name in [*words(case.args), case.stdin])
    seen = [getattr(text, "pattern", text)
            for text in [*words(case.args), case.out, case.err, *read]]
    return ["C.UTF-8"] if all(text.isascii() for text in seen) else ["C", "C.UTF-8"]


class ClientTest(unittest.TestCase):
    def setUp(self):
        self.folder = self.enter(tempfile.TemporaryDirectory())
        for name, content in FILES.items():
            with open(os.path.join(self.folder, name), "wb") as file:
                file.write(content if isinstance(content, bytes) else content.encode())

    def enter(self, manager):
        value = manager.__enter__()
        self.addCleanup(manager.__exit__, None, None, None)
        return value

    def path(self, name):
        return os.path.join(self.folder, name)

    def read(self, name):
        with open(self.path(name), "rb") as file:
            return file.read()

    def run_client(self, args, locale="C.UTF-8", env=(), **options):
        # Every run also fails if it leaves a string, array or path open.
        env = {"PATH": os.environ["PATH"], "LC_ALL": locale, "TESSEL_LEDGER": "1", **SANITIZERS,
               **dict(env)}
        options.setdefault("stdin", subprocess.DEVNULL)
        return subprocess.run([CLIENT, *words(args)], env=env, cwd=self.folder, timeout=120,
                              stdout=options.pop("stdout", subprocess.PIPE),
                              stderr=options.pop("stderr", subprocess.PIPE), **options)

    def check_text(self, want, got):
        if isinstance(want, re.Pattern):
            self.assertRegex(got.decode(), re.compile(f"\\A(?:{want.pattern})\\Z", want.flags))
        else:
            self.assertEqual(want if isinstance(want, bytes) else want.encode(), got)

    def test_commands(self):
        for case in CASES:
            for locale in locales_of(case):
                with self.subTest(case.args, stdin=case.stdin, locale=locale):
                    with open(self.path(case.stdin or os.devnull), "rb") as stdin:
                        result = self.run_client(case.args, locale, stdin=stdin)
                    self.check_text(case.err, result.stderr)
                    self.check_text(case.out, result.stdout)
                    self.assertEqual(case.status, result.returncode)

    def test_every_code_is_explained(self):
        listed = self.run_client("explain --all").stdout.decode().splitlines()
        table = self.run_client("explain --markdown").stdout.decode().splitlines()[2:]
        self.assertGreater(len(listed), 140)
        self.assertEqual(len(listed), len(table))
        number, name = re.match(r"(\S+) ([^:]+):", listed[-1]).groups()
        by_number, by_name = (self.run_client(["explain", code]) for code in (number, name))
        self.assertEqual((0, by_name.stdout), (by_number.returncode, by_number.stdout))

    # -- Terminals and pipes ---------------------------------------------------

    def run_on_terminal(self, args, stream, env=()):
        """What the client writes to a terminal that is its `stream`."""
        primary, secondary = pty.openpty()
        result = self.run_client(args, env={"TERM": "xterm", **dict(env)}, **{stream: secondary})
        os.close(secondary)
        text = b""
        with contextlib.suppress(OSError):
            while chunk := os.read(primary, 65536):
                text += chunk
        os.close(primary)
        return result, text.decode()

    def test_colour_on_a_terminal_only(self):
        self.assertIn("\x1b[1mcolour\x1b[0m", self.run_on_terminal("tree cat.xml", "stdout")[1])
        for env in (NO_COLOR, {"TERM": "dumb"}):
            self.assertNotIn("\x1b", self.run_on_terminal("tree cat.xml", "stdout", env)[1])

    def test_colour_of_faults(self):
        text = self.run_on_terminal("tree broken.xml", "stderr")[1]
        self.assertIn("\x1b[1mbroken.xml:2:7:\x1b[0m expected", text)
        self.assertIn("\x1b[31m^\x1b[0m", text)
        self.assertNotIn("\x1b", self.run_on_terminal("tree broken.xml", "stderr", NO_COLOR)[1])

    def start_on_terminal(self, *args):
        primary, secondary = pty.openpty()
        process = subprocess.Popen([CLIENT, *args], cwd=self.folder, stderr=secondary,
                                   stdout=subprocess.PIPE)
        os.close(secondary)
        return process, primary

    def test_progress_on_a_terminal(self):
        with open(self.path("wide.xml"), "w") as file:
            file.write("<a>" + " " * 999993 + "</a>")
        os.mkfifo(self.path("slow.xml"))
        # Without a terminal nothing is said, and nothing when all is quick.
        self.assertEqual(b"", self.run_client("check wide.xml").stderr)
        process, terminal = self.start_on_terminal("check", "wide.xml", "slow.xml", "broken.xml")
        with open(self.path("slow.xml"), "w") as slow:
            slow.write("<a>")
            slow.flush()
            text = b""
            while not text.endswith(b"slow.xml"):
                text += os.read(terminal, 65536)
            slow.write("</a>")
        self.assertEqual((b"", 1), (process.stdout.read(), process.wait()))
        process.stdout.close()
        rest = os.read(terminal, 65536)
        os.close(terminal)
        self.assertEqual(b"\r\x1b[Ktessel: 2 of 3 files, 1.0 of 1.0 MB, 99%, slow.xml", text)
        # The line is gone before the first message.
        self.assertEqual(b"\r\x1b[K" + BROKEN_ON.format("broken.xml").replace("\n", "\r\n").encode(),
                         re.sub(rb"\x1b\[\d*m", b"", rest))

    def test_closed_pipe_is_quiet(self):
        with open(self.path("wide.xml"), "w") as file:
            file.write("<a>" + "<b/>" * 50000 + "</a>")
        # The parent ignores the signal, and the client must not.
        process = subprocess.Popen([CLIENT, "tree", self.path("wide.xml")], restore_signals=False,
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        process.stdout.readline()
        process.stdout.close()
        self.assertEqual(b"", process.stderr.read())
        process.stderr.close()
        self.assertEqual(-signal.SIGPIPE, process.wait())

    def test_full_output_is_an_error(self):
        with open("/dev/full", "wb") as full:
            result = self.run_client("tree cat.xml", stdout=full)
        self.assertEqual((1, b"tessel: standard output: No space left on device\n"),
                         (result.returncode, result.stderr))

    def test_deep_document(self):
        levels = 30000
        with open(self.path("deep.xml"), "w") as file:
            file.write("<a>" * levels + "</a>" * levels)
        lines = self.run_client("tree deep.xml").stdout.splitlines()
        self.assertEqual(levels + 1, len(lines))
        self.assertEqual(f"{levels} ".encode(), lines[-1][:len(str(levels)) + 1])

    # -- Files that are replaced -------------------------------------------------

    def delete_in_place(self, name, **options):
        result = self.run_client(f"delete --in-place {name} //a", **options)
        return result.returncode, result.stdout, result.stderr.decode()

    def test_in_place_keeps_what_the_file_has(self):
        path = self.path("nested.xml")
        # Read and write for the owner and for user 7, nothing for others, by an access list
        # whose mask stands where the mode has the group's rights.
        access = struct.pack("<I" + "HHI" * 5, 2, 1, 6, 2**32 - 1, 2, 6, 7, 4, 0, 2**32 - 1,
                             16, 6, 2**32 - 1, 32, 0, 2**32 - 1)
        kept = {"user.origin": b"quarry\0", "system.posix_acl_access": access}
        try:
            for name, value in kept.items():
                os.setxattr(path, name, value)
        except OSError:
            kept = {}
            os.chmod(path, 0o640)
        if os.geteuid() == 0:
            os.chown(path, 7, 8)
        os.symlink("nested.xml", self.path("link.xml"))
        before = os.stat(path)
        self.assertEqual((0, b"", ""), self.delete_in_place("link.xml"))
        self.assertEqual(b"<r><b/></r>", self.read("nested.xml"))
        now = os.stat(path)
        self.assertEqual((before.st_mode, before.st_uid, before.st_gid),
                         (now.st_mode, now.st_uid, now.st_gid))
        self.assertEqual(kept, {name: os.getxattr(path, name) for name in kept})
        self.assertTrue(os.path.islink(self.path("link.xml")))

    def test_in_place_takes_no_rights_from_the_folder(self):
        access = struct.pack("<I" + "HHI" * 5, 2, 1, 7, 2**32 - 1, 2, 7, 7, 4, 7, 2**32 - 1,
                             16, 7, 2**32 - 1, 32, 7, 2**32 - 1)
        try:
            os.setxattr(self.folder, "system.posix_acl_default", access)
        except OSError:
            self.skipTest("no access lists here")
        self.assertEqual((0, b"", ""), self.delete_in_place("nested.xml"))
        self.assertEqual([], os.listxattr(self.path("nested.xml")))

    def test_in_place_splits_no_links(self):
        os.link(self.path("nested.xml"), self.path("twin.xml"))
        os.symlink("nowhere.xml", self.path("dangling.xml"))
        before = self.read("nested.xml")
        status, _, error = self.delete_in_place("nested.xml")
        self.assertEqual(1, status)
        self.assertRegex(error, r"\Atessel: nested\.xml: .*hard links.*\n\Z")
        result = self.run_client("format -o dangling.xml nested.xml")
        dangling = f"tessel: dangling.xml: it is a link that leads nowhere: {NOT_FOUND}\n"
        self.assertEqual((1, dangling), (result.returncode, result.stderr.decode()))
        self.assertEqual(before, self.read("twin.xml"))
        self.assertTrue(os.path.islink(self.path("dangling.xml")))

    def test_edits_change_nothing_else(self):
        for expression, value, before, after in (
                ("//a/@size", "q\"'<é", 'size = "3"', "size = \"q&quot;'&lt;é\""),
                ("//a/@id", "q\"'", "id='x'", "id='q\"&apos;'"),
                ("//a[2]", "&\r", "two", "&amp;&#xD;"),
                ("//a[1]/text()[1]", "T", "text &amp; &#x21;&place;", "T&place;"),
                ("//b[2]", "T", "<b  />", "<b  >T</b>"),
                ("/comment()[1]", "T", "<!-- head -->", "<!--T-->"),
                ("//processing-instruction()", "T", "<?pi   data?>", "<?pi T?>"),
                ("/r/node()[4]", "T", "<![CDATA[ raw ]]>", "<![CDATA[T]]>")):
            for encoding in ("utf-8", "utf-8-sig", "utf-16", "iso-8859-1"):
                with self.subTest(expression, encoding=encoding):
                    text = UNTIDY.replace("ENCODING", encoding.replace("-sig", ""))
                    self.assertIn(before, text)
                    with open(self.path("untidy.xml"), "wb") as file:
                        file.write(text.encode(encoding))
                    result = self.run_client(["set", "untidy.xml", expression, value])
                    self.assertEqual((0, b""), (result.returncode, result.stderr))
                    self.assertEqual(text.replace(before, after).encode(encoding), result.stdout)

    def test_what_is_written_can_be_read_again(self):
        def run(args, text):
            with open(self.path("in.xml"), "wb") as file:
                file.write(text)
            result = self.run_client([*args.split(), "in.xml"])
            self.assertEqual((0, b""), (result.returncode, result.stderr))
            return result.stdout

        for text in WRITTEN:
            with self.subTest(text):
                written = run("format", text.encode())
                self.assertEqual(re.sub(r"^<\?.*?\?>", "", text),
                                 re.sub(r"^<\?.*?\?>", "", written.decode()))
                self.assertEqual(run("tree", text.encode()), run("tree", written))
                pretty = run("format --pretty", text.encode())
                self.assertEqual(pretty, run("format --pretty", pretty))
                edited_text = re.sub(r"<r([^>]*?)(/?)>", r'<r\1 z="v"\2>', text)
                self.assertEqual(edited_text.encode(), run(
                    "edit --set-attribute /* z v", text.encode()))

    def test_characters_that_the_encoding_lacks(self):
        with open(self.path("latin.xml"), "wb") as file:
            file.write(b'<?xml version="1.0" encoding="ISO-8859-1"?><a b="">\xe9</a>')
        result = self.run_client(["edit", "--set", "//@b", "é😀", "--insert-last", "a", "<c/>",
                                  "--insert-first", "a", "é", "latin.xml"])
        self.assertEqual((0, b""), (result.returncode, result.stderr))
        self.assertEqual(b'<?xml version="1.0" encoding="ISO-8859-1"?>'
                         b'<a b="\xe9&#x1F600;">\xe9\xe9<c/></a>', result.stdout)

    def test_many_files_are_changed_each_by_itself(self):
        with open(self.path("other.xml"), "w") as file:
            file.write("<x/>")
        result = self.run_client("edit --in-place --delete //a "
                                 "nested.xml other.xml gone.xml spaces.xml")
        said = f"tessel: other.xml: nothing found: //a\ntessel: gone.xml: {NOT_FOUND}\n"
        self.assertEqual((1, said), (result.returncode, result.stderr.decode()))
        self.assertEqual(b"<x/>", self.read("other.xml"))
        for name in ("nested.xml", "spaces.xml"):
            self.assertNotIn(b"<a", self.read(name))

    def test_a_signal_leaves_no_file_behind(self):
        with open(self.path("wide.xml"), "w") as file:
            file.write("<a>" + "<b>text</b>" * 200000 + "</a>")
        before, names = self.read("wide.xml"), sorted(os.listdir(self.folder))
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            process = subprocess.Popen([CLIENT, "set", "--in-place", "wide.xml", "/a/b[1]", "x"],
                                       cwd=self.folder, stderr=subprocess.DEVNULL)
            # Until the new file is there, or the client was faster.
            while process.poll() is None and len(os.listdir(self.folder)) == len(names):
                pass
            process.send_signal(number)
            self.assertIn(process.wait(), (0, -number))
            self.assertEqual(names, sorted(os.listdir(self.folder)))
            self.assertTrue(self.read("wide.xml") == before or b"<b>x</b>" in self.read("wide.xml"))

    def test_output_file(self):
        result = self.run_client("format -o new.xml nested.xml", umask=0o027)
        self.assertEqual((0, b""), (result.returncode, result.stdout))
        self.assertEqual(self.run_client("format nested.xml").stdout, self.read("new.xml"))
        self.assertEqual(0o640, stat.S_IMODE(os.stat(self.path("new.xml")).st_mode))
        to_itself = self.run_client("format -o nested.xml nested.xml")
        self.assertEqual(0, to_itself.returncode)
        self.assertEqual(self.read("new.xml"), self.read("nested.xml"))

    def check_kept(self, message, **options):
        before, names = self.read("cat.xml"), sorted(os.listdir(self.folder))
        result = self.run_client("set --in-place cat.xml //colour red", **options)
        self.assertEqual((1, f"tessel: {message}\n"), (result.returncode, result.stderr.decode()))
        self.assertEqual(before, self.read("cat.xml"))
        self.assertEqual(names, sorted(os.listdir(self.folder)))

    def test_failed_save_keeps_the_original(self):
        target = os.path.realpath(self.path("cat.xml"))
        with self.subTest("no room for the new file"):
            self.check_kept(f"{target}: File too large", preexec_fn=lambda: resource.setrlimit(
                resource.RLIMIT_FSIZE, (100, 100)))
        # Modes do not bind the superuser, so the rest runs as nobody.
        other = {"user": 65534, "group": 65534, "extra_groups": []} if os.geteuid() == 0 else {}
        os.chmod(self.folder, 0o555)
        os.chmod(self.path("cat.xml"), 0o666)
        if other and subprocess.run([CLIENT, "--version"], capture_output=True, cwd=self.folder,
                                    **other).returncode != 0:
            self.skipTest("nobody may not run the client where it is")
        with self.subTest("unwritable directory"):
            self.check_kept(f"{os.path.dirname(target)}: no file can be made in this folder: "
                            "Permission denied", **other)
        with self.subTest("write-protected file"):
            os.chmod(self.folder, 0o777)
            os.chmod(self.path("cat.xml"), 0o444)
            self.check_kept("cat.xml: Permission denied", **other)
        os.chmod(self.folder, 0o755)

    # -- What a document may reach -------------------------------------------------

    def test_network_is_refused_by_default(self):
        requests = []

        class Handler(http.server.SimpleHTTPRequestHandler):
            def log_message(self, *args):
                requests.append(self.path)

        server = http.server.HTTPServer(
            ("127.0.0.1", 0), functools.partial(Handler, directory=self.folder))
        self.addCleanup(server.server_close)
        threading.Thread(target=server.serve_forever, daemon=True).start()
        self.addCleanup(server.shutdown)
        url = f"http://127.0.0.1:{server.server_port}/text.ent"
        with open(self.path("net.xml"), "w") as file:
            file.write(f'<!DOCTYPE a [<!ENTITY e SYSTEM "{url}">]>\n<a>&e;</a>')
        refused = self.run_client("query --text net.xml a")
        self.assertEqual((1, b"", []), (refused.returncode, refused.stdout, requests))
        self.assertRegex(refused.stderr.decode(), f"\\Anet\\.xml:2:\\d+: .*'{url}' was refused: "
                         "nothing may be read by network; --network allows it\n\\Z")
        allowed = self.run_client("--network query --text net.xml a")
        self.assertEqual((0, b"from the file\n", ["/text.ent"]),
                         (allowed.returncode, allowed.stdout, requests))

    def test_no_external(self):
        result = self.run_client("--no-external tree nodtd.xml")
        if b"cannot be enforced here" in result.stderr:
            self.skipTest("this kernel cannot restrict what is read")
        self.assertEqual((0, b""), (result.returncode, result.stderr))
        saved = self.run_client("format --no-external -o kinds.xml kinds.xml")
        self.assertEqual((0, b""), (saved.returncode, saved.stderr))
        for args, line in (("tree external.xml", r"external\.xml:2:\d+: .*text\.ent' was .*"),
                           ("check --schema number.xml", r"number\.xml:1:\d+: .*")):
            refused = self.run_client("--no-external " + args)
            self.assertEqual((1, b""), (refused.returncode, refused.stdout))
            self.assertRegex(refused.stderr.decode(), f"\\A{line}\n")


if __name__ == "__main__":
    unittest.main()
