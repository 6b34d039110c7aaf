#include "core/definitions.h"

#include <gmock/gmock.h>

#include "child.h"
#include "support.h"

namespace hyetex {
namespace {

using test::ReadFile;
using test::TempFolder;
using test::WriteFile;

TEST(Definitions, ReadsWhatAPersonMayType) {
  TempFolder folder;
  WriteFile(folder / "Definitions.dat",
            "CurrentChart: 1\r\nDataBaseName: DSN=rain;X=a:b\nframe without colon\r\n"
            "empty: \rbare:\nshort:7 mm\r\nTargetFolder: D:\\TypeHere\r\nCurrentChart: 2");
  EXPECT_EQ(GetDefinition(folder.Path(), "CurrentChart"), "2") << "the last line counts";
  EXPECT_EQ(GetDefinition(folder.Path(), "DataBaseName"), "DSN=rain;X=a:b");
  EXPECT_EQ(GetDefinition(folder.Path(), "frame"), "rame without colon");
  EXPECT_EQ(GetDefinition(folder.Path(), "empty"), "");
  EXPECT_EQ(GetDefinition(folder.Path(), "bare"), "");
  EXPECT_EQ(GetDefinition(folder.Path(), "short"), " mm");
  EXPECT_EQ(GetDefinition(folder.Path(), "TypeHere"), "D:\\TypeHere") << "a key's text in a value counts too";
  EXPECT_EQ(GetDefinition(folder.Path(), "currentchart"), "");
}

TEST(Definitions, ChangesOnlyTheKeysLastLine) {
  TempFolder folder;
  WriteFile(folder / "Definitions.dat", "A: 1\n\nodd \xE9 line\r\nA: 2\r\nB: 3");
  ASSERT_TRUE(SetDefinition(folder.Path(), "A", "x: y"));
  ASSERT_TRUE(SetDefinition(folder.Path(), "New", ""));
  EXPECT_EQ(ReadFile(folder / "Definitions.dat"),
            "A: 1\r\n\r\nodd \xE9 line\r\nA: x: y\r\nB: 3\r\nNew: \r\n");
  EXPECT_EQ(GetDefinition(folder.Path(), "A"), "x: y");
}

TEST(Definitions, TakesAnEditedTextAndKeepsWhatWasSetMeanwhile) {
  TempFolder folder;
  WriteFile(folder / "Definitions.dat", "A: 1\nodd \xE9 line\r\nB: \xC3\xA9\r\nC: 3\r\nA: 2\r\n");
  const auto read = ReadDefinitions(folder.Path());
  ASSERT_TRUE(read);
  EXPECT_EQ(ShownDefinitions(*read), "A: 1\nodd \xC3\xA9 line\nB: \xC3\xA9\nC: 3\nA: 2\n");
  ASSERT_TRUE(SetDefinition(folder.Path(), "A", "5"));    // not touched by the operator
  ASSERT_TRUE(SetDefinition(folder.Path(), "B", "6"));    // changed by the operator
  ASSERT_TRUE(SetDefinition(folder.Path(), "New", "7"));  // not seen by the operator
  ASSERT_TRUE(
      SaveEditedDefinitions(folder.Path(), *read, "A: 1\nodd \xC3\xA9 line\nB: changed\nAdded: 1\nA: 2\n"));
  EXPECT_EQ(ReadFile(folder / "Definitions.dat"),
            "A: 1\r\nodd \xE9 line\r\nB: changed\r\nAdded: 1\r\nA: 5\r\nNew: 7\r\n");
  EXPECT_FALSE(SaveEditedDefinitions(folder / "nowhere", *read, "A: 1\n"));
}

TEST(Definitions, CreatesAMissingFileEmpty) {
  TempFolder folder;
  EXPECT_EQ(GetDefinition(folder.Path(), "A"), "");
  EXPECT_TRUE(std::filesystem::exists(folder / "Definitions.dat"));
  EXPECT_EQ(ReadFile(folder / "Definitions.dat"), "");
  EXPECT_EQ(GetDefinition(folder / "nowhere", "A"), "");
  EXPECT_FALSE(SetDefinition(folder / "nowhere", "A", "1"));
}

TEST(Definitions, KeepsEveryLineOfALongFile) {
  TempFolder folder;
  std::string text;
  for (int i = 0; i < 5000; ++i) text += "line" + std::to_string(i) + "\r\n";
  WriteFile(folder / "Definitions.dat", text);
  ASSERT_TRUE(SetDefinition(folder.Path(), "Key", "1"));
  EXPECT_EQ(ReadFile(folder / "Definitions.dat"), text + "Key: 1\r\n");
}

TEST(Definitions, RefusesWhatWouldNotReadBack) {
  TempFolder folder;
  ASSERT_TRUE(SetDefinition(folder.Path(), "A", "1"));
  EXPECT_FALSE(SetDefinition(folder.Path(), "", "1"));
  EXPECT_FALSE(SetDefinition(folder.Path(), "A:B", "1"));
  EXPECT_FALSE(SetDefinition(folder.Path(), "A", std::string(5 << 20, 'x')));
  for (const std::string& bad : {std::string("a\nb"), std::string("a\rb"), std::string("a\0b", 3)}) {
    for (const auto& result :
         {SetDefinition(folder.Path(), "A", bad), SetDefinition(folder.Path(), bad, "1")}) {
      ASSERT_FALSE(result);
      EXPECT_EQ(result.error().find_first_of("\r\n"), std::string::npos) << "an error is one line";
    }
  }
  EXPECT_EQ(ReadFile(folder / "Definitions.dat"), "A: 1\r\n");
}

TEST(Definitions, StaysWholeOnAFullDiskAndInAReadOnlyFolder) {
  TempFolder folder;
  EXPECT_TRUE(test::InReadOnlyFolder(folder.Path(), [&] {
    return GetDefinition(folder.Path(), "A").empty() && !SetDefinition(folder.Path(), "A", "1");
  }));
  const std::string text = "A: " + std::string(5000, 'x') + "\r\n";
  WriteFile(folder / "Definitions.dat", text);
  EXPECT_TRUE(test::OnFullDisk(4096, [&] { return !SetDefinition(folder.Path(), "B", "1"); }));
  EXPECT_EQ(ReadFile(folder / "Definitions.dat"), text);
}

}  // namespace
}  // namespace hyetex
