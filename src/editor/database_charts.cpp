#include "editor/database_charts.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "core/dates.h"
#include "core/text.h"
#include "database/access/names.h"
#include "database/store/chart_ascii.h"
#include "editor/chart_rewriting.h"
#include "staging/lists/lists.h"

namespace hyetex {
namespace {

constexpr std::size_t MostTextBytes = MostChartBytes + 1024;  // a chart behind the line of its name

ChartKey KeyOf(const ChartFileInfo& file) { return {file.InstrumentCode, file.StartDate}; }

// Of the current record. A column of fixed width holds a code with blanks behind it.
DbResult<ChartFileInfo> InfoOfRecord(Recordset& table, std::span<const StationRecord> stations) {
  const auto code = table.Value(column::InstrumentCode), date = table.Value(column::ChartDate);
  if (!code) return tl::unexpected(code.error());
  if (!date) return tl::unexpected(date.error());
  ChartFileInfo file;
  file.InstrumentCode = Trim(TextOf(*code));
  file.InstrumentIndex = FindStation(stations, file.InstrumentCode);
  file.StartDate = DateOf(*date);
  file.FileName = ChartFileName(file.InstrumentCode, file.StartDate);
  return file;
}

tl::unexpected<std::string> DbFailure(const DbError& error) { return Failure(NumberAndDescription(error)); }
std::string NotThere(const ChartFileInfo& file) {
  return ShownText(file.FileName) + " is no longer in the database.";
}

// The places of the rows whose instrument and date are `wanted`.
template <typename Wanted>
DbResult<std::vector<RowPlace>> PlacesWhere(Recordset& table, Wanted&& wanted) {
  std::vector<RowPlace> places;
  const auto walked = ForEachRow(table, [&]() -> DbResult<bool> {
    const auto here = InfoOfRecord(table, {});
    if (!here) return tl::unexpected(here.error());
    if (!wanted(*here)) return true;
    auto place = table.Place();
    if (!place) return tl::unexpected(place.error());
    places.push_back(*std::move(place));
    return true;
  });
  if (!walked) return tl::unexpected(walked.error());
  return places;
}

}  // namespace

Result<ChartListing> DatabaseCharts::List(const ChartFilter& filter, Progress& progress) {
  const ClosedAfter closed(database_);
  Selection selection = filter.InstrumentCode.empty() ? Selection() : ChartAsciiOf(filter.InstrumentCode);
  selection.Columns = {column::InstrumentCode, column::ChartDate};
  if (const auto opened = database_.OpenChartAscii(std::move(selection)); !opened)
    return DbFailure(opened.error());
  std::vector<ChartFileInfo> files;
  std::vector<std::string> twice;
  std::set<ChartKey> keys;
  bool stopped = false;
  std::int64_t done = 0;
  const auto walked = ForEachRow(database_.ChartAsciiTable, [&]() -> DbResult<bool> {
    stopped = !progress.Step(done++, 0, files.empty() ? "" : files.back().FileName);
    if (stopped) return false;
    auto file = InfoOfRecord(database_.ChartAsciiTable, stations_);
    if (!file) return tl::unexpected(file.error());
    if (!keys.insert(KeyOf(*file)).second)
      twice.push_back(ShownText(file->FileName) + " stands in the database more than once.");
    else
      files.push_back(*std::move(file));
    return true;
  });
  if (!walked) return DbFailure(walked.error());
  ChartListing list = MakeListing(std::move(files), filter, "database");
  if (stopped) list.Notes.emplace_back(ListWasStopped);
  list.Notes.insert(list.Notes.end(), twice.begin(), twice.end());
  return list;
}

DbResult<bool> DatabaseCharts::Find(const ChartFileInfo& file) {
  // What has no date that can be read is found among all records.
  for (Selection& selection :
       std::vector{ChartAsciiOf(file.InstrumentCode, file.StartDate), ChartAsciiOf(file.InstrumentCode)}) {
    if (const auto opened = database_.OpenChartAscii(std::move(selection)); !opened)
      return tl::unexpected(opened.error());
    bool found = false;
    const auto walked = ForEachRow(database_.ChartAsciiTable, [&]() -> DbResult<bool> {
      const auto here = InfoOfRecord(database_.ChartAsciiTable, stations_);
      if (!here) return tl::unexpected(here.error());
      found = KeyOf(*here) == KeyOf(file);
      return !found;
    });
    if (!walked) return tl::unexpected(walked.error());
    if (found) return true;
  }
  return false;
}

Result<OpenedChart> DatabaseCharts::Open(const ChartFileInfo& file, const ReadingOptions& options) {
  const ClosedAfter closed(database_);
  const auto found = Find(file);
  if (!found) return DbFailure(found.error());
  if (!*found) return Failure(NotThere(file));
  const auto text = ChartAsciiText(database_.ChartAsciiTable, MostTextBytes);
  if (!text) return DbFailure(text.error());
  if (text->size() > MostTextBytes)
    return Failure("The text of " + ShownText(file.FileName) + " is too long to be a chart.");
  const StoredText stored = SplitStoredText(*text);
  auto reading = std::make_shared<ChartReading>();
  // Its own name knows the century of two-digit years, else the record's date does.
  ReadChartText(stored.Bytes,
                ParseChartFileName(stored.FileName) ? stored.FileName : std::string_view(file.FileName),
                options, *reading);
  return OpenedChart{file, std::string(stored.Bytes), std::move(reading)};
}

Result<std::optional<SavedChart>> DatabaseCharts::Save(const OpenedChart& chart, const ChartRecord& edited,
                                                       const ChartSaveQuestions& questions,
                                                       Progress& progress) {
  auto other = OtherNameOf(chart, edited);
  if (!other) return Failure(other.error());
  Rewritten rewritten{other->value_or(""), {}, edited};
  auto text = RewriteChart(chart.Bytes, other->value_or(chart.File.FileName), chart.Reading->Chart, edited);
  if (!text) return Failure(text.error());
  rewritten.Bytes = *std::move(text);
  if (*other && !questions.OtherName(OtherNameQuestion(**other))) return std::nullopt;

  const std::string name = ShownText(chart.File.FileName);
  SavedChart saved{chart.File, {}};
  for (bool mayReplace = false;; mayReplace = true) {
    const ClosedAfter closed(database_);  // no transaction is open while a person thinks
    const auto stored = Store(chart, rewritten, mayReplace, saved, progress);
    if (!stored) return DbFailure(stored.error());
    if (*stored == Attempt::Done) return saved;
    database_.Close();
    if (!questions.Newer(name +
                         " has been changed by another program since it was opened. What was changed there "
                         "would be lost. Save it all the same ?"))
      return std::nullopt;
  }
}

DbResult<DatabaseCharts::Attempt> DatabaseCharts::Store(const OpenedChart& chart, const Rewritten& rewritten,
                                                        bool mayReplace, SavedChart& saved,
                                                        Progress& progress) {
  const auto refusal = [](std::string why) {
    return tl::unexpected(DbError{db_error::StatementFailed, std::move(why), {}});
  };
  if (const auto opened = database_.OpenDatabase(); !opened) return tl::unexpected(opened.error());
  auto transaction =
      Transaction::BeginWriting(database_.DatabaseConnection, table_name::ChartAscii, progress);
  if (!transaction) return tl::unexpected(transaction.error());

  Selection selection = ChartAsciiOf(chart.File.InstrumentCode);
  selection.Columns = {column::InstrumentCode, column::ChartDate};
  if (const auto opened = database_.OpenChartAscii(std::move(selection)); !opened)
    return tl::unexpected(opened.error());
  bool clashes = false;
  const auto walked = ForEachRow(database_.ChartAsciiTable, [&]() -> DbResult<bool> {
    const auto here = InfoOfRecord(database_.ChartAsciiTable, stations_);
    if (!here) return tl::unexpected(here.error());
    clashes = EqualIgnoringCase(here->FileName, rewritten.Name) && KeyOf(*here) != KeyOf(chart.File);
    return !clashes;
  });
  if (!walked) return tl::unexpected(walked.error());
  if (clashes)
    return refusal("The database has another chart by the name of " + ShownText(rewritten.Name) +
                   ". Nothing was saved.");

  const auto found = Find(chart.File);
  if (!found) return tl::unexpected(found.error());
  if (!*found) return refusal(NotThere(chart.File));
  const auto text = ChartAsciiText(database_.ChartAsciiTable, MostTextBytes);
  if (!text) return tl::unexpected(text.error());
  const StoredText stored = SplitStoredText(*text);
  if (stored.Bytes != chart.Bytes && !mayReplace) return Attempt::HasChanged;

  Rewritten named = rewritten;
  if (named.Name.empty()) named.Name = stored.FileName;
  saved.File.StartDate = named.Chart.StartTime;
  saved.File.FileName = ChartFileName(saved.File.InstrumentCode, saved.File.StartDate);
  if (const auto changed = Change(named, saved); !changed) return tl::unexpected(changed.error());
  database_.ChartAsciiTable.Close();
  if (KeyOf(saved.File) != KeyOf(chart.File))
    if (const auto moved = MoveConversion(chart.File, saved.File.StartDate); !moved)
      return tl::unexpected(moved.error());
  if (const auto done = transaction->Commit(); !done) return tl::unexpected(done.error());
  return Attempt::Done;
}

// The current record, with all columns that are made of the chart's text.
DbResult<void> DatabaseCharts::Change(const Rewritten& rewritten, SavedChart& saved) {
  Recordset& table = database_.ChartAsciiTable;
  saved.Notes.clear();
  const auto loaded = IsLoaded(table);
  if (!loaded) return tl::unexpected(loaded.error());
  std::vector<std::pair<const char*, DbValue>> values{
      {column::ChartDate, DbDate{rewritten.Chart.StartTime}},
      {column::ChartReliability, std::string(ReliabilityText(rewritten.Chart.Reliability))},
      {column::AsciiFile, AsciiFileValue(table.Fields(), MakeStoredText(rewritten.Name, rewritten.Bytes))}};
  const auto found = std::ranges::find_if(table.Fields(), [](const CatalogColumn& each) {
    return EqualIgnoringCase(each.Name, column::Comments);
  });
  if (found != table.Fields().end()) {
    const std::string comment = ShownText(rewritten.Chart.GeneralComment);
    const std::string cut = CutToWidth(comment, found->Size);
    if (cut != comment)
      saved.Notes.push_back("In the database's column the general comment was cut to " +
                            std::to_string(found->Size) + " characters; the chart's text has all of it.");
    values.emplace_back(column::Comments, cut.empty() ? DbValue() : DbValue(cut));
  }
  if (*loaded) {
    values.emplace_back(column::Loaded, std::int64_t{0});
    saved.Notes.push_back(
        "The chart was converted to time-depth data before, and needs converting again: it is listed "
        "as not converted.");
  }
  for (auto& [name, value] : values)
    if (auto set = table.SetValue(name, std::move(value)); !set) return set;
  return table.Update();
}

DbResult<void> DatabaseCharts::MoveConversion(const ChartFileInfo& file, Date start) {
  Connection& connection = database_.DatabaseConnection;
  const auto known = connection.FindTable(table_name::Conversion);
  if (!known) return tl::unexpected(known.error());
  if (!*known) return {};
  Selection selection = ChartAsciiOf(file.InstrumentCode, file.StartDate);
  selection.Columns = {column::InstrumentCode, column::ChartDate};
  if (auto opened = database_.OpenAnyTable(table_name::Conversion, std::move(selection)); !opened)
    return opened;
  const auto places = PlacesWhere(database_.AnyTable, [](const ChartFileInfo&) { return true; });
  database_.AnyTable.Close();
  if (!places) return tl::unexpected(places.error());
  return Recordset::SetInRows(connection, table_name::Conversion, column::ChartDate, DbDate{start}, *places);
}

ChartSource::Question DatabaseCharts::DeletionQuestion() const {
  return {"Deleting Files from the Database",
          "Are you sure you want to delete the selected files from the database ?"};
}

DeletedCharts DatabaseCharts::Delete(std::span<const ChartFileInfo> files, Progress& progress) {
  const ClosedAfter closed(database_);
  DeletedCharts result;
  if (const auto deleted = DeleteAll(files, result, progress); !deleted)
    result = {0, {"Nothing was deleted from the database: " + NumberAndDescription(deleted.error())}};
  return result;
}

DbResult<void> DatabaseCharts::DeleteAll(std::span<const ChartFileInfo> files, DeletedCharts& result,
                                         Progress& progress) {
  if (auto opened = database_.OpenDatabase(); !opened) return opened;
  auto transaction =
      Transaction::BeginWriting(database_.DatabaseConnection, table_name::ChartAscii, progress);
  if (!transaction) return tl::unexpected(transaction.error());
  std::map<std::string, std::set<ChartKey>> ofInstrument;
  for (const ChartFileInfo& file : files) ofInstrument[file.InstrumentCode].insert(KeyOf(file));
  std::set<ChartKey> found;  // a chart that stands there twice goes as a whole
  for (const auto& charts : ofInstrument) {
    const std::string& code = charts.first;
    if (!progress.Step(static_cast<std::int64_t>(found.size()), static_cast<std::int64_t>(files.size()),
                       code))
      return tl::unexpected(DbError{db_error::Cancelled, "the operator stopped it", {}});
    Selection selection = ChartAsciiOf(code);
    selection.Columns = {column::InstrumentCode, column::ChartDate};
    if (auto opened = database_.OpenChartAscii(std::move(selection)); !opened) return opened;
    const auto places = PlacesWhere(database_.ChartAsciiTable, [&](const ChartFileInfo& here) {
      const bool goes = charts.second.contains(KeyOf(here));
      if (goes) found.insert(KeyOf(here));
      return goes;
    });
    database_.ChartAsciiTable.Close();
    if (!places) return tl::unexpected(places.error());
    if (auto deleted = Recordset::DeleteRows(database_.DatabaseConnection, table_name::ChartAscii, *places);
        !deleted)
      return deleted;
  }
  for (const ChartFileInfo& file : files)
    if (!found.contains(KeyOf(file))) result.Refused.push_back(NotThere(file));
  result.Deleted = static_cast<int>(found.size());
  return transaction->Commit();
}

}  // namespace hyetex
