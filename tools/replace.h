// Files that are written whole or not at all.
#ifndef TESSEL_TOOLS_REPLACE_H
#define TESSEL_TOOLS_REPLACE_H

#include <string>
#include <string_view>

// Writes a file beside the target and renames it, once it is safely on the disk, so
// that the target is at every moment the old file or the new one. Mode, owner, access
// lists and extended attributes are kept, a link is followed; what is no regular file
// is written to directly. Interrupt, hang-up and termination wait until no other file
// is left beside the target.
//
// Throws a CFailure, and the target is then untouched, where the folder or the file
// may not be written, where something about the file cannot be kept, where it has
// other names, which would keep the old content, and where a link leads nowhere.
void ReplaceFile(const std::string& target, std::string_view bytes);

#endif
