#include "staging/manager/list_editor.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <type_traits>
#include <utility>

#include "core/number_entry.h"
#include "core/numbers.h"
#include "core/text.h"
#include "staging/lists/instrument_codes.h"
#include "staging/lists/list_recovery.h"
#include "staging/lists/login.h"
#include "staging/manager/entry_checks.h"

namespace hyetex {
namespace {

constexpr const char* Title = "Edit Lists";
constexpr std::array<std::int16_t, 3> Levels{AdministratorLevel, DatabaseLevel, DigitizerLevel};
/// Settings that hold the index of a chart type.
constexpr std::array ChartTypeKeys{setting::CurrentChart, setting::EditorChart};

std::string CodeOrNone(const std::string& code) { return code.empty() ? "None" : code; }
float CommentCode(std::string_view typed) { return static_cast<float>(TypedOrLeading(typed)); }

}  // namespace

ListEditor::ListEditor(Dialogs& dialogs, Settings& settings, ReferenceLists& lists, std::int16_t& currentUser,
                       InstrumentRenames::Follower follow)
    : dialogs_(dialogs),
      settings_(settings),
      lists_(lists),
      currentUser_(currentUser),
      renames_(settings_.Folder(), std::move(follow)) {
  TakeAsSaved();
}

ListEditor::~ListEditor() {
  // The program ends with the lists unsaved.
  static_cast<void>(renames_.Undo());
}

void ListEditor::Tell(std::string_view title, const std::string& text) {
  dialogs_.MessageBox(std::string(title), text, BoxButtons::Ok, BoxIcon::Warning);
}

// Asks until what was typed can be kept, or nothing was. What was not touched keeps its bytes, also those
// that are shown as other ones.
template <typename Check>
std::optional<std::string> ListEditor::Ask(const Prompt& prompt, const std::string& old, Check check) {
  const std::string shown = ShownText(old), title(prompt.Title), text(prompt.Text);
  for (std::string initial = shown;;) {
    const auto typed = prompt.IsSecret ? dialogs_.PasswordBox(title, text, initial)
                                       : dialogs_.InputBox(title, text, initial);
    if (!typed) return std::nullopt;
    const std::string answer = OneLine(*typed == shown ? old : *typed);
    if (!prompt.IsSecret && Trim(answer).empty()) return std::string();  // a name of blanks is none
    const std::optional<std::string> refusal = answer.empty() ? std::nullopt : check(answer);
    if (!refusal) return answer;
    Tell(title, *refusal);
    initial = *typed;
  }
}

template <typename Compose>
bool ListEditor::Put(Compose compose) {
  const Prompts& ask = TextsOf(Place.Kind).Add;
  const auto refuse = [&](const std::string& why) { return Tell(ask.First.Title, why), false; };
  if (const auto full = CheckRoomFor(lists_, Place.Kind)) return refuse(*full);
  const auto check = [&](const std::string& first, const std::string& second) {
    const auto record = compose(first, second);
    if constexpr (std::is_same_v<decltype(record), const CommentRecord>)
      if (auto why = CheckNumber(first, CodeEntry)) return why;
    const auto why = CheckEntry(record);
    return why ? why : CheckUnique(lists_, record);
  };
  const auto first = Ask(ask.First, {}, [&](const std::string& typed) { return check(typed, {}); });
  if (!first || first->empty()) return false;
  std::string second;
  if (!ask.Second.Text.empty()) {
    const auto typed = Ask(ask.Second, {}, [&](const std::string& text) { return check(*first, text); });
    if (!typed) return false;
    second = *typed;
  }
  auto record = compose(*first, second);
  if constexpr (std::is_same_v<decltype(record), StationRecord>) OfferCode(record, ask.Second);
  const auto at = InsertEntry(lists_, Place.Index, std::move(record));
  if (!at) return refuse(at.error());
  Place.Index = *at;
  isUnsaved_ = true;
  return true;
}

void ListEditor::Add() {
  if (!IsIn(lists_, Place)) return;
  const auto index = static_cast<std::size_t>(Place.Index);
  switch (Place.Kind) {
    case ListKind::Core:
      Put([](const std::string& name, const std::string&) { return name; });
      break;
    case ListKind::Agency:
      Put([core = lists_.Agencies[index].Core](const std::string& name, const std::string&) {
        return AgencyRecord{name, core};
      });
      break;
    case ListKind::Station:
      Put([here = lists_.Stations[index]](const std::string& name, const std::string& code) {
        return StationRecord{name, CodeOrNone(code), here.Core, here.Agency};
      });
      break;
    case ListKind::User:
      if (Put([](const std::string& name, const std::string& password) {
            return UserRecord{name, password, DigitizerLevel};
          }) &&
          Place.Index <= currentUser_)
        ++currentUser_;
      break;
    case ListKind::ChartType:
      if (Put([](const std::string& name, const std::string&) { return ChartTypeRecord{.Name = name}; }))
        savedTypes_.insert(savedTypes_.begin() + Place.Index, -1);
      break;
    case ListKind::Comment:
      Put([](const std::string& code, const std::string& description) {
        return CommentRecord{description, CommentCode(code)};
      });
      break;
    case ListKind::Task:
      break;
  }
}

// Whether there was an answer.
template <typename Record, typename Field>
bool ListEditor::ChangeText(Record& record, Field field, const Prompt& prompt) {
  const std::string old = field(record);
  const auto answer = Ask(prompt, old, [&](const std::string& typed) {
    Record changed = record;
    field(changed) = typed;
    const auto why = CheckEntry(changed);
    return why ? why : CheckUnique(lists_, changed, Place.Index);
  });
  if (!answer || answer->empty()) return false;
  if (*answer != old) isUnsaved_ = true;
  field(record) = *answer;
  return true;
}

void ListEditor::Change() {
  if (!IsIn(lists_, Place)) return;
  const auto index = static_cast<std::size_t>(Place.Index);
  const Prompts& ask = TextsOf(Place.Kind).Change;
  const auto name = [](auto& record) -> std::string& { return record.Name; };
  switch (Place.Kind) {
    case ListKind::Core:
      ChangeText(
          lists_.Cores[index], [](std::string& core) -> std::string& { return core; }, ask.First);
      break;
    case ListKind::Agency:
      ChangeText(lists_.Agencies[index], name, ask.First);
      break;
    case ListKind::Station:
      if (ChangeText(lists_.Stations[index], name, ask.First)) ChangeCode(lists_.Stations[index], ask.Second);
      break;
    case ListKind::User:
      if (ChangeText(lists_.Users[index], name, ask.First))
        ChangeText(
            lists_.Users[index], [](UserRecord& user) -> std::string& { return user.Password; }, ask.Second);
      TakeOutUnnamed();
      break;
    case ListKind::ChartType:
      ChangeText(lists_.ChartTypes[index], name, ask.First);
      break;
    case ListKind::Comment:
      ChangeComment(lists_.Comments[index], ask);
      break;
    case ListKind::Task:
      break;
  }
}

void ListEditor::ChangeCode(StationRecord& station, const Prompt& prompt) {
  StationRecord changed = station;
  if (!ChangeText(
          changed, [](StationRecord& each) -> std::string& { return each.InstrumentCode; }, prompt) ||
      changed.InstrumentCode == station.InstrumentCode)
    return;
  OfferCode(changed, prompt);
  const Result<int> carried = renames_.Rename(station.InstrumentCode, changed.InstrumentCode);
  if (!carried) return Tell(CodeChangeTitle, carried.error());
  if (*carried > 0)
    dialogs_.MessageBox(std::string(CodeChangeTitle), "The code has been change as a result in " +
                                                          ShortText(*carried) + " tasks in the task list");
  station.InstrumentCode = changed.InstrumentCode;
}

void ListEditor::OfferCode(StationRecord& station, const Prompt& prompt) {
  if (!HasInstrumentCode(station)) return;
  auto why = CheckCodeParts(station.InstrumentCode);
  if (!why && !ResolveCode(station.InstrumentCode, lists_))
    why = "It does not begin with the first letters of a core and of one of its agencies.";
  if (!why) return;
  const std::string told = "The code \"" + ShownText(station.InstrumentCode) +
                           "\" will not be synchronised with the database. " + *why;
  const auto better = ProposeCode(station, station.InstrumentCode, lists_);
  if (!better) return Tell(prompt.Title, told + " It is kept as it is.");
  if (dialogs_.MessageBox(std::string(prompt.Title),
                          told + "\n\nWould you like to take \"" + *better + "\" instead ?",
                          BoxButtons::YesNo, BoxIcon::Question) == BoxAnswer::Yes)
    station.InstrumentCode = *better;
}

void ListEditor::ChangeComment(CommentRecord& comment, const Prompts& ask) {
  const std::string old = ShortText(comment.Code);
  const auto code = Ask(ask.First, old, [&](const std::string& typed) {
    const auto why = typed == old ? std::nullopt : CheckNumber(typed, CodeEntry);
    return why ? why
               : CheckUnique(lists_, CommentRecord{comment.Description, CommentCode(typed)}, Place.Index);
  });
  if (!code || code->empty()) return;
  if (*code != old) comment.Code = CommentCode(*code);
  isUnsaved_ = true;
  ChangeText(
      comment, [](CommentRecord& each) -> std::string& { return each.Description; }, ask.Second);
}

void ListEditor::Delete() {
  if (!IsIn(lists_, Place)) return;
  auto refusal = CheckDelete(lists_, Place);
  // Nobody takes the rights of the operator's neighbour in the list.
  if (!refusal && Place.Kind == ListKind::User && Place.Index == currentUser_)
    refusal = Refusal{"Deleting a user", "you cannot delete the user who is logged in"};
  if (refusal) return Tell(refusal->Title, std::string(refusal->Text));
  if (Place.Kind == ListKind::User && Place.Index < currentUser_) --currentUser_;
  if (Place.Kind == ListKind::ChartType) savedTypes_.erase(savedTypes_.begin() + Place.Index);
  DeleteEntry(lists_, Place);
  isUnsaved_ = true;
}

bool ListEditor::EnsureStationHere() {
  if (Place.Kind != ListKind::Agency || !IsIn(lists_, Place)) return false;
  const auto added = EnsureStation(lists_, Place.Index);
  if (!added) return Tell(TextsOf(ListKind::Station).Add.First.Title, added.error()), false;
  isUnsaved_ = isUnsaved_ || *added;
  return *added;
}

void ListEditor::SetLevel(int user, int levelIndex) {
  const ListPlace place{ListKind::User, static_cast<std::int16_t>(user)};
  if (!IsIn(lists_, place)) return;
  Place = place;
  const std::int16_t level = Levels.at(static_cast<std::size_t>(levelIndex));
  if (!IsAllowed(Right::Users, level) && IsLastAdministrator(lists_.Users, user))
    return Tell(Title, "you cannot take the level of the last administrator");
  lists_.Users[static_cast<std::size_t>(user)].Level = level;
  isUnsaved_ = true;
  TakeOutUnnamed();
}

void ListEditor::TakeOutUnnamed() {
  if (NamedAdministrator(lists_.Users) < 0) return;
  const auto isAdministrator = [&](int user) {
    return IsAllowed(Right::Users, lists_.Users[static_cast<std::size_t>(user)].Level);
  };
  bool isTold = false;
  for (int user = LastIndex(lists_, ListKind::User); user >= 0; --user) {
    // An operator under that entry goes on as the administrator, but nobody gains rights by it.
    if (!IsUnnamed(lists_.Users[static_cast<std::size_t>(user)]) ||
        (user == currentUser_ && !isAdministrator(user)))
      continue;
    lists_.Users.erase(lists_.Users.begin() + user);
    if (user == currentUser_)
      currentUser_ = static_cast<std::int16_t>(NamedAdministrator(lists_.Users));
    else if (user < currentUser_)
      --currentUser_;
    if (Place.Kind == ListKind::User && (Place.Index > user || !IsIn(lists_, Place))) --Place.Index;
    isUnsaved_ = isTold = true;
  }
  if (isTold)
    Tell(Title,
         "The user without a name, who needs no password, has been taken out: there is an "
         "administrator now.");
}

bool ListEditor::Save() {
  TakeOutUnnamed();
  if (const auto saved = SaveLists(settings_.Folder(), lists_); !saved)
    return Tell(Title, saved.error()), false;
  CarryChartTypes();
  TakeAsSaved();
  return true;
}

// The default chart type stays the same one when its index changes.
void ListEditor::CarryChartTypes() {
  for (const Int16Key& key : ChartTypeKeys) {
    if (!settings_.Has(key)) continue;
    const int old = settings_.Get(key);
    const auto moved = std::find(savedTypes_.begin(), savedTypes_.end(), old);
    const auto now = moved == savedTypes_.end() ? std::min(old, LastIndex(lists_, ListKind::ChartType))
                                                : static_cast<int>(moved - savedTypes_.begin());
    if (now == old) continue;
    if (const auto kept = settings_.Set(key, now); !kept) Tell(Title, kept.error());
  }
}

void ListEditor::TakeAsSaved() {
  renames_.Keep();
  saved_ = lists_;
  savedUser_ = currentUser_;
  savedTypes_.resize(lists_.ChartTypes.size());
  std::iota(savedTypes_.begin(), savedTypes_.end(), 0);
  isUnsaved_ = false;
}

void ListEditor::Discard() {
  if (const auto undone = renames_.Undo(); !undone) Tell(Title, undone.error());
  lists_ = saved_;
  currentUser_ = savedUser_;
  if (const auto read = RereadLists(settings_.Folder(), lists_, currentUser_); !read)
    Tell(Title, read.error());
  TakeAsSaved();
}

std::optional<int> LevelIndex(std::int16_t level) {
  const auto found = std::find(Levels.begin(), Levels.end(), level);
  if (found == Levels.end()) return std::nullopt;
  return static_cast<int>(found - Levels.begin());
}

bool CanReadStations(std::string_view connectionText) { return connectionText > "DSN=(None)"; }

}  // namespace hyetex
