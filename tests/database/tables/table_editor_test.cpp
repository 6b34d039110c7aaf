// Editing single rows: every editor, on every engine, and what others do to the same tables meanwhile.
#include "database/tables/table_editor.h"

#include <gmock/gmock.h>

#include "core/dates.h"
#include "database/access/create_tables.h"
#include "database/engines.h"

namespace hyetex::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class Tables : public EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    if (HasFatalFailure()) return;
    Db = Must(Connection::Open(Text()));
    Must(CreateTables(Db));
  }
  bool IsSqlite() const { return GetParam() == Engine::SQLite; }
  void Run(const std::string& sql) { Must(Db.Execute(sql)); }
  static const EditedTable& Entry(std::string_view name) {
    return *std::ranges::find(EditedTables(), name, &EditedTable::Entry);
  }
  std::unique_ptr<TableEditor> Open(std::string_view entry) {
    auto editor = TableEditor::Open(Entry(entry), Text());
    if (!editor) throw std::runtime_error(editor.error());
    return *std::move(editor);
  }
  /// Regions "a1", "a2"...
  void AddRegions(int count, int from = 1) {
    auto transaction = Must(Transaction::Begin(Db));
    auto writer = Must(RowWriter::Open(Db, "LUT_REGION", {"region", "region_code"}));
    for (int i = from; i < from + count; ++i)
      Must(writer.Add({"a" + std::to_string(i), std::to_string(i % 1000)}));
    Must(writer.Finish());
    Must(transaction.Commit());
  }
  static std::string First(TableEditor& editor) {
    return editor.Rows().HasRow() ? ShownValue(editor.Fields()[0], editor.Rows().Values()[0]) : "none";
  }
  /// The record's number and its first value.
  static std::string Now(TableEditor& editor) {
    return std::to_string(editor.Rows().AbsolutePosition()) + " " + First(editor);
  }
  RowFate Change(TableEditor& editor, const char* column, DbValue value) {
    editor.Rows().Edit();
    return Must(editor.Rows().Update({{column, std::move(value)}}, Unwatched));
  }
  std::vector<std::string> Stored(const std::string& table, const std::string& column) {
    std::vector<std::string> values;
    auto rows = Must(Recordset::Open(Db, table, {.Columns = {column}}));
    for (; !rows.Eof(); Must(rows.MoveNext())) values.push_back(TextOf(Must(rows.Value(0))));
    std::ranges::sort(values);
    return values;
  }
  /// From the first row to the last and back; each once, with its number.
  void ExpectWhole(TableEditor& editor, const std::vector<std::string>& values) {
    TableCursor& rows = editor.Rows();
    Must(rows.MoveFirst());
    std::vector<std::string> there, back;
    for (std::size_t i = 0; i < values.size(); ++i) {
      ASSERT_EQ(rows.AbsolutePosition(), static_cast<std::int64_t>(i) + 1);
      there.push_back(First(editor));
      Must(rows.MoveNext());
    }
    ASSERT_EQ(there, values);
    EXPECT_EQ(rows.AbsolutePosition(), std::ssize(values)) << "and it stays on the last one";
    Must(rows.MoveLast());
    for (std::size_t i = values.size(); i > 0; --i) {
      ASSERT_EQ(rows.AbsolutePosition(), static_cast<std::int64_t>(i));
      back.insert(back.begin(), First(editor));
      Must(rows.MovePrevious());
    }
    ASSERT_EQ(back, values);
    EXPECT_EQ(rows.AbsolutePosition(), 1);
    EXPECT_EQ(Must(rows.Count()), std::ssize(values));
  }
  static std::vector<std::string> Regions(int count) {
    std::vector<std::string> values;
    for (int i = 1; i <= count; ++i) values.push_back("a" + std::to_string(i));
    return values;
  }

  Connection Db;
  UnwatchedProgress Unwatched;
};
HYETEX_ON_ALL_ENGINES(Tables);

// A value for each kind of box, as an operator types it.
std::string Typed(const Field& field, int number) {
  switch (field.Kind) {
    case FieldKind::Moment:
      return number % 2 == 0 ? "05/03/1998" : "06/03/1998 14:30";
    case FieldKind::Whole:
      return std::to_string(number);
    case FieldKind::Number:
      return std::to_string(number) + ",25";
    default:
      return "t" + std::to_string(number);
  }
}

TEST_P(Tables, OpenInEveryEditorAddPageEditAndDelete) {
  Run("INSERT INTO INSTRUMENT (instrument_code_id) VALUES ('NM-Hill-1')");
  EXPECT_EQ(EditedTables().size(), 13U);
  for (const EditedTable& table : EditedTables()) {
    SCOPED_TRACE(table.Entry);
    auto editor = Open(table.Entry);
    TableCursor& rows = editor->Rows();
    if (table.Entry == "INSTRUMENT") Must(rows.Delete(Unwatched));
    EXPECT_FALSE(rows.HasRow()) << "an empty table";
    EXPECT_EQ(rows.AbsolutePosition(), 0);
    for (int number : {0, 1, 2}) {
      rows.AddNew();
      TableCursor::Changes changes;
      for (const Field& field : editor->Fields()) {
        if (field.Kind == FieldKind::Picture)
          changes[field.Column] = DbBinary{std::string("\x89PNG\0\xFF", 6)};
        else
          changes[field.Column] = EnteredValue(field, Typed(field, number));
      }
      ASSERT_EQ(Must(rows.Update(changes, Unwatched)), RowFate::Same);
      EXPECT_EQ(rows.AbsolutePosition(), number + 1);
      EXPECT_FALSE(rows.EditingRecord());
    }
    ASSERT_TRUE(editor->Requery());
    Must(rows.MoveFirst());
    Must(rows.MoveNext());
    for (const Field& field : editor->Fields()) {
      const DbValue value = Must(editor->Value(field));
      if (field.Kind == FieldKind::Picture)
        EXPECT_EQ(value, DbValue(DbBinary{std::string("\x89PNG\0\xFF", 6)}));
      else if (field.Kind == FieldKind::Number)
        EXPECT_EQ(ShownValue(field, value), "1.25");
      else
        EXPECT_EQ(ShownValue(field, value),
                  field.Kind == FieldKind::Moment ? "06/03/1998 14:30:00" : Typed(field, 1));
    }
    // One value is taken away and another one changed; the record stands where it stood.
    rows.Edit();
    const Field &one = editor->Fields()[0], &other = editor->Fields()[1];
    ASSERT_EQ(Must(rows.Update(
                  {{one.Column, EnteredValue(one, "")}, {other.Column, EnteredValue(other, Typed(other, 2))}},
                  Unwatched)),
              RowFate::Same);
    EXPECT_EQ(rows.AbsolutePosition(), 2);
    EXPECT_EQ(Must(editor->Value(one)), DbValue());
    EXPECT_EQ(ShownValue(other, Must(editor->Value(other))),
              other.Kind == FieldKind::Moment ? "05/03/1998" : Typed(other, 2));
    ASSERT_EQ(Must(rows.Delete(Unwatched)), RowFate::Same);
    EXPECT_EQ(ShownValue(one, Must(editor->Value(one))), ShownValue(one, EnteredValue(one, Typed(one, 2))));
    EXPECT_EQ(rows.AbsolutePosition(), 2);
    ASSERT_EQ(Must(rows.Delete(Unwatched)), RowFate::Same);
    EXPECT_EQ(rows.AbsolutePosition(), 1) << "behind the last one comes the one before it";
    ASSERT_EQ(Must(rows.Delete(Unwatched)), RowFate::Same);
    EXPECT_FALSE(rows.HasRow());
    if (table.Entry == "INSTRUMENT") Run("INSERT INTO INSTRUMENT (instrument_code_id) VALUES ('NM-Hill-1')");
  }
}

TEST_P(Tables, PageExactlyBothWaysOverTenThousandRowsThatAreChangedOnTheWay) {
  constexpr int count = 10'250;
  AddRegions(count - 500);
  auto editor = Open("LUT REGION");
  TableCursor& rows = editor->Rows();
  EXPECT_EQ(rows.LoadedRows(), TableCursor::PageRows);
  std::vector<std::string> expected = Regions(count);
  Must(rows.MoveNext());
  ASSERT_EQ(Change(*editor, "region", std::string("moved")), RowFate::Same);
  expected[1] = "moved";
  AddRegions(500, count - 499);  // behind the place where PostgreSQL has the changed one now
  // Both ends and a place in between, each by one page; then what lies between is read from either side.
  Must(rows.MoveLast());
  EXPECT_EQ(Now(*editor), "10250 a10250");
  for (int i = 0; i < 150; ++i) Must(rows.MovePrevious());
  EXPECT_EQ(Now(*editor), "10100 a10100");
  ASSERT_TRUE(Must(editor->Find("A5000", Unwatched)));
  EXPECT_EQ(Now(*editor), "5000 a5000");
  for (int i = 0; i < 5; ++i) Must(rows.MovePrevious());
  EXPECT_EQ(Now(*editor), "4995 a4995");
  EXPECT_FALSE(Must(editor->Find("a5000%", Unwatched)));
  EXPECT_LT(rows.LoadedRows(), 300);
  // A changed row stands where it stood, wherever the database has it now; a new one at the end.
  for (const int at : {4995, 3, 10'240}) {
    ASSERT_TRUE(Must(editor->Find("a" + std::to_string(at), Unwatched)));
    ASSERT_EQ(rows.AbsolutePosition(), at);
    for (const char* text : {"changed", "changed again"})
      ASSERT_EQ(Change(*editor, "region", text + std::to_string(at)), RowFate::Same);
    EXPECT_EQ(rows.AbsolutePosition(), at);
    expected[static_cast<std::size_t>(at) - 1] = "changed again" + std::to_string(at);
  }
  ASSERT_TRUE(Must(editor->Find("a7777", Unwatched)));
  EXPECT_EQ(Now(*editor), "7777 a7777") << "the changed rows count where they are shown";
  rows.AddNew();
  Must(rows.Update({{"region", std::string("new")}}, Unwatched));
  EXPECT_EQ(Now(*editor), "10251 new");
  expected.push_back("new");
  ASSERT_TRUE(Must(editor->Find("a100", Unwatched)));
  ASSERT_EQ(Must(rows.Delete(Unwatched)), RowFate::Same);
  EXPECT_EQ(Now(*editor), "100 a101");
  expected.erase(expected.begin() + 99);
  ExpectWhole(*editor, expected);
}

TEST_P(Tables, AreSearchedByStretchesAndTheSearchCanBeStopped) {
  constexpr int count = 120'000;
  AddRegions(count);
  Run("DELETE FROM LUT_REGION WHERE region_code = '7'");
  auto editor = Open("LUT REGION");
  for (const int at : {1, 49'999, 50'000, 50'001, 50'051, 100'100, count}) {
    ASSERT_TRUE(Must(editor->Find("a" + std::to_string(at), Unwatched))) << at;
    EXPECT_EQ(Now(*editor), std::to_string(at - (at + 993) / 1000) + " a" + std::to_string(at));
  }
  EXPECT_FALSE(Must(editor->Find("b", Unwatched)));
  struct Stopped : Progress {
    bool Step(std::int64_t, std::int64_t, std::string_view) override { return false; }
  } stopped;
  if (IsSqlite()) {
    EXPECT_EQ(editor->Find("b", stopped).error().Number, db_error::Cancelled);
  }
  EXPECT_EQ(First(*editor), "a120000") << "which stays";
}

TEST_P(Tables, StandInTheOrderOfTheirColumn) {
  auto transaction = Must(Transaction::Begin(Db));
  auto writer = Must(RowWriter::Open(Db, "INSTRUMENT_VISIT", {"instrument_code_id", "comments"}));
  for (int i = 0; i < 450; ++i)
    Must(writer.Add({i % 5 == 4 ? DbValue() : DbValue("NM-" + std::to_string(i % 4)), std::to_string(i)}));
  Must(writer.Finish());
  Must(transaction.Commit());
  std::vector<std::string> expected;
  for (int code = 0; code < 4; ++code)
    for (int i = 0; i < 450; ++i)
      if (i % 5 != 4 && i % 4 == code) expected.push_back("NM-" + std::to_string(code));
  const auto none = static_cast<std::ptrdiff_t>(450 - expected.size());
  expected.insert(IsSqlite() ? expected.begin() : expected.end(), static_cast<std::size_t>(none), "");
  auto editor = Open("INSTRUMENT VISIT");
  ExpectWhole(*editor, expected);
  Must(editor->Rows().MoveFirst());
  ASSERT_EQ(Change(*editor, "instrument_code_id", std::string("NM-9")), RowFate::Same);
  expected[0] = "NM-9";
  ExpectWhole(*editor, expected);
  ASSERT_TRUE(editor->Requery());
  std::ranges::rotate(expected, expected.begin() + 1);
  if (!IsSqlite()) std::ranges::rotate(expected.end() - none - 1, expected.end() - 1, expected.end());
  ExpectWhole(*editor, expected);
}

TEST_P(Tables, AreNotOverwrittenWhereSomebodyElseHasChangedTheRow) {
  AddRegions(5);
  auto editor = Open("LUT REGION"), other = Open("LUT REGION");
  TableCursor& rows = editor->Rows();
  Must(rows.MoveNext());
  Must(other->Rows().MoveNext());
  rows.Edit();
  ASSERT_EQ(Change(*other, "region_code", std::string("xx")), RowFate::Same);
  // Another column of the same row is a change of what was looked at.
  EXPECT_EQ(Must(rows.Update({{"region", std::string("mine")}}, Unwatched)), RowFate::Changed);
  EXPECT_TRUE(rows.EditingRecord()) << "it can be tried again, or given up";
  EXPECT_THAT(Stored("LUT_REGION", "region"), ElementsAre("a1", "a2", "a3", "a4", "a5"));
  EXPECT_EQ(Must(rows.Reload()), RowFate::Same);
  EXPECT_EQ(rows.Values()[1], DbValue(std::string("xx")));
  EXPECT_EQ(Now(*editor), "2 a2");
  ASSERT_EQ(Change(*editor, "region", std::string("mine")), RowFate::Same);
  EXPECT_EQ(Must(other->Rows().Delete(Unwatched)), RowFate::Changed) << "nor is it deleted unseen";

  // Two that begin at once: the second finds what the first has stored.
  ASSERT_TRUE(other->Requery());
  EXPECT_EQ(Now(*other), IsSqlite() ? "2 mine" : "1 a1");
  Must(rows.MoveLast());
  Must(other->Rows().MoveFirst());
  while (First(*other) != "a5") Must(other->Rows().MoveNext());
  ASSERT_EQ(Must(other->Rows().Delete(Unwatched)), RowFate::Same);
  rows.Edit();
  EXPECT_EQ(Must(rows.Update({{"region", std::string("late")}}, Unwatched)), RowFate::Gone);
  EXPECT_EQ(Must(rows.Reload()), RowFate::Gone);
  EXPECT_EQ(Now(*editor), "4 a4") << "the last one now";
  Must(rows.MoveFirst());
  Run("DELETE FROM LUT_REGION WHERE region = 'mine' OR region = 'a3'");
  Must(rows.MoveNext());
  EXPECT_EQ(Now(*editor), "2 a4") << "rows that are gone are passed over";
  EXPECT_THAT(Stored("LUT_REGION", "region"), ElementsAre("a1", "a4"));
  Run("DELETE FROM LUT_REGION");
  EXPECT_EQ(Must(rows.Delete(Unwatched)), RowFate::Gone);
  EXPECT_EQ(Must(rows.Reload()), RowFate::Gone);
  EXPECT_FALSE(rows.HasRow());
}

// Not even where the other one has not finished yet; nobody waits for that without a way out.
TEST_P(Tables, WaitForNobodyWhoIsInTheMiddleOfAChange) {
  struct Impatient : Progress {
    bool Step(std::int64_t, std::int64_t, std::string_view) override { return false; }
  } impatient;
  AddRegions(2);
  auto editor = Open("LUT REGION");
  TableCursor& rows = editor->Rows();
  rows.Edit();
  {
    auto transaction = Must(Transaction::Begin(Db));
    Run("UPDATE LUT_REGION SET region_code = 'x'");
    const auto refused = rows.Update({{"region", std::string("mine")}}, impatient);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().Number, IsSqlite() ? db_error::Cancelled : db_error::Locked);
    Must(transaction.Commit());
  }
  EXPECT_EQ(Must(rows.Update({{"region", std::string("mine")}}, impatient)), RowFate::Changed);
  EXPECT_EQ(Must(rows.Reload()), RowFate::Same);
  EXPECT_EQ(Change(*editor, "region", std::string("mine")), RowFate::Same);
  EXPECT_THAT(Stored("LUT_REGION", "region"), ElementsAre("a2", "mine"));
  EXPECT_THAT(Stored("LUT_REGION", "region_code"), ElementsAre("x", "x"));
}

TEST_P(Tables, KeepAPendingChangeThatTheDatabaseRefuses) {
  Run("DROP TABLE LUT_REGION");
  Run("CREATE TABLE LUT_REGION (region VARCHAR(60) PRIMARY KEY, region_code VARCHAR(5) NOT NULL)");
  AddRegions(3);
  auto editor = Open("LUT REGION");
  TableCursor& rows = editor->Rows();
  rows.Edit();
  auto refused = rows.Update({{"region", std::string("a2")}}, Unwatched);
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.error().Number, db_error::ConstraintViolation);
  EXPECT_TRUE(rows.EditingRecord());
  ASSERT_EQ(Must(rows.Update({{"region", std::string("b")}}, Unwatched)), RowFate::Same);
  rows.AddNew();
  EXPECT_FALSE(rows.Update({{"region", std::string("c")}}, Unwatched));
  EXPECT_TRUE(rows.IsNew());
  Must(rows.Update({{"region", std::string("c")}, {"region_code", std::string("1")}}, Unwatched));
  EXPECT_EQ(Now(*editor), "4 c");
  EXPECT_THAT(Stored("LUT_REGION", "region"), ElementsAre("a2", "a3", "b", "c"));
}

TEST_P(Tables, AreEditedWithoutRowNumbersAsWell) {
  if (IsSqlite()) {
    Run("DROP TABLE LUT_REGION");
    Run("CREATE TABLE LUT_REGION (region VARCHAR(60) PRIMARY KEY, region_code VARCHAR(5)) WITHOUT ROWID");
  } else {
    Run("ALTER TABLE LUT_REGION RENAME TO stored_region");
    Run("CREATE VIEW LUT_REGION AS SELECT * FROM stored_region");
  }
  std::vector<std::string> expected = Regions(250);
  AddRegions(250);
  if (IsSqlite()) std::ranges::sort(expected);
  auto editor = Open("LUT REGION");
  TableCursor& rows = editor->Rows();
  ExpectWhole(*editor, expected);
  ASSERT_TRUE(Must(editor->Find("A17", Unwatched)));
  const std::int64_t at = rows.AbsolutePosition();
  EXPECT_EQ(First(*editor), "a17");
  for (const char* name : {"zz", "zy"}) {
    ASSERT_EQ(Change(*editor, "region", std::string(name)), RowFate::Same);
    EXPECT_EQ(Now(*editor), std::to_string(at) + " " + name);
  }
  expected[static_cast<std::size_t>(at) - 1] = "zy";
  rows.AddNew();
  Must(rows.Update({{"region", std::string("new")}}, Unwatched));
  expected.emplace_back("new");
  ExpectWhole(*editor, expected);
  Must(rows.MoveLast());
  ASSERT_EQ(Must(rows.Delete(Unwatched)), RowFate::Same);
  EXPECT_EQ(Stored("LUT_REGION", "region").size(), 250U);
}

TEST_P(Tables, OfAMasterGoWithIt) {
  for (const char* code : {"NM-Hill-1", "NM-Mill-1", "NM-Dam-1"})
    Run(std::string("INSERT INTO INSTRUMENT (instrument_code_id) VALUES ('") + code + "')");
  Run("INSERT INTO MANUAL_GAGE (instrument_code_id, depth) VALUES ('NM-Mill-1', 1.5)");
  Run("INSERT INTO MANUAL_GAGE (instrument_code_id, depth) VALUES ('nm-mill-1', 2.5)");
  auto editor = Open("MANUAL GAGE");
  EXPECT_FALSE(editor->Rows().HasRow());
  Must(editor->Moved().MoveNext());
  Must(editor->FollowMaster());
  EXPECT_EQ(Must(editor->Rows().Count()), 2);
  ASSERT_TRUE(Must(editor->Find("nm-dam", Unwatched)));
  EXPECT_EQ(editor->Moved().AbsolutePosition(), 3);
  EXPECT_EQ(Must(editor->Rows().Count()), 0);
  editor->Rows().AddNew();
  Must(editor->Rows().Update({{"depth", 3.5}}, Unwatched));
  EXPECT_EQ(Must(editor->Rows().Count()), 1);
  EXPECT_THAT(Stored("MANUAL_GAGE", "instrument_code_id"), ElementsAre("NM-Dam-1", "NM-Mill-1", "nm-mill-1"));
}

TEST_P(Tables, ThatAreNotAsTheirEditorsAreTellSo) {
  const auto why = [&](std::string_view entry, const std::string& text) {
    const auto editor = TableEditor::Open(Entry(entry), text);
    return editor ? "it opens" : editor.error();
  };
  Run("DROP TABLE LUT_REGION");
  EXPECT_THAT(why("LUT REGION", Text()), HasSubstr("The database has no table LUT_REGION."));
  Run("DROP TABLE INSTRUMENT");
  EXPECT_THAT(why("MANUAL GAGE", Text()), HasSubstr("no table INSTRUMENT."));
  Run("ALTER TABLE STATION DROP COLUMN utme");
  Run("ALTER TABLE STATION DROP COLUMN links");
  EXPECT_EQ(why("STATION", Text()),
            "The table STATION of this database has other columns than its editor: it lacks links, utme.");
  EXPECT_THAT(why("STATION", "DSN=nowhere"), HasSubstr("The database cannot be reached: "));
  EXPECT_EQ(why("STATION", ""), "No database has been selected.");
}

TEST(Fields, TakeWhatTheirColumnsHold) {
  const auto field = [](FieldKind kind, std::int64_t width = 0, double least = 0, double most = 0) {
    return Field{.Column = "c", .Label = "C", .Kind = kind, .Width = width, .Least = least, .Most = most};
  };
  const Field whole = field(FieldKind::Whole, 0, -32768, 32767), text = field(FieldKind::Text, 4),
              number = field(FieldKind::Number), day = field(FieldKind::Moment);
  for (const auto& [box, typed, value] : std::vector<std::tuple<Field, std::string, DbValue>>{
           {whole, " 12 ", std::int64_t{12}},
           {whole, "-32768", std::int64_t{-32768}},
           {number, "2,5", 2.5},
           {number, " ", DbValue()},
           {text, "äöüß", std::string("äöüß")},
           {text, " ", std::string(" ")},
           {text, "", DbValue()},
           {day, "5.3.1998", DbDate{MakeDate(1998, 3, 5)}},
           {day, "05/03/1998 23:59:58", DbDate{MakeDate(1998, 3, 5, 23, 59, 58)}},
           {day, "", DbValue()}}) {
    EXPECT_EQ(CheckEntry(box, typed), std::nullopt) << typed;
    EXPECT_EQ(EnteredValue(box, typed), value) << typed;
  }
  for (const auto& [box, typed] : std::vector<std::pair<Field, std::string>>{{whole, "32768"},
                                                                             {whole, "2.5"},
                                                                             {whole, "12x"},
                                                                             {number, "2,5.1"},
                                                                             {number, "1e99"},
                                                                             {text, "äöüßx"},
                                                                             {text, "     "},
                                                                             {day, "31/02/1998"},
                                                                             {day, "05/03/98"},
                                                                             {day, "5/3/1998 24:00"},
                                                                             {day, "5/3/1998 7"},
                                                                             {day, "5/3/1998 07:00:00:00"}})
    EXPECT_NE(CheckEntry(box, typed), std::nullopt) << typed;
  EXPECT_EQ(*CheckEntry(text, "äöüßx"), "C has room for 4 characters; these are 5.");
  EXPECT_EQ(ShownValue(text, std::string("ab  ")), "ab");
  EXPECT_EQ(ShownValue(day, std::string("some day")), "some day") << "which is none";
}

}  // namespace
}  // namespace hyetex::test
