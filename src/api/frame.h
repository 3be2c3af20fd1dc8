// The two frames that the exported functions share.
//
// For calls on one id: reset the out, find the node and check its kind, convert the
// strings, make the one DOM call with no lock held, map what it throws, store the result.
// A function supplies its interface, its guard, its reference code, its out, the call,
// and the strings in.
//
// For calls on several: find all in their order, give the code of the first that is
// missing, make the call, map what it throws. A function supplies its guard, the call,
// and a list of which id must be of which kind and what code it has.
#pragma once

#include <tessel/export.h>

#include <tuple>
#include <type_traits>

#include "api/guards.h"
#include "document/find.h"
#include "host/text.h"

namespace frame {

template <class>
using WideOf = CWideText;

// Calls with the host strings as UTF-16; the buffers live as long as the call.
template <class Call, class... Strings>
auto WithTexts(Call&& call, Strings*... pStrings) {
  const std::tuple<WideOf<Strings>...> texts{pStrings...};
  return std::apply([&](const auto&... text) { return call(text.Get()...); }, texts);
}

// What a failed DOM call leaves; a reference failure always goes through Fail.
template <class Out>
TSXStatus FailCall(Out& out, TSXStatus status) {
  if constexpr (requires { out.FailCall(status); }) {
    return out.FailCall(status);
  } else {
    return out.Fail(status);
  }
}

}  // namespace frame

// -- One id -----------------------------------------------------------------------

// A call with a result.
template <class Interface, class Guard, class Out, class Call, class... Strings>
TSXStatus Get(TSXRefId id, TSXStatus badReference, Out out, Call domCall, Strings*... pStrings) {
  const auto pNode = FindObject<Interface>(id);
  if (!pNode) return out.Fail(badReference);
  return frame::WithTexts(
      [&](auto... pTexts) {
        std::invoke_result_t<Call, Interface&, decltype(pTexts)...> result{};
        const TSXStatus status = Guard::Run([&] { result = domCall(*pNode, pTexts...); });
        return status == 0 ? out.Store(result) : frame::FailCall(out, status);
      },
      pStrings...);
}

// A call without a result.
template <class Interface, class Guard, class Call, class... Strings>
TSXStatus Do(TSXRefId id, TSXStatus badReference, Call domCall, Strings*... pStrings) {
  const auto pNode = FindObject<Interface>(id);
  if (!pNode) return badReference;
  return frame::WithTexts(
      [&](auto... pTexts) { return Guard::Run([&] { domCall(*pNode, pTexts...); }); }, pStrings...);
}

// -- Several ids ------------------------------------------------------------------

// What a look-up found, and the code where that is nothing.
template <class Object>
struct CFound {
  Object m_pObject;
  TSXStatus m_BadReference;
  TSXStatus Missing() const { return m_pObject ? 0 : m_BadReference; }
  auto& Get() const { return *m_pObject; }
};

template <class Object>
CFound(Object, TSXStatus) -> CFound<Object>;

struct CMaybeFound {
  xercesc::DOMNode* m_pNode;
  static TSXStatus Missing() { return 0; }
  xercesc::DOMNode* Get() const { return m_pNode; }
};

// An id that must name an object of a kind; the call gets the object.
template <class Interface>
struct CRef {
  TSXRefId m_Id;
  TSXStatus m_BadReference;
  auto Find() const { return CFound{FindObject<Interface>(m_Id), m_BadReference}; }
};

// An id that may name nothing; the call gets a pointer.
struct CUncheckedRef {
  TSXRefId m_Id;
  CMaybeFound Find() const { return {FindObject<xercesc::DOMNode>(m_Id)}; }
};

namespace frame {

template <class... Found>
TSXStatus FirstMissing(const std::tuple<Found...>& all) {
  TSXStatus missing = 0;
  const auto look = [&](const auto& found) { return (missing = found.Missing()) != 0; };
  std::apply([&](const auto&... found) { static_cast<void>((look(found) || ...)); }, all);
  return missing;
}

}  // namespace frame

template <class Guard, class... Refs, class Call>
TSXStatus DoAll(const std::tuple<Refs...>& refs, Call call) {
  // The braces keep the order.
  const auto all = std::apply([](const auto&... ref) { return std::tuple{ref.Find()...}; }, refs);
  const TSXStatus missing = frame::FirstMissing(all);
  if (missing != 0) return missing;
  return Guard::Run([&] { std::apply([&](const auto&... found) { call(found.Get()...); }, all); });
}

// A call that hands a node out: it gets the out, too, and stores the node as soon as it
// has it.
template <class Guard, class Out, class... Refs, class Call>
TSXStatus GetAll(Out out, const std::tuple<Refs...>& refs, Call call) {
  const TSXStatus status = DoAll<Guard>(refs, [&](auto&&... objects) { call(out, objects...); });
  return status == 0 ? 0 : out.Fail(status);
}
