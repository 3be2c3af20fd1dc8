// The files that a command names, "-" being standard input.
#ifndef TESSEL_TOOLS_INPUT_H
#define TESSEL_TOOLS_INPUT_H

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
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
  // Gives the descriptor to another owner.
  int Release() { return std::exchange(m_Descriptor, -1); }
  // False, with errno, where the system could not finish what was written.
  bool Close();

 private:
  int m_Descriptor = -1;
};

// What tells a regular file from others; of size 0 for anything else.
struct CFileIdentity {
  uint64_t m_Size = 0;  // bytes
  uint64_t m_Device = 0;
  uint64_t m_Node = 0;

  bool IsOpenAs(int descriptor) const;
};

// A text as large as a file, which its users share.
using CSharedText = std::shared_ptr<const std::string>;

// What becomes of standard input: it is read at once, or left to a parser that streams.
enum class EStandardInput { kRead, kStream };

// One file, ready to be loaded. A file that cannot be read is no failure here:
// a command with many files goes on to the next.
class CInput {
 public:
  CInput(std::string file, EStandardInput standardInput);

  // Text as if it were what this file holds.
  static CInput OfText(std::string file, CSharedText pText);

  const std::string& Name() const { return m_Name; }
  // Why it cannot be read; empty when it can.
  const std::string& Problem() const { return m_Problem; }
  // The path to load from; empty for text from standard input.
  const std::string& Path() const { return m_Path; }
  const std::string& Text() const { return *m_pText; }
  const CFileIdentity& Identity() const { return m_Identity; }
  // All of a regular file or a text, empty otherwise.
  CSharedText Bytes() const;
  // As much as a document type usually takes. Nothing of a pipe.
  std::string Head() const;

 private:
  CInput() = default;
  void Probe();
  void ReadStandardInput();
  void SpoolText();
  std::string Read(uint64_t most) const;

  std::string m_Name;
  std::string m_Problem;
  std::string m_Path;
  CSharedText m_pText = std::make_shared<const std::string>();
  CFileIdentity m_Identity;
  CDescriptor m_Spool;
};

// The inputs of a command, after which --no-external holds: from then on no file but these
// and the others can be read. Progress starts; with PrepareInput it is at the file, too.
std::vector<CInput> PrepareInputs(const std::vector<std::string>& files, const CClient& client,
                                  EStandardInput standardInput = EStandardInput::kRead,
                                  const std::vector<CInput>& others = {});
CInput PrepareInput(const std::string& file, const CClient& client);

// True when everything was written; false with errno.
bool WriteAll(int descriptor, std::string_view bytes);

#endif
