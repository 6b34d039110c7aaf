// What an import does with files that are not as they should be, and with a database that is not alone.
#include <thread>

#include "exchange/exchange_fixture.h"

namespace hyetex::test {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

class ImportTest : public ExchangeTest {
 protected:
  std::size_t Count() { return here_->Rows("lut_region").size(); }
};
HYETEX_ON_ALL_ENGINES(ImportTest);

// Thousands of good rows before the fault, so that some have travelled by then.
TEST_P(ImportTest, AddsNothingOfAFileThatIsNotWhole) {
  const std::vector<std::string> rows(3000, Region("c"));
  const std::string whole = Regions(rows);
  const std::string start = whole.substr(0, whole.size() - std::string("</lut_regions>\n").size());
  std::string deep = start;
  for (int i = 0; i < 100'000; ++i) deep += "<a>";
  for (const auto& [text, why] : std::vector<std::pair<std::string, std::string>>{
           {"", "line 1, column 1: the file is empty"},
           {"\n \n", "the file holds no XML element, or is cut off"},
           {"CODE,DEPTH\n1,2\n", "line 1, column 1: this is no XML"},
           {start, "line 3002, column 1: the file holds no XML element, or is cut off"},
           {start.substr(0, start.size() - 20), "line 3001, column "},
           {start + "<lut_region><region>a & b</region>",
            "line 3002, column 24: this is no XML: a \"<\" or \"&\""},
           {start + "<lut_region><region>&nbsp;</region>",
            "line 3002, column 21: there is an \"&\" that is none of"},
           {start + "<lut_region><region>\xE9</region>", "line 3002, column 21: this is no XML"},
           {start + "<lut_region><region>a<b>c</b></region>", "stands within the field region"},
           {start + "words</lut_regions>", "line 3002, column 1: text stands outside of the fields"},
           {whole + "<more/>", "something stands behind the end of the root element"},
           {deep, "stands within the field a"},
           {"<!DOCTYPE a [<!ENTITY x \"&#60;\">]>" + whole, "has a document type"},
           {"<!DOCTYPE a SYSTEM \"file:///etc/passwd\">" + whole, "has a document type"},
           {"<?xml version=\"1.0\" encoding=\"EBCDIC-CP-US\"?>" + whole,
            "the file is in the encoding EBCDIC-CP-US"},
           {start + "<" + std::string(200, 'n') + "/>", "the element's name is too long"},
           {start + "<lut_region " + std::string(2'000'000, 'n') + "/>", "longer than 1 MB"},
           {start + "<!--" + std::string(2'000'000, 'n'), "longer than 1 MB"}}) {
    const ImportResult result = Import(text);
    EXPECT_EQ(result.Added + result.Refused, 0) << why;
    EXPECT_THAT(result.Failed, AllOf(StartsWith(Folder / "in.xml, line "), HasSubstr(why)));
    EXPECT_FALSE(result.Error);
  }
  // A file that changes after it was looked through: by then rows have travelled.
  WriteFile(Folder / "in.xml", whole);
  UnwatchedProgress unwatched;
  const auto document = LoadDocument(Folder.Path(), "in.xml", unwatched);
  ASSERT_TRUE(document);
  EXPECT_EQ(document->Rows, 3000);
  WriteFile(Folder / "in.xml", start + "<lut_region><region>&bad;");
  EXPECT_THAT(ImportXml(here_->Database, *document, unwatched).Failed, HasSubstr("line 3002"));
  EXPECT_EQ(Count(), 0U);
  for (const char* name : {"none.xml", "."}) {
    EXPECT_THAT(ImportFile(here_->Database, Folder.Path(), name, unwatched).Failed,
                StartsWith("Cannot read "));
  }
}

TEST_P(ImportTest, ReadsOtherEncodingsAsWhatTheyAre) {
  const auto file = [](const std::string& encoding, const std::string& text) {
    return "<?xml version=\"1.0\" encoding=\"" + encoding + "\"?>" +
           Regions({"<region>" + text + "</region>"});
  };
  std::string wide = "\xFF\xFE";
  for (const char c : Regions({"<region>wide</region>"})) wide += {c, '\0'};
  for (const std::string& text : {file("ISO-8859-1", "caf\xE9"), file("windows-1252", "\x80 5"),
                                  "\xEF\xBB\xBF" + Regions({"<region>marked</region>"}), wide})
    EXPECT_EQ(Import(text).Failed, "");
  EXPECT_THAT(here_->Rows("lut_region"),
              ElementsAre("caf\xC3\xA9|NULL", "\xE2\x82\xAC 5|NULL", "marked|NULL", "wide|NULL"));
}

TEST_P(ImportTest, TellsOfTablesAndFieldsThatTheDatabaseLacks) {
  EXPECT_THAT(
      Import("<no_suches><no_such/></no_suches>").Failed,
      AllOf(StartsWith("The root element <no_suches> of "), HasSubstr("there is no table \"no_suche\"")));
  EXPECT_THAT(Import("<x/>").Failed, HasSubstr("there is no table \"\""));
  here_->Run("CREATE VIEW seen AS SELECT * FROM LUT_REGION");
  EXPECT_THAT(Import("<seens><seen/></seens>").Failed, HasSubstr("there is no table \"seen\""));
  // A root with a prefix, as some programs write it.
  EXPECT_EQ(
      Import("<p:LUT_REGIONx xmlns:p=\"u\"><p:row><p:region>A</p:region></p:row></p:LUT_REGIONx>").Added, 1);

  std::vector<std::string> rows(2000, Region("c"));
  rows.push_back("<region>A</region><colour>red</colour>");
  std::string second = here_->Open().Columns("LUT_REGION")->at(1).Name;
  const ImportResult result = Import(Regions(rows));
  EXPECT_EQ(result.Failed,
            "Field: colour does not exist in your database table. The matching field by index is: " + second +
                "   This will require you to correct the database.");
  EXPECT_EQ(result.Added, 0);
  EXPECT_EQ(Count(), 1U);
  rows.back() = "<region>A</region><colour></colour><region_code/>";
  EXPECT_EQ(Import(Regions(rows)).Added, 2001) << "a field without a text asks for nothing";
}

TEST_P(ImportTest, LeavesToTheDatabaseWhatTheFileDoesNotSay) {
  here_->Run(std::string("CREATE TABLE own (autokey ") +
             (GetParam() == Engine::SQLite ? "INTEGER PRIMARY KEY" : "SERIAL PRIMARY KEY") +
             ", a integer DEFAULT 7, b varchar(5) NOT NULL DEFAULT 'x', c varchar(5))");
  const ImportResult result = Import(
      "<owns><own><autokey>50</autokey><a>1</a><b>y</b><c>z</c></own><own><autokey>50</autokey><a></a></own>"
      "<own><b encoding=\"base64\"></b><c>last</c></own></owns>");
  EXPECT_EQ(result.Failed + RefusedText(result), "");
  EXPECT_THAT(here_->Rows("own"), ElementsAre("1|1|y|z", "2|7|x|NULL", "3|7||last"));
  here_->Run("CREATE TABLE full_row (a integer DEFAULT 7)");
  EXPECT_EQ(Import("<full_rows><full_row/></full_rows>").FirstRefused, "row 1: it has no value");
}

TEST_P(ImportTest, TellsOfFieldsBeyondThoseThatItTakes) {
  std::string create = "CREATE TABLE wide (", row = "<wide>";
  for (int i = 0; i < 120; ++i) {
    create += (i == 0 ? "c" : ", c") + std::to_string(i) + " integer";
    row += "<c" + std::to_string(i) + ">1</c" + std::to_string(i) + ">";
  }
  here_->Run(create + ")");
  const ImportResult result = Import("<wides>" + row + "</wide>" + row + "</wide></wides>");
  EXPECT_EQ(result.Added, 2);
  EXPECT_THAT(result.Notes,
              ElementsAre("2 rows have more than 101 fields; what stands behind those was left out"));
  EXPECT_FALSE(result.IsClean());
  EXPECT_THAT(here_->Rows("wide")[0], HasSubstr("1|1|NULL|NULL|"));
}

TEST_P(ImportTest, RefusesWhatTheServerSaysOfSingleRowsAmongMany) {
  here_->Run("CREATE TABLE strict (a smallint, b varchar(5) CHECK (b <> 'no'), UNIQUE (a))");
  std::string text = "<stricts>";
  for (int i = 0; i < 2500; ++i)
    text += "<strict><a>" + std::to_string(i == 700 ? 699 : i) + "</a><b>" +
            (i % 1000 == 500 ? "no" : "yes") + "</b></strict>";
  const ImportResult result = Import(text + "</stricts>");
  EXPECT_EQ(result.Failed, "");
  EXPECT_EQ(result.Refused, 3);
  EXPECT_EQ(result.Added, 2497);
  EXPECT_THAT(result.FirstRefused, StartsWith("row 501: "));
  if (GetParam() == Engine::PostgreSQL) {
    EXPECT_EQ(Import("<stricts><strict><a>70000</a></strict></stricts>").Refused, 1) << "is out of range";
  }
}

TEST_P(ImportTest, LeavesNothingWhenItIsStoppedAndNoFileWhenTheExportIs) {
  const std::string text = Regions(std::vector<std::string>(20'000, Region("c")));
  WriteFile(Folder / "in.xml", text);
  for (const int steps : {0, 5, 40}) {
    StopsAt progress(steps);
    const ImportResult result = ImportFile(here_->Database, Folder.Path(), "in.xml", progress);
    EXPECT_TRUE(result.Cancelled) << steps;
    EXPECT_EQ(result.Added, 0);
    EXPECT_EQ(Count(), 0U);
  }
  EXPECT_EQ(Import(text).Added, 20'000);
  StopsAt progress(20);
  EXPECT_TRUE(ExportTable(here_->Database, "lut_region", Folder / "out", Escaped, progress).Cancelled);
  EXPECT_THAT(std::filesystem::is_empty(Folder / "out"), true);
}

TEST_P(ImportTest, WaitsForAnotherProgramThatWrites) {
  OpenedDatabase other(Text());
  UnwatchedProgress unwatched;
  std::optional<Transaction> writing(Must(Transaction::BeginWriting(other.Open(), "LUT_REGION", unwatched)));
  struct EndsOther : Progress {
    std::optional<Transaction>& Writing;
    bool Waited = false;
    explicit EndsOther(std::optional<Transaction>& writing) : Writing(writing) {}
    bool Step(std::int64_t, std::int64_t, std::string_view what) override {
      if (what == Transaction::Waiting) {
        Waited = true;
        Writing.reset();
      }
      return true;
    }
  } progress(writing);
  WriteFile(Folder / "in.xml", Regions({Region("c")}));
  EXPECT_EQ(ImportFile(here_->Database, Folder.Path(), "in.xml", progress).Added, 1);
  EXPECT_TRUE(progress.Waited);
}

}  // namespace
}  // namespace hyetex::test
