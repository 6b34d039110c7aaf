#include "platform/odbc/recordset.h"

#include <gmock/gmock.h>

#include "core/dates.h"
#include "database/engines.h"

namespace hyetex {
namespace {

using namespace std::string_literals;
using ::testing::HasSubstr;

using test::Must;

class OdbcTest : public test::EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    Db = Must(Connection::Open(Text()));
    const auto word = [&](ColumnType type, int size = 0) { return Must(Db.TypeWord(type, size)); };
    Must(Db.Execute("CREATE TABLE Rain (code " + word(ColumnType::VarChar, 12) + ", depth " +
                    word(ColumnType::Real) + ", height " + word(ColumnType::Double) + ", steps " +
                    word(ColumnType::Integer) + ", zone " + word(ColumnType::SmallInt) + ", started " +
                    word(ColumnType::DateTime) + ", file " + word(ColumnType::LongBinary) + ")"));
  }
  Recordset Rain(Selection selection = {}) { return Must(Recordset::Open(Db, "RAIN", std::move(selection))); }
  void Fill(int rows) {
    auto writer = Must(RowWriter::Open(Db, "rain", {"code", "STEPS", "file"}));
    for (int i = 0; i < rows; ++i)
      Must(writer.Add({"RG" + std::to_string(i), std::int64_t{i}, DbBinary{"text " + std::to_string(i)}}));
    EXPECT_EQ(Must(writer.Finish()), rows);
  }
  std::vector<std::int64_t> Steps() {
    std::vector<std::int64_t> steps;
    for (Recordset rain = Rain(); !rain.Eof(); Must(rain.MoveNext()))
      steps.push_back(static_cast<std::int64_t>(NumberOf(Must(rain.Value("steps")))));
    return steps;
  }
  Connection Db;
};
HYETEX_ON_ALL_ENGINES(OdbcTest);

TEST_P(OdbcTest, GivesValuesBackAsTheyWentIn) {
  const DbValue rows[][7] = {
      {"O'Brien\\\"%"s, 0.125, 1.0 / 3, std::int64_t{-2147483648}, std::int64_t{32767},
       DbDate{MakeDate(1850, 2, 28, 23, 59, 59)}, DbBinary{"a\nb\r\n\0c"s}},
      {"Häme Ж水"s, 1e-30, 1e300, std::int64_t{0}, std::int64_t{-1}, DbDate{MakeDate(2000, 2, 29)},
       DbBinary{std::string(300'000, '\xFF') + "\0\x01"s}},
      {""s, 0.0, -0.5, DbNull(), DbNull(), DbDate{MakeDate(1899, 12, 30, 12)}, DbBinary{}},
      {DbNull(), DbNull(), DbNull(), DbNull(), DbNull(), DbNull(), DbNull()}};
  const std::vector<std::string> names{"code", "depth", "height", "steps", "zone", "started", "file"};
  // One way writes many rows at once, the other one by one.
  auto writer = Must(RowWriter::Open(Db, "RAIN", names));
  for (const auto& row : rows) Must(writer.Add({std::begin(row), std::end(row)}));
  EXPECT_EQ(Must(writer.Finish()), 4);
  Recordset added = Rain();
  for (const auto& row : rows) {
    Must(added.AddNew());
    for (int i = 0; i < 7; ++i) Must(added.SetValue(i, row[i]));
    Must(added.Update());
  }
  Recordset rain = Rain();
  for (int n = 0; n < 8; ++n, Must(rain.MoveNext()))
    for (int i = 0; i < 7; ++i) {
      const DbValue value = Must(rain.Value(names[static_cast<std::size_t>(i)]));
      EXPECT_EQ(IsNull(value), IsNull(rows[n % 4][i])) << n << names[i];
      if (i == 1)
        EXPECT_FLOAT_EQ(static_cast<float>(NumberOf(value)), static_cast<float>(NumberOf(rows[n % 4][i])));
      else if (i == 2)
        // SQLite's driver hands 15 digits over; the others give back what they got.
        EXPECT_NEAR(NumberOf(value), NumberOf(rows[n % 4][i]),
                    GetParam() == test::Engine::SQLite ? std::abs(NumberOf(value)) * 1e-14 : 0);
      else
        EXPECT_TRUE(value == rows[n % 4][i]) << n << names[i] << TextOf(value).substr(0, 40);
    }
  EXPECT_TRUE(rain.Eof());
}

TEST_P(OdbcTest, KeepsTextsThatJustFillTheirColumn) {
  std::string clouds;
  for (int i = 0; i < 12; ++i) clouds += "\xF0\x9F\x8C\xA7";
  std::vector<std::string> texts{"123456789012", clouds, "a\0b"s};
  if (GetParam() == test::Engine::SQLite) texts.push_back(clouds + clouds);  // it keeps more than that
  auto writer = Must(RowWriter::Open(Db, "rain", {"code"}));
  for (const std::string& text : texts) Must(writer.Add({text}));
  Must(writer.Finish());
  texts[2] = "a b";
  Recordset rain = Rain();
  for (const std::string& text : texts) {
    EXPECT_EQ(TextOf(Must(rain.Value("code"))), text);
    Must(rain.MoveNext());
  }
}

// The database itself must see the letters that we mean, or others that read it would not.
TEST_P(OdbcTest, StoresUtf8WhateverTheMachinesLanguage) {
  ::setenv("PGCLIENTENCODING", "LATIN1", 1);
  Db = Must(Connection::Open(Text()));
  ::unsetenv("PGCLIENTENCODING");
  // What is no UTF-8 goes to a server as it is shown, so that the row is not lost.
  const bool server = GetParam() != test::Engine::SQLite;
  const std::string foreign = server ? "M\xC3\xA4rz" : "M\xE4rz";
  Recordset rain = Rain();
  for (const std::string text : {"\xC3\xA4\xE6\xB0\xB4\xF0\x9F\x8C\xA7", "M\xE4rz"}) {
    Must(rain.AddNew());
    Must(rain.SetValue("code", text));
    Must(rain.Update());
  }
  EXPECT_EQ(Must(Db.Execute("UPDATE Rain SET steps = 1 WHERE length(code) = 3")), 1);
  const DbValue code = "\xC3\xA4\xE6\xB0\xB4\xF0\x9F\x8C\xA7";
  EXPECT_EQ(Must(Db.Execute("DELETE FROM Rain WHERE code = ?", {&code, 1})), 1);
  Must(rain.MoveFirst());
  EXPECT_EQ(TextOf(Must(rain.Value("code"))), foreign);
}

TEST_P(OdbcTest, ChangesAndDeletesTheRowThatItStandsOn) {
  Fill(5);
  Recordset rain = Rain();
  Must(rain.Move(2));
  for (const std::int64_t steps : {20, 21}) {  // a changed row stays this row
    Must(rain.SetValue("Steps", steps));
    Must(rain.Update());
    EXPECT_EQ(NumberOf(Must(rain.Value("steps"))), steps);
  }
  EXPECT_EQ(TextOf(Must(rain.Value("file"))), "text 2");
  Must(rain.Delete());
  EXPECT_EQ(rain.Value("steps").error().Number, db_error::NoCurrentRow);
  Must(rain.MoveNext());
  Must(rain.SetValue("steps", std::int64_t{30}));
  Must(rain.MoveNext());  // stores what was pending
  Must(rain.SetValue("steps", std::int64_t{99}));
  rain.CancelUpdate();
  Must(rain.Move(-2));
  EXPECT_EQ(NumberOf(Must(rain.Value("steps"))), 1);
  rain.Close();
  EXPECT_THAT(Steps(), ::testing::UnorderedElementsAre(0, 1, 30, 4));
}

TEST_P(OdbcTest, KeepsAChangeToItsRow) {
  Fill(3);
  Recordset rain = Rain();
  Must(rain.SetValue("zone", std::int64_t{7}));
  Must(rain.MoveNext());
  EXPECT_TRUE(IsNull(Must(rain.Value("zone"))));
  Must(rain.SetValue("zone", std::int64_t{8}));
  Must(rain.Update());
  Must(rain.MoveFirst());
  EXPECT_NE(NumberOf(Must(rain.Value("zone"))), 8);
  Must(rain.AddNew());
  EXPECT_TRUE(IsNull(Must(rain.Value("code")))) << "nor has a new row the values of the current one";
  rain.CancelUpdate();
}

TEST_P(OdbcTest, SaysThatARowIsGoneRatherThanChangeNothing) {
  Fill(3);
  Recordset rain = Rain();
  const DbValue code = Must(rain.Value("code"));
  Must(Db.Execute("DELETE FROM Rain WHERE code = ?", {&code, 1}));
  Must(rain.SetValue("zone", std::int64_t{1}));
  const auto updated = rain.Update();
  ASSERT_FALSE(updated);
  EXPECT_THAT(updated.error().Description, HasSubstr("changed or deleted by somebody else"));
  EXPECT_EQ(rain.Delete().error().Number, db_error::NotNow) << "the change still waits";
  rain.CancelUpdate();
  EXPECT_FALSE(rain.Delete());
  rain.Close();
  EXPECT_THAT(Steps(), ::testing::SizeIs(2));
}

// The rows stand as they were when the table was opened, whatever is written and committed on the way.
TEST_P(OdbcTest, WalksOnThroughItsOwnChangesAndTransactions) {
  constexpr int rows = 3500;  // more than one array, more than the driver fetches at once
  Fill(rows);
  for (const int every : {7, 1000}) {
    int walked = 0;
    std::int64_t sum = 0;
    for (Recordset rain = Rain({{"steps", "zone", "file"}}); !rain.Eof(); Must(rain.MoveNext()), ++walked) {
      sum += static_cast<std::int64_t>(NumberOf(Must(rain.Value("steps"))));
      if (walked % every != 3) continue;
      std::optional<Transaction> transaction;
      if (walked % 2 == 1) transaction.emplace(Must(Transaction::Begin(Db)));
      Must(rain.SetValue("zone", std::int64_t{walked % 100}));
      Must(rain.Update());
      Must(Db.Execute("INSERT INTO Rain (zone) VALUES (-1)"));
      if (transaction && walked % 3 == 1) Must(transaction->Commit());
    }
    EXPECT_EQ(walked, rows);
    EXPECT_EQ(sum, std::int64_t{rows} * (rows - 1) / 2);
    Must(Db.Execute("DELETE FROM Rain WHERE zone = -1"));
  }
}

// A result that broke off must never look like one that came to its end.
TEST_P(OdbcTest, ReadsPagesInAnOrderBothWays) {
  // Codes that stand several times, and rows without one.
  for (int i = 0; i < 60; ++i)
    Must(Recordset::Insert(Db, "rain",
                           {{"code", i % 7 == 0 ? DbValue() : DbValue("RG_" + std::to_string(i % 5))},
                            {"steps", std::int64_t{i}}}));
  for (const std::vector<std::string>& order : {std::vector<std::string>(), {"code"}, {"code", "steps"}}) {
    SCOPED_TRACE(order.size());
    const auto read = [&](Page page) {
      page.OrderBy = order;
      return Must(Recordset::ReadPage(Db, "RAIN", {.Columns = {"code", "steps"}, .Page = std::move(page)}));
    };
    const std::vector<PagedRow> all = read({});
    ASSERT_EQ(all.size(), 60U);
    const auto steps = [](const PagedRow& row) { return NumberOf(row.Values[1]); };
    for (std::size_t at = 0; at < all.size(); ++at) {
      const std::vector<PagedRow> behind = read({.Behind = all[at].Key, .Most = 4}),
                                  before = read({.Before = all[at].Key, .Backward = true, .Most = 4});
      ASSERT_EQ(behind.size(), std::min<std::size_t>(4, all.size() - at - 1));
      ASSERT_EQ(before.size(), std::min<std::size_t>(4, at));
      for (std::size_t i = 0; i < behind.size(); ++i) ASSERT_EQ(steps(behind[i]), steps(all[at + i + 1]));
      for (std::size_t i = 0; i < before.size(); ++i) ASSERT_EQ(steps(before[i]), steps(all[at - i - 1]));
      const Page between{.OrderBy = order, .Behind = all[at / 2].Key, .Before = all[at].Key};
      ASSERT_EQ(Must(Recordset::Count(Db, "rain", {.Page = between})),
                std::max<std::int64_t>(static_cast<std::int64_t>(at - at / 2) - 1, 0));
    }
  }
  const auto begins = [&](const char* text) {
    return Must(Recordset::Count(
        Db, "rain",
        {.Where = {{.Column = "code", .How = Compare::BeginsWith, .Wanted = std::string(text)}}}));
  };
  EXPECT_EQ(begins("rg_"), 51);
  EXPECT_EQ(begins("RG_1"), 10);
  EXPECT_EQ(begins("R__") + begins("%") + begins("RG!"), 0) << "which stand for themselves";
  EXPECT_FALSE(Recordset::Count(Db, "rain", {.Page = Page{.OrderBy = {"no_column"}}}));
}

TEST_P(OdbcTest, ReadsAndChangesSomeRowsAtOnce) {
  Fill(50);
  Recordset some =
      Rain({.Columns = {"steps", "file", "code"},
            .Where = {{.Column = "code", .How = Compare::OneOf, .Among = {"RG3", "RG40", "RG7"}}},
            .LongWithRow = true});
  std::vector<RowPlace> places;
  std::vector<std::string> read;
  Must(ForEachRow(some, [&]() -> DbResult<bool> {
    places.push_back(Must(some.Place()));
    read.push_back(TextOf(Must(some.Value("file"))) + " of " + TextOf(Must(some.Value("code"))));
    return true;
  }));
  some.Close();
  EXPECT_THAT(read, testing::ElementsAre("text 3 of RG3", "text 7 of RG7", "text 40 of RG40"));
  Must(Recordset::SetInRows(Db, "rain", "Zone", std::int64_t{1}, places));
  EXPECT_EQ(Must(Db.Execute("DELETE FROM rain WHERE zone = 1 AND steps IN (3, 7, 40)")), 3);
  EXPECT_FALSE(Recordset::SetInRows(Db, "rain", "zone", std::int64_t{2}, places)) << "they are gone";
  EXPECT_EQ(Must(Db.Execute("UPDATE rain SET zone = 3 WHERE zone IS NULL")), 47);
}

TEST_P(OdbcTest, NeverEndsAWalkBeforeItsLastRow) {
  constexpr int rows = 2500;
  Fill(rows);
  Must(Db.Execute("CREATE UNIQUE INDEX one ON Rain (steps)"));
  const auto walk = [](Recordset& rain) {
    int walked = 1;
    for (; !rain.Eof(); ++walked)
      if (!rain.MoveNext()) return -1;
    return walked - 1;
  };
  {
    Recordset rain = Rain(), other = Rain();
    EXPECT_FALSE(Db.Execute("INSERT INTO Rain (steps) VALUES (1)"));
    Must(other.SetValue("steps", std::int64_t{2}));
    EXPECT_EQ(other.Update().error().Number, db_error::ConstraintViolation);
    other.CancelUpdate();
    EXPECT_EQ(walk(rain), rows);
    EXPECT_EQ(walk(other), rows);
  }
  std::optional<Transaction> transaction(Must(Transaction::Begin(Db)));
  RowWriter writer = Must(RowWriter::Open(Db, "rain", {"zone"}));
  Must(writer.Add({std::int64_t{1}}));
  Recordset inside = Rain();
  transaction.reset();
  EXPECT_EQ(walk(inside), GetParam() == test::Engine::SQLite ? rows : -1);
  EXPECT_EQ(Must(writer.Finish()), 0);  // the row that waited was rolled back too
}

}  // namespace
}  // namespace hyetex
