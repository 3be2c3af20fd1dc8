#include "io/filetarget.h"

#include <xercesc/util/IOException.hpp>

#include "host/guards.h"

using xercesc::IOException;
using xercesc::XMLPlatformUtils;

CFileTarget::CFileTarget(const char* pPath) : m_File(XMLPlatformUtils::openFileToWrite(pPath)) {
  if (m_File == nullptr) {
    throw IOException(__FILE__, __LINE__, xercesc::XMLExcepts::File_CouldNotOpenFile,
                      XMLPlatformUtils::fgMemoryManager);
  }
}

CFileTarget::~CFileTarget() {
  if (m_File != nullptr) Always<domErrSaveFile>::Run([this] { Close(); });
}

void CFileTarget::writeChars(const XMLByte* pBytes, XMLSize_t count, xercesc::XMLFormatter*) {
  XMLPlatformUtils::writeBufferToFile(m_File, count, pBytes);
}

void CFileTarget::Close() {
  const xercesc::FileHandle file = m_File;
  m_File = nullptr;
  XMLPlatformUtils::closeFile(file);
}
