#include "database/store/extracting.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <utility>
#include <vector>

#include "core/dates.h"
#include "core/files.h"
#include "core/program_files.h"
#include "core/temporary_file.h"
#include "core/text.h"
#include "database/access/names.h"
#include "database/store/chart_ascii.h"
#include "database/store/stored_text.h"

namespace hyetex {
namespace {

namespace fs = std::filesystem;

// Of a record that our loading made it could not be longer than a chart file; another program's may be.
constexpr std::size_t MostTextBytes = 64U << 20;

class Extractor {
 public:
  Extractor(HyetexPlotDB& database, std::string folder, Progress& progress)
      : database_(database), folder_(std::move(folder)), progress_(progress) {}

  ExtractResult Run(std::string_view code) {
    if (MakeFolder()) Walk(code);
    return std::move(result_);
  }

  ExtractResult Run(std::span<const FileSummary> rows) {
    if (!MakeFolder()) return std::move(result_);
    chosenOnly_ = true;
    std::set<std::string> codes;
    for (const FileSummary& row : rows) {
      wanted_.emplace(std::pair(row.Stored, UpperAscii(row.Name)), false);
      codes.insert(row.Stored.Code);
    }
    total_ = static_cast<std::int64_t>(wanted_.size());
    // The records of these instruments; one without a code is found among all records.
    if (codes.contains("")) codes = {""};
    bool toTheEnd = true;
    for (auto code = codes.begin(); toTheEnd && code != codes.end(); ++code) toTheEnd = Walk(*code);
    for (const auto& [file, found] : wanted_) {
      if (found) continue;
      if (toTheEnd)
        result_.Report.Refused.push_back(ShownText(file.second) + ": it is no longer in the database");
      else
        ++result_.Report.NotReached;
    }
    return std::move(result_);
  }

 private:
  bool MakeFolder() {
    std::error_code error;
    fs::create_directories(folder_, error);
    if (error)
      result_.Report.Refused.push_back("The folder " + folder_ + " cannot be made: " + error.message());
    else
      ClearTemporaries(folder_);
    return !error;
  }

  // Returns false when the run has ended.
  bool Walk(std::string_view code) {
    const auto walked = WalkRecords(code);
    if (!walked) result_.Report.Stopped = walked.error();
    return walked && !result_.Report.Cancelled;
  }

  struct Stored {
    std::string Code;
    Date Start = 0;
  };

  // Which charts there are is read first, then some of them at a time: in SQLite nobody can write while a
  // result is read, and files take their time.
  DbResult<void> WalkRecords(std::string_view code) {
    const auto charts = ChartsOf(code);
    if (!charts) return tl::unexpected(charts.error());
    ChartGroup group;
    std::span<const Stored> open = *charts;
    while (!open.empty() && !result_.Report.Cancelled) {
      const std::size_t most = std::min(open.size(), group.Size());
      std::size_t count = 1;
      while (count < most && open[count].Code == open[0].Code) ++count;
      textBytes_ = 0;
      if (auto taken = TakeCharts(open.first(count)); !taken) return taken;
      group.Took(textBytes_);
      open = open.subspan(count);
    }
    return {};
  }

  // Those of an instrument, or all, in the table's order; each once.
  DbResult<std::vector<Stored>> ChartsOf(std::string_view code) {
    std::vector<Stored> charts;
    std::set<ChartKey> known;
    Selection selection = code.empty() ? Selection() : ChartAsciiOf(code);
    selection.Columns = {column::InstrumentCode, column::ChartDate};
    if (const auto opened = database_.OpenChartAscii(std::move(selection)); !opened)
      return tl::unexpected(opened.error());
    Recordset& table = database_.ChartAsciiTable;
    const auto walked = ForEachRow(table, [&]() -> DbResult<bool> {
      const auto stored = table.Value(0), date = table.Value(1);
      if (!stored) return tl::unexpected(stored.error());
      if (!date) return tl::unexpected(date.error());
      const ChartKey key(TextOf(*stored), DateOf(*date));
      if ((!chosenOnly_ || IsWanted(key)) && known.insert(key).second)
        charts.push_back({TextOf(*stored), DateOf(*date)});
      return true;
    });
    table.Close();
    if (!walked) return tl::unexpected(walked.error());
    return charts;
  }

  bool IsWanted(const ChartKey& key) const {
    const auto found = wanted_.lower_bound({key, ""});
    return found != wanted_.end() && found->first.first == key;
  }

  DbResult<void> TakeCharts(std::span<const Stored> charts) {
    std::vector<Date> dates;
    for (const Stored& chart : charts) dates.push_back(chart.Start);
    std::vector<std::vector<std::string>> texts(charts.size());
    const auto read =
        ForEachRecordOf(database_, charts[0].Code, dates, [&](std::size_t chart) -> DbResult<void> {
          auto text = ChartAsciiText(database_.ChartAsciiTable, MostTextBytes);
          if (!text) return tl::unexpected(text.error());
          textBytes_ += text->size();
          texts[chart].push_back(*std::move(text));
          return {};
        });
    if (!read) return read;
    for (std::size_t i = 0; i < charts.size(); ++i) {
      result_.Report.Cancelled = !progress_.Step(done_++, total_, name_);
      if (result_.Report.Cancelled) break;
      for (const std::string& text : texts[i]) TakeText(charts[i], text);
    }
    return {};
  }

  void TakeText(const Stored& chart, const std::string& text) {
    const StoredText stored = SplitStoredText(text);
    const ChartKey key(chart.Code, chart.Start);
    if (const auto wanted = wanted_.find({key, UpperAscii(stored.FileName)}); wanted != wanted_.end())
      wanted->second = true;
    else if (chosenOnly_)
      return;
    name_ = stored.FileName;
    auto why = CheckStoredName(stored.FileName);
    if (text.size() > MostTextBytes)
      why = "its text is longer than " + std::to_string(MostTextBytes) + " bytes";
    if (!why) why = Write(stored);
    const std::string record = chart.Code + " " + GeneralDateText(chart.Start);
    if (why) result_.Report.Refused.push_back(Named(stored.FileName, record) + ": " + *why);
  }

  std::optional<std::string> Write(const StoredText& stored) {
    const std::string path = JoinPath(folder_, stored.FileName);
    std::error_code error;
    if (fs::is_symlink(path, error)) return "a link of this name stands in the folder";
    if (fs::exists(path, error) && !IsChartFile(path))
      return "what stands there under its name is no chart file";
    if (const auto written = WriteWholeFile(path, stored.Bytes); !written) return written.error();
    ++result_.Extracted;
    if (!names_.insert(UpperAscii(stored.FileName)).second)
      result_.Report.Notes.push_back(ShownText(stored.FileName) +
                                     " stands in more than one record; the file is the last one's.");
    return std::nullopt;
  }

  static bool IsChartFile(const std::string& path) {
    const auto bytes = ReadWholeFile(path, MostTextBytes);
    return bytes && BeginsAsChart(*bytes);
  }

  static std::string Named(std::string_view name, const std::string& record) {
    return (CheckStoredName(name) ? Quoted(name) + " (" + ShownText(record) + ")" : ShownText(name));
  }

  HyetexPlotDB& database_;
  const std::string folder_;
  Progress& progress_;
  ExtractResult result_;
  bool chosenOnly_ = false;
  std::map<std::pair<ChartKey, std::string>, bool>
      wanted_;                   // chart and name in capitals; whether it was found
  std::set<std::string> names_;  // that were written, in capitals
  std::string name_;
  std::int64_t done_ = 0, total_ = 0;
  std::size_t textBytes_ = 0;  // that were read last
};

}  // namespace

ExtractResult ExtractFiles(HyetexPlotDB& database, std::span<const FileSummary> rows,
                           const std::string& folder, Progress& progress) {
  const ClosedAfter closed(database);
  return Extractor(database, folder, progress).Run(rows);
}

ExtractResult ExtractInstrument(HyetexPlotDB& database, std::string_view code, const std::string& folder,
                                Progress& progress) {
  const ClosedAfter closed(database);
  return Extractor(database, folder, progress).Run(code);
}

std::string ExtractMessage(const ExtractResult& result, const std::string& folder) {
  return ClosingMessage(std::to_string(result.Extracted) + " Files extracted to " + ShownText(folder),
                        result.Report);
}

}  // namespace hyetex
