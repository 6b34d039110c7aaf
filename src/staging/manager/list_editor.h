// The work of the lists manager without its window: the commands of the popup menu with all that they ask and
// tell, what is not saved yet, saving and giving up.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/result.h"
#include "core/settings.h"
#include "platform/dialogs.h"
#include "staging/lists/lists.h"
#include "staging/manager/instrument_renames.h"
#include "staging/manager/list_editing.h"
#include "staging/manager/list_prompts.h"

namespace hyetex {

class ListEditor {
 public:
  /// Works on `lists`; `currentUser` follows the operator's own entry. Both references are kept.
  ListEditor(Dialogs& dialogs, Settings& settings, ReferenceLists& lists, std::int16_t& currentUser,
             InstrumentRenames::Follower follow = {});
  ~ListEditor();
  ListEditor(const ListEditor&) = delete;
  ListEditor& operator=(const ListEditor&) = delete;

  /// What the commands work on.
  ListPlace Place;

  bool IsUnsaved() const { return isUnsaved_; }

  // The popup menu. A new entry, and what stands at the place of a deleted one, is the place from then on.
  void Add();
  void Change();
  void Delete();

  /// Gives the agency at the place its first station if it has none, and tells whether it did.
  bool EnsureStationHere();
  /// By the index of the levels' box: 0 administrator, 1 database operator, 2 digitizer operator. The user is
  /// the place from then on. Refuses to leave the lists without an administrator.
  void SetLevel(int user, int levelIndex);
  /// A chart type that has been changed some other way.
  void Touched() { isUnsaved_ = true; }

  /// Tells what went wrong, and then nothing is saved.
  bool Save();
  /// Reads the lists again, and takes back what went into the task list.
  void Discard();
  /// Somebody else has saved the lists.
  void TakeAsSaved();

 private:
  template <typename Compose>
  bool Put(Compose compose);
  template <typename Record, typename Field>
  bool ChangeText(Record& record, Field field, const Prompt& prompt);
  void ChangeCode(StationRecord& station, const Prompt& prompt);
  void ChangeComment(CommentRecord& comment, const Prompts& ask);
  /// Tells that a code is not one that the database would get, and offers one that is.
  void OfferCode(StationRecord& station, const Prompt& prompt);
  /// The entry without a name is open to everybody; it goes once there is an administrator.
  void TakeOutUnnamed();
  template <typename Check>
  std::optional<std::string> Ask(const Prompt& prompt, const std::string& old, Check check);
  void Tell(std::string_view title, const std::string& text);
  void CarryChartTypes();

  Dialogs& dialogs_;
  Settings& settings_;
  ReferenceLists& lists_;
  std::int16_t& currentUser_;
  InstrumentRenames renames_;
  bool isUnsaved_ = false;
  ReferenceLists saved_;
  std::int16_t savedUser_ = 0;
  std::vector<int> savedTypes_;  // for each chart type its index in the saved lists, or -1
};

/// The index of the levels' box; nothing for a level that has no entry there.
std::optional<int> LevelIndex(std::int16_t level);

/// Whether stations can be read from the database of this connection text.
bool CanReadStations(std::string_view connectionText);

}  // namespace hyetex
