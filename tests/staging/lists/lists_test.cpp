#include "staging/lists/lists.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <limits>
#include <random>

#include "child.h"
#include "support.h"

namespace hyetex {
namespace {

using test::ReadFile;
using test::TempFolder;
using test::WriteFile;
using ::testing::HasSubstr;

std::string Slot(std::string record) {
  record.resize(128, '\0');
  return record;
}

std::string U16(int number) {
  return {static_cast<char>(number & 0xFF), static_cast<char>(number >> 8 & 0xFF)};
}

std::string Bytes(std::initializer_list<int> codes) {
  std::string bytes;
  for (int code : codes) bytes += static_cast<char>(code);
  return bytes;
}

// Everything of the lists, to compare by.
std::vector<std::string> Shown(const ReferenceLists& lists) {
  std::vector<std::string> all;
  const auto add = [&](const auto&... part) {
    std::ostringstream line;
    line.precision(9);
    ((line << part << '|'), ...);
    all.push_back(line.str());
  };
  for (const auto& r : lists.ChartTypes)
    add('t', r.Name, r.ChartHeightMm, r.DepthScale, r.TimeScale, r.ChartMethod, r.MiddleToBottomMm);
  for (const auto& r : lists.Cores) add('c', r);
  for (const auto& r : lists.Agencies) add('a', r.Name, r.Core);
  for (const auto& r : lists.Stations) add('s', r.Name, r.InstrumentCode, r.Core, r.Agency);
  for (const auto& r : lists.Users) add('u', r.Name, r.Password, r.Level);
  for (const auto& r : lists.Comments) add('d', r.Description, r.Code);
  return all;
}

TEST(Lists, WritesTheBytesOfTheFormat) {
  ReferenceLists lists;
  lists.ChartTypes = {{"Daily", 100, 0.125F, -2, 1, 0.1F}};
  lists.Cores = {"North", ""};
  lists.Agencies = {{"Water", 1}};
  lists.Stations = {{"Lakes", "L2", 1, 2}, {"B\xE9t", "B1", 0, -1}};
  lists.Users = {{"Ab", "z", 10}};
  lists.Comments = {{"Rain", 205}};
  const std::string expected =
      Slot(U16(0)) +
      Slot(U16(5) + "Daily" +
           Bytes({0, 0, 0xC8, 0x42, 0, 0, 0, 0x3E, 0, 0, 0, 0xC0, 1, 0, 0xCD, 0xCC, 0xCC, 0x3D})) +
      Slot(U16(1)) + Slot(U16(5) + "North") + Slot(U16(0)) +  //
      Slot(U16(0)) + Slot(U16(5) + "Water" + U16(1)) +        //
      Slot(U16(1)) + Slot(U16(3) + "B\xE9t" + U16(2) + "B1" + U16(0) + Bytes({0xFF, 0xFF})) +
      Slot(U16(5) + "Lakes" + U16(2) + "L2" + U16(1) + U16(2)) +  //
      Slot(U16(0)) + Slot(U16(2) + Bytes({85, 118}) + U16(1) + Bytes({142}) + U16(10)) + Slot(U16(0)) +
      Slot(U16(4) + "Rain" + Bytes({0, 0, 0x4D, 0x43}));

  TempFolder folder;
  ASSERT_TRUE(SaveLists(folder.Path(), lists));
  EXPECT_EQ(ReadFile(folder / "lists.dat"), expected);
  EXPECT_EQ(lists.Stations[0].Name, "Lakes") << "only the file is sorted";
  const auto back = ReadLists(folder.Path());
  ASSERT_TRUE(back) << back.error();
  std::swap(lists.Stations[0], lists.Stations[1]);
  EXPECT_EQ(Shown(*back), Shown(lists));
}

TEST(Lists, KeepsOldBytesBehindRecordsAndBehindAShorterSave) {
  TempFolder folder;
  const std::string old(128 * 40 + 7, '\xAA');
  WriteFile(folder / "lists.dat", old);
  ReferenceLists lists;
  lists.Cores = {"North"};
  ASSERT_TRUE(SaveLists(folder.Path(), lists));
  std::string expected = old;
  expected.replace(0, 2, U16(0));
  expected.replace(128 * 2, 2, U16(0));
  expected.replace(128 * 3, 7, U16(5) + "North");
  const std::string bytes = ReadFile(folder / "lists.dat");
  EXPECT_EQ(bytes.size(), old.size());
  EXPECT_EQ(bytes.substr(128 * 2, 256), expected.substr(128 * 2, 256));
  EXPECT_EQ(bytes.substr(128 * 12), expected.substr(128 * 12));
  EXPECT_EQ(Shown(ReadLists(folder.Path()).value()), Shown(lists));
}

TEST(Lists, SortsStationsByNameThenCodeThenIndex) {
  ReferenceLists lists;
  lists.Stations = {
      {"b", "2", 0, 0}, {"a-", "9", 0, 1}, {"B", "1", 0, 2}, {"A", "9", 0, 3}, {"a b", "0", 0, 4}};
  for (std::int16_t i = 5; i < 17; ++i) lists.Stations.push_back({"same", "Code", 0, i});
  TempFolder folder;
  ASSERT_TRUE(SaveLists(folder.Path(), lists));
  std::vector<int> order;
  const ReferenceLists back = ReadLists(folder.Path()).value();
  for (const auto& station : back.Stations) order.push_back(station.Agency);
  EXPECT_THAT(order, ::testing::ElementsAre(4, 1, 3, 2, 0, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16));
}

TEST(Lists, ReadsZerosBehindTheEndOfTheFile) {
  TempFolder folder;
  const auto missing = ReadLists(folder.Path());
  ASSERT_TRUE(missing) << missing.error();
  EXPECT_THAT(Shown(*missing),
              ::testing::ElementsAre("t||0|0|0|0|0|", "c||", "a||0|", "s|||0|0|", "u|||0|", "d||0|"));
  EXPECT_EQ(std::filesystem::file_size(folder / "lists.dat"), 0U);
  EXPECT_FALSE(ReadLists(folder / "nowhere"));

  ReferenceLists lists;
  lists.Cores = {"North", "South"};
  lists.Users = {{"Ab", "z", 10}};
  ASSERT_TRUE(SaveLists(folder.Path(), lists));
  const std::string whole = ReadFile(folder / "lists.dat");
  for (std::size_t size = 0; size <= whole.size(); ++size) {
    WriteFile(folder / "lists.dat", whole.substr(0, size));
    const auto cut = ReadLists(folder.Path());
    ASSERT_TRUE(cut) << size << ": " << cut.error();
    EXPECT_EQ(cut->Cores.size(), size > 128 * 2 + 1 ? 2U : 1U) << size;
    EXPECT_EQ(cut->Cores.back(), size < 128 * 4 + 7 ? "" : "South")
        << "a text is there whole or not at all, at " << size;
  }
}

TEST(Lists, ReadsBackRandomListsAtTheirLimits) {
  std::mt19937 random(20240229);
  const auto pick = [&](int low, int high) { return std::uniform_int_distribution(low, high)(random); };
  const auto text = [&](int most, int highest = 255) {
    std::string made(static_cast<std::size_t>(pick(0, 3) == 0 ? most : pick(0, most)), ' ');
    for (char& c : made) c = static_cast<char>(pick(0, highest));
    return made;
  };
  const auto number = [&] { return static_cast<std::int16_t>(pick(-32768, 32767)); };
  const auto real = [&] { return static_cast<float>(pick(-1'000'000, 1'000'000)) / 977; };
  TempFolder folder;
  for (int round = 0; round < 30; ++round) {
    ReferenceLists lists;
    const auto fill = [&](auto& list, int most, auto make) {
      list.clear();
      for (int i = pick(0, 4) == 0 ? most : pick(0, most); i >= 0; --i) list.push_back(make());
    };
    fill(lists.ChartTypes, 100,
         [&] { return ChartTypeRecord{text(108), real(), real(), real(), number(), real()}; });
    fill(lists.Cores, 5, [&] { return text(126); });
    fill(lists.Agencies, 200, [&] { return AgencyRecord{text(124), number()}; });
    fill(lists.Stations, 200, [&] { return StationRecord{text(60), text(60), number(), number()}; });
    fill(lists.Users, 200, [&] { return UserRecord{text(61, 235), text(61, 235), number()}; });
    fill(lists.Comments, 1000, [&] { return CommentRecord{text(122), real()}; });
    const auto saved = SaveLists(folder.Path(), lists);
    ASSERT_TRUE(saved) << saved.error();
    const auto back = ReadLists(folder.Path());
    ASSERT_TRUE(back) << back.error();
    auto had = Shown(lists), has = Shown(*back);
    std::sort(had.begin(), had.end());
    std::sort(has.begin(), has.end());
    ASSERT_EQ(has, had);
  }
}

TEST(Lists, NamesTheSlotOfADamagedFile) {
  ReferenceLists lists;
  lists.Users = {{"Ab", "z", 10}};
  TempFolder folder;
  ASSERT_TRUE(SaveLists(folder.Path(), lists));
  const std::string whole = ReadFile(folder / "lists.dat");
  const struct {
    int Slot;  // counted from 1
    std::size_t At;
    std::string Bytes;
    std::string Says;
  } cases[] = {
      {1, 0, U16(-1), "the chart type list (slot 1) is damaged"},
      {1, 0, U16(101), "the chart type list (slot 1) is damaged"},
      {3, 0, U16(6), "the core list (slot 3) is damaged"},
      {5, 0, U16(32767), "the agency list (slot 5) is damaged"},
      {7, 0, U16(201), "the station list (slot 7) is damaged"},
      {9, 0, U16(201), "the user list (slot 9) is damaged"},
      {11, 0, U16(1001), "the comment list (slot 11) is damaged"},
      {4, 0, U16(127), "core 0 (slot 4) is damaged: its name"},
      {4, 0, U16(65535), "core 0 (slot 4) is damaged"},
      {8, 0, U16(126), "station 0 (slot 8) is damaged"},
      {10, 2, "\x13", "user 0 (slot 10) is damaged: its name"},
      {10, 6, "\x13", "its password"},
      {2, 2, Bytes({0, 0, 0x80, 0x7F}), "chart type 0 (slot 2) is damaged: its height"},
      {2, 6, Bytes({0, 0, 0xC0, 0xFF}), "chart type 0 (slot 2) is damaged: its depth scale"},
      {12, 2, Bytes({0, 0, 0xC0, 0x7F}), "comment 0 (slot 12) is damaged: its code"},
  };
  for (const auto& c : cases) {
    std::string damaged = whole;
    damaged.replace(static_cast<std::size_t>(c.Slot - 1) * 128 + c.At, c.Bytes.size(), c.Bytes);
    WriteFile(folder / "lists.dat", damaged);
    const auto read = ReadLists(folder.Path());
    ASSERT_FALSE(read) << c.Says;
    EXPECT_THAT(read.error(), HasSubstr(c.Says));
  }
}

TEST(Lists, SurvivesRandomBytes) {
  std::mt19937 random(7);
  TempFolder folder;
  ASSERT_TRUE(SaveLists(folder.Path(), {}));
  const std::string whole = ReadFile(folder / "lists.dat");
  for (int round = 0; round < 2000; ++round) {
    std::string bytes = whole;
    for (int hits = 0; hits < 6; ++hits)
      bytes[random() % bytes.size() / 128 * 128 + random() % 12] = static_cast<char>(random());
    WriteFile(folder / "lists.dat", bytes.substr(0, random() % (bytes.size() + 1)));
    const auto read = ReadLists(folder.Path());
    EXPECT_TRUE(read ? !read->Users.empty() : !read.error().empty());
  }
}

TEST(Lists, RefusesToSaveWhatDoesNotFitAndSaysWhichEntry) {
  TempFolder folder;
  ASSERT_TRUE(SaveLists(folder.Path(), {}));
  const std::string before = ReadFile(folder / "lists.dat");
  const auto refusal = [&](auto change) {
    ReferenceLists lists;
    change(lists);
    const auto saved = SaveLists(folder.Path(), lists);
    return saved ? std::string("saved") : saved.error();
  };
  EXPECT_THAT(refusal([](auto& l) { l.Cores = {"a", std::string(127, 'x')}; }), HasSubstr("core 1, \"xxx"));
  EXPECT_THAT(refusal([](auto& l) {
                l.Stations[0] = {std::string(100, 'x'), std::string(21, 'y'), 0, 0};
              }),
              HasSubstr("The name and instrument code together may hold at most 120 bytes, not 121."));
  EXPECT_THAT(refusal([](auto& l) {
                l.Users[0] = {"Ann", "\xEC", 1};
              }),
              HasSubstr("user 0, \"Ann\": The password"));
  EXPECT_THAT(refusal([](auto& l) { l.ChartTypes[0].TimeScale = std::numeric_limits<float>::infinity(); }),
              HasSubstr("chart type 0"));
  EXPECT_THAT(refusal([](auto& l) { l.Cores.resize(7); }), HasSubstr("core 6"));
  EXPECT_THAT(refusal([](auto& l) { l.Comments[0].Description = std::string(70000, 'x'); }),
              HasSubstr("122"));
  EXPECT_THAT(refusal([](auto& l) { l.Agencies.clear(); }), HasSubstr("agency"));
  EXPECT_EQ(ReadFile(folder / "lists.dat"), before);
}

TEST(Lists, ChecksEntriesAtTheirPlace) {
  EXPECT_FALSE(CheckEntry(std::string(126, 'x')));
  EXPECT_TRUE(CheckEntry(std::string(127, 'x')));
  EXPECT_FALSE(CheckEntry(ChartTypeRecord{.Name = std::string(108, 'x')}));
  EXPECT_TRUE(CheckEntry(ChartTypeRecord{.Name = std::string(109, 'x')}));
  EXPECT_TRUE(CheckEntry(ChartTypeRecord{.Name = "", .DepthScale = std::numeric_limits<float>::quiet_NaN()}));
  EXPECT_FALSE(CheckEntry(UserRecord{std::string(61, '\xEB'), std::string(61, 'x'), 5}));
  EXPECT_TRUE(CheckEntry(UserRecord{"\xEC", "", 5}));
  EXPECT_TRUE(CheckEntry(AgencyRecord{"two\nlines", 0}));
  EXPECT_TRUE(CheckEntry(CommentRecord{std::string("a\0b", 3), 0}));
  EXPECT_TRUE(CheckEntry(StationRecord{"Lakes", "L,1", 0, 0}));
  EXPECT_TRUE(CheckEntry(StationRecord{"Lakes", "../L1", 0, 0}));
  EXPECT_FALSE(CheckEntry(StationRecord{"Lakes, north/south", "JW-L1-R", 0, 0}));
  EXPECT_FALSE(CheckRoom(std::vector<std::string>(5)));
  EXPECT_TRUE(CheckRoom(std::vector<std::string>(6)));
  EXPECT_FALSE(CheckRoom(std::vector<CommentRecord>(1000)));
  EXPECT_TRUE(CheckRoom(std::vector<CommentRecord>(1001)));
}

TEST(Lists, FindsStationsUsersAndTheirNames) {
  ReferenceLists lists;
  lists.Cores = {"North", "South"};
  lists.Agencies = {{"Water", 1}};
  lists.Stations = {{"A", "x1", 1, 0}, {"B", "x1", -1, 1}, {"C", "X1", 2, -1}};
  lists.Users = {{"Ann", "", 1}, {"ANN", "", 5}};
  EXPECT_EQ(FindStation(lists.Stations, "x1"), 1);
  EXPECT_EQ(FindStation(lists.Stations, "x"), -1);
  EXPECT_EQ(FindStationIgnoringCase(lists.Stations, "x1"), 2);
  EXPECT_EQ(FindUser(lists.Users, "aNN"), 0);
  EXPECT_EQ(FindUser(lists.Users, "Bob"), -1);
  EXPECT_EQ(StationCoreName(lists, 0), "South");
  EXPECT_EQ(StationAgencyName(lists, 0), "Water");
  for (int station : {-1, 1, 2, 3}) {
    EXPECT_EQ(StationCoreName(lists, station), "");
    EXPECT_EQ(StationAgencyName(lists, station), "");
  }
}

TEST(Lists, StayWholeOnAFullDiskAndWhenTheProgramIsKilled) {
  TempFolder folder;
  ReferenceLists few, many;
  few.Cores = {"North"};
  many.Stations.assign(201, {"Station", "Code", 1, 2});
  many.Comments.assign(1001, {"Comment", 7});
  ASSERT_TRUE(SaveLists(folder.Path(), many));
  ASSERT_TRUE(SaveLists(folder.Path(), few));
  const std::string before = ReadFile(folder / "lists.dat");
  EXPECT_TRUE(test::OnFullDisk(100'000, [&] { return !SaveLists(folder.Path(), many); }));
  EXPECT_TRUE(test::InReadOnlyFolder(folder.Path(), [&] { return !SaveLists(folder.Path(), many); }));
  EXPECT_TRUE(ReadFile(folder / "lists.dat") == before);

  std::mt19937 random(std::random_device{}());
  for (int round = 0; round < 25; ++round) {
    const pid_t child = test::StartChild([&] {
      for (;;)
        if (!SaveLists(folder.Path(), many) || !SaveLists(folder.Path(), few)) return false;
    });
    ASSERT_GT(child, 0);
    ::usleep(static_cast<useconds_t>(random() % 15'000));
    ::kill(child, SIGKILL);
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status)) << "a save failed";
    const auto read = ReadLists(folder.Path());
    ASSERT_TRUE(read) << read.error();
    ASSERT_TRUE(Shown(*read) == Shown(few) || Shown(*read) == Shown(many));
  }
}

}  // namespace
}  // namespace hyetex
