// Stores what records give: their old rows make way, the new ones come, the records are marked, and the data
// log tells of it. All of it in one transaction, or nothing.
#pragma once

#include <optional>
#include <span>
#include <string>

#include "database/access/plot_db.h"
#include "database/conversion/chart_writer.h"
#include "database/conversion/conversion_book.h"
#include "database/conversion/data_log.h"
#include "database/conversion/population.h"
#include "database/conversion/record_reader.h"

namespace hyetex {

class RecordStore {
 public:
  RecordStore(HyetexPlotDB& database, const std::string& instrumentCode, const ConversionOptions& options,
              DataLog& log)
      : database_(database), code_(instrumentCode), options_(options), log_(log) {}

  /// To be called before others, and again after Release().
  DbResult<void> Open();
  /// Lets go of what a driver holds of the tables.
  void Release() {
    writer_.reset();
    book_.reset();
  }
  /// Whether what is converted is written down.
  bool HasBook() const { return book_.has_value(); }

  /// Why no row of this station can be stored.
  std::optional<std::string> CheckStation(const StationRecord& station) const {
    return writer_->CheckStation(station);
  }
  /// Stores in the transaction, and commits, records whose old rows have been looked for and do not depend on
  /// each other. Only if all of it is done it is added to `result`.
  DbResult<void> Store(Transaction& transaction, std::span<const RecordToConvert> records,
                       ConversionResult& result);

  /// A line of the log and of the problems.
  void Problem(Date chartDate, const std::string& what, ConversionResult& result);
  void Unconvertible(Date chartDate, const std::string& why, ConversionResult& result);

 private:
  DbResult<void> StoreOne(const RecordToConvert& record, ConversionResult& result);
  DbResult<void> Mark(std::span<const RecordToConvert> records);
  DbResult<void> LookForRows();

  HyetexPlotDB& database_;
  const std::string& code_;
  const ConversionOptions& options_;
  DataLog& log_;
  std::optional<ChartWriter> writer_;
  std::optional<ConversionWriter> book_;
  bool hasMark_ = false;
  bool hasRows_ = false;  // the table, as far as the log has to know
};

}  // namespace hyetex
