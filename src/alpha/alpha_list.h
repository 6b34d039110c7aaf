// An instrument's stored charts with their alpha values: what is looked over before one of them all is
// selected.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/progress.h"
#include "core/records.h"
#include "database/access/plot_db.h"

namespace hyetex {

/// The most charts of a list; the rest is told.
inline constexpr std::size_t MostAlphaCharts = 10001;

struct AlphaChart {
  ChartRecord Chart;
  Date ChartDate = 0;          ///< of its record: with the instrument it tells the chart; 0 without one
  std::uint64_t TextMark = 0;  ///< of the stored text as it was read: another text has another mark
  bool IsConverted = false;    ///< its rows are in CHART

  /// Its text's start, or its record's date where the text has none.
  Date Start() const { return Chart.StartTime == 0 ? ChartDate : Chart.StartTime; }
};

struct AlphaList {
  std::string InstrumentCode = {};      ///< as it was asked for
  std::vector<AlphaChart> Charts = {};  ///< by their starts
  std::vector<std::string> Notes = {};  ///< what is not in the list and why, a line each
};

/// The codes of the database's instruments in the table's order, each once and without blanks behind it.
DbResult<std::vector<std::string>> AlphaInstruments(HyetexPlotDB& database);

/// All records of an instrument, its code compared without regard to case and to blanks behind it. A list
/// that was stopped says so in its notes.
DbResult<AlphaList> ReadAlphaList(HyetexPlotDB& database, const std::string& instrumentCode,
                                  Progress& progress);

/// Tells texts apart, taken in pieces.
class TextMark {
 public:
  void Take(std::string_view piece);
  std::uint64_t Value() const { return value_; }

 private:
  std::uint64_t value_ = 0xCBF29CE484222325;
};

}  // namespace hyetex
