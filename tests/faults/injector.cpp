// A library to preload into a program: it counts the calls by which the program opens, writes, flushes,
// renames, removes and cuts files below one folder, and strikes at one of them.
//
//   HYETEX_FAULT_FOLDER   the folder; calls on other files are neither counted nor touched
//   HYETEX_FAULT_LOG      a file outside of it that gets a line "call path" for each counted call
//   HYETEX_FAULT_AT       the call to strike at, from 1; none strikes at none
//   HYETEX_FAULT_KIND     fail N: returns the error N
//                         fail-on N: so does every counted call from then on, as on a disk that is gone
//                         short N: writes N bytes, 0 for half of them, and reports so
//                         nothing: reports a write of no bytes
//                         kill-before, kill-after, kill-within: ends the program there; within half a write
//
// Flushes are counted but not carried out: no kill can tell, and the disk is spared.
#include <dlfcn.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

struct Plan {
  std::string Folder, Kind;
  long At = 0, Number = 0, Calls = 0;
  int Log = -1;

  Plan() {
    const auto text = [](const char* name) {
      const char* set = std::getenv(name);
      return std::string(set == nullptr ? "" : set);
    };
    Folder = text("HYETEX_FAULT_FOLDER");
    Kind = text("HYETEX_FAULT_KIND");
    At = std::atol(text("HYETEX_FAULT_AT").c_str());
    if (const std::size_t blank = Kind.find(' '); blank != std::string::npos) {
      Number = std::atol(Kind.c_str() + blank);
      Kind.resize(blank);
    }
    if (const std::string log = text("HYETEX_FAULT_LOG"); !log.empty())
      Log = static_cast<int>(
          ::syscall(SYS_openat, AT_FDCWD, log.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666));
  }
  bool Covers(std::string_view path) const {
    return !Folder.empty() && path.starts_with(Folder) &&
           (path.size() == Folder.size() || path[Folder.size()] == '/');
  }
};

Plan& ThePlan() {
  static Plan plan;
  return plan;
}

[[noreturn]] void End() {
  ::kill(::getpid(), SIGKILL);
  for (;;) ::pause();
}

// Counts a call. Whether the plan strikes at it.
bool Strikes(std::string_view call, std::string_view path) {
  Plan& plan = ThePlan();
  if (!plan.Covers(path)) return false;
  ++plan.Calls;
  if (plan.Log >= 0) {
    const std::string line = std::string(call) + " " + std::string(path) + "\n";
    (void)!::syscall(SYS_write, plan.Log, line.data(), line.size());
  }
  return plan.At > 0 && (plan.Calls == plan.At || (plan.Kind == "fail-on" && plan.Calls > plan.At));
}

std::string PathOf(int fd) {
  std::array<char, 4096> path{};
  const std::string link = "/proc/self/fd/" + std::to_string(fd);
  const ssize_t length = ::readlink(link.c_str(), path.data(), path.size());
  return std::string(path.data(), length < 0 ? 0 : static_cast<std::size_t>(length));
}

template <typename Result>
Result Failed() {
  errno = static_cast<int>(ThePlan().Number);
  if constexpr (std::is_pointer_v<Result>)
    return nullptr;
  else
    return -1;
}

// Carries a call out, or does to it what the plan says.
template <typename Call>
auto Guard(std::string_view name, std::string_view path, Call&& call) -> decltype(call()) {
  if (!Strikes(name, path)) return call();
  const std::string& kind = ThePlan().Kind;
  if (kind.starts_with("fail")) return Failed<decltype(call())>();
  if (kind == "kill-before") End();
  const auto result = call();
  if (kind == "kill-after") End();
  return result;
}

template <typename Write>
ssize_t GuardWrite(int fd, std::size_t size, Write&& write) {
  if (!Strikes("write", PathOf(fd))) return write(size);
  const Plan& plan = ThePlan();
  if (plan.Kind.starts_with("fail")) return Failed<ssize_t>();
  if (plan.Kind == "kill-before") End();
  if (plan.Kind == "nothing") return 0;
  const auto asked = static_cast<std::size_t>(plan.Number);
  if (plan.Kind == "short") size = asked == 0 ? (size + 1) / 2 : std::min(size, asked);
  if (plan.Kind == "kill-within") size /= 2;
  const ssize_t written = write(size);
  if (plan.Kind.starts_with("kill")) End();
  return written;
}

template <typename Function>
Function* Real(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

mode_t ModeOf(int flags, std::va_list arguments) {
  return (flags & (O_CREAT | O_TMPFILE)) != 0 ? static_cast<mode_t>(va_arg(arguments, int)) : 0;
}

}  // namespace

extern "C" {

#define HYETEX_OPEN(name)                                                \
  int name(const char* path, int flags, ...) {                           \
    static auto* const real = Real<int(const char*, int, ...)>(#name);   \
    std::va_list arguments;                                              \
    va_start(arguments, flags);                                          \
    const mode_t mode = ModeOf(flags, arguments);                        \
    va_end(arguments);                                                   \
    return Guard("open", path, [&] { return real(path, flags, mode); }); \
  }
HYETEX_OPEN(open)
HYETEX_OPEN(open64)

// The driver manager, which alone opens "odbc.ini" in this way, empties it when it cannot be opened for
// reading; nothing of ours can mend that.
#define HYETEX_FOPEN(name)                                                      \
  FILE* name(const char* path, const char* mode) {                              \
    static auto* const real = Real<FILE*(const char*, const char*)>(#name);     \
    if (std::string_view(path).ends_with("/odbc.ini")) return real(path, mode); \
    return Guard("open", path, [&] { return real(path, mode); });               \
  }
HYETEX_FOPEN(fopen)
HYETEX_FOPEN(fopen64)

int mkostemps(char* form, int suffix, int flags) {
  static auto* const real = Real<int(char*, int, int)>("mkostemps");
  return Guard("open", form, [&] { return real(form, suffix, flags); });
}

ssize_t write(int fd, const void* bytes, size_t size) {
  static auto* const real = Real<ssize_t(int, const void*, size_t)>("write");
  return GuardWrite(fd, size, [&](size_t some) { return real(fd, bytes, some); });
}
ssize_t writev(int fd, const struct iovec* parts, int count) {
  static auto* const real = Real<ssize_t(int, const struct iovec*, int)>("writev");
  size_t size = 0;
  for (int i = 0; i < count; ++i) size += parts[i].iov_len;
  return GuardWrite(fd, size, [&](size_t some) {
    return some == size ? real(fd, parts, count)
                        : ::write(fd, parts[0].iov_base, std::min(some, parts[0].iov_len));
  });
}
#define HYETEX_PWRITE(name, Offset)                                                      \
  ssize_t name(int fd, const void* bytes, size_t size, Offset at) {                      \
    static auto* const real = Real<ssize_t(int, const void*, size_t, Offset)>(#name);    \
    return GuardWrite(fd, size, [&](size_t some) { return real(fd, bytes, some, at); }); \
  }
HYETEX_PWRITE(pwrite, off_t)
HYETEX_PWRITE(pwrite64, off64_t)

int fsync(int fd) {
  return Guard("flush", PathOf(fd), [] { return 0; });
}
int fdatasync(int fd) {
  return Guard("flush", PathOf(fd), [] { return 0; });
}

#define HYETEX_TRUNCATE(name, Offset)                                     \
  int name(int fd, Offset size) noexcept {                                \
    static auto* const real = Real<int(int, Offset)>(#name);              \
    return Guard("truncate", PathOf(fd), [&] { return real(fd, size); }); \
  }
HYETEX_TRUNCATE(ftruncate, off_t)
HYETEX_TRUNCATE(ftruncate64, off64_t)

#define HYETEX_TWO_PATHS(name)                                            \
  int name(const char* from, const char* to) noexcept {                   \
    static auto* const real = Real<int(const char*, const char*)>(#name); \
    return Guard("rename", to, [&] { return real(from, to); });           \
  }
HYETEX_TWO_PATHS(rename)
HYETEX_TWO_PATHS(link)

int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) noexcept {
  static auto* const real = Real<int(int, const char*, int, const char*, unsigned)>("renameat2");
  return Guard("rename", to, [&] { return real(fromFolder, from, toFolder, to, flags); });
}

#define HYETEX_REMOVE(name)                                   \
  int name(const char* path) noexcept {                       \
    static auto* const real = Real<int(const char*)>(#name);  \
    return Guard("remove", path, [&] { return real(path); }); \
  }
HYETEX_REMOVE(unlink)
HYETEX_REMOVE(remove)

int mkdir(const char* path, mode_t mode) noexcept {
  static auto* const real = Real<int(const char*, mode_t)>("mkdir");
  return Guard("mkdir", path, [&] { return real(path, mode); });
}

}  // extern "C"
