// The records of CHART_ASCII on their way into CHART: which there are, and what their texts become.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "database/access/plot_db.h"
#include "database/conversion/chart_rows.h"
#include "database/conversion/old_rows.h"
#include "database/conversion/population.h"

namespace hyetex {

struct RecordToConvert {
  ChartToConvert Chart;
  RowPlace Place;                          ///< of the record
  std::optional<std::string> Why;          ///< it gives no rows
  std::optional<std::string> CutOff;       ///< what its text lacks of a whole chart
  bool CutAllowed = false;                 ///< and that what is left counts
  ChartRows Rows;                          ///< what it gives
  const StationRecord* Station = nullptr;  ///< that the chart is of
  int Reliability = 0;
  std::optional<OldRows> Old;      ///< once they have been looked for
  std::optional<bool> MayReplace;  ///< what the operator has answered

  /// Whether rows of it are to be written.
  bool Writes() const { return !Why && MayReplace.value_or(true); }
};

class RecordReader {
 public:
  RecordReader(HyetexPlotDB& database, const std::string& instrumentCode,
               std::span<const StationRecord> stations, const ComputationVariables& variables)
      : database_(database), code_(instrumentCode), stations_(stations), variables_(variables) {}

  /// The chosen charts in the order of their dates, and in `missing` those that the table does not hold. Of
  /// charts that overlap the later one counts, whatever order a database keeps its records in.
  DbResult<std::vector<ChartToConvert>> InOrder(std::span<const ChartToConvert> charts,
                                                std::vector<ChartToConvert>& missing);
  /// Whether one of them was converted before, as far as the table marks it.
  bool AnyIsLoaded() const { return anyIsLoaded_; }
  /// The records of some charts, read by one statement: one a chart, but for a table that holds it twice.
  DbResult<std::vector<RecordToConvert>> Read(std::span<const ChartToConvert> charts);
  /// Of the texts that Read() has read last.
  std::size_t TextBytes() const { return textBytes_; }

 private:
  void Convert(const std::string& text, RecordToConvert& record);

  HyetexPlotDB& database_;
  const std::string& code_;
  std::span<const StationRecord> stations_;
  const ComputationVariables& variables_;
  ChartReading reading_;  // kept from chart to chart, for its tables
  std::size_t textBytes_ = 0;
  bool anyIsLoaded_ = false;
};

}  // namespace hyetex
