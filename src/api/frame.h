// The frame that the exported node functions share: reset the out, find the node and
// check its kind, convert the strings, make the one DOM call with no lock held, map
// what it throws, store the result. A function supplies its interface,
// its guard, its reference code, its out, the call, and the strings in.
#pragma once

#include <tessel/export.h>

#include <tuple>
#include <type_traits>

#include "document/depth.h"
#include "document/find.h"
#include "host/guards.h"
#include "host/text.h"

// The call cannot raise, but it recurses: a tree too deep for the stack is unexpected.
struct GuardsDepth {
  template <class Call>
  static TSXStatus Run(Call&& call) try {
    call();
    return 0;
  } catch (const depth::CTooDeep&) {
    return domErrUnexpected;
  }
};

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

// A call with a result.
template <class Interface, class Guard, class Out, class Call, class... Strings>
TSXStatus Get(TSXRefId id, TSXStatus badReference, Out out, Call domCall, Strings*... pStrings) {
  Interface* pNode = FindObject<Interface>(id);
  if (pNode == nullptr) return out.Fail(badReference);
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
  Interface* pNode = FindObject<Interface>(id);
  if (pNode == nullptr) return badReference;
  return frame::WithTexts(
      [&](auto... pTexts) { return Guard::Run([&] { domCall(*pNode, pTexts...); }); }, pStrings...);
}
