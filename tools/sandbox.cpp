#include "sandbox.h"

#include <fcntl.h>
#include <linux/filter.h>
#include <linux/landlock.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>

#include "input.h"
#include "message.h"

namespace {

[[noreturn]] void Fail(const char* pWhat, const char* pAdvice) {
  throw CFailure(Line(pWhat, std::string(std::strerror(errno)) + "; " + pAdvice));
}

// The kernel wants this promise of a process that is not privileged.
bool GiveUpPrivileges() { return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0; }

bool InstallFilter() {
#ifdef SYS_socket
  std::array<sock_filter, 4> filter{{
      {BPF_LD | BPF_W | BPF_ABS, 0, 0, offsetof(seccomp_data, nr)},
      {BPF_JMP | BPF_JEQ | BPF_K, 0, 1, SYS_socket},
      {BPF_RET | BPF_K, 0, 0, SECCOMP_RET_ERRNO | EACCES},
      {BPF_RET | BPF_K, 0, 0, SECCOMP_RET_ALLOW},
  }};
  const sock_fprog program{filter.size(), filter.data()};
  return prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
#else
  errno = ENOSYS;
  return false;
#endif
}

CDescriptor NewRuleset() {
  landlock_ruleset_attr attributes{};
  attributes.handled_access_fs = LANDLOCK_ACCESS_FS_READ_FILE;
  return CDescriptor(
      static_cast<int>(syscall(SYS_landlock_create_ruleset, &attributes, sizeof attributes, 0U)));
}

// A pipe, as the shell passes one, is outside the rules and needs none.
bool Allow(const CDescriptor& ruleset, const std::string& path) {
  const CDescriptor file(open(path.c_str(), O_PATH | O_CLOEXEC));
  if (!file.IsOpen()) return false;
  landlock_path_beneath_attr rule{};
  rule.allowed_access = LANDLOCK_ACCESS_FS_READ_FILE;
  rule.parent_fd = file.Get();
  return syscall(SYS_landlock_add_rule, ruleset.Get(), LANDLOCK_RULE_PATH_BENEATH, &rule, 0U) ==
             0 ||
         errno == EBADFD;
}

}  // namespace

void RefuseNetwork() {
  if (!GiveUpPrivileges() || !InstallFilter()) {
    Fail("the network cannot be refused here", "--network allows it");
  }
}

void AllowReadingOnly(const std::vector<std::string>& paths) {
  constexpr const char* kWhat = "--no-external cannot be enforced here";
  constexpr const char* kAdvice = "it needs Linux with Landlock";
  const CDescriptor ruleset = NewRuleset();
  if (!ruleset.IsOpen()) Fail(kWhat, kAdvice);
  for (const std::string& path : paths) {
    if (!path.empty() && !Allow(ruleset, path)) Fail(kWhat, kAdvice);
  }
  if (!GiveUpPrivileges() || syscall(SYS_landlock_restrict_self, ruleset.Get(), 0U) != 0) {
    Fail(kWhat, kAdvice);
  }
}
