// The published rules of the Station Exchange Format, version 1.0.0: a file of twelve lines of header, a line
// of column names and a line an observation, parted by tabs, in UTF-8.
#pragma once

#include <map>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "core/files.h"
#include "core/text.h"

namespace hyetex::test {

struct SefFile {
  std::map<std::string, std::string> Head;
  std::vector<std::string> Keys, Columns;
  std::vector<std::vector<std::string>> Rows;
};

inline std::vector<std::string> Tabbed(const std::string& line) {
  std::vector<std::string> fields{""};
  for (const char c : line)
    if (c == '\t')
      fields.emplace_back();
    else
      fields.back() += c;
  return fields;
}

inline SefFile ReadSef(const std::string& text) {
  SefFile file;
  std::istringstream lines(text);
  std::string line;
  for (int number = 1; std::getline(lines, line); ++number) {
    std::vector<std::string> fields = Tabbed(line);
    if (number <= 12) {
      file.Keys.push_back(fields[0]);
      file.Head[fields[0]] = fields.size() == 2 ? fields[1] : "?";
    } else if (number == 13) {
      file.Columns = fields;
    } else {
      file.Rows.push_back(fields);
    }
  }
  return file;
}

/// What of a file of rain is against the rules.
inline std::vector<std::string> SefFaults(const std::string& path, const std::string& text) {
  std::vector<std::string> faults;
  const auto need = [&](bool holds, const std::string& what) {
    if (!holds) faults.push_back(what);
  };
  need(ShownText(text) == text, "is UTF-8");
  need(text.find('\r') == std::string::npos, "has no carriage return");
  const SefFile file = ReadSef(text);
  const std::vector<std::string> keys = {"SEF",    "ID",   "Name", "Lat",  "Lon",   "Alt",
                                         "Source", "Link", "Vbl",  "Stat", "Units", "Meta"};
  const std::vector<std::string> columns = {"Year",   "Month",  "Day",   "Hour",
                                            "Minute", "Period", "Value", "Meta"};
  need(file.Keys == keys, "has the header's keys in their order");
  need(file.Columns == columns, "has the columns in their order");
  if (!faults.empty()) return faults;
  need(file.Head.at("SEF") == "1.0.0", "is version 1.0.0");
  need(std::regex_match(file.Head.at("ID"), std::regex("[A-Za-z0-9_-]+")), "has an ID without blanks");
  const auto isNumber = [](const std::string& value, double most) {
    return value.empty() || (std::regex_match(value, std::regex("-?[0-9]+(\\.[0-9]+)?")) &&
                             std::abs(std::stod(value)) <= most);
  };
  need(isNumber(file.Head.at("Lat"), 90), "has a latitude");
  need(isNumber(file.Head.at("Lon"), 180), "has a longitude");
  need(isNumber(file.Head.at("Alt"), 9000), "has an altitude");
  need(file.Head.at("Vbl") == "rr" && file.Head.at("Units") == "mm", "is of rain in mm");
  const std::regex stats("point|maximum|minimum|mean|median|mid_range|mode|sum|variance|standard_deviation");
  need(std::regex_match(file.Head.at("Stat"), stats), "has a known statistic");
  const std::regex meta("([^|=]+=[^|=]*(\\|[^|=]+=[^|=]*)*)?");
  need(std::regex_match(file.Head.at("Meta"), meta), "has entries of metadata parted by |");

  std::string last;
  for (const std::vector<std::string>& row : file.Rows) {
    const std::string at = " in a row of " + std::to_string(row.size()) + " values";
    need(row.size() == columns.size(), "has eight values" + at);
    if (row.size() != columns.size()) continue;
    const int year = std::stoi(row[0]), month = std::stoi(row[1]), day = std::stoi(row[2]);
    const int hour = std::stoi(row[3]), minute = std::stoi(row[4]);
    constexpr int days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool isLeap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    need(month >= 1 && month <= 12 && day >= 1 && day <= days[month - 1] + (isLeap && month == 2 ? 1 : 0),
         "has dates");
    need(hour >= 0 && hour <= 24 && minute >= 0 && minute < 60, "has times");
    need(std::regex_match(row[5], std::regex("0|p|p?[0-9]*(year|month|day|hour|minute|second)")),
         "has a period's code");
    need(file.Head.at("Stat") == "point" || row[5] != "0", "has a period where it is no point");
    need(std::regex_match(row[6], std::regex("-?[0-9]+(\\.[0-9]+)?|NA")),
         "has a value with a point: " + row[6]);
    need(std::regex_match(row[7], meta), "has metadata parted by |");
    char time[32];
    std::snprintf(time, sizeof time, "%04d%02d%02d%02d%02d", year, month, day, hour, minute);
    need(last < time, "goes on in time");
    last = time;
  }
  // [source]_[station]_[start]-[end]_[variable][_note].tsv
  const std::regex name("([A-Za-z0-9-]+_)?([A-Za-z0-9-]+)_([0-9]{8})-([0-9]{8})_rr(_[A-Za-z0-9_-]+)?\\.tsv");
  std::smatch parts;
  const std::string base(BaseName(path));
  need(std::regex_match(base, parts, name), "has a name by the rules");
  if (parts.size() > 4 && !file.Rows.empty()) {
    need(parts[2] == file.Head.at("ID"), "names the station");
    need(last.substr(0, 8) == parts[4], "names its last day");
  }
  return faults;
}

}  // namespace hyetex::test
