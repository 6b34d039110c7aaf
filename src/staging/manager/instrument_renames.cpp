#include "staging/manager/instrument_renames.h"

#include "core/files.h"
#include "core/program_files.h"
#include "staging/tasks/tasks.h"

namespace hyetex {

InstrumentRenames::InstrumentRenames(std::string programFolder, Follower follow)
    : path_(JoinPath(programFolder, TasksFileName)),
      programFolder_(std::move(programFolder)),
      follow_(std::move(follow)) {}

Result<int> InstrumentRenames::Rename(const std::string& oldCode, const std::string& newCode) {
  Result<std::string> before = ReadProgramFile(path_);
  if (!before) return Failure(before.error());
  const Result<int> count = RenameInstrument(programFolder_, oldCode, newCode);
  if (!count) return count;
  if (*count > 0) {
    Result<std::string> after = ReadProgramFile(path_);
    if (!after) return Failure(after.error());
    if (!before_) before_ = *std::move(before);
    after_ = *std::move(after);
  }
  renamed_.emplace_back(oldCode, newCode);
  if (follow_) follow_(oldCode, newCode);
  return count;
}

void InstrumentRenames::Keep() {
  renamed_.clear();
  before_.reset();
}

Result<void> InstrumentRenames::Undo() {
  Result<void> done;
  if (before_) {
    if (ReadProgramFile(path_) == Result<std::string>(after_))
      done = WriteWholeFile(path_, *before_);
    else
      done = Failure("The staged charts have been changed since, and keep the new instrument codes.");
  }
  if (done && follow_)
    for (auto each = renamed_.rbegin(); each != renamed_.rend(); ++each) follow_(each->second, each->first);
  Keep();
  return done;
}

}  // namespace hyetex
