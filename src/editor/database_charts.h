// The charts that a database keeps in CHART_ASCII.
#pragma once

#include "database/access/plot_db.h"
#include "database/store/stored_text.h"
#include "editor/chart_source.h"

namespace hyetex {

class DatabaseCharts : public ChartSource {
 public:
  /// Both must outlive it. The database is opened for each piece of work, and closed after it.
  DatabaseCharts(HyetexPlotDB& database, const std::vector<StationRecord>& stations)
      : database_(database), stations_(stations) {}

  /// By the columns of the records; a chart that stands in the table twice is listed once.
  Result<ChartListing> List(const ChartFilter& filter, Progress& progress) override;
  Result<OpenedChart> Open(const ChartFileInfo& file, const ReadingOptions& options) override;
  /// In one transaction: the text, its name in it, and the columns that are made from it. A chart that was
  /// converted counts as not converted again, which the notes tell; so does what was written down of its
  /// conversion, so that the next one finds its old rows. Fails where another chart has its new name.
  Result<std::optional<SavedChart>> Save(const OpenedChart& chart, const ChartRecord& edited,
                                         const ChartSaveQuestions& questions, Progress& progress) override;
  Question DeletionQuestion() const override;
  /// In one transaction: all that are there, or none. Rows of rain that were made of them stay.
  DeletedCharts Delete(std::span<const ChartFileInfo> files, Progress& progress) override;

 private:
  struct Rewritten {
    std::string Name, Bytes;
    ChartRecord Chart;
  };
  enum class Attempt { Done, HasChanged };

  /// Makes the chart's record current; false if there is none.
  DbResult<bool> Find(const ChartFileInfo& file);
  DbResult<Attempt> Store(const OpenedChart& chart, const Rewritten& rewritten, bool mayReplace,
                          SavedChart& saved, Progress& progress);
  DbResult<void> Change(const Rewritten& rewritten, SavedChart& saved);
  DbResult<void> MoveConversion(const ChartFileInfo& file, Date start);
  DbResult<void> DeleteAll(std::span<const ChartFileInfo> files, DeletedCharts& result, Progress& progress);

  HyetexPlotDB& database_;
  const std::vector<StationRecord>& stations_;
};

}  // namespace hyetex
