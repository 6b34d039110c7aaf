// What a program meets that these tests cannot be themselves: a full disk, a folder closed to it, a sudden
// end.
#pragma once

#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <string>

namespace hyetex::test {

inline pid_t StartChild(const std::function<bool()>& run) {
  const pid_t child = ::fork();
  if (child == 0) ::_exit(run() ? 0 : 1);
  return child;
}

inline bool ChildSays(const std::function<bool()>& run) {
  int status = 0;
  const pid_t child = StartChild(run);
  return child > 0 && ::waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

/// Runs where no file can grow past `bytes`, as on a full disk.
inline bool OnFullDisk(rlim_t bytes, const std::function<bool()>& run) {
  return ChildSays([&] {
    ::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{bytes, bytes};
    return ::setrlimit(RLIMIT_FSIZE, &limit) == 0 && run();
  });
}

/// Runs with the folder open for reading only, as somebody whom that stops.
inline bool InReadOnlyFolder(const std::string& folder, const std::function<bool()>& run) {
  ::chmod(folder.c_str(), 0555);
  const bool said = ChildSays([&] {
    constexpr uid_t nobody = 65534;
    return (::geteuid() != 0 || ::setuid(nobody) == 0) && run();
  });
  ::chmod(folder.c_str(), 0755);
  return said;
}

}  // namespace hyetex::test
