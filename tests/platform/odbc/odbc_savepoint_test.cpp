// Parts of a transaction that are taken back alone, and rows whose key is there.
#include "database/engines.h"
#include "platform/odbc/recordset.h"

namespace hyetex::test {
namespace {

class SavepointTest : public EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    connection_ = Must(Connection::Open(Text()));
    Must(connection_.Execute(
        "CREATE TABLE t (a integer NOT NULL UNIQUE, b varchar(9) DEFAULT 'own', c integer)"));
  }
  void TearDown() override {
    connection_.Close();
    EngineTest::TearDown();
  }
  std::string Insert(int a) {
    const auto done = connection_.Execute("INSERT INTO t (a) VALUES (" + std::to_string(a) + ")");
    return done ? "" : done.error().Description;
  }
  std::string There() {
    auto other = Must(Connection::Open(Text()));
    std::string values;
    auto rows = Must(Recordset::Open(other, "t"));
    for (; !rows.Eof(); Must(rows.MoveNext())) values += TextOf(Must(rows.Value("a"))) + " ";
    return values;
  }
  Connection connection_;
};
HYETEX_ON_ALL_ENGINES(SavepointTest);

TEST_P(SavepointTest, TakesBackItsPartAloneAfterAnErrorOrUnkept) {
  auto transaction = Must(Transaction::Begin(connection_));
  EXPECT_EQ(Insert(1), "");
  {
    auto part = Must(Savepoint::Begin(connection_));
    EXPECT_FALSE(Savepoint::Begin(connection_)) << "one at a time";
    EXPECT_EQ(Insert(2), "");
    EXPECT_NE(Insert(1), "") << "is there";
    EXPECT_NE(Insert(3), "") << "the part is over";
    EXPECT_EQ(part.Keep().error().Number, db_error::ConstraintViolation);
  }
  EXPECT_EQ(Insert(4), "");
  {
    const auto part = Must(Savepoint::Begin(connection_));
    auto writer = Must(RowWriter::Open(connection_, "t", {"a"}));
    Must(writer.Add({std::int64_t{5}}));
  }
  {
    auto part = Must(Savepoint::Begin(connection_));
    EXPECT_EQ(Insert(6), "");
    Must(part.Keep());
  }
  {
    const auto part = Must(Savepoint::Begin(connection_));
    EXPECT_EQ(Insert(7), "");
  }
  Must(transaction.Commit());
  EXPECT_EQ(There(), "1 4 6 ");
  EXPECT_FALSE(Savepoint::Begin(connection_)) << "no transaction is open";
}

TEST_P(SavepointTest, GoesWithItsTransaction) {
  {
    auto transaction = Must(Transaction::Begin(connection_));
    auto part = Must(Savepoint::Begin(connection_));
    EXPECT_EQ(Insert(1), "");
    Must(part.Keep());
  }
  EXPECT_EQ(There(), "");
  EXPECT_EQ(Insert(2), "");
  EXPECT_EQ(There(), "2 ");
}

TEST_P(SavepointTest, SkipsRowsWhoseKeyIsThereAndCountsTheOthers) {
  EXPECT_EQ(Insert(7), "");
  auto writer = Must(RowWriter::Open(connection_, "t", {"a"}, Duplicates::Skip));
  for (std::int64_t i = 0; i < 250; ++i) Must(writer.Add({i % 240}));
  EXPECT_EQ(Must(writer.Finish()), 239);
  const auto columns = *connection_.Columns("t");
  EXPECT_TRUE(columns[0].FillsItself) << "takes no NULL";
  EXPECT_TRUE(columns[1].FillsItself) << "has a default";
  EXPECT_FALSE(columns[2].FillsItself);
}

}  // namespace
}  // namespace hyetex::test
