#include "database/access/schema.h"

#include <algorithm>
#include <array>

#include "core/text.h"
#include "database/access/names.h"

namespace hyetex {
namespace {

constexpr std::int64_t LongestBinary = 1073741823;

constexpr SchemaColumn Text(std::string_view name, std::int64_t size) {
  return {name, ColumnType::VarChar, size};
}
constexpr SchemaColumn Integer(std::string_view name) { return {name, ColumnType::Integer}; }
constexpr SchemaColumn SmallInt(std::string_view name) { return {name, ColumnType::SmallInt}; }
constexpr SchemaColumn Real(std::string_view name) { return {name, ColumnType::Real}; }
constexpr SchemaColumn Double(std::string_view name) { return {name, ColumnType::Double}; }
constexpr SchemaColumn Time(std::string_view name) { return {name, ColumnType::DateTime}; }
constexpr SchemaColumn Binary(std::string_view name, std::int64_t size = 0) {
  return {name, ColumnType::LongBinary, size};
}

constexpr SchemaColumn AreaDescription[] = {
    Integer("area_description_id"), Text("station_code_id", 35), Time("date_of_area_description"),
    Text("area_description", 100),  Binary("image_file"),        Text("station", 25),
    Text("comments", 30),
};

// One row for each step of a chart.
constexpr SchemaColumn Chart[] = {
    Text(column::Station, 25),
    Text(column::InstrumentCode, 40),
    Time(column::StartTime),
    Time(column::EndTime),
    Real(column::Depth),
    Text(column::ComputingMethod, 10),
    Text(column::DataReliability, 20),
    Text(column::Comments, 25),
};

// One row for each chart, its file whole.
constexpr SchemaColumn ChartAscii[] = {
    Text(column::Station, 25),
    Text(column::InstrumentCode, 40),
    Time(column::ChartDate),
    Binary(column::AsciiFile, LongestBinary),
    Text(column::ChartReliability, 20),
    Text(column::Comments, 200),
    Integer("autokey"),
};

constexpr SchemaColumn DailyChart[] = {
    Text("station", 25),          Text("instrument_code_id", 40),    Time("date"),         Real("depth"),
    Text("computing_method", 10), Text("data_Reliability_code", 20), Text("comments", 25), Integer("autokey"),
};

constexpr SchemaColumn DatesOfData[] = {
    Text("instrument_code_id", 40), Time("date_data_begin"), Time("date_data_end"), Text("station", 25),
    Text("comments", 30),
};

constexpr SchemaColumn Instrument[] = {
    Text(column::InstrumentCode, 40),
    Text("station_code_id", 35),
    Text("instrument_type", 15),
    Text("instrument_id", 40),
    Text("manufacturer", 25),
    Text("model_number", 15),
    Text("station", 25),
    Time("date_start_instrument"),
    Time("date_stop_instrument"),
    Double("height_above_ground"),
    Integer("purchase_year"),
    Integer("orifice_diameter"),
    Integer("instrument_accuracy"),
    Text("systematic_errors", 100),
    Integer("minimum_time_unit"),
    Double("minimum_depth_unit"),
    Text("comments", 100),
};

constexpr SchemaColumn InstrumentVisit[] = {
    Text("instrument_code_id", 40),
    Time("visit_date"),
    Text("purpose_of_visit", 25),
    Text("outcome_of_visit", 25),
    Text("description_of_visit", 100),
    Text("station", 25),
    Text("comments", 50),
};

constexpr SchemaColumn IntensityDuration[] = {
    Text("Station", 50), Integer("Low_Intensity"), Integer("High_intensity"),
    Integer("Volume"),   Integer("Duration"),
};

// Maximum depths in nine durations, then the depths of the day's 24 hours.
constexpr SchemaColumn JordanChartsByHand[] = {
    Text("instrument_code_id", 40),
    Text("station", 25),
    Time("chart_date"),
    Double("five_minute_max"),
    Double("ten_minute_max"),
    Double("fifteen_minute_max"),
    Double("twenty_minute_max"),
    Double("thirty_minute_max"),
    Integer("sixty_minute_max"),
    Double("two_hour_max"),
    Double("six_hour_max"),
    Double("twelve_hour_max"),
    Double("hrly_depth_twelve_am_one"),
    Double("hrly_depth_one_am_two"),
    Double("hrly_depth_two_am_three"),
    Double("hrly_depth_three_am_four"),
    Double("hrly_depth_four_am_five"),
    Double("hrly_depth_five_am_six"),
    Double("hrly_depth_six_am_seven"),
    Double("hrly_depth_seven_am_eight"),
    Double("hrly_depth_eight_am_nine"),
    Double("hrly_depth_nine_am_ten"),
    Double("hrly_depth_ten_am_eleven"),
    Double("hrly_depth_eleven_am_twelve"),
    Double("hrly_depth_twelve_pm_one"),
    Double("hrly_depth_one_pm_two"),
    Double("hrly_depth_two_pm_three"),
    Double("hrly_depth_three_pm_four"),
    Double("hrly_depth_four_pm_five"),
    Double("hrly_depth_five_pm_six"),
    Double("hrly_depth_six_pm_seven"),
    Double("hrly_depth_seven_pm_eight"),
    Double("hrly_depth_eight_pm_nine"),
    Double("hrly_depth_nine_pm_ten"),
    Double("hrly_depth_ten_pm_eleven"),
    Double("hrly_depth_eleven_pm_twelve"),
    Text("comments", 75),
};

constexpr SchemaColumn Logger[] = {
    Text("station", 25), Text("instrument_code_id", 40),    Time("start_time"),   Time("end_time"),
    Integer("depth"),    Text("data_Reliability_code", 20), Text("comments", 25), Integer("autokey"),
};

constexpr SchemaColumn LoggerBinary[] = {
    Text("station", 25),
    Text("instrument_code_id", 40),
    Time("start_date"),
    Time("end_date"),
    Binary("binary_logger_file", LongestBinary),
    Text("comments", 25),
    Integer("autokey"),
};

// Look-up tables: a name and its code.
constexpr SchemaColumn Governorate[] = {Text("governorate", 60), Text("governorate_code", 5)};
constexpr SchemaColumn LocalBasin[] = {Text("local_basin", 60), Text("local_basin_code", 5)};
constexpr SchemaColumn Locality[] = {Text("locality", 60), Text("locality_code", 5)};
constexpr SchemaColumn Region[] = {Text("region", 60), Text("region_code", 5)};
constexpr SchemaColumn RegionalBasin[] = {Text("regional_basin", 60), Text("regional_basin_code", 5)};

constexpr SchemaColumn ManualGage[] = {
    Text("instrument_code_id", 40),
    Time("start_date"),
    Time("end_date"),
    Double("depth"),
    Text("method_to_obtain", 50),
    Text("data_Reliability_code", 40),
    Text("station", 25),
    Text("comments", 25),
};

constexpr SchemaColumn Station[] = {
    Text("station_code_id", 35),
    Text("station", 25),
    Text("station_code", 9),
    SmallInt("move_sequence"),
    Text("server_id", 35),
    Text("links", 50),
    Time("date_opened"),
    Time("date_moved_closed"),
    Double("utme"),
    Double("utmn"),
    SmallInt("utm_zone"),
    Text("region", 60),
    Text("governorate", 60),
    Text("regional_basin", 30),
    Text("local_basin", 30),
    Text("locality", 60),
    Text("owner_core_party", 12),
    Text("owner_agency", 40),
    Double("old_pal_X"),
    Double("old_pal_Y"),
    Double("horizontal_accuracy"),
    Double("altitude"),
    Double("altitude_accuracy"),
    Text("full_or_partial_met", 22),
    Text("local_station_name", 50),
    Text("comments", 100),
};

constexpr SchemaTable Tables[] = {
    {"AREA_DESCRIPTION", AreaDescription},
    {table_name::Chart, Chart},
    {table_name::ChartAscii, ChartAscii},
    {"DAILy_CHART", DailyChart},
    {"DATES_OF_DATA", DatesOfData},
    {table_name::Instrument, Instrument},
    {"INSTRUMENT_VISIT", InstrumentVisit},
    {"Intensity_duration", IntensityDuration},
    {"JORDAN_CHARTS_By_HAND", JordanChartsByHand},
    {"LOGGER", Logger},
    {"LOGGER_BINARy", LoggerBinary},
    {"LUT_GOVERNORATE", Governorate},
    {"LUT_LOCAL_BASIN", LocalBasin},
    {"LUT_LOCALITy", Locality},
    {"LUT_REGION", Region},
    {"LUT_REGIONAL_BASIN", RegionalBasin},
    {"MANUAL_GAGE", ManualGage},
    {table_name::Station, Station},
};

constexpr SchemaColumn Conversion[] = {
    Text(column::InstrumentCode, 40),
    Time(column::ChartDate),
    Time(column::FirstTime),  // GMT, like the next
    Time(column::LastTime),
    Double(column::GmtHours),
    Double(column::MinimalLapse),     // minutes
    Double(column::Alpha),            // that was taken out
    Text(column::SelectedDepth, 10),  // "Manual" or "Digitized"
    Double(column::ChosenDepth),      // mm
    Integer(column::RowCount),
    Text(column::UserName, 50),
    Time(column::ConversionTime),       // local
    Integer(column::ConversionNumber),  // of two charts that overlap the later one's rows stand there
};
constexpr SchemaTable ConversionDescription{table_name::Conversion, Conversion};

template <typename Entry>
const Entry* FindByName(std::span<const Entry> entries, std::string_view name) {
  const auto found = std::find_if(entries.begin(), entries.end(),
                                  [&](const Entry& entry) { return EqualIgnoringCase(entry.Name, name); });
  return found == entries.end() ? nullptr : &*found;
}

}  // namespace

std::span<const SchemaTable> SchemaTables() { return Tables; }
const SchemaTable& ConversionTable() { return ConversionDescription; }
const SchemaTable* FindSchemaTable(std::string_view name) { return FindByName(SchemaTables(), name); }
const SchemaColumn* FindSchemaColumn(const SchemaTable& table, std::string_view name) {
  return FindByName(table.Columns, name);
}

}  // namespace hyetex
