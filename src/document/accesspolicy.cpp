#include "document/accesspolicy.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

constexpr const char16_t* kNoAccess = u"nothing outside the document may be read";
constexpr const char16_t* kNoNetwork = u"nothing may be read by network";
constexpr const char16_t* kNoFolder = u"the document has no folder";
constexpr const char16_t* kOutside = u"it lies outside the document's folder";
constexpr const char16_t* kNoRegularFile = u"it is not a regular file";

CAnswer Refusal(const char16_t* pReason) { return {pReason, false, {}}; }
CAnswer ByName() { return {nullptr, true, {}}; }

// From folder to folder, through no link.
constexpr int kStep = O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

// Opens a regular file and nothing else: a device or a pipe is not touched. The file that
// was looked at must be the one that was opened.
CAnswer OpenRegular(const CFile& folder, const fs::path& name) {
  struct stat seen, opened;
  if (fstatat(folder.Get(), name.c_str(), &seen, AT_SYMLINK_NOFOLLOW) != 0) return {};
  if (!S_ISREG(seen.st_mode)) return Refusal(kNoRegularFile);
  // Should a pipe have come in its place, this does not wait for its other end.
  constexpr int kRead = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
  CFile file(openat(folder.Get(), name.c_str(), kRead));
  if (!file.IsOpen() || fstat(file.Get(), &opened) != 0) return {};
  const bool isSame = seen.st_dev == opened.st_dev && seen.st_ino == opened.st_ino;
  if (!isSame || !S_ISREG(opened.st_mode)) return Refusal(kNoRegularFile);
  return {nullptr, false, std::move(file)};
}

}  // namespace

CFile::~CFile() {
  if (IsOpen()) close(m_Descriptor);
}

void CAccessPolicy::SetDocument(const std::string& path) {
  m_Folder = fs::path(path).parent_path();
}

CAnswer CAccessPolicy::AskForNetwork() const {
  if (m_Mode == kAll) return ByName();
  return Refusal(m_Mode == kNothing ? kNoAccess : kNoNetwork);
}

CAnswer CAccessPolicy::AskForFile(const std::string& path) const {
  if (m_Mode == kNothing) return Refusal(kNoAccess);
  return m_Mode == kFolder ? OpenInFolder(path) : ByName();
}

CAnswer CAccessPolicy::OpenInFolder(const std::string& path) const {
  if (m_Folder.empty()) return Refusal(kNoFolder);
  std::error_code error;
  const fs::path folder = fs::canonical(m_Folder, error);
  if (error) return Refusal(kNoFolder);
  // Also tells where a file would be that does not exist: whether there is one outside
  // the folder is nobody's business.
  const fs::path file = fs::weakly_canonical(path, error);
  auto [end, step] = std::mismatch(folder.begin(), folder.end(), file.begin(), file.end());
  if (error || end != folder.end() || step == file.end()) return Refusal(kOutside);
  CFile place(open(folder.c_str(), kStep));
  for (; place.IsOpen() && std::next(step) != file.end(); ++step) {
    place = CFile(openat(place.Get(), step->c_str(), kStep));
  }
  if (!place.IsOpen()) return {};
  return OpenRegular(place, *step);
}
