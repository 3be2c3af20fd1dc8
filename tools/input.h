// The files that a command names, "-" being standard input.
#ifndef TESSEL_TOOLS_INPUT_H
#define TESSEL_TOOLS_INPUT_H

#include <string>
#include <vector>

#include "client.h"

// A file descriptor that is closed with its owner.
class CDescriptor {
 public:
  CDescriptor() = default;
  explicit CDescriptor(int descriptor) : m_Descriptor(descriptor) {}
  CDescriptor(CDescriptor&& other) noexcept;
  CDescriptor& operator=(CDescriptor&& other) noexcept;
  ~CDescriptor();

  int Get() const { return m_Descriptor; }
  bool IsOpen() const { return m_Descriptor >= 0; }
  // False, with errno, where the system could not finish what was written.
  bool Close();

 private:
  int m_Descriptor = -1;
};

// One file, ready to be loaded. A file that cannot be read is no failure here:
// a command with many files goes on to the next.
class CInput {
 public:
  explicit CInput(std::string file);

  const std::string& Name() const { return m_Name; }
  // Why it cannot be read; empty when it can.
  const std::string& Problem() const { return m_Problem; }
  // The path to load from; empty for text from standard input.
  const std::string& Path() const { return m_Path; }
  const std::string& Text() const { return m_Text; }

 private:
  void Probe();
  void ReadStandardInput();

  std::string m_Name;
  std::string m_Problem;
  std::string m_Path;
  std::string m_Text;
  CDescriptor m_Spool;
};

// The inputs of a command, after which --no-external holds: from then on no
// other file can be read.
std::vector<CInput> PrepareInputs(const std::vector<std::string>& files, const CClient& client);
CInput PrepareInput(const std::string& file, const CClient& client);

// True when everything was written; false with errno.
bool WriteAll(int descriptor, std::string_view bytes);

#endif
