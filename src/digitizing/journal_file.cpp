#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "digitizing/journal.h"

namespace hyetex {

Result<JournalFile> JournalFile::Open(const std::string& path, int flags) {
  const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | flags, 0644);
  if (fd < 0) return Failure("Cannot write " + path + ": " + std::strerror(errno));
  return JournalFile(path, fd);
}

Result<JournalFile> JournalFile::Start(const std::string& path, int tablet) {
  auto journal = Open(path, O_TRUNC);
  if (!journal) return journal;
  journal->Append(JournalHead(tablet));
  if (journal->trouble_) return Failure(*journal->trouble_);
  return journal;
}

Result<JournalFile> JournalFile::Continue(const std::string& path) { return Open(path, 0); }

JournalFile::JournalFile(JournalFile&& other) noexcept
    : path_(std::move(other.path_)),
      fd_(std::exchange(other.fd_, -1)),
      pending_(std::move(other.pending_)),
      trouble_(std::move(other.trouble_)) {}

JournalFile::~JournalFile() {
  if (fd_ >= 0) ::close(fd_);
}

void JournalFile::Record(const JournalEvent& event) { Append(JournalLine(event) + "\n"); }

// One write: a killed program leaves whole lines. What did not fit is cut off again, so that a full disk does
// not leave half a line in front of the next.
void JournalFile::Append(std::string_view bytes) {
  pending_ += bytes;
  const auto wanted = static_cast<ssize_t>(pending_.size());
  const off_t before = ::lseek(fd_, 0, SEEK_END);
  const ssize_t written = ::write(fd_, pending_.data(), pending_.size());
  if (written == wanted && ::fdatasync(fd_) == 0) {
    pending_.clear();
    trouble_.reset();
    return;
  }
  const int error = written >= 0 && written < wanted ? ENOSPC : errno;
  if (written > 0 && before >= 0 && ::ftruncate(fd_, before) != 0) {
    // Nothing more can be done; the reader names the broken line.
  }
  trouble_ = "Cannot write " + path_ + ": " + std::strerror(error);
}

void JournalFile::Remove() {
  if (fd_ >= 0) ::close(std::exchange(fd_, -1));
  ::unlink(path_.c_str());
}

}  // namespace hyetex
