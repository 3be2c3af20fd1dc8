// Holds every exported function to the rows of this folder.
//
// A row is a call, what it answers, and the document afterwards where that changes:
//   TSXRemoveChild(/r, /r/b) => ok => <r><c/></r>
// A line that begins with a blank goes on the one before. Each row works on a fresh copy
// of the document that the file named last. An operand is
//   /r/b[2]/@k          a node by its path, an id handed out for this call; text(),
//                       cdata(), comment(), pi(), ref() and doctype are steps, too
//   entity(e), doc      what the document type declares; the document's id; bare is the
//                       id of its node, other another document, <o k='1'><p>q</p></o>
//   x, x/b              what an earlier statement ("x = TSXCreateElement(doc, 'b'); ...")
//                       gave, and a path from there
//   none, unknown       the id 0, and one that was never issued
//   'text', `text`      a string, with \n, \0 and \xHH in it; null is a null handle
// Beside the library's functions there are tree(x), which tells what hangs below a node,
// write('f', 'text') and read('f'), refuse(n), after which the host refuses the n-th
// allocation of the next call, and locks('DOM Mutex'), how often the last call took it.
//
// The argument that no function reads is left out, and so are the outs: they hold junk
// before the call, and are told in their order, "left" where the junk is still there. A
// failure tells its code and no out that is reset as it should be. "~" stands before a
// node that hangs nowhere. Statements after "before:" come before every row that follows.
#include <fstream>

#include "answers/script.h"

namespace {

constexpr const char* kFamilies[] = {"values", "version",       "options",    "document",
                                     "io",     "navigation",    "strings",    "mutation",
                                     "xpath",  "characterdata", "attributes", "collections"};

struct CRow {
  std::string m_Where;
  std::string m_Document;
  bool m_Namespaces;
  std::string m_Before;
  std::vector<std::string> m_Parts;  // the call, its answer, and the tree if that changes
};

std::vector<std::string> PartsOf(const std::string& line) {
  std::vector<std::string> parts;
  size_t start = 0;
  for (size_t end; (end = line.find(" => ", start)) != std::string::npos; start = end + 4) {
    parts.push_back(line.substr(start, end - start));
  }
  parts.push_back(line.substr(start));
  return parts;
}

// The lines of a file; one that begins with a blank goes on the one before.
std::vector<std::pair<int, std::string>> LinesOf(const std::string& name) {
  std::ifstream in(name);
  EXPECT_TRUE(in.is_open()) << name;
  std::vector<std::pair<int, std::string>> lines;
  std::string line;
  for (int number = 1; std::getline(in, line); ++number) {
    if (line.starts_with(' ')) {
      lines.back().second += line.substr(line.find_first_not_of(' ') - 1);
    } else if (!line.empty() && !line.starts_with('#')) {
      lines.emplace_back(number, line);
    }
  }
  return lines;
}

std::vector<CRow> RowsOf(const std::string& family) {
  const std::string name = TESSEL_ANSWERS + family + ".rows";
  const std::string plain = "document: ", namespaces = "document with namespaces: ";
  const std::string before = "before: ";
  std::vector<CRow> rows;
  CRow row;
  for (const auto& [number, line] : LinesOf(name)) {
    row.m_Where = name + ":" + std::to_string(number);
    if (line.starts_with(plain) || line.starts_with(namespaces)) {
      row.m_Namespaces = line.starts_with(namespaces);
      row.m_Document = line.substr((row.m_Namespaces ? namespaces : plain).size());
      row.m_Before.clear();
      continue;
    }
    if (line.starts_with(before)) {
      row.m_Before = line.substr(before.size());
      continue;
    }
    row.m_Parts = PartsOf(line);
    rows.push_back(row);
  }
  return rows;
}

class Answers : public support::CLedgerTest, public ::testing::WithParamInterface<const char*> {};
class Refusals : public Answers {};

void Expect(const CRow& row, const char* pWhat, const std::string& found,
            const std::string& expected) {
  if (found == expected) return;
  ADD_FAILURE() << row.m_Parts[0] << "\n  " << pWhat << found << "\n  not " << expected;
}

void Check(const CRow& row) {
  answers::CScene scene(row.m_Document, row.m_Namespaces);
  scene.Run(row.m_Before);
  const std::string before = scene.Tree();
  Expect(row, "answers ", scene.Run(row.m_Parts[0]), row.m_Parts.at(1));
  Expect(row, "leaves ", scene.Tree(), row.m_Parts.size() > 2 ? row.m_Parts[2] : before);
}

// An out of a call for which the host refused memory: as without that, reset, left alone,
// or those lines of messages that there was memory for.
bool IsSound(const std::string& out, const std::string& good) {
  return out == good || out.empty() || out == "null" || out == "none" || out == "left" ||
         (good.starts_with("'Line") && out.size() < good.size());
}

void CheckRefused(const CRow& row, int64_t sign) {
  answers::CScene whole(row.m_Document, row.m_Namespaces);
  whole.Run(row.m_Before);
  whole.Run(row.m_Parts[0]);
  for (int64_t n = 1; n < 100; ++n) {
    SCOPED_TRACE(sign * n);
    answers::CScene scene(row.m_Document, row.m_Namespaces);
    scene.Run(row.m_Before);
    scene.Run(row.m_Parts[0], sign * n);
    if (!scene.Last().m_IsRefused) return;
    const TSXStatus status = scene.Last().m_Status;
    EXPECT_TRUE(status == whole.Last().m_Status || status == 2) << row.m_Parts[0] << status;
    for (size_t i = 0; i < whole.Last().m_Outs.size(); ++i) {
      EXPECT_PRED2(IsSound, scene.Last().m_Outs[i], whole.Last().m_Outs[i]) << row.m_Parts[0];
    }
  }
  ADD_FAILURE() << "the call never comes to its end: " << row.m_Parts[0];
}

TEST_P(Refusals, LeaveSoundAnswers) {
  for (const CRow& row : RowsOf(GetParam())) {
    SCOPED_TRACE(row.m_Where);
    if (row.m_Parts[0].find("refuse(") != std::string::npos) continue;
    for (const int64_t sign : {1, -1}) CheckRefused(row, sign);
  }
}

TEST_P(Answers, AreThoseOfTheRows) {
  for (const CRow& row : RowsOf(GetParam())) {
    SCOPED_TRACE(row.m_Where);
    Check(row);
    EXPECT_EQ(support::LiveIds(), 0u) << "ids are left: " << row.m_Parts[0];
  }
}

std::string NameOf(const ::testing::TestParamInfo<const char*>& family) { return family.param; }
INSTANTIATE_TEST_SUITE_P(Of, Answers, ::testing::ValuesIn(kFamilies), NameOf);
// The values have refusals of their own, and to the options a load is a load.
INSTANTIATE_TEST_SUITE_P(Of, Refusals,
                         ::testing::ValuesIn(std::begin(kFamilies) + 3, std::end(kFamilies)),
                         NameOf);

// A function that no row calls is a hole.
TEST(Rows, CallEveryExport) {
  std::string calls;
  for (const char* pFamily : kFamilies) {
    for (const CRow& row : RowsOf(pFamily)) calls += " " + row.m_Parts[0];
  }
  for (const auto& [number, exported] : LinesOf(TESSEL_EXPORT_LIST)) {
    if (exported.starts_with("g_") || exported.starts_with("_ZT")) continue;  // data
    const bool isCleanup = exported.starts_with("_Z21");
    const std::string name = isCleanup ? "CleanupProcCXercesDOM" : exported;
    EXPECT_TRUE(calls.find(" " + name + "(") != std::string::npos) << "no row: " << name;
  }
}

}  // namespace
