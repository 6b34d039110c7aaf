#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "core/files.h"
#include "digitizing/journal.h"

namespace hyetex {

namespace {

// A journal's head alone, or with the scan that was laid under the trace, is no more than the start of a
// session.
bool FileHoldsSteps(const std::string& path) {
  const auto text = ReadWholeFile(path, MostJournalBytes);
  if (!text) return true;
  const Journal journal = ReadJournal(*text);
  return !text->empty() && (journal.Error || HoldsSteps(journal));
}

}  // namespace

JournalFile::JournalFile(std::string path, Descriptor fd) : path_(std::move(path)), fd_(std::move(fd)) {}

Result<JournalFile> JournalFile::Open(const std::string& path) {
  Descriptor fd(::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644));
  if (!fd.Valid()) return Failure("Cannot write " + path + ": " + std::strerror(errno));
  if (::flock(fd.Get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
    return Failure("Cannot write " + path + ": another session is writing it");
  return JournalFile(path, std::move(fd));
}

Result<JournalFile> JournalFile::Start(const std::string& path, int tablet) {
  auto journal = Open(path);
  if (!journal) return journal;
  const bool isFile = FileExists(path);
  if (isFile && FileHoldsSteps(path))
    return Failure("Cannot write " + path + ": there is a file already, and it is no empty journal");
  if (isFile && ::ftruncate(journal->fd_.Get(), 0) != 0)
    return Failure("Cannot write " + path + ": " + std::strerror(errno));
  journal->Append(JournalHead(tablet));
  if (journal->trouble_) return Failure(*journal->trouble_);
  return journal;
}

Result<JournalFile> JournalFile::Continue(const std::string& path) { return Open(path); }

void JournalFile::Record(const JournalEvent& event) { Append(JournalLine(event) + "\n"); }

void JournalFile::Note(std::string_view text) { Append("# " + std::string(text) + "\n"); }

// One write: a killed program leaves whole lines.
void JournalFile::Append(std::string_view bytes) {
  pending_ += bytes;
  trouble_.reset();
  if (AppendAll(fd_.Get(), pending_, true))
    pending_.clear();
  else
    trouble_ = "Cannot write " + path_ + ": " + std::strerror(errno);
}

void JournalFile::Remove() {
  fd_.Close();
  ::unlink(path_.c_str());
}

}  // namespace hyetex
