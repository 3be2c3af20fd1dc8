#include <algorithm>
#include <atomic>
#include <exception>
#include <random>
#include <thread>

#include "documents.h"
#include "libraries.h"
#include "rows.h"

namespace bench {
namespace {

// The same work in other surroundings.
constexpr const char* kWarmId = "warm id";
constexpr const char* kNoOtherIds = "no other ids";

// -- One call on an id, by where the id is ------------------------------------

CRow RandomId(const CSizes& sizes) {
  struct CState {
    explicit CState(const CSizes& wanted)
        : m_Document(OpenDocument(ItemsXml(wanted.m_LargeItems))) {
      Require(TSXGetDocumentElement(m_Document.Get(), 0, m_Root.Out()), "TSXGetDocumentElement");
      Walk(CTesselKeepingTree(m_Ids.Get()), m_Root.Get());
      std::sample(m_Ids.Get().begin(), m_Ids.Get().end(), std::back_inserter(m_Random),
                  wanted.m_Calls, m_Engine);
      std::shuffle(m_Random.begin(), m_Random.end(), m_Engine);
      // As many calls on one id.
      m_Warm.assign(m_Random.size(), m_Random.front());
    }
    CDocument m_Document;
    CNode m_Root;
    CIds m_Ids;
    std::mt19937 m_Engine{1};
    std::vector<TSXRefId> m_Random, m_Warm;
  };
  const auto state = std::make_shared<CState>(sizes);
  const auto call = [](const std::vector<TSXRefId>& ids) {
    uint64_t found = 0;
    for (const TSXRefId id : ids) {
      int32_t type = 0;
      Require(TSXGetNodeType(id, 0, &type), "TSXGetNodeType");
      found += type != 0;
    }
    return found;
  };
  return {"call",
          state->m_Random.size(),
          {{"Tessel", [=] { return call(state->m_Random); }},
           {kWarmId, [=] { return call(state->m_Warm); }}}};
}

// -- Closing documents --------------------------------------------------------

// A document of a million nodes, whose ids are open on demand.
class CManyIds {
 public:
  explicit CManyIds(const CSizes& sizes) : m_Document(OpenDocument(ItemsXml(sizes.m_LargeItems))) {
    Require(TSXGetDocumentElement(m_Document.Get(), 0, m_Root.Out()), "TSXGetDocumentElement");
  }
  void Open() {
    if (m_Ids.Get().empty()) Walk(CTesselKeepingTree(m_Ids.Get()), m_Root.Get());
  }
  void Close() { m_Ids.Close(); }

 private:
  CDocument m_Document;
  CNode m_Root;
  CIds m_Ids;
};

// Opens documents of ten nodes with all ids, untimed, and closes them.
CContestant CloseTen(const char* pName, size_t count, std::function<void()> prepare) {
  auto documents = std::make_shared<std::vector<CDocument>>();
  const auto before = [=, prepare = std::move(prepare)] {
    prepare();
    for (size_t i = 0; i < count; ++i) {
      documents->push_back(OpenDocument(TenNodesXml()));
      CNode root;
      Require(TSXGetDocumentElement(documents->back().Get(), 0, root.Out()),
              "TSXGetDocumentElement");
      Children<CTesselTree>(root.Get());  // their ids go with the document
    }
  };
  return {.m_Name = pName, .m_Work = [=] { return documents->clear(), count; }, .m_Before = before};
}

CRow CloseSmall(const CSizes& sizes) {
  const auto many = std::make_shared<CManyIds>(sizes);
  constexpr size_t kDocuments = 10;
  return {"document",
          kDocuments,
          {CloseTen("Tessel", kDocuments, [=] { many->Open(); }),
           CloseTen(kNoOtherIds, kDocuments, [=] { many->Close(); })},
          true};
}

CRow CloseLarge(const CSizes& sizes) {
  const auto xml = std::make_shared<const std::string>(ItemsXml(sizes.m_LargeItems));
  const size_t nodes = 1 + kNodesPerItem * sizes.m_LargeItems;
  const auto document = std::make_shared<CDocument>();
  const auto open = [=] {
    *document = OpenDocument(*xml);
    TSXRefId root = 0;
    Require(TSXGetDocumentElement(document->Get(), 0, &root), "TSXGetDocumentElement");
    std::vector<TSXRefId> ids;  // go with the document
    Walk(CTesselKeepingTree(ids), root);
  };
  const auto bare = std::make_shared<std::unique_ptr<CXercesDocument>>();
  return {
      "id",
      nodes,
      {{.m_Name = "Tessel", .m_Work = [=] { return *document->Out() = 0, 0; }, .m_Before = open},
       {.m_Name = kXerces,
        .m_Work = [=] { return bare->reset(), 0; },
        .m_Before = [=] { *bare = std::make_unique<CXercesDocument>(*xml); }}},
      true};
}

// -- Threads, a document each -------------------------------------------------

// Runs work(i) on a thread each; the first exception comes back.
template <class Work>
uint64_t OnThreads(size_t count, Work work) {
  std::atomic<uint64_t> sum = 0;
  std::vector<std::exception_ptr> failures(count);
  {
    std::vector<std::jthread> threads;
    for (size_t i = 0; i < count; ++i) {
      threads.emplace_back([&, i] {
        try {
          sum += work(i);
        } catch (...) {
          failures[i] = std::current_exception();
        }
      });
    }
  }
  for (const auto& failure : failures) {
    if (failure) std::rethrow_exception(failure);
  }
  return sum;
}

CRow WalkOnThreads(const CSizes& sizes, size_t threads) {
  constexpr size_t kDocuments = 8;
  using CMany = std::vector<std::unique_ptr<CDocuments>>;
  const auto documents = std::make_shared<CMany>();
  const std::string xml = ItemsXml(sizes.m_MediumItems);
  for (size_t i = 0; i < kDocuments; ++i) documents->push_back(std::make_unique<CDocuments>(xml));
  // Each thread walks its share of the documents.
  const auto walk = [=](auto walkOne) {
    return OnThreads(threads, [&](size_t thread) {
      uint64_t nodes = 0;
      for (size_t i = thread; i < kDocuments; i += threads) nodes += walkOne(*(*documents)[i]);
      return nodes;
    });
  };
  return {.m_pUnit = "node",
          .m_Units = kDocuments * (1 + kNodesPerItem * sizes.m_MediumItems),
          .m_Contestants = {{"Tessel",
                             [=] {
                               return walk([](const CDocuments& one) {
                                 return Walk(CTesselTree(), one.Root());
                               });
                             }},
                            {kXerces,
                             [=] {
                               return walk([](const CDocuments& one) {
                                 return Walk(CXercesTree(), one.m_Xerces.Root());
                               });
                             }}},
          .m_IsOnThreads = true};
}

}  // namespace

CRowTable RegistryRows() {
  return {
      {"id.random", "A call on a random id among a million, to one on a warm id", Times(6, kWarmId),
       RandomId},
      {"close.small", "Close a document of ten nodes beside a million ids, to none",
       Times(2, kNoOtherIds), CloseSmall},
      {"close.large", "Close a document with a million ids", More(35, kXerces), CloseLarge},
      {"threads.one", "Walk eight documents on one thread, ids closed", kNoAim,
       [](const CSizes& sizes) { return WalkOnThreads(sizes, 1); }},
      {"threads.eight", "Walk eight documents on eight threads, ids closed", kNoAim,
       [](const CSizes& sizes) { return WalkOnThreads(sizes, 8); }},
  };
}

}  // namespace bench
