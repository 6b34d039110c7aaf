// Tables to XML files and back, on both engines.
#include "exchange/exchange_fixture.h"

#include <cmath>
#include <map>
#include <random>

#include "core/dates.h"
#include "core/text.h"
#include "database/access/schema.h"

namespace hyetex::test {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

HYETEX_ON_ALL_ENGINES(ExchangeTest);

const std::vector<std::string>& HardTexts() {
  static const std::vector<std::string> texts{"plain",
                                              " ",
                                              "",
                                              "<&>]]>",
                                              "a &lt; b",
                                              "x\r\ny\rz\n\t",
                                              "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8C\xA7",
                                              "bell\x07",
                                              "\xEF\xBF\xBF",
                                              "<![CDATA[x]]>",
                                              "NULL"};
  return texts;
}

// Every table of ours, every type of column, whatever a value holds: through files into another database.
TEST_P(ExchangeTest, GivesAWholeDatabaseBackAsItWasInAnyDatabase) {
  std::mt19937 random(7);
  std::string bytes(5000, '\0');
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i % 251);
  std::vector<SchemaTable> tables(SchemaTables().begin(), SchemaTables().end());
  tables.push_back(ConversionTable());
  for (const SchemaTable& table : tables) {
    std::vector<std::string> columns;
    for (const SchemaColumn& column : table.Columns) columns.emplace_back(column.Name);
    auto writer = Must(RowWriter::Open(here_->Open(), table.Name, columns));
    for (std::size_t row = 0; row < 2 * HardTexts().size(); ++row) {
      std::vector<DbValue> values;
      for (const SchemaColumn& column : table.Columns) {
        const auto number = static_cast<double>(random()) / 7919;
        DbValue value;
        switch (row % 5 == 4 || column.Name == "autokey" ? ColumnType::Other : column.Type) {
          case ColumnType::SmallInt:
            value = static_cast<std::int64_t>(row) - 5;
            break;
          case ColumnType::Integer:
            value = row == 0 ? -2147483648LL : static_cast<std::int64_t>(number);
            break;
          case ColumnType::Real:
            value = static_cast<double>(std::round(number * 100) / 100);
            break;
          case ColumnType::Double:
            value = row == 1 ? 5e-324 : row == 2 ? -1.7976931348623157e308 : number;
            break;
          case ColumnType::DateTime:
            value =
                DbDate{row == 0 ? MakeDate(1925, 1, 2) : MakeDate(1998, 3, 5, 10, 7, static_cast<int>(row))};
            break;
          case ColumnType::VarChar:
            value = CutToWidth(HardTexts()[row % HardTexts().size()], column.Size);
            break;
          case ColumnType::LongBinary:
            value = DbBinary{row == 0 ? bytes : row == 1 ? std::string(1, '\0') : HardTexts()[row % 11]};
            break;
          case ColumnType::Other:
            break;
        }
        values.push_back(std::move(value));
      }
      Must(writer.Add(std::move(values)));
    }
    Must(writer.Finish());
  }

  UnwatchedProgress unwatched;
  const auto exported =
      ExportTables(here_->Database, Must(TablesThere(here_->Open())), Folder / "out", Escaped, unwatched);
  ASSERT_THAT(exported.Failed, IsEmpty());
  ASSERT_EQ(exported.Tables.size(), tables.size());
  EXPECT_EQ(exported.Tables[0].Path, Folder / "out/station.xml");

  // Into a database file, and from that, once more out, back into this database.
  ASSERT_TRUE(CreateDatabaseFile(Folder / "other.sqlite"));
  OpenedDatabase other("Driver=SQLite3;Database=" + (Folder / "other.sqlite") + ";SyncPragma=OFF");
  std::map<std::string, std::vector<std::string>> rows;
  for (const ExportedTable& table : exported.Tables) rows[table.Table] = here_->Rows(table.Table);
  for (const ExportedTable& table : exported.Tables) {
    const ImportResult in = ImportFile(other.Database, "", table.Path, unwatched);
    EXPECT_EQ(in.Failed + RefusedText(in), "") << table.Table;
    EXPECT_EQ(in.Added, table.Rows);
    const std::string file = ReadFile(table.Path);
    const ExportResult again = ExportTable(other.Database, table.Table, Folder / "again", Escaped, unwatched);
    ASSERT_THAT(again.Failed, IsEmpty());
    // Names of columns are spelled as each database does.
    EXPECT_EQ(UpperAscii(ReadFile(again.Tables[0].Path)), UpperAscii(file)) << table.Table;
    here_->Run("DELETE FROM " + table.Table);
    const ImportResult back = ImportFile(here_->Database, "", again.Tables[0].Path, unwatched);
    EXPECT_EQ(back.Failed + RefusedText(back), "") << table.Table;
    EXPECT_EQ(here_->Rows(table.Table), rows[table.Table]) << table.Table;
  }
  EXPECT_EQ(here_->Rows("chart").size(), 2 * HardTexts().size());
}

TEST_P(ExchangeTest, WritesOneElementALineAndEscapesWhatXmlWouldNotGiveBack) {
  here_->Run("INSERT INTO LUT_REGION (region, region_code) VALUES (?, ?)", {"A<B & C\r\n", DbNull()});
  here_->Run("INSERT INTO LUT_REGION (region, region_code) VALUES (?, ?)", {"]]>\x01", ""});
  ExportResult result = Export("LUT_Region");
  ASSERT_EQ(result.Tables.size(), 1U);
  EXPECT_EQ(
      File("LUT_Region"),
      "<LUT_Regions>\n<LUT_Region>\n<region>A&lt;B &amp; C&#13;\n</region>\n<region_code></region_code>\n"
      "</LUT_Region>\n<LUT_Region>\n<region encoding=\"base64\">XV0+AQ==</region>\n"
      "<region_code encoding=\"base64\"></region_code>\n</LUT_Region>\n</LUT_Regions>\n");
  EXPECT_THAT(
      NotesOf(result.Tables[0], Markup::Escaped),
      ElementsAre("1 value that XML has no characters for, written as base64, the first in row 2, region"));

  // Unchanged only after the operator has heard of them; and nothing at all where that stops it.
  const std::string escaped = File("LUT_Region");
  std::string asked;
  const auto ask = [&](std::optional<Markup> answer) {
    return [&asked, answer](const std::vector<const ExportedTable*>& marked) {
      asked = MarkupQuestion(marked);
      return answer;
    };
  };
  EXPECT_TRUE(Export("LUT_Region", ask(std::nullopt)).Cancelled);
  EXPECT_EQ(File("LUT_Region"), escaped);
  EXPECT_THAT(asked, HasSubstr("LUT_Region: 1 value, the first in row 1, region\n\n"));
  result = Export("LUT_Region", ask(Markup::Unchanged));
  EXPECT_THAT(File("LUT_Region"), AllOf(HasSubstr("<region>A<B & C\r\n</region>"),
                                        HasSubstr("<region_code></region_code>\n</LUT_Region>\n</LUT_R")));
  EXPECT_EQ(NotesOf(result.Tables[0], Markup::Unchanged).size(), 4U);
  EXPECT_THAT(Import(File("LUT_Region")).Failed, HasSubstr("in.xml, line 3, column "));
  EXPECT_EQ(here_->Rows("lut_region").size(), 2U);
  for (const auto& left : std::filesystem::directory_iterator(Folder / "out"))
    EXPECT_EQ(left.path().filename(), "LUT_Region.xml") << "no temporary file stays";
}

TEST_P(ExchangeTest, WritesAnEmptyTableAndNamesATableThatIsNotThere) {
  EXPECT_EQ(Export("logger").Tables.at(0).Rows, 0);
  EXPECT_EQ(File("logger"), "<loggers>\n</loggers>\n");
  EXPECT_EQ(Import(File("logger")).Failed, "");
  const ExportResult none = Export("no_such");
  ASSERT_EQ(none.Failed.size(), 1U);
  EXPECT_EQ(none.Failed[0].Error.Description, "The database has no table no_such");
  here_->Run("CREATE TABLE odd (a integer, " + here_->Open().Quoted("two words") + " integer)");
  EXPECT_THAT(Export("odd").Failed.at(0).Error.Description,
              HasSubstr("\"two words\" can be no element's name"));
  WriteFile(Folder / "file", "");
  UnwatchedProgress unwatched;
  EXPECT_EQ(ExportTable(here_->Database, "logger", Folder / "file/x", Escaped, unwatched).Failed.size(), 1U);
}

// What a database of others holds beyond our own precision.
TEST_P(ExchangeTest, KeepsFractionsOfSecondsAndEveryDigit) {
  const bool sqlite = GetParam() == Engine::SQLite;
  here_->Run("CREATE TABLE fine (t timestamp, d double precision, b bigint, n numeric(40, 10), a date)");
  here_->Run(
      "INSERT INTO fine VALUES ('1998-03-05 10:00:00.125', 0.1234567890123456, 9007199254740993, "
      "1234567890123456789, "
      "'1998-03-05')");
  here_->Run("INSERT INTO fine VALUES ('0033-12-31 00:00:00', 1e-300, -9223372036854775807, NULL, NULL)");
  ASSERT_EQ(Export("fine").Tables.size(), 1U);
  EXPECT_THAT(File("fine"),
              AllOf(HasSubstr("<t>1998-03-05T10:00:00.125</t>\n<d>0.1234567890123456</d>\n"
                              "<b>9007199254740993</b>\n<n>1234567890123456789"),
                    HasSubstr("<a>1998-03-05</a>"), HasSubstr("<t>0033-12-31T00:00:00</t>\n<d>1e-300</d>")));
  const auto rows = here_->Rows("fine");
  here_->Run("DELETE FROM fine");
  EXPECT_EQ(Import(File("fine")).Added, 2);
  EXPECT_EQ(here_->Rows("fine"), rows);
  if (!sqlite) return;
  // SQLite keeps in a column what it is given: it goes out as it is, and comes in only as what it should be.
  here_->Run("INSERT INTO fine VALUES ('some day', 'much', 'three', 1, 2)");
  ASSERT_EQ(Export("fine").Tables.size(), 1U);
  EXPECT_THAT(File("fine"), HasSubstr("<t>some day</t>\n<d>much</d>\n<b>three</b>"));
  EXPECT_EQ(Import(File("fine")).FirstRefused,
            "row 3: t: \"some day\" is no date and time, as in 1998-03-05T10:30:00");
}

TEST_P(ExchangeTest, RefusesRowsThatTheDatabaseHasAndAddsTheOthers) {
  here_->Run("CREATE UNIQUE INDEX one_region ON LUT_REGION (region_code)");
  here_->Run("INSERT INTO LUT_REGION (region_code) VALUES ('c2500')");
  std::vector<std::string> rows;
  for (int i = 0; i < 3000; ++i) rows.push_back(Region("c" + std::to_string(i)));
  ImportResult result = Import(Regions(rows));
  EXPECT_EQ(result.Failed, "");
  EXPECT_EQ(result.Added, 2999);
  EXPECT_EQ(result.Refused, 1);
  EXPECT_THAT(result.FirstRefused, AllOf(StartsWith("row 2501: "), HasSubstr("-2147217873")));
  // Twice in the file, and all of it again.
  rows.push_back(Region("d"));
  rows.push_back(Region("d"));
  result = Import(Regions(rows));
  EXPECT_EQ(result.Added, 1);
  EXPECT_EQ(result.Refused, 3001);
  EXPECT_THAT(result.FirstRefused, StartsWith("row 1: "));
  EXPECT_EQ(here_->Rows("lut_region").size(), 3001U);
}

TEST_P(ExchangeTest, RefusesRowsOfWrongValuesWithTheReasonAndNeverCutsOne) {
  const auto chart = [](const std::string& fields) {
    return "<charts><chart>" + fields + "</chart></charts>";
  };
  const std::string good = "<depth>0.2</depth>";
  for (const auto& [fields, why] : std::vector<std::pair<std::string, std::string>>{
           {"<depth>2 mm</depth>", "depth: \"2 mm\" is no number"},
           {"<depth>1e999</depth>", "depth: \"1e999\" is no number"},
           {"<depth>nan</depth>", "depth: \"nan\" is no number"},
           {"<start_time>31/02/1998</start_time>", "\"31/02/1998\" is no date and time"},
           {"<start_time>5/3/1998 10:00:00 AM</start_time>", "is no date and time"},
           {"<start_time>1998-03-05T24:00:00</start_time>", "is no date and time"},
           {"<station>a name longer than the column</station>", "is longer than the column's 25 characters"},
           {"<station>a name with blanks              </station>",
            "is longer than the column's 25 characters"},
           {"<station encoding=\"base64\">AAA=</station>", "holds a NUL"},
           {"<station encoding=\"base64\">AA*A</station>", "station: it is no base64"},
           {"<station encoding=\"rot13\">AA</station>", "its encoding \"rot13\" is not known"},
           {good + good, "the field depth stands in it twice"}}) {
    const ImportResult result = Import(chart(fields));
    EXPECT_EQ(result.Refused, 1) << fields;
    EXPECT_EQ(result.Added, 0) << fields;
    EXPECT_THAT(result.FirstRefused, AllOf(StartsWith("row 1: "), HasSubstr(why))) << fields;
  }
  // Other ways to write the same are taken.
  const ImportResult result =
      Import(chart("<DEPTH> 0,25 </DEPTH><x:station>  caf\xC3\xA9s, 25 characters </x:station><comments/>"
                   "<start_time>05/03/1998 10:07</start_time><end_time>\n</end_time>"));
  EXPECT_EQ(result.Failed + RefusedText(result), "");
  EXPECT_THAT(
      here_->Rows("chart"),
      ElementsAre(StartsWith("  caf\xC3\xA9s, 25 characters |NULL|1998-03-05 10:07:00|NULL|0.25|NULL|")));
}

}  // namespace
}  // namespace hyetex::test
