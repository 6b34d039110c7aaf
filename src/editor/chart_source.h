// Where the editor's charts come from: a folder, or the database. The editor lists, opens, saves and deletes
// them without knowing which.
#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "chartfiles/chart_reader.h"
#include "chartfiles/saving.h"
#include "core/progress.h"
#include "core/result.h"

namespace hyetex {

/// A chart of a list.
struct ChartFileInfo {
  std::string FileName;  ///< without its folder; of a stored chart, the name that its record gives it
  std::int16_t InstrumentIndex = -1;  ///< into the stations; -1 when no station has the code
  std::string InstrumentCode;
  Date StartDate = 0;
};

/// Which charts are listed.
struct ChartFilter {
  std::string InstrumentCode = {};  ///< without regard to case; empty: all
  std::optional<int> Year = {};     ///< of the start
};

/// The most charts of a list; the rest is told.
inline constexpr std::size_t MostChartsListed = 10001;

struct ChartListing {
  std::vector<ChartFileInfo> Files;  ///< by name
  std::vector<int> Years;          ///< of all of the instrument's charts, whatever year is listed; ascending
  std::vector<std::string> Notes;  ///< what is not in the list and why, a line each
};

struct OpenedChart {
  ChartFileInfo File;
  std::string Bytes;  ///< of the chart file as it was when it was opened
  std::shared_ptr<const ChartReading> Reading;
};

/// What is asked before a chart is saved; a question answered with no leaves all as it was.
struct ChartSaveQuestions {
  Confirm OtherName;  ///< the details give the file another name
  Confirm Overwrite;  ///< another chart stands under that name
  Confirm Newer;      ///< the chart was changed or removed by somebody else since it was opened
};

struct SavedChart {
  ChartFileInfo File;
  std::vector<std::string> Notes;  ///< what the operator should know of it, a line each
};

struct DeletedCharts {
  int Deleted = 0;
  std::vector<std::string> Refused;  ///< what could not be deleted and why, a line a chart
};

class ChartSource {
 public:
  virtual ~ChartSource() = default;

  /// Every name of the form of a chart's whose file begins as a chart's. In steps; a list that was stopped
  /// says so in its notes.
  virtual Result<ChartListing> List(const ChartFilter& filter, Progress& progress) = 0;
  /// Fails with one line that names the chart. What its text lacks is no failure.
  virtual Result<OpenedChart> Open(const ChartFileInfo& file, const ReadingOptions& options) = 0;
  /// Writes the start, end, depths, reliability and general comment of `edited` into the lines of the chart
  /// that they stand in, and gives the file the name that goes with its start. All or nothing: under another
  /// name the old chart goes only when the new one is safely written. Nothing where a question was answered
  /// with no.
  virtual Result<std::optional<SavedChart>> Save(const OpenedChart& chart, const ChartRecord& edited,
                                                 const ChartSaveQuestions& questions, Progress& progress) = 0;

  struct Question {
    std::string Title, Text;
  };
  /// Before charts are deleted.
  virtual Question DeletionQuestion() const = 0;
  /// Deletes just these, without a question.
  virtual DeletedCharts Delete(std::span<const ChartFileInfo> files, Progress& progress) = 0;
};

/// "name (5.3.98)".
std::string EntryText(const ChartFileInfo& file);

// What the sources have in common.

/// The chart with this name; nothing for a name of another form.
std::optional<ChartFileInfo> InfoOfName(std::string_view name, std::span<const StationRecord> stations);
/// Whether the filter lets a chart's instrument through.
bool IsOfInstrument(const ChartFileInfo& file, const ChartFilter& filter);
/// The list of these charts, all of the filter's instrument: its years, those of one year, by name, and no
/// more than a list takes.
ChartListing MakeListing(std::vector<ChartFileInfo> files, const ChartFilter& filter, std::string_view where);
inline constexpr const char* ListWasStopped = "The list was stopped before its end.";

/// The name that goes with the chart's instrument and its edited start; nothing where it is the file's own,
/// without regard to case. Fails on a code that cannot name a file.
Result<std::optional<std::string>> OtherNameOf(const OpenedChart& chart, const ChartRecord& edited);
std::string OtherNameQuestion(std::string_view name);

}  // namespace hyetex
