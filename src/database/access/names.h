// The names of the tables and columns that the program asks for by name. Databases fold names to a case of
// their own, so they are looked up without regard to case.
#pragma once

namespace hyetex {

namespace table_name {
inline constexpr const char *Chart = "CHART", *ChartAscii = "CHART_ASCII", *Instrument = "INSTRUMENT",
                            *Station = "STATION", *Conversion = "CHART_CONVERSION";
}  // namespace table_name

namespace column {
// Of several tables
inline constexpr const char *InstrumentCode = "instrument_code_id", *Station = "station",
                            *Comments = "comments";
// Of CHART
inline constexpr const char *StartTime = "start_time", *EndTime = "end_time", *Depth = "depth",
                            *ComputingMethod = "computing_method", *DataReliability = "data_Reliability_code";
// Of CHART_ASCII
inline constexpr const char *ChartDate = "chart_date", *AsciiFile = "ascii_file",
                            *ChartReliability = "chart_Reliability_code";
// Of CHART_CONVERSION
inline constexpr const char *FirstTime = "first_time", *LastTime = "last_time", *GmtHours = "gmt_hours",
                            *MinimalLapse = "minimal_lapse", *Alpha = "alpha",
                            *SelectedDepth = "selected_depth", *ChosenDepth = "chosen_depth",
                            *RowCount = "row_count", *UserName = "user_name",
                            *ConversionTime = "conversion_time", *ConversionNumber = "conversion_number";
/// Marks a chart as converted: 1 once its rows are in CHART, 0 or null before. It is no part of the tables
/// that are made first; a database's keeper adds it.
inline constexpr const char* Loaded = "loaded";
}  // namespace column

}  // namespace hyetex
