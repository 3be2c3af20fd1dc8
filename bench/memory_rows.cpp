#include <malloc.h>

#include "documents.h"
#include "libraries.h"
#include "rows.h"

namespace bench {
namespace {

uint64_t HeapInUse() {
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

// What the heap holds more once something is made. A figure below zero would be
// something else's: none.
template <class Make>
uint64_t HeapOf(Make make) {
  const uint64_t before = HeapInUse();
  [[maybe_unused]] const auto held = make();
  const uint64_t after = HeapInUse();
  return after > before ? after - before : 0;
}

CRow NodeIds(const CSizes& sizes) {
  const auto document = std::make_shared<CDocument>(OpenDocument(ItemsXml(sizes.m_LargeItems)));
  const size_t nodes = 1 + kNodesPerItem * sizes.m_LargeItems;
  return {.m_pUnit = "id",
          .m_Units = nodes,
          .m_Contestants = {{"Tessel",
                             [=] {
                               CNode root;
                               Require(TSXGetDocumentElement(document->Get(), 0, root.Out()),
                                       "TSXGetDocumentElement");
                               CIds ids;
                               ids.Get().reserve(nodes);
                               return HeapOf(
                                   [&] { return Walk(CTesselKeepingTree(ids.Get()), root.Get()); });
                             }}},
          .m_IsOnce = true,
          .m_IsMemory = true};
}

CRow EmptyDocuments(const CSizes&) {
  constexpr size_t kDocuments = 1000;
  return {.m_pUnit = "document",
          .m_Units = kDocuments,
          .m_Contestants = {{"Tessel",
                             [] {
                               return HeapOf([] {
                                 std::vector<CDocument> documents(kDocuments);
                                 for (CDocument& document : documents) {
                                   Require(TSXDocumentOpen(0, document.Out()), "TSXDocumentOpen");
                                 }
                                 return documents;
                               });
                             }},
                            {kXerces,
                             [] {
                               return HeapOf([] { return std::vector<CXercesEmpty>(kDocuments); });
                             }}},
          .m_IsOnce = true,
          .m_IsMemory = true};
}

}  // namespace

CRowTable MemoryRows() {
  return {
      {"memory.id", "Heap of a registered node, among a million", Amount(96), NodeIds},
      {"memory.empty", "Heap of an empty document, of a thousand open", kNoAim, EmptyDocuments},
  };
}

}  // namespace bench
