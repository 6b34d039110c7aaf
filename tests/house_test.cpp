// Which room may know which: every include is read against the table below. A new arrow is first a question
// of where a rule belongs, and only then a word more in this table.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <map>
#include <regex>
#include <set>
#include <sstream>

#include "paths.h"
#include "support.h"

namespace hyetex {
namespace {

namespace fs = std::filesystem;

// A folder with sources, and the rooms whose headers it may include; "*" is all that stand above it here. A
// room knows only rooms above it in this table, so that no circle can come about.
struct Room {
  std::string Name, Below;
};
const std::vector<Room> Rooms = {
    {"core", ""},
    {"platform", "core"},
    {"graph", "core platform"},
    {"platform/cairo", "core platform"},
    {"platform/odbc", "core"},
    {"digitizing", "core platform"},
    {"commandline", "core digitizing"},
    {"staging/lists", "core"},
    {"staging/tasks", "core digitizing staging/lists"},
    {"staging/manager", "core platform staging/lists staging/tasks"},
    {"staging", "core staging/lists"},
    {"chartfiles", "core staging/lists"},
    {"database/access", "core platform platform/odbc"},
    {"database/store", "core platform/odbc staging/lists chartfiles database/access"},
    {"database/conversion",
     "core platform platform/odbc staging/lists chartfiles database/access database/store"},
    {"database/stations", "core platform staging/lists database/access database/store"},
    {"editor", "core platform graph platform/odbc staging/lists chartfiles database/access database/store"},
    {"alpha", "core platform graph platform/odbc staging/lists chartfiles database/access database/store"},
    {"database/tables", "core platform platform/odbc staging/lists database/access"},
    {"exchange", "core platform platform/odbc database/access"},
    {"rain",
     "core platform graph platform/odbc staging/lists chartfiles database/access database/store "
     "database/conversion"},
    {"scan", "core digitizing"},
    {"scan/box", "core digitizing staging/lists staging/tasks chartfiles scan"},
    {"scan/windows", "core platform scan scan/box"},
    {"digitizing/windows", "core platform digitizing scan"},
    {"staging/windows",
     "core platform platform/odbc digitizing staging/lists staging/tasks staging/manager staging scan"},
    {"chartfiles/windows", "core platform chartfiles"},
    {"database/windows",
     "core platform platform/odbc staging/lists chartfiles database/access database/store "
     "database/conversion database/stations database/tables"},
    {"graph/windows", "core platform graph"},
    {"editor/windows", "core platform graph graph/windows chartfiles editor"},
    {"alpha/windows", "core platform graph staging/lists alpha"},
    {"exchange/windows", "core platform database/access exchange"},
    {"rain/windows", "core platform graph graph/windows platform/cairo database/access database/store rain"},
    {"cli",
     "core commandline platform graph platform/cairo platform/odbc digitizing staging/lists staging/tasks "
     "chartfiles "
     "database/access database/store database/conversion database/stations editor alpha exchange rain scan "
     "scan/box"},
    {"app", "*"},
    {"tools/tracing", "core digitizing"},
    {"tools/scans", "core digitizing scan tools/tracing"},
    {"tools/tablet", "core"},
    {"tools/pictures", "*"},
    {"tools", "*"},
    {"bench", "*"},
    {"bench/autotrace", "core scan tools/tracing tools/scans"},
    {"fuzz", "core platform/odbc digitizing staging/lists staging/tasks chartfiles exchange scan"},
};

// Windows of their own file that are a part of another window: the board floats over the chart view.
const std::map<std::string, std::string> PartsOfWindows = {{"frmToolBox", "frmHyetex"}};

struct Include {
  int Line;
  std::string Text;    // as it stands between the quotes or brackets
  std::string Header;  // the file of the project that it names; empty if there is none
  bool Quoted;
};
using Files = std::map<std::string, std::vector<Include>>;  // by path from the project's folder

std::vector<Include> IncludesOf(const std::string& file) {
  static const std::regex form(R"(\s*#\s*include\s*(["<])([^">]+)[">].*)");
  std::vector<Include> includes;
  std::istringstream text(test::ReadFile(test::Sources() + "/" + file));
  std::string line;
  for (int number = 1; std::getline(text, line); ++number) {
    std::smatch match;
    if (!std::regex_match(line, match, form)) continue;
    Include include{number, match[2], "", match[1] == "\""};
    if (include.Quoted)
      for (const fs::path& folder : {fs::path("src"), fs::path("tools"), fs::path(file).parent_path()})
        if (include.Header.empty() && fs::exists(test::Sources() / folder / include.Text))
          include.Header = (folder / include.Text).lexically_normal();
    includes.push_back(std::move(include));
  }
  return includes;
}

Files ReadFiles() {
  Files files;
  for (const char* top : {"src", "tools", "bench", "fuzz"})
    for (const auto& entry : fs::recursive_directory_iterator(fs::path(test::Sources()) / top))
      if (entry.path().extension() == ".cpp" || entry.path().extension() == ".h") {
        const std::string file = fs::relative(entry.path(), test::Sources());
        files[file] = IncludesOf(file);
      }
  return files;
}
const Files& AllFiles() {
  static const Files files = ReadFiles();
  return files;
}

std::string RoomOf(const std::string& file) {
  const std::string folder = fs::path(file).parent_path();
  return folder.starts_with("src/") ? folder.substr(4) : folder;
}

std::set<std::string> RoomsBelow(const Room& room) {
  std::set<std::string> below;
  if (room.Below == "*") {
    for (const Room& other : Rooms)
      if (&other < &room) below.insert(other.Name);
    return below;
  }
  std::istringstream words(room.Below);
  for (std::string word; words >> word;) below.insert(word);
  return below;
}

// The window that a file belongs to, such as frmLists of frmLists_layout.cpp; empty for all else.
std::string WindowOf(const std::string& file) {
  const std::string stem = fs::path(file).stem();
  if (!stem.starts_with("frm") && !stem.starts_with("mdi")) return "";
  return stem.substr(0, stem.find('_'));
}

std::string Place(const std::string& file, const Include& include) {
  return file + ":" + std::to_string(include.Line) + ": " + include.Text;
}

TEST(House, HasNoArrowBetweenRoomsButThoseOfTheTable) {
  std::map<std::string, std::set<std::string>> below;
  std::set<std::string> named;
  for (const Room& room : Rooms) {
    below[room.Name] = RoomsBelow(room);
    for (const std::string& other : below[room.Name])
      EXPECT_TRUE(named.contains(other)) << room.Name << " -> " << other << " does not point down";
    named.insert(room.Name);
  }
  EXPECT_GT(AllFiles().size(), 200U);
  for (const auto& [file, includes] : AllFiles()) {
    const std::string room = RoomOf(file);
    EXPECT_TRUE(named.contains(room)) << file << ": the folder is not in the table of rooms";
    for (const Include& include : includes) {
      if (!include.Quoted) continue;
      if (include.Header.empty()) {
        ADD_FAILURE() << Place(file, include) << " is not there";
        continue;
      }
      const std::string other = RoomOf(include.Header);
      EXPECT_TRUE(other == room || below[room].contains(other))
          << Place(file, include) << "\n  an arrow that is not in the table: " << room << " -> " << other;
    }
  }
}

TEST(House, HasNoCircleOfFiles) {
  std::map<std::string, int> seen;  // 1 while what it includes is looked at
  std::vector<std::string> way;
  const std::function<void(const std::string&)> visit = [&](const std::string& file) {
    if (seen[file] == 2) return;
    way.push_back(file);
    if (seen[file] == 1)
      ADD_FAILURE() << "a circle: " << ::testing::PrintToString(way);
    else {
      seen[file] = 1;
      for (const Include& include : AllFiles().at(file))
        if (!include.Header.empty()) visit(include.Header);
      seen[file] = 2;
    }
    way.pop_back();
  };
  for (const auto& [file, includes] : AllFiles()) visit(file);
}

TEST(House, HasNoWindowThatKnowsAnother) {
  for (const auto& [file, includes] : AllFiles()) {
    if (!RoomOf(file).ends_with("windows")) continue;
    for (const Include& include : includes) {
      const std::string window = WindowOf(include.Header);
      const auto part = PartsOfWindows.find(window);
      EXPECT_TRUE(window.empty() || window == WindowOf(file) ||
                  (part != PartsOfWindows.end() && part->second == WindowOf(file)))
          << Place(file, include) << "\n  a window asks the Desk for another";
    }
  }
}

TEST(House, KeepsTheToolkitOutOfTheLogic) {
  std::set<std::string> withToolkit;
  for (bool more = true; more;) {
    more = false;
    for (const auto& [file, includes] : AllFiles())
      for (const Include& include : includes)
        if ((!include.Quoted && include.Text.starts_with("Q")) || withToolkit.contains(include.Header))
          more |= withToolkit.insert(file).second;
  }
  EXPECT_GT(withToolkit.size(), 50U);
  for (const std::string& file : withToolkit) {
    const std::string room = RoomOf(file);
    EXPECT_TRUE(room.ends_with("windows") || room == "platform" || room == "app" || room == "tools" ||
                room == "tools/pictures" || room == "bench")
        << file << " includes the toolkit, or a header that does";
  }
}

TEST(House, NamesEachRoomOnThePageForDevelopers) {
  const std::string all = test::ReadFile(test::Sources() + "/DEVELOPERS.md");
  const std::size_t begin = all.find("## Where things are");
  const std::string page = all.substr(begin, all.find("\n## ", begin) - begin);
  std::set<std::string> rooms;
  for (const auto& [file, includes] : AllFiles()) rooms.insert(RoomOf(file));
  for (const std::string& room : rooms)
    EXPECT_NE(page.find(fs::path(room).filename().string() + "/"), std::string::npos) << room;
}

}  // namespace
}  // namespace hyetex
