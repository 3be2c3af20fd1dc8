#include "io/outputfile.h"

#include <utility>
#include <xercesc/util/IOException.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include "host/guards.h"

using xercesc::IOException;
using xercesc::XMLPlatformUtils;

namespace {

class COutputFile {
 public:
  explicit COutputFile(const char* pPath) : m_File(XMLPlatformUtils::openFileToWrite(pPath)) {
    if (m_File == nullptr) {
      throw IOException(__FILE__, __LINE__, xercesc::XMLExcepts::File_CouldNotOpenFile,
                        XMLPlatformUtils::fgMemoryManager);
    }
  }
  ~COutputFile() {
    if (m_File != nullptr) Always<domErrSaveFile>::Run([this] { Close(); });
  }
  COutputFile(const COutputFile&) = delete;
  COutputFile& operator=(const COutputFile&) = delete;

  void Write(std::string_view text) {
    XMLPlatformUtils::writeBufferToFile(m_File, text.size(),
                                        reinterpret_cast<const XMLByte*>(text.data()));
  }
  // Says what the disk says last.
  void Close() { XMLPlatformUtils::closeFile(std::exchange(m_File, nullptr)); }

 private:
  xercesc::FileHandle m_File;
};

}  // namespace

void WriteFile(const char* pPath, std::string_view text) {
  COutputFile file(pPath);
  file.Write(text);
  file.Close();
}
