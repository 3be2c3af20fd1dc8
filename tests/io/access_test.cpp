// What a document may read beside itself: every way to name a file or an address, from
// every place where a document can name one, in every mode.
#include <arpa/inet.h>
#include <sys/inotify.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <thread>

#include "support/path.h"

namespace {

using support::CDoc;
using support::CPath;
using support::CText;

// A server on the loopback that answers nothing.
class CServer {
 public:
  CServer() : m_Socket(socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* pAddress = reinterpret_cast<sockaddr*>(&address);
    EXPECT_EQ(bind(m_Socket, pAddress, size), 0);
    EXPECT_EQ(listen(m_Socket, 8), 0);
    EXPECT_EQ(getsockname(m_Socket, pAddress, &size), 0);
    m_Host = "127.0.0.1:" + std::to_string(ntohs(address.sin_port));
  }
  ~CServer() { close(m_Socket); }
  CServer(const CServer&) = delete;
  CServer& operator=(const CServer&) = delete;

  const std::string& Host() const { return m_Host; }
  // Whether someone has connected since the last time.
  bool WasAsked() const {
    const int peer = accept(m_Socket, nullptr, nullptr);
    if (peer >= 0) close(peer);
    return peer >= 0;
  }

 private:
  int m_Socket;
  std::string m_Host;
};

// Tells whether anything in a folder was opened.
class CFolderWatch {
 public:
  explicit CFolderWatch(const std::string& folder)
      : m_Watch(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
    EXPECT_GE(inotify_add_watch(m_Watch, folder.c_str(), IN_OPEN | IN_ACCESS), 0);
  }
  ~CFolderWatch() { close(m_Watch); }
  CFolderWatch(const CFolderWatch&) = delete;
  CFolderWatch& operator=(const CFolderWatch&) = delete;

  bool SawAny() const {
    char events[4096];
    bool any = false;
    while (read(m_Watch, events, sizeof events) > 0) any = true;
    return any;
  }

 private:
  int m_Watch;
};

// Where a document can name something. In the document, {N} is the name, and in the
// schema that goes with it, which the document reads where it validates.
struct CPlace {
  const char* pWhat;
  const char* pDocument;
  const char* pSchema;
  const char* pEnding;  // of the files
  int32_t scheme;
};

#define XSI "xmlns:i='http://www.w3.org/2001/XMLSchema-instance' "
#define XSD "<s:schema xmlns:s='http://www.w3.org/2001/XMLSchema' "
constexpr CPlace kPlaces[] = {
    {"general entity", "<!DOCTYPE t [<!ENTITY e SYSTEM '{N}'>]><t>&e;</t>", "", ".txt", 0},
    {"parameter entity", "<!DOCTYPE t [<!ENTITY % e SYSTEM '{N}'>%e;]><t/>", "", ".txt", 0},
    {"public entity", "<!DOCTYPE t [<!ENTITY e PUBLIC 'p' '{N}'>]><t>&e;</t>", "", ".txt", 0},
    {"document type", "<!DOCTYPE t SYSTEM '{N}' [<!ELEMENT t EMPTY>]><t/>", "", ".txt", 1},
    {"nested entity",
     "<!DOCTYPE t [<!ENTITY e SYSTEM '{N}'><!ENTITY f SYSTEM 'nested.txt'>]><t>&f;</t>", "", ".txt",
     0},
    {"under a base",
     "<!DOCTYPE t [<!ENTITY e SYSTEM '{N}'>]><t xml:base='http://{S}/'>"
     "<u xml:base='/etc/'>&e;</u></t>",
     "", ".txt", 0},
    {"schema", "<t " XSI "i:noNamespaceSchemaLocation='{N}'/>", "", ".xsd", 1},
    {"schema, auto", "<t " XSI "i:noNamespaceSchemaLocation='{N}'/>", "", ".xsd", 2},
    {"include", "<t " XSI "i:noNamespaceSchemaLocation='main.xsd'/>",
     XSD "><s:include schemaLocation='{N}'/></s:schema>", ".xsd", 1},
    {"import", "<m:r xmlns:m='urn:m' " XSI "i:schemaLocation='urn:m main.xsd'/>",
     XSD "targetNamespace='urn:m'><s:import schemaLocation='{N}'/><s:element name='r'/></s:schema>",
     ".xsd", 1},
    {"entity of a schema", "<t " XSI "i:noNamespaceSchemaLocation='main.xsd'/>",
     "<!DOCTYPE s:schema [<!ENTITY e SYSTEM '{N}'>]>" XSD "><s:element name='t'/>&e;</s:schema>",
     ".txt", 1},
};

// {F} is the file, with the ending of the place, {D} and {O} are the paths of the two
// folders and {d} and {o} their names, {S} is the server. For each mode: read, refused (x),
// missing (m), or not to be tried (-): it would wait.
struct CName {
  const char* pName;
  const char* pModes;
};
constexpr CName kNames[] = {
    {"{F}", "rrrx"},
    {"./{F}", "rrrx"},
    {"sub/{F}", "rrrx"},
    {"sub/../{F}", "rrrx"},
    {"../{d}/{F}", "rrrx"},
    {"{D}/{F}", "rrrx"},
    {"{D}//./{F}", "rrrx"},
    {"file:{D}/{F}", "rrrx"},
    {"file://{D}/{F}", "rrrx"},
    {"FILE://{D}/{F}", "rrrx"},
    {"file://LocalHost{D}/{F}", "rrrx"},
    {"file://{D}/sub/%2E%2e/{F}", "rrrx"},
    {"link-in", "rrrx"},
    {"missing", "mmmx"},
    {"%66.txt", "mmmx"},
    {"sub", "mmxx"},
    {"{O}/{F}", "rrxx"},
    {"file://{O}/{F}", "rrxx"},
    {"fIlE://localhost{O}/{F}", "rrxx"},
    {"file://{D}/%2e%2E/{o}/{F}", "rrxx"},
    {"../{o}/{F}", "rrxx"},
    {"sub/../../{o}/{F}", "rrxx"},
    {"link-out", "rrxx"},
    {"link-folder/{F}", "rrxx"},
    {"link-folder/../{F}", "rrrx"},
    {"file://{D}/link-folder/%2e%2e/{d}/{F}", "rrrx"},
    {"{O}/missing", "mmxx"},
    {"dangling", "mmxx"},
    {"pipe", "--xx"},
    {"link-pipe", "--xx"},
    {"/proc/self/fd/0", "--xx"},
    {"http://{S}/{F}", "-xxx"},
    {"HtTp://{S}/{F}", "-xxx"},
    {"https://{S}/{F}", "-xxx"},
    {"ftp://{S}/{F}", "-xxx"},
    {"http://me:word@{S}/{F}", "-xxx"},
    {"file://{S}/{F}", "-xxx"},
    {"file://127.0.0.1{D}/{F}", "-xxx"},
    {"//{S}/{F}", "mmxx"},
    {"gopher://{S}/{F}", "mm-x"},
};

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
  for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
  return text;
}

// Two folders beside each other: the document's, and one that is none of its business.
class Access : public support::CLedgerTest {
 protected:
  Access() {
    std::filesystem::create_directories(m_Folder.Name() + "/sub");
    std::filesystem::create_directory(m_Outside.Name());
    for (const std::string& folder : {Dir(), Dir() + "/sub", m_Outside.Name()}) {
      Write(folder + "/f.txt", "<!--read-->");
      Write(folder + "/f.xsd", XSD "><s:element name='t'/></s:schema>");
    }
    Write(Dir() + "/nested.txt", "&e;");
    mkfifo((Dir() + "/pipe").c_str(), 0600);
    Link("pipe", "link-pipe");
    Link(m_Outside.Name(), "link-folder");
    Link("none", "dangling");
    for (const char* pEnding : {".txt", ".xsd"}) {
      Link(Dir() + "/f" + pEnding, "link-in" + std::string(pEnding));
      Link("../" + Base(m_Outside) + "/f" + pEnding, "link-out" + std::string(pEnding));
    }
  }
  ~Access() override {
    std::filesystem::remove_all(m_Folder.Name());
    std::filesystem::remove_all(m_Outside.Name());
  }

  static void Write(const std::string& name, std::string_view text) { std::ofstream(name) << text; }
  static std::string Base(const CPath& path) {
    return std::filesystem::path(path.Name()).filename();
  }
  const std::string& Dir() const { return m_Folder.Name(); }
  void Link(const std::string& target, const std::string& name) const {
    std::filesystem::create_symlink(target, Dir() + "/" + name);
  }
  std::string Filled(std::string text, const std::string& ending) const {
    if (text == "link-in" || text == "link-out") text += ending;
    const std::pair<const char*, std::string> fills[] = {
        {"{F}", "f" + ending},   {"{D}", Dir()},           {"{O}", m_Outside.Name()},
        {"{d}", Base(m_Folder)}, {"{o}", Base(m_Outside)}, {"{S}", m_Server.Host()}};
    for (const auto& [from, to] : fills) text = Replaced(std::move(text), from, to);
    return text;
  }

  static void Prepare(const CDoc& doc, int32_t mode, int32_t scheme) {
    EXPECT_EQ(TSXSetExternalAccess(doc.Id(), 0, &mode), 0);
    EXPECT_EQ(TSXSetValidateOnLoad(doc.Id(), 0, &scheme), 0);
    EXPECT_EQ(TSXSetDoNamespaces(doc.Id(), 0, &support::kOn), 0);
    EXPECT_EQ(TSXSetDoSchema(doc.Id(), 0, &support::kOn), 0);
  }
  // Read, refused by that name, or missing.
  static char Outcome(TSXStatus status, const std::string& errors, const std::string& name) {
    if (status == 0) return 'r';
    EXPECT_EQ(status, domErrParse);
    const size_t refused = errors.find("access to '" + name + "' was refused: ");
    if (refused == std::string::npos) return 'm';
    EXPECT_EQ(errors.find("\r\n", refused), std::string::npos) << "the load goes on\n" << errors;
    return 'x';
  }

  const CServer m_Server;
  const CPath m_Folder{"access"}, m_Outside{"outside"};
};

TEST_F(Access, EveryNameInEveryPlaceAndMode) {
  const std::string file = Dir() + "/document.xml";
  const CPath document(file);
  const CFolderWatch watch(m_Outside.Name());
  for (const CPlace& place : kPlaces) {
    for (const CName& row : kNames) {
      const std::string name = Filled(row.pName, place.pEnding);
      const std::string xml =
          Replaced(Replaced(place.pDocument, "{N}", name), "{S}", m_Server.Host());
      document.Write(xml);
      Write(Dir() + "/main.xsd", Replaced(place.pSchema, "{N}", name));
      for (const int32_t mode : {0, 1, 2, 3}) {
        const char expected = row.pModes[mode];
        if (expected == '-') continue;
        SCOPED_TRACE(std::string(place.pWhat) + ", " + name + ", mode " + std::to_string(mode));
        CDoc doc;
        Prepare(doc, mode, place.scheme);
        std::string errors;
        const bool isTried = mode != 3 || *place.pSchema == 0;
        watch.SawAny();
        const TSXStatus status = support::LoadFile(doc.Id(), document.Get(), &errors);
        const std::string refused = isTried ? name : "main.xsd";
        const bool isNested = mode == 3 && xml.find("nested") != std::string::npos;
        const char outcome = Outcome(status, errors, isNested ? "nested.txt" : refused);
        // Of a schema that is missing the parser only warns, if at all.
        const bool isWarning =
            expected == 'm' && outcome == 'r' && std::string_view(place.pEnding) == ".xsd";
        EXPECT_TRUE(outcome == expected || isWarning) << outcome << errors;
        EXPECT_FALSE(m_Server.WasAsked());
        EXPECT_TRUE(expected == 'r' || !watch.SawAny()) << "a refused file was opened";
      }
    }
  }
}

TEST_F(Access, ATextHasNoFolder) {
  for (const CPlace& place : kPlaces) {
    if (*place.pSchema != 0 ||
        std::string_view(place.pDocument).find("nested") != std::string::npos)
      continue;
    const std::string name = Dir() + "/f" + place.pEnding;
    const std::string xml = Replaced(place.pDocument, "{N}", name);
    for (const int32_t mode : {1, 2, 3}) {
      SCOPED_TRACE(std::string(place.pWhat) + ", mode " + std::to_string(mode));
      const char expected = mode == 1 ? 'r' : 'x';
      CDoc doc;
      EXPECT_EQ(support::Load(doc.Id(), "<old><new/></old>"), 0);
      Prepare(doc, mode, place.scheme);
      const TSXRefId element = support::FirstChild(doc.Root());
      CText text(xml), lines, exception;
      const TSXStatus replaced = TSXElementSetXML(element, &text, &lines, &exception);
      EXPECT_EQ(Outcome(replaced, lines.Str(), name), expected) << lines.Str();
      std::string errors;
      const TSXStatus status = support::Load(doc.Id(), xml, &errors);
      EXPECT_EQ(Outcome(status, errors, name), expected) << errors;
    }
  }
}

// Without validation a document type is not needed, and it is no error that it is refused.
TEST_F(Access, ADocumentTypeThatNobodyNeedsIsPassedOver) {
  const std::string type = "<!DOCTYPE t SYSTEM 'http://" + m_Server.Host() + "/t.dtd'";
  for (const std::string& xml : {type + "><t/>", type + " [<!ATTLIST t a CDATA 'v'>]><t/>"}) {
    for (const int32_t mode : {1, 2, 3}) {
      for (const int32_t scheme : {0, 1, 2}) {
        CDoc doc;
        Prepare(doc, mode, scheme);
        std::string errors;
        const TSXStatus status = support::Load(doc.Id(), xml, &errors);
        EXPECT_EQ(status, scheme == 0 ? 0 : domErrParse) << xml << errors;
        EXPECT_EQ(errors.find("was refused") == std::string::npos, scheme == 0) << errors;
        EXPECT_FALSE(m_Server.WasAsked());
      }
    }
  }
}

TEST_F(Access, TheMessageIsOneLineHoweverLongTheName) {
  CDoc doc;
  Prepare(doc, 3, 0);
  const std::string start = "<!DOCTYPE t [<!ENTITY e SYSTEM '", end = "'>]><t>&e;</t>";
  const std::string why = "' was refused: nothing outside the document may be read";
  struct {
    std::string name, shown;
  } const rows[] = {
      {"a\nb\tc", "a b c"},
      {std::string(5000, 'n'), std::string(500, 'n') + "..."},
  };
  for (const auto& [name, shown] : rows) {
    std::string errors;
    EXPECT_EQ(support::Load(doc.Id(), start + name + end, &errors), domErrParse);
    EXPECT_TRUE(errors.ends_with("Message: access to '" + shown + why)) << errors;
    EXPECT_EQ(errors.find('\n'), std::string::npos);
  }
}

// That the server sees nobody says something only if it can see someone.
TEST_F(Access, TheServerSeesWhoIsAllowed) {
  std::atomic<bool> isOver = false, wasAsked = false;
  std::thread server([&] {
    while (!isOver) wasAsked = m_Server.WasAsked() || wasAsked;
  });
  CDoc doc;
  Prepare(doc, 0, 0);
  std::string errors;
  EXPECT_EQ(
      support::Load(doc.Id(), "<!DOCTYPE t SYSTEM 'http://" + m_Server.Host() + "/'><t/>", &errors),
      domErrParse);
  isOver = true;
  server.join();
  EXPECT_TRUE(wasAsked) << errors;
}

}  // namespace
