// A file to write XML to.
#pragma once

#include <xercesc/framework/XMLFormatter.hpp>
#include <xercesc/util/PlatformUtils.hpp>

// Creates or truncates the file. Unlike the XML library's own target, whose
// destructor swallows it, this one reports a disk that turns out full at the end:
// call Close when all is written. Failures are XMLExceptions.
class CFileTarget : public xercesc::XMLFormatTarget {
 public:
  explicit CFileTarget(const char* pPath);
  ~CFileTarget() override;
  CFileTarget(const CFileTarget&) = delete;
  CFileTarget& operator=(const CFileTarget&) = delete;

  void writeChars(const XMLByte* pBytes, XMLSize_t count, xercesc::XMLFormatter*) override;
  void Close();

 private:
  xercesc::FileHandle m_File;
};
