// Rows into and out of a database against the same rows by hand through the same driver: INSERTs of as many
// rows, and reading in as large arrays. "ratio" is what the recordset takes on top (1 is nothing). SQLite
// works in a temporary file, PostgreSQL in the cluster that scripts/postgres made in $HYETEX_POSTGRES.
#include <sql.h>
#include <sqlext.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "core/dates.h"
#include "platform/odbc/odbc_link.h"
#include "platform/odbc/recordset.h"
#include "ratio.h"

namespace hyetex::bench {
namespace {

constexpr int Rows = 40'000, Batch = 100;
constexpr std::size_t Array = 1000;
constexpr const char* Columns =
    "station, instrument_code_id, start_time, end_time, depth, computing_method, data_reliability_code, "
    "comments";
constexpr int Texts[] = {0, 1, 5, 6, 7};
constexpr const char* Words[] = {"Hill of the old mill", "RG12-1998", "", "", "", "ASCII", "Acceptable", " "};

std::string DatabaseText(bool server) {
  if (!server) {
    const auto path = std::filesystem::temp_directory_path() / "hyetex-bench.sqlite";
    std::ofstream(path, std::ios::trunc).flush();
    return "Driver=SQLite3;Database=" + path.string() + ";NoCreat=1;StepAPI=1";
  }
  std::string text;
  if (const char* cluster = std::getenv("HYETEX_POSTGRES"))
    std::getline(std::ifstream(std::string(cluster) + "/connection"), text);
  return text.empty() ? text : text + ";UseDeclareFetch=1;Fetch=1000;ByteaAsLongVarBinary=1";
}

void MakeTable(Connection& database, const std::string& name = "bench_chart") {
  (void)database.Execute("DROP TABLE " + name);
  (void)database.Execute(
      "CREATE TABLE " + name +
      " (station varchar(25), instrument_code_id varchar(40), start_time timestamp, "
      "end_time timestamp, depth real, computing_method varchar(10), data_reliability_code varchar(20), "
      "comments varchar(25))");
}

// The rows of a month of charts, one a minute.
Date TimeOf(int row) { return MakeDate(1998, 3, 5, 0, row, 0); }
SQL_TIMESTAMP_STRUCT StampOf(int row) {
  const CalendarTime time = ToCalendar(TimeOf(row));
  return {static_cast<SQLSMALLINT>(time.Year),
          static_cast<SQLUSMALLINT>(time.Month),
          static_cast<SQLUSMALLINT>(time.Day),
          static_cast<SQLUSMALLINT>(time.Hour),
          static_cast<SQLUSMALLINT>(time.Minute),
          static_cast<SQLUSMALLINT>(time.Second),
          0};
}

class ByHand {
 public:
  explicit ByHand(const std::string& text) {
    SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment_);
    SQLSetEnvAttr(environment_, SQL_ATTR_ODBC_VERSION, SqlNumber(SQL_OV_ODBC3), 0);
    SQLAllocHandle(SQL_HANDLE_DBC, environment_, &connection_);
    SQLDriverConnect(connection_, nullptr, Text(text), SQL_NTS, nullptr, 0, nullptr, SQL_DRIVER_NOPROMPT);
  }
  ~ByHand() {
    SQLDisconnect(connection_);
    SQLFreeHandle(SQL_HANDLE_DBC, connection_);
    SQLFreeHandle(SQL_HANDLE_ENV, environment_);
  }

  bool Write() {
    std::string sql = "INSERT INTO bench_chart (" + std::string(Columns) + ") VALUES (?,?,?,?,?,?,?,?)";
    for (int i = 1; i < Batch; ++i) sql += ",(?,?,?,?,?,?,?,?)";
    SQLSetConnectAttr(connection_, SQL_ATTR_AUTOCOMMIT, SQL_AUTOCOMMIT_OFF, SQL_IS_UINTEGER);
    SQLHSTMT statement = Make();
    SQLPrepare(statement, Text(sql), SQL_NTS);
    struct Row {
      char Text[5][32];
      SQLLEN Length[5];
      SQL_TIMESTAMP_STRUCT Time[2];
      double Depth;
    };
    std::vector<Row> rows(Batch);
    SQLUSMALLINT at = 0;
    for (Row& row : rows)
      for (int column = 0, text = 0; column < 8; ++column) {
        ++at;
        if (column == 2 || column == 3)
          SQLBindParameter(statement, at, SQL_PARAM_INPUT, SQL_C_TYPE_TIMESTAMP, SQL_TYPE_TIMESTAMP, 19, 0,
                           &row.Time[column - 2], 0, nullptr);
        else if (column == 4)
          SQLBindParameter(statement, at, SQL_PARAM_INPUT, SQL_C_DOUBLE, SQL_DOUBLE, 15, 0, &row.Depth, 0,
                           nullptr);
        else {
          SQLBindParameter(statement, at, SQL_PARAM_INPUT, SQL_C_CHAR, SQL_VARCHAR, 32, 0, row.Text[text],
                           sizeof row.Text[text], &row.Length[text]);
          ++text;
        }
      }
    bool good = true;
    for (int done = 0; done < Rows; done += Batch) {
      for (int i = 0; i < Batch; ++i) {
        Row& row = rows[static_cast<std::size_t>(i)];
        for (int text = 0; text < 5; ++text) {
          row.Length[text] = static_cast<SQLLEN>(std::strlen(Words[Texts[text]]));
          std::memcpy(row.Text[text], Words[Texts[text]], static_cast<std::size_t>(row.Length[text]));
        }
        row.Time[0] = StampOf(done + i);
        row.Time[1] = StampOf(done + i + 1);
        row.Depth = 0.25 * (i % 40);
      }
      good &= SQL_SUCCEEDED(SQLExecute(statement));
    }
    good &= SQL_SUCCEEDED(SQLEndTran(SQL_HANDLE_DBC, connection_, SQL_COMMIT));
    SQLFreeHandle(SQL_HANDLE_STMT, statement);
    return good;
  }

  int Read() {
    SQLHSTMT statement = Make();
    SQLULEN fetched = 0;
    SQLSetStmtAttr(statement, SQL_ATTR_ROW_ARRAY_SIZE, SqlNumber(Array), 0);
    SQLSetStmtAttr(statement, SQL_ATTR_ROWS_FETCHED_PTR, &fetched, 0);
    std::vector<char> texts[5];
    std::vector<SQLLEN> lengths[8];
    std::vector<SQL_TIMESTAMP_STRUCT> times[2];
    std::vector<double> depths(Array);
    SQLExecDirect(statement, Text("SELECT " + std::string(Columns) + " FROM bench_chart"), SQL_NTS);
    for (std::size_t column = 0, text = 0; column < 8; ++column) {
      const auto at = static_cast<SQLUSMALLINT>(column + 1);
      lengths[column].resize(Array);
      if (column == 2 || column == 3) {
        times[column - 2].resize(Array);
        SQLBindCol(statement, at, SQL_C_TYPE_TIMESTAMP, times[column - 2].data(), 0, lengths[column].data());
      } else if (column == 4) {
        SQLBindCol(statement, at, SQL_C_DOUBLE, depths.data(), 0, lengths[column].data());
      } else {
        texts[text].resize(Array * 128);
        SQLBindCol(statement, at, SQL_C_CHAR, texts[text++].data(), 128, lengths[column].data());
      }
    }
    int rows = 0;
    while (SQL_SUCCEEDED(SQLFetch(statement))) rows += static_cast<int>(fetched);
    SQLFreeHandle(SQL_HANDLE_STMT, statement);
    return rows;
  }

 private:
  static SQLCHAR* Text(const std::string& text) {
    return reinterpret_cast<SQLCHAR*>(const_cast<char*>(text.c_str()));
  }
  SQLHSTMT Make() {
    SQLHSTMT statement = SQL_NULL_HSTMT;
    SQLAllocHandle(SQL_HANDLE_STMT, connection_, &statement);
    return statement;
  }
  SQLHENV environment_ = SQL_NULL_HENV;
  SQLHDBC connection_ = SQL_NULL_HDBC;
};

bool Write(Connection& database) {
  auto transaction = Transaction::Begin(database);
  auto writer = RowWriter::Open(database, "bench_chart",
                                {"station", "instrument_code_id", "start_time", "end_time", "depth",
                                 "computing_method", "data_reliability_code", "comments"});
  for (int i = 0; i < Rows; ++i)
    if (!writer->Add({Words[0], Words[1], DbDate{TimeOf(i)}, DbDate{TimeOf(i + 1)}, 0.25 * (i % Batch % 40),
                      Words[5], Words[6], Words[7]}))
      return false;
  return writer->Finish() && transaction->Commit();
}

int Read(Connection& database) {
  int rows = 0;
  auto table = Recordset::Open(database, "bench_chart");
  for (; table && !table->Eof(); (void)table->MoveNext(), ++rows)
    for (int i = 0; i < 8; ++i) benchmark::DoNotOptimize(*table->Value(i));
  return rows;
}

void WriteRows(benchmark::State& state, bool server) {
  const std::string text = DatabaseText(server);
  auto database = Connection::Open(text);
  if (!database) return state.SkipWithError(database.error().Description.c_str());
  bool good = true;
  CompareWithBaseline(
      state, {},
      [&] {
        MakeTable(*database);
        ByHand hand(text);
        good &= hand.Write();
      },
      [&] {
        MakeTable(*database);
        good &= Write(*database);
      });
  if (!good || Read(*database) != Rows) state.SkipWithError("rows were lost");
  state.SetItemsProcessed(Rows * state.iterations());
}
BENCHMARK_CAPTURE(WriteRows, SQLite, false)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(WriteRows, PostgreSQL, true)->UseManualTime()->Unit(benchmark::kMillisecond);

void ReadRows(benchmark::State& state, bool server) {
  const std::string text = DatabaseText(server);
  auto database = Connection::Open(text);
  if (!database) return state.SkipWithError(database.error().Description.c_str());
  MakeTable(*database);
  bool good = Write(*database);
  ByHand hand(text);
  CompareWithBaseline(
      state, {}, [&] { good &= hand.Read() == Rows; }, [&] { good &= Read(*database) == Rows; });
  if (!good) state.SkipWithError("rows were lost");
  state.SetItemsProcessed(Rows * state.iterations());
}
BENCHMARK_CAPTURE(ReadRows, SQLite, false)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ReadRows, PostgreSQL, true)->UseManualTime()->Unit(benchmark::kMillisecond);

// Opening a table and reading its first row must not cost more with its rows: 20 times as many against few.
void OpenTable(benchmark::State& state, bool server) {
  auto database = Connection::Open(DatabaseText(server));
  if (!database) return state.SkipWithError(database.error().Description.c_str());
  const auto open = [&] {
    for (int i = 0; i < 10; ++i)
      benchmark::DoNotOptimize(Recordset::Open(*database, "bench_chart")->Value(0));
  };
  MakeTable(*database);
  (void)Write(*database);
  MakeTable(*database, "bench_few");
  (void)database->Execute("INSERT INTO bench_few SELECT * FROM bench_chart LIMIT 2000");
  CompareWithBaseline(
      state, 2,
      [&] {
        for (int i = 0; i < 10; ++i)
          benchmark::DoNotOptimize(Recordset::Open(*database, "bench_few")->Value(0));
      },
      open);
  (void)database->Execute("DROP TABLE bench_few");
}
BENCHMARK_CAPTURE(OpenTable, SQLite, false)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(OpenTable, PostgreSQL, true)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace hyetex::bench
