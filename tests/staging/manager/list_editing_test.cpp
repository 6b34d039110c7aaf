#include "staging/manager/list_editing.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <random>

#include "scripted_dialogs.h"
#include "staging/manager/chart_type_editing.h"
#include "staging/manager/list_editor.h"
#include "support.h"

namespace hyetex {
namespace {

using namespace hyetex::test;
using ::testing::HasSubstr;

ReferenceLists TwoCores() {
  ReferenceLists lists;
  lists.Cores = {"North", "South"};
  lists.Agencies = {{"Water", 0}, {"Weather", 0}, {"Farms", 1}};
  lists.Stations = {
      {"Hill", "NW-1", 0, 0}, {"Dam", "NW-2", 0, 0}, {"Mill", "NW-3", 0, 1}, {"Barn", "SF-1", 1, 2}};
  lists.Users = {{"Anna", "a", 1}, {"Bob", "b", 5}, {"Cid", "c", 10}};
  lists.ChartTypes = {{.Name = "Daily"}, {.Name = "Weekly"}, {.Name = "Monthly"}};
  lists.Comments = {{"Ink", 301}, {"Late", 302}};
  return lists;
}

// Where each station stands, by names alone.
std::map<std::string, std::string> Places(const ReferenceLists& lists) {
  std::map<std::string, std::string> places;
  for (std::size_t s = 0; s < lists.Stations.size(); ++s)
    if (lists.Stations[s].InstrumentCode != "None")  // the code of many
      places[lists.Stations[s].InstrumentCode] =
          StationCoreName(lists, static_cast<int>(s)) + "\\" + StationAgencyName(lists, static_cast<int>(s));
  return places;
}

// What of the lists is not as it must always be.
std::string Fault(const ReferenceLists& lists) {
  const auto within = [](int index, const auto& list) {
    return index >= 0 && static_cast<std::size_t>(index) < list.size();
  };
  for (const AgencyRecord& agency : lists.Agencies)
    if (!within(agency.Core, lists.Cores)) return "an agency without a core: " + agency.Name;
  for (const StationRecord& station : lists.Stations) {
    if (!within(station.Agency, lists.Agencies)) return "a station without an agency: " + station.Name;
    if (station.Core != lists.Agencies[static_cast<std::size_t>(station.Agency)].Core)
      return "a station under another core than its agency: " + station.Name;
  }
  for (const auto& [kind, most] : std::map<ListKind, int>{{ListKind::Core, 5},
                                                          {ListKind::Agency, 200},
                                                          {ListKind::Station, 200},
                                                          {ListKind::User, 200},
                                                          {ListKind::ChartType, 100},
                                                          {ListKind::Comment, 1000}})
    if (LastIndex(lists, kind) < 0 || LastIndex(lists, kind) > most)
      return "a list of " + std::to_string(LastIndex(lists, kind));
  const auto tree = StationTree(lists);
  if (tree.size() != lists.Cores.size() + lists.Agencies.size() + lists.Stations.size())
    return "hidden nodes";
  for (std::size_t i = 0; i < tree.size(); ++i)
    if (CurrentListIndex(tree, tree[i].Kind, tree[i].Index) != static_cast<int>(i) ||
        GetObjectFromIndex(tree, static_cast<int>(i)) != &tree[i])
      return "a position that leads to another entry";
  return {};
}

/// An operator who types anything.
class Anything : public ScriptedDialogs {
 public:
  std::mt19937 Random{20240229};
  BoxAnswer MessageBox(const std::string&, const std::string&, BoxButtons, BoxIcon) override {
    return BoxAnswer::Ok;
  }
  std::optional<std::string> InputBox(const std::string&, const std::string&, const std::string&) override {
    switch (Random() % 12) {
      case 0:
        return std::nullopt;
      case 1:
        return "";
      case 2:
        return std::string(Random() % 200, 'x') + std::to_string(++typed_);
      case 3:
        return "a,b/c\n\xEC";
      default:
        return std::to_string(++typed_);  // never the same twice, as a name or a number
    }
  }

 private:
  int typed_ = 0;
};

TEST(ListEditing, KeepsEveryStationUnderItsAgencyAndCoreThroughRandomWork) {
  constexpr std::array kinds{ListKind::Core, ListKind::Agency,    ListKind::Station,
                             ListKind::User, ListKind::ChartType, ListKind::Comment};
  for (const unsigned additions : {30U, 60U, 95U}) {  // lists that shrink, that stay, that reach their limits
    TempFolder folder;
    Anything operators;
    ReferenceLists lists = TwoCores();
    std::int16_t user = 1;
    Settings settings(folder.Path());
    ListEditor editor(operators, settings, lists, user);
    for (int round = 0; round < 3000; ++round) {
      const ListKind kind = kinds[operators.Random() % kinds.size()];
      const auto last = static_cast<unsigned>(LastIndex(lists, kind));
      editor.Place = {kind, static_cast<std::int16_t>(operators.Random() % (last + 1))};
      const auto before = Places(lists);
      const std::string operatorName = lists.Users[static_cast<std::size_t>(user)].Name;
      const bool adds = operators.Random() % 100 < additions;
      adds ? editor.Add() : editor.Delete();

      ASSERT_EQ(Fault(lists), "") << "round " << round << ", kind " << static_cast<int>(kind);
      ASSERT_TRUE(IsIn(lists, editor.Place));
      ASSERT_EQ(lists.Users[static_cast<std::size_t>(user)].Name, operatorName);
      const auto after = Places(lists);
      for (const auto& [code, place] : before) {
        const auto now = after.find(code);
        ASSERT_TRUE(now == after.end() ? !adds : now->second == place) << code << " left " << place;
      }
    }
    ASSERT_TRUE(editor.Save());
    const auto read = ReadLists(folder.Path());
    ASSERT_TRUE(read) << read.error();
    EXPECT_EQ(Places(*read), Places(lists));
    TempFolder other;
    ASSERT_TRUE(SaveLists(other.Path(), *read));
    // The first folder's file may be longer, since lists that once were longer leave their tail.
    EXPECT_TRUE(ReadFile(folder / "lists.dat").starts_with(ReadFile(other / "lists.dat")));
  }
}

class Editing : public ::testing::Test {
 protected:
  void At(ListKind kind, int index) { editor_.Place = {kind, static_cast<std::int16_t>(index)}; }
  void Type(std::initializer_list<const char*> answers) {
    for (const char* each : answers) dialogs_.Typed.emplace_back(each);
  }
  void Stage(const std::string& text) { WriteFile(folder_ / "Tasks.lst", text); }
  std::string Staged() { return ReadFile(folder_ / "Tasks.lst"); }

  TempFolder folder_;
  Settings settings_{folder_.Path()};
  ScriptedDialogs dialogs_;
  ReferenceLists lists_ = TwoCores();
  std::int16_t user_ = 1;
  ListEditor editor_{dialogs_, settings_, lists_, user_};
};

TEST_F(Editing, AddsACoreWithAnAgencyAndAStationBehindTheCurrentOne) {
  Type({"Middle"});
  At(ListKind::Core, 0);
  editor_.Add();
  EXPECT_EQ(dialogs_.Inputs,
            (std::vector<ShownInput>{{"Adding a core", "Please write the name of the new core", ""}}));
  EXPECT_EQ(lists_.Cores, (std::vector<std::string>{"North", "Middle", "South"}));
  EXPECT_EQ(editor_.Place.Index, 1);
  EXPECT_EQ(StationCoreName(lists_, 3), "South");
  EXPECT_EQ(lists_.Stations.back().Name + " - " + lists_.Stations.back().InstrumentCode,
            "New Station - None");
  EXPECT_EQ(StationAgencyName(lists_, 4), "New Agency");
  EXPECT_EQ(StationCoreName(lists_, 4), "Middle");
  EXPECT_TRUE(editor_.IsUnsaved());
}

TEST_F(Editing, RefusesToDeleteTheLastOneAndTheOperator) {
  const auto refusal = [&](ListKind kind, int index) {
    At(kind, index);
    dialogs_.Boxes.clear();
    editor_.Delete();
    return dialogs_.Boxes;
  };
  using Boxes = std::vector<ShownBox>;
  EXPECT_EQ(
      refusal(ListKind::Agency, 2),
      Boxes{Warning("Deleting an Agency",
                    "you cannot delete all the agencies in the core, however, you can delete the core")});
  EXPECT_EQ(
      refusal(ListKind::Station, 2),
      Boxes{Warning("Deleting a station",
                    "you cannot delete all the stations in the Agency, however, you can delete the Agency")});
  EXPECT_EQ(refusal(ListKind::User, 1),
            Boxes{Warning("Deleting a user", "you cannot delete the user who is logged in")});
  EXPECT_FALSE(editor_.IsUnsaved());

  EXPECT_EQ(refusal(ListKind::Core, 0), Boxes{}) << "with all that stands under it";
  EXPECT_EQ(Places(lists_), (std::map<std::string, std::string>{{"SF-1", "South\\Farms"}}));
  EXPECT_EQ(refusal(ListKind::Core, 0), Boxes{Warning("Deleting a core", "you cannot delete all the cores")});
  EXPECT_EQ(refusal(ListKind::User, 0),
            Boxes{Warning("Deleting a user", "you cannot delete the last administrator")});
  lists_.Users[1].Level = 1;
  EXPECT_EQ(refusal(ListKind::User, 0), Boxes{});
  EXPECT_EQ(lists_.Users[static_cast<std::size_t>(user_)].Name, "Bob");
  EXPECT_EQ(refusal(ListKind::User, 1), Boxes{});
  EXPECT_EQ(editor_.Place.Index, 0) << "the new last entry";
  EXPECT_EQ(refusal(ListKind::User, 0), Boxes{Warning("Deleting a user", "you cannot delete all the users")});
  lists_.ChartTypes.resize(1);
  lists_.Comments.resize(1);
  EXPECT_EQ(refusal(ListKind::ChartType, 0),
            Boxes{Warning("Deleting a chart", "you cannot delete all the charts")});
  EXPECT_EQ(refusal(ListKind::Comment, 0),
            Boxes{Warning("Deleting a Comment", "you cannot delete all the comments")});
}

TEST_F(Editing, AsksAgainForWhatDoesNotFitAndStopsAtAnEmptyAnswer) {
  const std::string tooLong(119, 'x');
  dialogs_.Typed = {tooLong, "Pond", "P,1", "NW-Pond-9"};
  At(ListKind::Station, 1);
  editor_.Add();
  ASSERT_EQ(dialogs_.Inputs.size(), 4U);
  EXPECT_EQ(dialogs_.Inputs[1].Initial, tooLong);
  EXPECT_EQ(
      dialogs_.Inputs[3],
      (ShownInput{"Adding a station", "Please write the instrument_code_id for the new station", "P,1"}));
  ASSERT_EQ(dialogs_.Boxes.size(), 2U);
  EXPECT_THAT(dialogs_.Boxes[0].Text, HasSubstr("at most 120 bytes"));
  EXPECT_EQ(Places(lists_)["NW-Pond-9"], "North\\Water");
  EXPECT_EQ(editor_.Place.Index, 2);

  const auto before = Places(lists_);
  for (const auto& answers :
       std::vector<std::deque<std::optional<std::string>>>{{""}, {std::nullopt}, {"Name", std::nullopt}}) {
    dialogs_.Typed = answers;
    editor_.Add();
    EXPECT_EQ(Places(lists_), before);
  }
}

TEST_F(Editing, SaysThatATableIsFullBeforeItAsks) {
  while (lists_.Stations.size() <= MaxStation) lists_.Stations.push_back({"S", "None", 0, 0});
  for (const ListKind kind : {ListKind::Core, ListKind::Agency, ListKind::Station}) {
    At(kind, 0);
    editor_.Add();
  }
  EXPECT_TRUE(dialogs_.Inputs.empty());
  ASSERT_EQ(dialogs_.Boxes.size(), 3U);
  EXPECT_EQ(dialogs_.Boxes[0].Title, "Adding a core");
  for (const ShownBox& box : dialogs_.Boxes)
    EXPECT_EQ(box.Text, "There is no room for another station: the list holds at most 201.");
  EXPECT_EQ(lists_.Cores.size(), 2U) << "nothing by halves";
}

TEST_F(Editing, CarriesANewInstrumentCodeIntoTheStagedCharts) {
  const std::string line = " , 01/02/1998 , 08/02/1998 , 3 , -1 , 1\r\nCODE205\r\n";
  const std::string before = "NW-1" + line + "NW-11" + line + "NW-1" + line;
  Stage(before);
  Type({"Hilltop", "NW-Hill-7"});
  At(ListKind::Station, 0);
  editor_.Change();
  EXPECT_EQ(dialogs_.Inputs, (std::vector<ShownInput>{
                                 {"Changing a name", "Please write the new name for the station", "Hill"},
                                 {"Changing a name", "Please write the ID code of the station", "NW-1"}}));
  EXPECT_EQ(dialogs_.Boxes,
            (std::vector<ShownBox>{{"Changing an instrument code",
                                    "The code has been change as a result in 2 tasks in the task list"}}));
  EXPECT_EQ(Staged(), "NW-Hill-7" + line + "NW-11" + line + "NW-Hill-7" + line);
  EXPECT_EQ(lists_.Stations[0].InstrumentCode, "NW-Hill-7");

  editor_.Discard();
  EXPECT_EQ(Staged(), before) << "or the charts would wait for a station that there is not";
  EXPECT_EQ(lists_.Stations[0].InstrumentCode, "NW-1");

  dialogs_.Boxes.clear();
  Type({"Hilltop", "NW-Hill-7", "Dam", "NW-Dam-8", "Millpond", ""});
  for (const int station : {0, 1, 2}) {
    At(ListKind::Station, station);
    editor_.Change();
  }
  EXPECT_EQ(dialogs_.Boxes.size(), 1U) << "only of codes that charts wait for";
  EXPECT_EQ(lists_.Stations[2].Name + lists_.Stations[2].InstrumentCode, "MillpondNW-3");
  ASSERT_TRUE(editor_.Save());
  editor_.Discard();
  EXPECT_EQ(Staged(), "NW-Hill-7" + line + "NW-11" + line + "NW-Hill-7" + line);
  EXPECT_EQ(Places(lists_).count("NW-Hill-7"), 1U);
}

TEST_F(Editing, RefusesNamesAndCodesThatAreThereButLeavesOldDoublesAlone) {
  lists_.Stations[1].InstrumentCode = "nw-1";  // from the time before
  lists_.Users[2].Name = "anna";
  // The first answer is there already, the second is not.
  const struct {
    ListKind Kind;
    int At;
    std::initializer_list<const char*> Answers;
    std::string Told;
  } additions[] = {
      {ListKind::Core, 0, {" north ", "Middle"}, "There is a core \"North\" already."},
      {ListKind::Agency, 1, {"WATER", "Farms"}, "The core has an agency \"Water\" already."},
      {ListKind::Station,
       0,
       {"Hill", "nw-3", "NW-Hill-2"},
       "The station \"Mill\" has the code \"NW-3\" already."},
      {ListKind::User, 0, {"BOB", "Zoe", "z"}, "There is a user \"Bob\" already."},
      {ListKind::ChartType, 0, {"weekly", "Yearly"}, "There is a chart type \"Weekly\" already."},
      {ListKind::Comment, 0, {"302.0", "303", "Dry"}, "There is a comment with the code 302 already."},
  };
  for (const auto& each : additions) {
    dialogs_.Boxes.clear();
    Type(each.Answers);
    At(each.Kind, each.At);
    const int last = LastIndex(lists_, each.Kind);
    editor_.Add();
    ASSERT_EQ(dialogs_.Boxes.size(), 1U) << each.Told;
    EXPECT_EQ(dialogs_.Boxes[0].Text, each.Told);
    EXPECT_EQ(LastIndex(lists_, each.Kind), last + 1) << each.Told;
  }

  dialogs_.Boxes.clear();
  Type({"Anna", "new", "Bob", "Cid", "", "Dam", "nw-1"});
  At(ListKind::User, 0);
  editor_.Change();
  EXPECT_EQ(lists_.Users[0].Password, "new") << "though another one has the name";
  At(ListKind::User, 3);
  editor_.Change();
  EXPECT_EQ(lists_.Users[3].Name, "Cid");
  At(ListKind::Station, 2);
  editor_.Change();
  ASSERT_EQ(dialogs_.Boxes.size(), 1U);
  EXPECT_EQ(dialogs_.Boxes[0].Text, "There is a user \"Bob\" already.");
}

TEST_F(Editing, OffersACodeThatTheDatabaseGets) {
  const auto told = [](const char* code, const char* why) {
    return "The code \"" + std::string(code) + "\" will not be synchronised with the database. " + why;
  };
  const char* parts = "The code does not tell its station; it would need three parts joined by \"-\".";
  const char* letters = "It does not begin with the first letters of a core and of one of its agencies.";
  dialogs_.Answers = {BoxAnswer::Yes, BoxAnswer::No};
  Type({"Pond", "AL0019", "Lake", "XX-Lake-2"});
  At(ListKind::Station, 2);
  editor_.Add();
  EXPECT_EQ(lists_.Stations[3].InstrumentCode, "NW-Pond-AL0019");
  editor_.Add();
  EXPECT_EQ(lists_.Stations[4].InstrumentCode, "XX-Lake-2");
  EXPECT_EQ(dialogs_.Boxes,
            (std::vector<ShownBox>{
                {"Adding a station",
                 told("AL0019", parts) + "\n\nWould you like to take \"NW-Pond-AL0019\" instead ?",
                 BoxButtons::YesNo, BoxIcon::Question},
                {"Adding a station",
                 told("XX-Lake-2", letters) + "\n\nWould you like to take \"NW-Lake-2\" instead ?",
                 BoxButtons::YesNo, BoxIcon::Question}}));

  dialogs_.Boxes.clear();
  dialogs_.Answers = {BoxAnswer::Yes};
  Type({"Pond", "NW-Pond"});
  At(ListKind::Station, 3);
  editor_.Change();
  EXPECT_EQ(lists_.Stations[3].InstrumentCode, "NW-Pond-01");
  lists_.Agencies[2].Name = "\xC3\x89tat";  // no letter that a code could begin with
  Type({"Shed", "SF-1x"});
  At(ListKind::Station, 5);
  editor_.Add();
  EXPECT_EQ(dialogs_.Boxes.back(),
            Warning("Adding a station", told("SF-1x", parts) + " It is kept as it is."));
}

TEST_F(Editing, KeepsAnAdministratorAndClosesTheOpenEntry) {
  EXPECT_EQ(user_, 1);
  editor_.SetLevel(0, 2);
  EXPECT_EQ(
      dialogs_.Boxes,
      (std::vector<ShownBox>{Warning("Edit Lists", "you cannot take the level of the last administrator")}));
  EXPECT_EQ(lists_.Users[0].Level, 1);
  EXPECT_FALSE(editor_.IsUnsaved());

  // A new installation: the operator stands under the entry without a name.
  dialogs_.Boxes.clear();
  lists_.Users = {{"", "", 0}, {"Anna", "a", 10}, {"Bob", "b", 5}};
  user_ = 0;
  editor_.SetLevel(0, 2);
  EXPECT_EQ(lists_.Users[0].Level, 0) << "nobody else could open the users";
  editor_.SetLevel(2, 0);
  ASSERT_EQ(lists_.Users.size(), 2U);
  EXPECT_EQ(lists_.Users[static_cast<std::size_t>(user_)].Name, "Bob");
  EXPECT_EQ(editor_.Place.Index, 1) << "the one whose level was set";
  EXPECT_EQ(dialogs_.Boxes.size(), 2U);

  // Lists of before may have both, and an open entry that is not the operator's to rise from.
  lists_.Users = {{"Anna", "a", 1}, {" ", "", 10}, {"", "", 0}, {"Cid", "c", 10}};
  user_ = 1;
  ASSERT_TRUE(editor_.Save());
  ASSERT_EQ(lists_.Users.size(), 3U);
  EXPECT_EQ(user_, 1);
  user_ = 2;
  ASSERT_TRUE(editor_.Save());
  EXPECT_EQ(lists_.Users.size(), 2U);
  EXPECT_EQ(lists_.Users[static_cast<std::size_t>(user_)].Name, "Cid");
}

TEST_F(Editing, TakesBackEveryNewInstrumentCode) {
  const std::string line = " , 01/02/1998 , 08/02/1998 , 3 , -1 , 1\r\n\r\n";
  const std::string before = "NW-1" + line + "NW-2" + line;
  Stage(before);
  std::string held = "NW-1";  // of a chart in memory
  ListEditor editor(dialogs_, settings_, lists_, user_, [&](const auto& oldCode, const auto& newCode) {
    if (held == oldCode) held = newCode;
  });
  Type({"Hill", "NW-Hill-7", "Hill", "NW-Hill-8", "Dam", "NW-Dam-9"});
  for (const int station : {0, 0, 1}) {
    editor.Place = {ListKind::Station, static_cast<std::int16_t>(station)};
    editor.Change();
  }
  EXPECT_EQ(Staged(), "NW-Hill-8" + line + "NW-Dam-9" + line);
  EXPECT_EQ(held, "NW-Hill-8");
  editor.Discard();
  EXPECT_EQ(Staged(), before);
  EXPECT_EQ(held, "NW-1");

  Type({"Hill", "NW-Hill-7"});
  editor.Place = {ListKind::Station, 0};
  editor.Change();
  const std::string others = "NW-Hill-7" + line;  // another program has taken a chart away
  Stage(others);
  editor.Discard();
  EXPECT_EQ(Staged(), others);
  EXPECT_EQ(held, "NW-Hill-7");
}

TEST_F(Editing, KeepsTheBytesOfATextThatIsShownInAnotherForm) {
  lists_.Stations[0].InstrumentCode = "N\xE9";
  Stage("");
  Type({"Hill", "N\xC3\xA9"});
  At(ListKind::Station, 0);
  editor_.Change();
  EXPECT_EQ(lists_.Stations[0].InstrumentCode, "N\xE9");
  EXPECT_FALSE(editor_.IsUnsaved());
}

TEST_F(Editing, FollowsTheOperatorAndTheDefaultChartTypeWhenTheyMove) {
  ASSERT_TRUE(SaveLists(folder_.Path(), lists_));
  ASSERT_TRUE(settings_.Set(setting::CurrentChart, 1));
  Type({"Zoe", "z", "Arc"});
  At(ListKind::User, 0);
  editor_.Add();
  EXPECT_EQ(lists_.Users[1].Level, 10);
  EXPECT_EQ(user_, 2);
  At(ListKind::ChartType, 0);
  editor_.Add();
  EXPECT_EQ(lists_.ChartTypes[1].ChartHeightMm, 100);

  editor_.Discard();
  EXPECT_EQ(user_, 1);
  EXPECT_EQ(settings_.Get(setting::CurrentChart), 1);
  Type({"Arc"});
  At(ListKind::ChartType, 0);
  editor_.Add();
  ASSERT_TRUE(editor_.Save());
  EXPECT_EQ(settings_.Get(setting::CurrentChart), 2);
}

TEST_F(Editing, ChangesCommentsByCodeAndDescription) {
  lists_.Comments[0].Code = -4;  // from the time before
  Type({"12.5 and more", "-1", "12,5", "Rain", "7", "", "-4", "Ink spilt"});
  At(ListKind::Comment, 0);
  editor_.Add();
  ASSERT_EQ(dialogs_.Boxes.size(), 2U);
  EXPECT_EQ(dialogs_.Boxes[0].Text, "\"12.5 and more\" is no number. Type a number alone, as 2.5.");
  EXPECT_EQ(dialogs_.Boxes[1].Text, "A comment code must be no less than 0.");
  EXPECT_EQ(lists_.Comments[1].Code, 12.5F);
  EXPECT_EQ(lists_.Comments[1].Description, "Rain");
  editor_.Change();
  EXPECT_EQ(dialogs_.Inputs[4],
            (ShownInput{"Changing a Comment", "Please write a new code for the Comment", "12.5"}));
  EXPECT_EQ(lists_.Comments[1].Code, 7);
  EXPECT_EQ(lists_.Comments[1].Description, "Rain");
  At(ListKind::Comment, 0);
  editor_.Change();
  EXPECT_EQ(lists_.Comments[0].Description, "Ink spilt") << "under the code that it has";
}

TEST(ListEditing, SetsScalesFromADistanceAndWhatFitsIntoIt) {
  ChartTypeRecord type;
  ScriptedDialogs dialogs;
  dialogs.Typed = {"50", "25"};
  EXPECT_TRUE(AskScale(dialogs, type, ScaleKind::Time));
  EXPECT_EQ(ScaleText(type, ScaleKind::Time), "Time Scale: 0.5 hours / mm");
  EXPECT_EQ(dialogs.Boxes,
            (std::vector<ShownBox>{{"Changing the time scale",
                                    "Please measure a distance and count the number of hours in it"}}));
  EXPECT_EQ(dialogs.Inputs[1],
            (ShownInput{"Changing the time scale", "How many hours fit into this distance", ""}));
  dialogs.Typed = {"80", "10"};
  EXPECT_TRUE(AskScale(dialogs, type, ScaleKind::Depth));
  EXPECT_EQ(type.DepthScale, 0.125F);
  for (const auto& answers : std::vector<std::deque<std::optional<std::string>>>{{"0"},
                                                                                 {std::nullopt},
                                                                                 {"-3"},
                                                                                 {"50 mm", std::nullopt},
                                                                                 {"5", "x", std::nullopt},
                                                                                 {"1e-38", "1e38"}}) {
    dialogs.Typed = answers;
    EXPECT_FALSE(AskScale(dialogs, type, ScaleKind::Depth));
    EXPECT_TRUE(dialogs.Typed.empty());
    EXPECT_EQ(type.DepthScale, 0.125F);
  }
}

}  // namespace
}  // namespace hyetex
