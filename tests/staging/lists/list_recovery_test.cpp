#include "staging/lists/list_recovery.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <random>

#include "staging/lists/list_reading.h"
#include "staging/lists/login.h"
#include "support.h"

namespace hyetex {
namespace {

using namespace hyetex::test;
using ::testing::HasSubstr;

constexpr std::size_t Slot = 128;

class Recovery : public ::testing::Test {
 protected:
  Recovery() {
    ReferenceLists lists;
    lists.ChartTypes = {{.Name = "Daily"}};
    lists.Cores = {"North", "South"};
    lists.Agencies = {{"Water", 0}, {"Farms", 1}};
    lists.Stations = {{"Barn", "SF-1", 1, 1}, {"Hill", "NW-1", 0, 0}};
    lists.Users = {{"Anna", "secret", 1}, {"Cid", "c", 10}};
    lists.Comments = {{"Ink", 301}, {"Late", 302}};
    EXPECT_TRUE(SaveLists(folder_.Path(), lists));
    whole_ = ReadFile(folder_ / "lists.dat");
  }
  void Damage(std::size_t slotFrom1, const std::string& bytes) {
    std::string damaged = whole_;
    damaged.replace((slotFrom1 - 1) * Slot, bytes.size(), bytes);
    WriteFile(folder_ / "lists.dat", damaged);
  }
  RecoveredLists Recover() {
    auto recovered = RecoverLists(folder_.Path());
    EXPECT_TRUE(recovered) << recovered.error();
    return *std::move(recovered);
  }
  std::vector<std::string> Kept() {
    std::vector<std::string> bytes;
    for (const auto& file : std::filesystem::directory_iterator(folder_.Path()))
      if (file.path().filename().string().starts_with("lists.dat.bak-"))
        bytes.push_back(ReadFile(file.path()));
    return bytes;
  }

  TempFolder folder_;
  std::string whole_;
};

// Slots: 1, 2 chart types; 3 to 5 cores; 6 to 8 agencies; 9 to 11 stations; 12 to 14 users; 15 to 17
// comments.
const std::string Claims30000 = "\x30\x75", TooLong = "\xFF\xFF";

TEST_F(Recovery, ReadsWholeListsWithoutANotice) {
  EXPECT_EQ(Recover().Notice, "");
  EXPECT_TRUE(Kept().empty());
  std::filesystem::remove(folder_ / "lists.dat");
  const RecoveredLists missing = Recover();
  EXPECT_EQ(missing.Notice, "");
  EXPECT_EQ(missing.Lists.Users[0].Level, 0) << "a new installation is open";
}

TEST_F(Recovery, UsesAllButTheDamagedEntryAndKeepsItsPlace) {
  Damage(10, TooLong);
  const std::string damaged = ReadFile(folder_ / "lists.dat");
  RecoveredLists recovered = Recover();
  EXPECT_THAT(recovered.Notice, HasSubstr("station 0 (slot 10) is damaged"));
  EXPECT_THAT(recovered.Notice, HasSubstr("kept as lists.dat.bak-"));
  EXPECT_EQ(recovered.Lists.Stations[0].Name, "station 0 (damaged)");
  EXPECT_EQ(recovered.Lists.Stations[1].InstrumentCode, "NW-1");
  EXPECT_EQ(recovered.Lists.Users.size(), 2U);
  EXPECT_EQ(Recover().Notice, recovered.Notice);
  EXPECT_EQ(Kept(), std::vector{damaged}) << "kept once, however often it is read";

  EXPECT_TRUE(SaveLists(folder_.Path(), recovered.Lists));
  EXPECT_EQ(Recover().Notice, "");
  EXPECT_EQ(Kept(), std::vector{damaged});
}

TEST_F(Recovery, FindsTheCoreOfADamagedAgencyByItsStations) {
  Damage(8, TooLong);
  const ReferenceLists lists = Recover().Lists;
  EXPECT_EQ(StationAgencyName(lists, 0), "agency 1 (damaged)");
  EXPECT_EQ(lists.Agencies[1].Core, 1);
}

TEST_F(Recovery, KeepsTheDamagedFileBeforeAnythingIsSavedOverIt) {
  Damage(15, Claims30000);
  const std::string damaged = ReadFile(folder_ / "lists.dat");
  ReferenceLists other;
  other.Users = {{"Anna", "secret", 1}};
  ASSERT_TRUE(SaveLists(folder_.Path(), other));  // by somebody who has not looked
  EXPECT_EQ(Kept(), std::vector{damaged});
}

TEST_F(Recovery, MakesNobodyAnAdministratorByDamage) {
  const struct {
    std::size_t Slot;
    std::string Bytes;
    std::vector<std::string> Users;  // who is known
    bool MaySave;
  } cases[] = {
      {1, Claims30000, {}, false},    // everything is lost
      {9, Claims30000, {}, false},    // all from the stations on
      {12, TooLong, {}, false},       // -1 users
      {13, TooLong, {"Cid"}, false},  // the administrator
      {14, TooLong, {"Anna"}, true},  //
      {15, Claims30000, {"Anna", "Cid"}, true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.Slot);
    Damage(c.Slot, c.Bytes);
    const std::string damaged = ReadFile(folder_ / "lists.dat");
    RecoveredLists recovered = Recover();
    EXPECT_EQ(recovered.NobodyIsKnown, c.Users.empty());
    if (c.Users.empty()) {
      EXPECT_EQ(recovered.Lists.Users[0].Level, DigitizerLevel);
      AdmitByName(recovered.Lists, "Zoe", "");
      EXPECT_TRUE(CheckLogin(recovered.Lists.Users, "zoe", ""));
      EXPECT_FALSE(IsAllowed(Right::Database, recovered.Lists.Users[0].Level));
    } else {
      ASSERT_EQ(recovered.Lists.Users.size(), c.Users.size());
      for (std::size_t i = 0; i < c.Users.size(); ++i) EXPECT_EQ(recovered.Lists.Users[i].Name, c.Users[i]);
    }
    EXPECT_EQ(SaveLists(folder_.Path(), recovered.Lists).has_value(), c.MaySave);
    EXPECT_EQ(ReadFile(folder_ / "lists.dat") == damaged, !c.MaySave);
  }
}

TEST_F(Recovery, MayBeSavedWithAllItsUsersThoughNoneIsAnAdministrator) {
  ReferenceLists lists = Recover().Lists;
  lists.Users[0].Level = DigitizerLevel;
  ASSERT_TRUE(SaveLists(folder_.Path(), lists));
  whole_ = ReadFile(folder_ / "lists.dat");
  Damage(10, TooLong);
  const RecoveredLists recovered = Recover();
  EXPECT_FALSE(recovered.NobodyIsKnown);
  EXPECT_TRUE(SaveLists(folder_.Path(), recovered.Lists));
}

TEST_F(Recovery, LeavesListsInMemoryWhenTheFileIsDamagedOrTheOperatorIsNoLongerInIt) {
  ReferenceLists lists = Recover().Lists;
  lists.Cores[0] = "Changed";
  ASSERT_TRUE(RereadLists(folder_.Path(), lists, 1));
  EXPECT_EQ(lists.Cores[0], "North");
  lists.Cores[0] = "Changed";
  WriteFile(folder_ / "lists.dat", whole_.substr(0, Slot * 4));
  ASSERT_TRUE(RereadLists(folder_.Path(), lists, 0));
  EXPECT_EQ(lists.Cores[0], "Changed");
  WriteFile(folder_ / "lists.dat", "");
  ASSERT_TRUE(RereadLists(folder_.Path(), lists, 0));
  EXPECT_EQ(lists.Cores[0], "Changed");
}

TEST_F(Recovery, SurvivesCutsAndFlippedBytesAnywhere) {
  for (std::size_t size = 1; size < whole_.size(); size += 101) {
    WriteFile(folder_ / "lists.dat", whole_.substr(0, size));
    const RecoveredLists cut = Recover();
    EXPECT_EQ(cut.Notice.empty(), size >= 16 * Slot + 10) << size;
    EXPECT_FALSE(cut.NobodyIsKnown && IsAllowed(Right::Users, cut.Lists.Users[0].Level)) << size;
    EXPECT_EQ(ReadFile(folder_ / "lists.dat").size(), size) << "reading changes nothing";
  }
  std::mt19937 random(11);
  for (int round = 0; round < 2000; ++round) {
    std::string bytes = whole_;
    for (int hits = 0; hits < 4; ++hits)
      bytes[random() % bytes.size() / Slot * Slot + random() % 12] = static_cast<char>(random());
    ReferenceLists lists = SalvageLists(bytes).Lists;
    BringBackHidden(lists);
    for (const StationRecord& station : lists.Stations) {
      ASSERT_LT(static_cast<std::size_t>(station.Agency), lists.Agencies.size());
      ASSERT_LT(static_cast<std::size_t>(station.Core), lists.Cores.size());
    }
  }
}

}  // namespace
}  // namespace hyetex
