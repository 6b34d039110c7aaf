// The pages for operators and administrators say what is so: their commands are run, and what they name is
// looked for in the program.
#include <sys/wait.h>

#include <algorithm>
#include <cstdio>
#include <span>

#include "core/settings.h"
#include "core/text.h"
#include "database/access/schema.h"
#include "docs/document.h"

namespace hyetex {
namespace {

namespace fs = std::filesystem;
using test::AllDocuments;
using test::Block;
using test::Document;
using test::LinesOf;
using test::ReadFile;
using test::Sources;
using test::TempFolder;

// ---- What is shown is run

std::string Bare(std::string line) {
  line.erase(line.find_last_not_of(" \r") + 1);
  return line;
}

// A line of "..." stands for any lines, or none.
bool Matches(std::span<const std::string> shown, std::span<const std::string> said) {
  if (shown.empty()) return said.empty();
  if (shown.front() == "...") {
    for (std::size_t i = 0; i <= said.size(); ++i)
      if (Matches(shown.subspan(1), said.subspan(i))) return true;
    return false;
  }
  return !said.empty() && Bare(shown.front()) == Bare(said.front()) &&
         Matches(shown.subspan(1), said.subspan(1));
}

// A folder with the demonstration in it, where the commands of one page are run one after the other.
class DemoFolder {
 public:
  DemoFolder() {
    fs::copy(Sources() + "/demo", folder_ / "demo", fs::copy_options::recursive);
    fs::create_directory(folder_ / "home");
  }

  std::vector<std::string> Run(const std::string& command) const {
    const std::string programs = fs::path(test::CommandLineProgram()).parent_path();
    test::WriteFile(folder_ / "home/command", "cd '" + folder_.Path() + "'\nexport PATH='" + programs +
                                                  "':$PATH HOME='" + folder_.Path() +
                                                  "/home' LC_ALL=C TZ=UTC\nunset XDG_DATA_HOME\nexec 2>&1\n" +
                                                  command + "\n");
    std::FILE* out = ::popen(("bash '" + folder_.Path() + "/home/command'").c_str(), "r");
    std::string text;
    for (int c = 0; out != nullptr && (c = std::fgetc(out)) != EOF;) text += static_cast<char>(c);
    if (out != nullptr) ::pclose(out);
    return LinesOf(text);
  }

 private:
  TempFolder folder_;
};

TEST(Documents, ShowCommandsThatAnswerAsShown) {
  int commands = 0;
  for (const Document& page : AllDocuments()) {
    const DemoFolder folder;
    for (const Block& block : page.Blocks) {
      if (block.Kind != "console run") continue;
      for (std::size_t i = 0; i < block.Lines.size();) {
        ASSERT_TRUE(block.Lines[i].starts_with("$ ")) << page.Name << ":" << block.Line << ": no command";
        const std::string command = block.Lines[i++].substr(2);
        std::vector<std::string> shown;
        while (i < block.Lines.size() && !block.Lines[i].starts_with("$ ")) shown.push_back(block.Lines[i++]);
        const std::vector<std::string> said = folder.Run(command);
        EXPECT_TRUE(Matches(shown, said)) << page.Name << ":" << block.Line << ": " << command << "\n"
                                          << ::testing::PrintToString(said) << "\nis shown as\n"
                                          << ::testing::PrintToString(shown);
        ++commands;
      }
    }
  }
  EXPECT_GT(commands, 20);
}

// ---- What is named is there

// The whole text of the program, its tools and scripts.
const std::string& ProgramText() {
  static const std::string all = [] {
    std::string text;
    for (const char* top : {"src", "tools", "scripts", "bench"})
      for (const auto& file : fs::recursive_directory_iterator(Sources() + "/" + top))
        if (file.is_regular_file() && file.path().extension() != ".svg") text += ReadFile(file.path());
    for (const char* file : {"run", "test", "check", "demo/make", "CMakePresets.json"})
      text += ReadFile(Sources() + "/" + file);
    return text;
  }();
  return all;
}

// What a caption looks like to an operator: without the marks of its keys.
std::string WithoutMarks(std::string text) {
  std::erase(text, '&');
  return text;
}

// What belongs to others: the systems and servers that the pages tell of.
const std::set<std::string> OfOthers = {
    "listen_addresses",
    "postgresql.conf",
    "pg_hba.conf",
    "host rain hyetex 192.168.1.0/24 scram-sha-256",
    "chmod 600 ~/.odbc.ini",
    "~/.odbc.ini",
    "rain",
    "cmake --build build/release --target package",
    "db.example.org;Port=5433",
    "XDG_DATA_HOME",
    "~/.local/share/hyetex",
    "sudo mariadb",
    "sqlite3 rain.sqlite \".backup copy.sqlite\"",
    "$",
    "*",
    "***",
};

bool IsWord(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

// Whether the text stands in the program, and not as a piece of something longer.
bool StandsIn(const std::string& program, const std::string& text) {
  for (std::size_t at = 0; (at = program.find(text, at)) != std::string::npos; ++at) {
    const std::size_t end = at + text.size();
    const bool begins = at == 0 || !IsWord(program[at - 1]) || !IsWord(text.front());
    const bool ends = end == program.size() || !IsWord(program[end]) || !IsWord(text.back());
    if (begins && ends) return true;
  }
  return false;
}

bool IsInSchema(const std::string& name) {
  const auto has = [&](const SchemaTable& table) {
    return name == table.Name || FindSchemaColumn(table, name) != nullptr;
  };
  return std::ranges::any_of(SchemaTables(), has) || has(ConversionTable());
}

// The form of a test's name; those of the page on trust are looked for below.
bool IsTestName(const std::string& name) {
  static const std::regex form("[A-Z][A-Za-z0-9]+\\.[A-Z][A-Za-z0-9]+");
  return std::regex_match(name, form);
}

bool IsThere(std::string name) {
  constexpr std::string_view copy = ".bak-YYYYMMDD-HHMMSS";
  if (name.ends_with(copy) && StandsIn(ProgramText(), std::string(copy)))
    name.erase(name.size() - copy.size());
  name.erase(0, name.find_first_not_of("0123456789"));  // of a value, as in 15minute
  for (const char* top : {"/", "/demo/program/", "/docs/"})
    if (fs::exists(Sources() + top + name)) return true;
  if (name.empty() || OfOthers.contains(name) || IsInSchema(name)) return true;
  if (std::ranges::any_of(setting::All, [&](const SettingKey& key) { return key.Name == name; })) return true;
  return StandsIn(ProgramText(), name);
}

// Words of a command line of ours: a program or a script that is there, a command that is described, options
// that stand in some description, and values.
bool IsCommand(const std::string& name) {
  std::istringstream words(name);
  std::string program, word;
  words >> program;
  const auto isDescribed = [](const std::string& command) {
    return StandsIn(ProgramText(), "\"" + command + "\"");
  };
  const bool isScript = fs::is_regular_file(Sources() + "/" + program);
  if (!isScript && !isDescribed(program)) return false;
  for (int i = 0; words >> word; ++i) {
    if (word.starts_with("-") ? !StandsIn(ProgramText(), word)
                              : i == 0 && program == "hyetex-cli" && !isDescribed(word))
      return false;
  }
  return true;
}

TEST(Documents, NameOnlyWhatIsThere) {
  for (const Document& page : AllDocuments())
    for (const std::string& name : page.Names()) {
      if (page.Name == "docs/trust.md" && IsTestName(name)) continue;
      EXPECT_TRUE(IsThere(name) || IsCommand(name)) << page.Name << ": `" << name << "`";
    }
}

TEST(Documents, TellOfEverySettingAndEveryCommand) {
  const std::set<std::string> settings = Document("docs/administrator.md").Names();
  for (const SettingKey& key : setting::All)
    EXPECT_TRUE(settings.contains(std::string(key.Name))) << key.Name;

  const std::string readme = Document("README.md").Prose;
  const std::string described = ReadFile(Sources() + "/src/cli/command_line.cpp");
  static const std::regex command("Add\\(\\s*\"([a-z-]+)\"|add_subcommand\\(\"([a-z-]+)\"");
  int commands = 0;
  for (std::sregex_iterator at(described.begin(), described.end(), command); at != std::sregex_iterator();
       ++at, ++commands) {
    const std::string name = (*at)[1].matched ? (*at)[1] : (*at)[2];
    EXPECT_TRUE(StandsIn(readme, name)) << "hyetex-cli " << name;
  }
  EXPECT_GT(commands, 15);
}

// All literals of the program, each with those that follow it directly joined on.
std::string Captions() {
  static const std::regex joint("\"\\s*\n\\s*\"");
  return WithoutMarks(std::regex_replace(ProgramText(), joint, ""));
}

TEST(Documents, NameCaptionsAsTheProgramHasThem) {
  const std::string page = ReadFile(Sources() + "/docs/help/hyetex_instructions_part1.htm");
  const std::string captions = Captions();
  static const std::regex bold("<b>([^<]+)</b>");
  int found = 0;
  for (std::sregex_iterator at(page.begin(), page.end(), bold); at != std::sregex_iterator(); ++at, ++found) {
    std::string caption = std::regex_replace((*at)[1].str(), std::regex("\\s+"), " ");
    caption = std::regex_replace(caption, std::regex("&gt;"), ">");
    EXPECT_TRUE(StandsIn(captions, caption)) << caption;
  }
  EXPECT_GT(found, 30);
  static const std::regex picture("<img src=\"([^\"]+)\"");
  for (std::sregex_iterator at(page.begin(), page.end(), picture); at != std::sregex_iterator(); ++at)
    EXPECT_TRUE(fs::exists(Sources() + "/docs/help/" + (*at)[1].str())) << (*at)[1];
  static const std::regex link("href=\"#([^\"]+)\"");
  for (std::sregex_iterator at(page.begin(), page.end(), link); at != std::sregex_iterator(); ++at)
    EXPECT_NE(page.find(" id=\"" + (*at)[1].str() + "\""), std::string::npos) << (*at)[1];
}

TEST(Documents, LinkToPagesThatAreThere) {
  static const std::regex link("\\]\\(([^)#]*)(#[^)]+)?\\)");
  for (const Document& page : AllDocuments())
    for (std::sregex_iterator at(page.Prose.begin(), page.Prose.end(), link); at != std::sregex_iterator();
         ++at) {
      if ((*at)[1].str().starts_with("http")) continue;
      const fs::path folder = fs::path(Sources()) / fs::path(page.Name).parent_path();
      EXPECT_TRUE((*at)[1].length() == 0 || fs::exists(folder / (*at)[1].str()))
          << page.Name << ": " << at->str();
    }
}

TEST(Documents, NameTestsThatAreThere) {
  std::set<std::string> tests;
  static const std::regex form("TEST(?:_F|_P)?\\(\\s*(\\w+),\\s*(\\w+)\\)");
  for (const auto& file : fs::recursive_directory_iterator(Sources() + "/tests")) {
    if (file.path().extension() != ".cpp") continue;
    const std::string text = ReadFile(file.path());
    for (std::sregex_iterator at(text.begin(), text.end(), form); at != std::sregex_iterator(); ++at)
      tests.insert((*at)[1].str() + "." + (*at)[2].str());
  }
  int found = 0;
  for (const std::string& name : Document("docs/trust.md").Names()) {
    if (!IsTestName(name)) continue;
    ++found;
    EXPECT_TRUE(tests.contains(name)) << name;
  }
  EXPECT_GT(found, 30);
}

}  // namespace
}  // namespace hyetex
