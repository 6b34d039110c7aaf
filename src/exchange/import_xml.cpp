#include "exchange/import_xml.h"

#include <algorithm>
#include <map>
#include <utility>

#include "core/files.h"
#include "core/text.h"
#include "exchange/import_rows.h"
#include "exchange/value_text.h"
#include "exchange/xml_text.h"

namespace hyetex {
namespace {

constexpr std::string_view KeyOfDatabase = "autokey";

/// Lets the work ask whether it goes on without knowing how far the file is read.
class RepeatedProgress : public Progress {
 public:
  explicit RepeatedProgress(Progress& progress) : progress_(progress) {}
  bool Step(std::int64_t done, std::int64_t total, std::string_view what) override {
    done_ = done;
    total_ = total;
    what_ = what;
    return Again();
  }
  // A first step is told at once, each time.
  bool Again() { return progress_.Step(std::max<std::int64_t>(done_, 1), std::max(total_, done_), what_); }

 private:
  Progress& progress_;
  std::int64_t done_ = 0, total_ = 0;
  std::string what_;
};

class Importer {
 public:
  Importer(HyetexPlotDB& database, const XmlDocument& document, Progress& progress)
      : database_(database), document_(document), progress_(progress) {}

  ImportResult Run() {
    result_.Table = TableOfRoot(document_.Root);
    const auto done = Read();
    if (!done) {
      result_.Added = 0;
      if (result_.Failed.empty()) Fail(done.error());
      return std::move(result_);
    }
    result_.Added = rows_->Added();
    result_.Refused = rows_->Refused();
    result_.FirstRefused = rows_->FirstRefused();
    AddNote(tooMany_, "rows have more than " + std::to_string(MostXmlFields) +
                          " fields; what stands behind those was left out");
    AddNote(recoded_, "texts that are not UTF-8 were taken as Windows-1252");
    return std::move(result_);
  }

 private:
  void Fail(const DbError& error) {
    if (error.Number == db_error::Cancelled) result_.Cancelled = true;
    result_.Failed = error.Description;
    if (!result_.Cancelled) result_.Error = error;
  }
  void AddNote(std::int64_t count, const std::string& what) {
    if (count > 0) result_.Notes.push_back(std::to_string(count) + " " + what);
  }
  // A failure that is no database's.
  tl::unexpected<DbError> Wrong(std::string why) {
    result_.Failed = std::move(why);
    return tl::unexpected(DbError());
  }

  DbResult<void> Read() {
    if (auto found = FindTable(); !found) return found;
    Connection& connection = database_.DatabaseConnection;
    auto transaction = Transaction::BeginWriting(connection, table_, progress_);
    if (!transaction) return tl::unexpected(transaction.error());
    rows_.emplace(connection, table_, columns_, [this] { return progress_.Again(); });
    std::string root;
    const XmlTaker taker{.Root =
                             [&](std::string_view name) {
                               root = name;
                               return Result<void>();
                             },
                         .Row = [&](const XmlRow& row) -> Result<void> {
                           auto taken = Take(row);
                           if (taken) return {};
                           stopped_ = taken.error();
                           return Failure(taken.error().Description);
                         }};
    const auto read = ReadXmlFile(document_.Path, taker, progress_);
    if (stopped_) return tl::unexpected(*stopped_);
    if (!read && read.error() == StoppedText)
      return tl::unexpected(DbError{db_error::Cancelled, StoppedText, {}});
    if (!read) return Wrong(document_.Path + ", " + read.error());
    if (root != document_.Root) return Wrong(document_.Path + " was changed while it was read");
    if (auto finished = rows_->Finish(); !finished) return finished;
    return transaction->Commit();
  }

  DbResult<void> FindTable() {
    if (!database_.DatabaseConnection.IsOpen())
      if (const auto opened = database_.OpenDatabase(); !opened) return opened;
    const auto tables = database_.DatabaseConnection.Tables();
    if (!tables) return tl::unexpected(tables.error());
    for (const bool exactly : {true, false})
      for (const CatalogTable& table : *tables) {
        const bool same =
            exactly ? table.Name == result_.Table : EqualIgnoringCase(table.Name, result_.Table);
        if (same && table_.empty() && table.Type == "TABLE") table_ = table.Name;
      }
    if (table_.empty())
      return Wrong("The root element <" + ShownText(document_.Root) + "> of " + document_.Path +
                   " names no table of the database: there is no table \"" + ShownText(result_.Table) + "\"");
    auto columns = database_.DatabaseConnection.Columns(table_);
    if (!columns) return tl::unexpected(columns.error());
    all_ = *columns;
    for (CatalogColumn& column : *columns)
      if (!EqualIgnoringCase(column.Name, KeyOfDatabase)) columns_.push_back(std::move(column));
    for (const CatalogColumn& column : columns_) kinds_.push_back(KindOf(column));
    return {};
  }

  // Where the fields of a row go: a position in columns_, or one of these.
  static constexpr int None = -1, LeftOut = -2;
  int PlaceOf(std::string_view field) const {
    if (EqualIgnoringCase(field, KeyOfDatabase)) return LeftOut;
    const auto found = std::ranges::find_if(
        columns_, [&](const CatalogColumn& column) { return EqualIgnoringCase(column.Name, field); });
    return found == columns_.end() ? None : static_cast<int>(found - columns_.begin());
  }

  // Rows of one table have their fields in one order, so that they are looked up once.
  void FindPlaces(std::span<const XmlField> fields) {
    const auto same = [](const XmlField& field, const std::string& name) { return field.Name == name; };
    if (std::ranges::equal(fields, names_, same)) return;
    names_.clear();
    places_.clear();
    twice_.clear();
    for (const XmlField& field : fields) {
      const int place = PlaceOf(field.Name);
      if (place >= 0 && std::ranges::find(places_, place) != places_.end()) twice_ = field.Name;
      names_.push_back(field.Name);
      places_.push_back(place);
    }
  }

  DbResult<void> Take(const XmlRow& row) {
    ++number_;
    if (row.FieldCount > MostXmlFields) ++tooMany_;
    FindPlaces(row.Fields);
    std::vector<DbValue> values(columns_.size());
    auto made = row.IsTooLong ? Failure("its values are longer than 256 MB") : MakeValues(row, values);
    if (missing_) return Wrong(*missing_);
    if (made && !HasValue(values)) made = Failure("it has no value");
    if (made) return rows_->Add(number_, std::move(values));
    rows_->Refuse(number_, made.error());
    return {};
  }

  // Or a column that is NULL without one: an INSERT names at least one.
  bool HasValue(const std::vector<DbValue>& values) const {
    for (std::size_t i = 0; i < columns_.size(); ++i)
      if (!IsNull(values[i]) || !columns_[i].FillsItself) return true;
    return false;
  }

  Result<void> MakeValues(const XmlRow& row, std::vector<DbValue>& values) {
    for (std::size_t i = 0; i < row.Fields.size(); ++i) {
      const XmlField& field = row.Fields[i];
      if (places_[i] == LeftOut || (field.Text.empty() && field.Encoding.empty())) continue;
      if (places_[i] == None) {
        missing_ = "Field: " + ShownText(field.Name) +
                   " does not exist in your database table. The matching field by index is: " +
                   (i < all_.size() ? all_[i].Name : std::string()) +
                   "   This will require you to correct the database.";
        return {};
      }
      if (field.Name == twice_) return Failure("the field " + ShownText(field.Name) + " stands in it twice");
      const auto place = static_cast<std::size_t>(places_[i]);
      auto value = MakeValue(field, columns_[place], kinds_[place]);
      if (!value) return Failure(columns_[place].Name + ": " + value.error());
      values[place] = *std::move(value);
    }
    return {};
  }

  Result<DbValue> MakeValue(const XmlField& field, const CatalogColumn& column, ColumnKind kind) {
    std::string text = field.Text;
    if (!field.Encoding.empty()) {
      if (!EqualIgnoringCase(field.Encoding, Base64Encoding))
        return Failure("its encoding \"" + ShownText(field.Encoding) + "\" is not known");
      auto bytes = FromBase64(text);
      if (!bytes) return Failure("it is no base64");
      text = *std::move(bytes);
      if (kind == ColumnKind::Text && database_.DatabaseConnection.Maker() != "SQLite" &&
          ShownText(text) != text)
        ++recoded_;
    } else if (kind != ColumnKind::Text && kind != ColumnKind::Binary && Trim(text).empty()) {
      return DbValue();  // laid out by somebody's editor
    }
    return ValueOf(std::move(text), column, kind);
  }

  HyetexPlotDB& database_;
  const XmlDocument& document_;
  RepeatedProgress progress_;
  ImportResult result_;
  std::string table_;  // as the catalog has it
  std::vector<CatalogColumn> all_, columns_;
  std::vector<ColumnKind> kinds_;
  std::optional<ImportRows> rows_;
  std::vector<std::string> names_;  // of the fields of the row before
  std::vector<int> places_;
  std::string twice_;
  std::int64_t number_ = 0, tooMany_ = 0, recoded_ = 0;
  std::optional<std::string> missing_;
  std::optional<DbError> stopped_;
};

}  // namespace

ImportResult ImportXml(HyetexPlotDB& database, const XmlDocument& document, Progress& progress) {
  const ClosedAfter closed(database);
  return Importer(database, document, progress).Run();
}

ImportResult ImportFile(HyetexPlotDB& database, const std::string& folder, const std::string& fileName,
                        Progress& progress) {
  const auto document = LoadDocument(folder, fileName, progress);
  if (document) return ImportXml(database, *document, progress);
  ImportResult result;
  result.Failed = document.error();
  result.Cancelled = document.error() == StoppedText;
  return result;
}

std::string RefusedText(const ImportResult& result) {
  std::string text;
  if (result.Refused > 0)
    text = std::to_string(result.Refused) + " refused, the first: " + result.FirstRefused;
  for (const std::string& note : result.Notes) text += (text.empty() ? "" : "\n") + note;
  return text;
}

}  // namespace hyetex
