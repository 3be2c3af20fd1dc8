// Files that something was made of, and whether they are still what they were.
#pragma once

#include <sys/stat.h>

#include <string>
#include <vector>

// A file is looked at before it is read, and is another one as soon as its inode, its size
// or one of its times is. A clock goes in ticks, so a file that changed within the last one
// may change once more and show nothing of it: that is noted, too.
class CSeenFiles {
 public:
  // An absolute path; of what is no file, as what comes by network, nothing can be said.
  void See(const std::string& path);
  void SeeOther() { m_IsSettled = false; }

  // Whether a change after they were seen would show.
  bool AreSettled() const { return m_IsSettled; }
  bool AreUnchanged() const;

 private:
  struct CFile {
    std::string m_Path;
    struct stat m_Seen;  // all zero for one that was not there
  };

  std::vector<CFile> m_Files;
  bool m_IsSettled = true;
};
