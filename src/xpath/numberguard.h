// Numbers that Xalan-C can put in words.
#pragma once

#include <cmath>
#include <xalanc/XPath/XObjectFactoryDefault.hpp>
#include <xalanc/XPath/XalanXPathException.hpp>
#include <xercesc/util/PlatformUtils.hpp>

// Xalan-C writes a number into a buffer of 100 characters whatever its size. A value
// with more digits than fit ends the evaluation before it can be written.
class CNumberGuard final : public xalanc::XObjectFactoryDefault {
 public:
  using XObjectFactoryDefault::createNumber;

  // NOLINTNEXTLINE(readability-const-return-type): as the base declares it
  const xalanc::XObjectPtr createNumber(double value) override {
    if (std::isfinite(value) && std::fabs(value) >= kTooLarge) Fail();
    return XObjectFactoryDefault::createNumber(value);
  }

 private:
  static constexpr double kTooLarge = 1e80;

  [[noreturn]] static void Fail() {
    xercesc::MemoryManager& memory = *xercesc::XMLPlatformUtils::fgMemoryManager;
    throw xalanc::XalanXPathException(
        xalanc::XalanDOMString("The expression has come to a number of more than 80 digits.",
                               memory),
        memory);
  }
};
