"""Runs the example and tries the module's promises: nothing stays open, failures
are exceptions that name their code."""

import contextlib
import io
import pathlib
import shutil
import tempfile
import unittest

import restock
import tessel

DATA = pathlib.Path(__file__).parent.parent / "data"


class RestockTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(suffix=" with a blank")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.schema = self.folder / "stock.xsd"
        shutil.copy(DATA / "stock.xsd", self.schema)

    def run_example(self):
        printed = io.StringIO()
        with contextlib.redirect_stdout(printed):
            restock.main(DATA / "stock.xml", self.schema, self.folder / "out.xml")
        return printed.getvalue()

    def test_restocks_adds_and_validates(self):
        printed = "22 pieces\n4: Nägel: 3 -> 10\n5: Saw: 7 -> 10\nvalid\n"
        self.assertEqual(self.run_example(), printed)
        with tessel.Document.load(self.folder / "out.xml") as stock:
            stock.bind("s", restock.STOCK)
            self.assertEqual([c.text for c in stock.select("//s:count")], ["12", "10", "10", "4"])
        self.assertEqual(tessel.left_open(), 0)

    def test_validation_lists_each_fault(self):
        bad = (DATA / "stock.xml").read_text(encoding="utf-8").replace(">3<", ">few<")
        (self.folder / "bad.xml").write_text(bad.replace(">7<", ">-1<"), encoding="utf-8")
        with self.assertRaises(tessel.Error) as caught:
            tessel.Document.load(self.folder / "bad.xml", schemas={restock.STOCK: self.schema})
        self.assertEqual(caught.exception.name, "domErrParse")
        faults = [line for line in caught.exception.details if line.startswith("Line ")]
        self.assertEqual([line.split(",")[0] for line in faults], ["Line 4", "Line 5"])
        self.assertEqual(tessel.left_open(), 0)


class NodeTest(unittest.TestCase):
    def setUp(self):
        self.document = tessel.Document.parse("<a x='1'><b>ü</b><b/><c><d/></c></a>")
        self.addCleanup(lambda: self.assertEqual(tessel.left_open(), 0))
        self.addCleanup(self.document.close)

    def test_places(self):
        text = "<a>\n<b/><c é='1'/></a>".encode()
        with tessel.Document.parse(text, places=True) as document:
            place = document.first("//@*").place
            self.assertEqual(place[:2], (2, 8))
            self.assertEqual(text[place.begin:place.end].decode(), "é='1'")
            self.assertIsNone(document.root.add("d").place)
        self.assertIsNone(self.document.root.place)

    def test_attributes(self):
        root = self.document.root
        self.assertEqual(root["x"], "1")
        root["y"] = "é"
        del root["x"]
        self.assertTrue("y" in root and "x" not in root)
        self.assertEqual(root["y"], "é")
        with self.assertRaises(KeyError):
            root["x"]

    def test_one_node_is_one_node(self):
        self.assertEqual(self.document.first("//b"), self.document.select("//b")[0])
        self.assertNotEqual(*self.document.select("//b"))
        self.assertIsNone(self.document.first("//none"))

    def test_removed_nodes_are_gone_and_others_stay(self):
        d = self.document.first("//d")
        c = self.document.first("//c")
        c.remove()
        self.assertEqual(self.document.root.to_bytes(), '<a x="1"><b>ü</b><b/></a>'.encode())
        for dead in (c, d):
            with self.assertRaises(tessel.Error) as caught:
                dead.name
            self.assertEqual(caught.exception.name, "domErrRefGetNodeName")

    def test_the_root_can_be_removed_while_others_are_held(self):
        other = self.document.select("//b")
        self.document.root.remove()
        self.assertIsNone(self.document.root)
        with self.assertRaises(tessel.Error):
            other[0].text

    def test_errors_name_their_code(self):
        for expression, name in [("//(", "domErrXPathParse"), ("1 + 1", "domErrXPathConversion")]:
            with self.subTest(expression), self.assertRaises(tessel.Error) as caught:
                self.document.select(expression)
            self.assertEqual(caught.exception.name, name)
        with self.assertRaises(tessel.Error) as caught:
            self.document.root.add("not a name")
        self.assertEqual(caught.exception.name, "domErrInvalidCharacter")

    def test_bytes_have_the_encoding_that_they_say(self):
        with tessel.Document.parse("<a>é</a>".encode("utf-16")) as document:
            self.assertEqual(document.root.text, "é")

    def test_nothing_works_after_the_end(self):
        with tessel.Document.parse("<a/>") as closed:
            root = closed.root
        for call in (closed.to_bytes, root.to_bytes, lambda: closed.first("//a")):
            with self.assertRaises(tessel.Error):
                call()


if __name__ == "__main__":
    unittest.main()
