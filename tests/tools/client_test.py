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
3       element colour
4         text "crème 😀"
3       element origin
4         entity-reference place
5           text "Zürich"
2     processing-instruction print "wide"
2     element tile
3       element note
4         cdata "a < b"
"""

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
    "nodtd.xml": '<!DOCTYPE a SYSTEM "gone.dtd"><a/>',
    "number.xsd": SCHEMA,
    "ambiguous.xsd": AMBIGUOUS,
    "number.xml": by_schema("number.xsd", "5"),
    "word.xml": by_schema("number.xsd", "five"),
    "ambiguous.xml": by_schema("ambiguous.xsd", "<a/>"),
    "names.xml": '<p:a xmlns:p="urn:p"><p:b>1</p:b></p:a>',
    "external.xml": '<!DOCTYPE a [<!ENTITY f SYSTEM "text.ent">]>\n<a>&f;</a>',
    "text.ent": "from the file",
    "nested.xml": "<r><a>1<a>2</a></a><b/></r>",
}

Case = collections.namedtuple("Case", "args status out err stdin", defaults=("", "", None))

NOT_FOUND = "No such file or directory"
RUN_HELP = "Run with --help for more information.\n"

CASES = [
    # Trees.
    Case("tree cat.xml", 0, CATALOGUE_TREE),
    Case("tree latin1.xml", 0, CATALOGUE_TREE.replace(" 😀", "")),
    Case("tree -", 0, CATALOGUE_TREE, stdin="utf16.xml"),
    Case("tree Zürich:1.xml", 0, "0 document\n1   element a\n"),
    Case("tree --attributes kinds.xml", 0, """\
0 document
1   document-type k public "-//T//K" system "k.dtd"
2     entity pic system "x.gif" notation "gif"
2     notation gif public "pub" system "viewer"
1   element k
2     attribute name "a\\"b"
2     attribute size "20" default
2     text "tab\\t\\\\\\n\\x0d"
"""),
    # A relative reference from standard input is one from the working directory.
    Case("query --text - a", 0, "from the file\n", stdin="external.xml"),
    # What cannot be read.
    Case("tree broken.xml", 1, err="broken.xml:2:7: expected end of tag 'b'\n"),
    Case("tree gone.xml", 1, err=f"tessel: gone.xml: {NOT_FOUND}\n"),
    Case("tree .", 1, err="tessel: .: Is a directory\n"),
    # Writing back.
    Case("format cat.xml", 0, HEAD + CATALOGUE.split("?>\n", 1)[1].replace("\n", "", 1)),
    Case("format --pretty nested.xml", 0,
         HEAD + "\n<r>\n\n  <a>1\n    <a>2</a>\n  </a>\n\n  <b/>\n\n</r>\n"),
    Case("format --encoding ISO-8859-1 latin1.xml", 0,
         (HEAD.replace("UTF-8", "ISO-8859-1")
          + FILES["latin1.xml"].decode("latin-1").split("?>\n", 1)[1].replace("\n", "", 1))
         .encode("latin-1")),
    Case("format --encoding no-such valid.xml", 1,
         err="tessel: valid.xml: domErrInvalidCharacter (-2604): "
             "it cannot be written in no-such\n"),
    Case("format -o gone/x.xml valid.xml", 1, err=f"tessel: gone/x.xml: {NOT_FOUND}\n"),
    # Checking.
    Case("check cat.xml utf16.xml valid.xml invalid.xml word.xml", 0),
    Case("check valid.xml broken.xml gone.xml -", 1, stdin="broken.xml",
         err="broken.xml:2:7: expected end of tag 'b'\n"
             f"tessel: gone.xml: {NOT_FOUND}\n-:2:7: expected end of tag 'b'\n"),
    Case("check --dtd invalid.xml valid.xml", 1,
         err="invalid.xml:3:3: no declaration found for element 'c'\n"
             "invalid.xml:3:9: element 'c' is not allowed for content model '(b)'\n"),
    Case("check --schema number.xml ambiguous.xml", 0),
    Case("check --schema word.xml", 1, err=re.compile(r"word\.xml:1:\d+: .*'five'.*\n")),
    Case("check --full number.xml ambiguous.xml", 1,
         err=re.compile(r"ambiguous\.xml:\d+:\d+: .* the unique particle attribution rule .*\n"
        r"ambiguous\.xml:\d+:\d+: .*\n")),
    Case("check nodtd.xml", 1, err=re.compile(r"nodtd\.xml:1:\d+: .*gone\.dtd'\n")),
    Case("check --no-external-dtd nodtd.xml", 0),
    # Queries.
    Case("query cat.xml //@*[.>20]|//note/text()|//comment()", 0, '<!-- two -->\nsize="35"\n'),
    Case("query --text cat.xml //@id|//colour", 0, "t1\ncrème 😀\nt2\n"),
    Case("query --text nested.xml /", 0, "12\n"),
    Case("query --count cat.xml //tile", 0, "2\n"),
    Case("query --count cat.xml tree", 1, "0\n"),
    Case(["query", "--count", "cat.xml", "//colour[.='crème 😀']"], 0, "1\n"),
    Case("query --count --no-namespaces names.xml //p:b", 1, err=re.compile(
        r"tessel: names\.xml: domErrXPathParse \(-2768\): .+\n")),
    Case("query cat.xml count(//tile)", 1, err=re.compile(
        r"tessel: cat\.xml: domErrXPathConversion \(-2769\): .+\n")),
    # Edits.
    Case("set nested.xml //b -5", 0, HEAD + "<r><a>1<a>2</a></a><b>-5</b></r>"),
    Case("set nested.xml //a Zürich", 0, HEAD + "<r><a>Zürich</a><b/></r>"),
    Case(["set", "nested.xml", "//a/text()", ""], 0, re.compile(r".*<r><a>.*</a><b/></r>")),
    Case("set - //p:b 2", 0, HEAD + '<p:a xmlns:p="urn:p"><p:b>2</p:b></p:a>',
         stdin="names.xml"),
    Case("set kinds.xml //@name x", 0, re.compile(r'.*<k name="x">.*', re.S)),
    Case("set nested.xml / x", 1,
         err="tessel: nested.xml: a document has no value that can be set\n"),
    Case("set nested.xml //gone x", 1, err="tessel: nested.xml: nothing found: //gone\n"),
    Case("set cat.xml //origin//text() x", 1, err=re.compile(
        r"tessel: cat\.xml: domErrNoModificationAllowed \(-2606\): .+\n")),
    Case("delete cat.xml //@id|//comment()|//colour|//origin|//note|/processing-instruction()", 0,
         HEAD + '<!DOCTYPE catalogue [<!ENTITY place "Zürich">]><catalogue><tile size="20"/>'
         '<?print wide?><tile size="35"/></catalogue>'),
    Case("delete nested.xml /r", 1,
         err="tessel: nested.xml: the document element cannot be deleted\n"),
    # Codes.
    Case("explain -2766", 0, """\
domErrXPathContext (-2766)
  Meaning:     the context's id names no node
  Returned by: XPathEvaluateContextToNode, XPathEvaluateContextToNodeArray
  What to do:  pass the id of a node that is still open
"""),
    Case("explain -2605", 1, err="tessel: -2605: no function returns this code\n"),
    Case("--version", 0, re.compile(r"Tessel \d+\.\d+\.\d+\nXerces-C .+\nXalan-C .+\n")),
    # Wrong usage.
    Case("", 2, err="A subcommand is required\n" + RUN_HELP),
    Case("explain", 2, err="CODE or --all is required\n" + RUN_HELP),
    Case("tree cat.xml --gone", 2, err=re.compile(f".*--gone\n{RUN_HELP}")),
    Case("set --in-place - //b x", 2, err=re.compile(f".*--in-place.*\n{RUN_HELP}")),
    Case("set --in-place -o x cat.xml //b x", 2, err=re.compile(f".*excludes.*\n{RUN_HELP}")),
    Case("check --dtd --no-external-dtd valid.xml", 2, err=re.compile(f".*excludes.*\n{RUN_HELP}")),
]


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
        args = args.split() if isinstance(args, str) else args
        # Every run also fails if it leaves a string, array or path open.
        env = {"PATH": os.environ["PATH"], "LC_ALL": locale, "TESSEL_LEDGER": "1", **SANITIZERS,
               **dict(env)}
        options.setdefault("stdin", subprocess.DEVNULL)
        return subprocess.run([CLIENT, *args], env=env, cwd=self.folder, timeout=120,
                              stdout=options.pop("stdout", subprocess.PIPE),
                              stderr=options.pop("stderr", subprocess.PIPE), **options)

    def check_text(self, want, got):
        if isinstance(want, re.Pattern):
            self.assertRegex(got.decode(), re.compile(f"\\A(?:{want.pattern})\\Z", want.flags))
        else:
            self.assertEqual(want if isinstance(want, bytes) else want.encode(), got)

    def test_commands(self):
        for case in CASES:
            for locale in ("C", "C.UTF-8"):
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
        for env in ({"NO_COLOR": "1"}, {"TERM": "dumb"}):
            self.assertNotIn("\x1b", self.run_on_terminal("tree cat.xml", "stdout", env)[1])

    def test_progress_on_a_terminal_for_many_files(self):
        few, many = ["valid.xml"] * 3, ["valid.xml"] * 12 + ["gone.xml"]
        self.assertEqual("", self.run_on_terminal(["check", *few], "stderr")[1])
        result, text = self.run_on_terminal(["check", *many], "stderr")
        self.assertEqual((1, b""), (result.returncode, result.stdout))
        # The message has a line of its own, and the last thing is a clean line.
        self.assertIn("checking 13 of 13\r\x1b[Ktessel: gone.xml: " + NOT_FOUND, text)
        self.assertTrue(text.endswith("\r\x1b[K"))

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

    def test_in_place_keeps_mode_and_link(self):
        os.chmod(self.path("nested.xml"), 0o640)
        os.symlink("nested.xml", self.path("link.xml"))
        result = self.run_client("delete --in-place link.xml //a")
        self.assertEqual((0, b"", b""), (result.returncode, result.stdout, result.stderr))
        self.assertEqual((HEAD + "<r><b/></r>").encode(), self.read("nested.xml"))
        self.assertEqual(0o640, stat.S_IMODE(os.stat(self.path("nested.xml")).st_mode))
        self.assertTrue(os.path.islink(self.path("link.xml")))

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
            self.check_kept(f"{target}: Permission denied", **other)
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
        self.assertRegex(refused.stderr.decode(), f"\\Anet\\.xml:2:\\d+: .*'{url}'\n\\Z")
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
        for args, line in (("tree external.xml", r"external\.xml:2:\d+: .*text\.ent'"),
                           ("check --schema number.xml", r"number\.xml:1:\d+: .*")):
            refused = self.run_client("--no-external " + args)
            self.assertEqual((1, b""), (refused.returncode, refused.stdout))
            self.assertRegex(refused.stderr.decode(), f"\\A{line}\n")


if __name__ == "__main__":
    unittest.main()
