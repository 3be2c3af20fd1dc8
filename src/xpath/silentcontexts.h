// Xalan-C's contexts without its habit of printing problems to standard error.
#pragma once

#include <xalanc/XPath/XPathConstructionContextDefault.hpp>
#include <xalanc/XPath/XPathEnvSupportDefault.hpp>
#include <xalanc/XPath/XPathParserException.hpp>
#include <xalanc/XPath/XalanXPathException.hpp>
#include <xercesc/util/PlatformUtils.hpp>

// Makes an exception of an error and nothing of a warning or a message.
template <class Base, class Exception>
class CSilent final : public Base {
 public:
  using typename Base::eClassification;
  using typename Base::eSource;

  void problem(eSource, eClassification classification, const xalanc::XalanDOMString& message,
               const xalanc::Locator*, const xalanc::XalanNode*) override {
    Raise(classification, message);
  }
  void problem(eSource, eClassification classification, const xalanc::XalanDOMString& message,
               const xalanc::XalanNode*) override {
    Raise(classification, message);
  }

 private:
  static void Raise(eClassification classification, const xalanc::XalanDOMString& message) {
    if (classification != Base::eError) return;
    throw Exception(message, *xercesc::XMLPlatformUtils::fgMemoryManager);
  }
};

using CSilentConstruction =
    CSilent<xalanc::XPathConstructionContextDefault, xalanc::XPathParserException>;
using CSilentEnvironment = CSilent<xalanc::XPathEnvSupportDefault, xalanc::XalanXPathException>;
