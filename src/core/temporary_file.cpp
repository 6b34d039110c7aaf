#include "core/temporary_file.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <optional>
#include <system_error>
#include <vector>

#include "core/files.h"

namespace hyetex {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view Head = ".hyetex-", Form = "-XXXXXX.tmp";
constexpr std::string_view Ending = ".tmp", JournalEnding = "-journal";  // the latter is SQLite's

tl::unexpected<std::string> ErrnoFailure() { return Failure(std::strerror(errno)); }

// The process that made the file of this name, if it is one of ours.
std::optional<pid_t> WriterOf(std::string_view name) {
  if (!name.starts_with(Head)) return std::nullopt;
  name.remove_prefix(Head.size());
  pid_t writer = 0;
  const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), writer);
  if (error != std::errc{} || writer <= 0) return std::nullopt;
  name.remove_prefix(static_cast<std::size_t>(end - name.data()));
  if (name.size() < Form.size() || name[0] != '-') return std::nullopt;
  std::string_view ending = name.substr(Form.size() - Ending.size());
  if (ending.ends_with(JournalEnding)) ending.remove_suffix(JournalEnding.size());
  return ending == Ending ? std::optional(writer) : std::nullopt;
}

// Another machine's programs have numbers of their own, and a number may be another program's by now; the
// lock tells of the first, and a file that waits a little longer does no harm. Our own number is that of a
// program that ended before us, or the lock is ours.
bool MayBeInUse(pid_t writer, std::string path) {
  if (writer != ::getpid() && (::kill(writer, 0) == 0 || errno == EPERM)) return true;
  if (path.ends_with(JournalEnding)) path.resize(path.size() - JournalEnding.size());
  const Descriptor fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
  return fd.Valid() ? ::flock(fd.Get(), LOCK_EX | LOCK_NB) != 0 : errno != ENOENT;
}

// A rename is on disk only when its folder is. File systems that cannot flush a folder say EINVAL.
bool FlushFolder(const std::string& folder) {
  const Descriptor fd(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!fd.Valid()) return errno == EACCES;  // a folder that may be written but not read
  return ::fsync(fd.Get()) == 0 || errno == EINVAL;
}

bool RenameToNew(const std::string& from, const std::string& to) {
  if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return true;
  if (errno != EINVAL && errno != ENOSYS) return false;
  // A file system without that call.
  struct stat there {};
  if (::lstat(to.c_str(), &there) == 0) {
    errno = EEXIST;
    return false;
  }
  return ::rename(from.c_str(), to.c_str()) == 0;
}

}  // namespace

bool IsTemporary(std::string_view name) { return WriterOf(name).has_value(); }

void ClearTemporaries(const std::string& folder) {
  std::error_code error;
  std::vector<std::string> left;
  for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error))
    if (const std::string name = at->path().filename().string(); IsTemporary(name)) left.push_back(name);
  for (const std::string& name : left) {
    const std::string path = JoinPath(folder, name);
    if (!MayBeInUse(*WriterOf(name), path)) ::unlink(path.c_str());
  }
}

TemporaryFile::TemporaryFile(std::string folder, std::string path, int fd)
    : folder_(std::move(folder)), path_(std::move(path)), fd_(fd) {}

TemporaryFile::TemporaryFile(TemporaryFile&& other) noexcept
    : folder_(std::move(other.folder_)), path_(std::exchange(other.path_, {})), fd_(std::move(other.fd_)) {}

TemporaryFile::~TemporaryFile() {
  if (!path_.empty()) ::unlink(path_.c_str());
}

Result<TemporaryFile> TemporaryFile::In(std::string folder) {
  if (folder.empty()) folder = ".";
  std::string path = JoinPath(folder, std::string(Head) + std::to_string(::getpid()).append(Form));
  const int fd = ::mkostemps(path.data(), static_cast<int>(Ending.size()), O_CLOEXEC);
  if (fd < 0) return ErrnoFailure();
  (void)::flock(fd, LOCK_EX | LOCK_NB);  // where there are no locks, the number in the name has to do
  return TemporaryFile(std::move(folder), std::move(path), fd);
}

Result<void> TemporaryFile::Replace(const std::string& path, unsigned mode) {
  return Place(path, mode, true);
}
Result<void> TemporaryFile::Become(const std::string& path, unsigned mode) {
  return Place(path, mode, false);
}

// The lock is given up last, so that nobody takes the file for a forgotten one before it has its name.
Result<void> TemporaryFile::Place(const std::string& path, unsigned mode, bool replace) {
  if (::fchmod(fd_.Get(), mode) != 0 || ::fsync(fd_.Get()) != 0) return ErrnoFailure();
  if (replace ? ::rename(path_.c_str(), path.c_str()) != 0 : !RenameToNew(path_, path)) return ErrnoFailure();
  path_.clear();
  if (!FlushFolder(folder_))
    return Failure("its folder cannot be flushed: " + std::string(std::strerror(errno)));
  return fd_.Close() ? Result<void>{} : ErrnoFailure();
}

}  // namespace hyetex
