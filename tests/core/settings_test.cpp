#include "core/settings.h"

#include <gtest/gtest.h>

#include <regex>
#include <set>

#include "core/dates.h"
#include "paths.h"
#include "support.h"

namespace hyetex {
namespace {

using test::ReadFile;
using test::TempFolder;
using test::WriteFile;

TEST(Settings, ReadWhatAPersonMayTypeAndWriteWhatTheyRead) {
  const TempFolder folder;
  Settings settings(folder.Path());
  EXPECT_EQ(settings.Get(setting::GmtHours), "2") << "the default";
  EXPECT_FALSE(settings.Has(setting::CurrentChart));
  EXPECT_EQ(settings.Get(setting::CurrentChart), 0);
  EXPECT_FALSE(settings.Get(setting::TaskBegin));

  WriteFile(folder / "Definitions.dat",
            "CurrentChart: 2 mm\r\nfrmHyetex-Height: 12.5\r\nCOMport: 99999\r\nDigitizerType: GT\r\n"
            "frmLoad-chkTarget: 1\r\nfrmTaskDef-BeginDate: 05/03/1998 07:30:00\r\n"
            "frmTaskDef-EndDate: 99/99/1998\r\nfrmTasks-Top: -30\r\nSerialPort2: /dev/x\r\nfrmPrePop-GMT: ");
  EXPECT_EQ(settings.Get(setting::CurrentChart), 2);
  EXPECT_EQ(settings.Get(setting::ViewHeight), 12.5F);
  EXPECT_EQ(settings.Get(setting::ComPort), 0);
  EXPECT_TRUE(settings.Has(setting::DigitizerType));
  EXPECT_EQ(settings.Get(setting::DigitizerType), 0);
  EXPECT_TRUE(settings.Get(setting::LoadMoves));
  EXPECT_EQ(settings.Get(setting::TaskBegin), MakeDate(1998, 3, 5));
  EXPECT_FALSE(settings.Get(setting::TaskEnd));
  EXPECT_EQ(settings.Get(setting::PlaceTop, "frmTasks"), -30);
  EXPECT_EQ(settings.Get(setting::PlaceLeft, "frmTasks"), 0);
  EXPECT_EQ(settings.Get(setting::SerialPort, "2"), "/dev/x");
  EXPECT_EQ(settings.Get(setting::GmtHours), "2");

  WriteFile(folder / "Definitions.dat", "COMport: 1\r\n");
  EXPECT_TRUE(settings.Set(setting::ComPort, -1));
  EXPECT_TRUE(settings.Set(setting::ViewHeight, 1200000));
  EXPECT_TRUE(settings.Set(setting::UseAlpha, true));
  EXPECT_TRUE(settings.Set(setting::LoadMoves, false));
  EXPECT_TRUE(settings.Set(setting::TaskEnd, MakeDate(1998, 3, 6, 7, 30)));
  EXPECT_TRUE(settings.Set(setting::PlaceLeft, "frmTasks", 7.5F));
  EXPECT_TRUE(settings.Set(setting::SerialPort, "1", "none"));
  EXPECT_FALSE(settings.Set(setting::CommentCode, "a\nb"));
  EXPECT_EQ(ReadFile(folder / "Definitions.dat"),
            "COMport: -1\r\nfrmHyetex-Height: 1200000\r\nfrmPrePop-Alpha: 1\r\nfrmLoad-chkTarget: 0\r\n"
            "frmTaskDef-EndDate: 06/03/1998\r\nfrmTasks-Left: 7.5\r\nSerialPort1: none\r\n");
}

// ---- The table, against the program's own text

std::set<std::string> Found(const std::string& text, const std::regex& what) {
  std::set<std::string> found;
  for (std::sregex_iterator at(text.begin(), text.end(), what), end; at != end; ++at) found.insert((*at)[1]);
  return found;
}

std::string ProgramText() {
  std::string text;
  for (const char* part : {"/src", "/tools"})
    for (const auto& entry : std::filesystem::recursive_directory_iterator(test::Sources() + part))
      if (const auto type = entry.path().extension();
          (type == ".h" || type == ".cpp") && entry.path().filename() != "settings.h")
        text += ReadFile(entry.path().string());
  return text;
}

std::set<std::string> TableNames() {
  std::set<std::string> names;
  for (const SettingKey& key : setting::All) names.emplace(key.Name);
  return names;
}

TEST(SettingTable, HasEveryKeyOnceAndIsTheOnlyPlaceThatSpellsIt) {
  EXPECT_EQ(TableNames().size(), setting::All.size());
  const std::string header = ReadFile(test::Sources() + "/src/core/settings.h");
  EXPECT_EQ(Found(header, std::regex(R"re(\w\{"([^"]+)")re")), TableNames());

  const std::string program = ProgramText();
  for (const std::string& name : TableNames()) {
    const std::size_t member = name.find('*');
    const std::string spelled = member == std::string::npos ? '"' + name + '"'
                                : member == 0               ? name.substr(1) + '"'
                                                            : '"' + name.substr(0, member);
    EXPECT_EQ(program.find(spelled), std::string::npos) << spelled;
  }
}

// A key that stands within another one would read the other's line, and write over it.
TEST(SettingTable, NoNameStandsInAnother) {
  const auto windows = Found(ProgramText(), std::regex(R"re("(frm\w+)",\s+WindowId::)re"));
  EXPECT_GT(windows.size(), 10U);
  std::set<std::string> names;
  for (const SettingKey& key : setting::All)
    if (!key.Name.starts_with('*'))
      names.insert(SettingName(key, "1"));
    else
      for (const std::string& window : windows) names.insert(SettingName(key, window));
  for (const std::string& name : names)
    for (const std::string& other : names)
      EXPECT_TRUE(name == other || other.find(name) == std::string::npos) << name << " in " << other;
}

TEST(SettingTable, KnowsEveryKeyOfTheSampleFolder) {
  const auto keys =
      Found(ReadFile(test::Demo("program/Definitions.dat")), std::regex(R"re(([^:\r\n]+): )re"));
  EXPECT_FALSE(keys.empty());
  for (const std::string& key : keys) EXPECT_TRUE(TableNames().contains(key)) << key;
}

}  // namespace
}  // namespace hyetex
