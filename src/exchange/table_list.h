// Which tables the exchange is about, and what their files are called.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "platform/odbc/connection.h"

namespace hyetex {

/// What a whole database is, in the order in which it goes out and comes in.
inline constexpr std::array<const char*, 10> WholeDatabase{
    "station",       "instrument",       "chart",
    "chart_ascii",   "daily_chart",      "area_description",
    "dates_of_data", "instrument_visit", "JORDAN_CHARTS_By_HAND",
    "LOGGER"};
/// What goes out and comes in one by one.
inline constexpr std::array<const char*, 12> SingleTables{
    "chart",  "chart_ascii",   "station",         "instrument",   "daily_chart", "instrument_visit",
    "logger", "logger_binary", "lut_governorate", "lut_locality", "lut_region",  "manual_gage"};

/// All tables of ours that the database has: those of WholeDatabase, then the others in small letters.
DbResult<std::vector<std::string>> TablesThere(Connection& connection);

/// "chart.xml"
std::string XmlFileName(std::string_view table);
/// The path of a table's file in the folder, whatever the case of its letters; empty where there is none.
std::string FindXmlFile(const std::string& folder, std::string_view table);

/// In small letters, as the grid of the whole database shows a table.
std::string LowerAscii(std::string_view text);

}  // namespace hyetex
