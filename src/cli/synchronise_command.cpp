// synchronise: the station list and the database's instruments in line, in both directions.
#include "cli/database.h"
#include "core/files.h"
#include "core/folder_lock.h"
#include "database/stations/synchronising.h"

namespace hyetex::cli {
namespace {

/// Every instrument that the database lacks gets one start date; without one it is left out.
class OneStartDate : public SaidBoxes {
 public:
  explicit OneStartDate(std::optional<std::string> start) : start_(std::move(start)) {}
  std::optional<std::string> InputBox(const std::string&, const std::string& prompt,
                                      const std::string&) override {
    if (!start_) Say(prompt + ": no --start, so it is left out of the database");
    return start_;
  }

 private:
  std::optional<std::string> start_;
};

}  // namespace

Exit RunSynchronise(const SynchroniseWords& words) {
  const std::string& folder = words.Folder;
  if (!FolderExists(folder)) return Fail("There is no program folder " + folder);
  const auto lock = FolderLock::Take(folder);
  if (!lock) return Fail(lock.error());
  auto lists = ReadLists(folder);
  if (!lists) return Fail(lists.error());
  CommandDatabase opened(words);
  if (const auto done = opened.Open(); !done) return Fail(done.error());
  OneStartDate boxes(words.Start);
  SaidWaits progress;
  return Synchronise(opened.Database, *lists, folder, boxes, progress) == Synchronised::Saved ? Done : Failed;
}

}  // namespace hyetex::cli
