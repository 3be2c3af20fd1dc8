// Owns a DOM object that is freed by its own release().
#pragma once

#include <memory>

struct CReleaseDOMObject {
  template <class T>
  void operator()(T* pObject) const {
    pObject->release();
  }
};

template <class T>
using CDOMOwner = std::unique_ptr<T, CReleaseDOMObject>;
