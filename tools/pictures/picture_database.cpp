#include "pictures/picture_database.h"

#include <filesystem>
#include <vector>

#include "core/dates.h"
#include "core/files.h"
#include "core/numbers.h"
#include "database/access/new_database.h"
#include "database/store/loading.h"

namespace hyetex {
namespace {

struct Day {
  int Number;                // of March 1998
  double Overlap;            // days by which it begins before the last has ended
  float Digitized, Manual;   // mm
  const char *Alpha, *Last;  // the last lines
  double Skew = 0;           // of its alpha points
};
constexpr Day Days[] = {{5, 0, 12.4F, 12.8F, "None", ""},
                        {6, 0, 4.2F, 4, "0.00431", "", 0.00425},
                        {7, 0.05, 0, 0, "None", "", 0.0044},
                        {8, 0, 31.7F, 33.5F, "0.00428", "", 0.00611},
                        {9, 0, 7, 7.1F, "None", "CODE213"},
                        {10, 0, 18.9F, 18.5F, "0.00437", "", 0.00429},
                        {11, 0.1, 2.6F, 2.4F, "None", "CODE301", 0.00436}};

std::string ChartText(const StationRecord& station, const Day& day, Date start) {
  const auto depth = [](float mm) { return ShortText(mm); };
  std::string alphas;
  for (int i = 1; day.Skew > 0 && i <= 3; ++i)
    alphas += "Alpha " + ShortText(i) + " : " + RoundedText(day.Skew + i % 3 * 0.00011, 6) + "\r\n";
  return "HYETEX88 ASCII FILE\r\nStation Name: " + station.Name +
         "\r\nInstrument Code: " + station.InstrumentCode +
         "\r\nChart Method: 0 - Linear\r\nStart: " + DateText(start) +
         "\r\nEnd: " + DateText(MakeDate(1998, 3, day.Number + 1, 7)) +
         "\r\nEyed Depth: " + depth(day.Digitized) + "\r\nDigitized Depth: " + depth(day.Digitized) +
         "\r\nSelected Depth: " + depth(day.Digitized) + "\r\nManual Depth: " + depth(day.Manual) +
         "\r\nNumber of Points: 4\r\nChart Reliability: 1-Acceptable\r\nDigitation Points:\r\n"
         "0,0,\r\n96,12,\r\n192,55.5,\r\n386,60,\r\nGeneral Comment: " +
         day.Last + "\r\nDigitizer Comment: \r\n" + alphas + "Alpha Value Selected: " + day.Alpha + "\r\n";
}

Result<void> AddInstruments(Connection& connection, const ReferenceLists& lists) {
  for (const StationRecord& station : lists.Stations) {
    const DbValue values[] = {station.InstrumentCode, station.Name};
    const auto added =
        connection.Execute("INSERT INTO INSTRUMENT (instrument_code_id, station) VALUES (?, ?)", values);
    if (!added) return Failure(added.error().Description);
  }
  return {};
}

Result<std::vector<std::string>> WriteCharts(const std::string& folder, const StationRecord& station) {
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (error) return Failure("The folder " + folder + " cannot be made: " + error.message());
  std::vector<std::string> paths;
  for (const Day& day : Days) {
    const Date start = MakeDate(1998, 3, day.Number, 7) - day.Overlap;
    paths.push_back(JoinPath(folder, station.InstrumentCode + "-" + DateCode(start) + ".dat"));
    if (const auto written = WriteWholeFile(paths.back(), ChartText(station, day, start)); !written)
      return Failure(written.error());
  }
  return paths;
}

}  // namespace

Result<void> MakePictureDatabase(Settings& settings, Dialogs& dialogs) {
  const auto lists = ReadLists(settings.Folder());
  if (!lists) return Failure(lists.error());
  const std::string file = JoinPath(settings.Folder(), "rain.sqlite");
  if (auto made = CreateDatabaseFile(file); !made) return made;
  const auto text = FileConnectionText(file);
  if (!text) return Failure(text.error());
  if (auto kept = settings.Set(setting::DatabaseName, *text); !kept) return kept;

  HyetexPlotDB database(settings, dialogs);
  if (const auto opened = database.OpenDatabase(); !opened) return Failure(opened.error().Description);
  if (auto added = AddInstruments(database.DatabaseConnection, *lists); !added) return added;
  const auto charts = WriteCharts(JoinPath(settings.Folder(), "Data"), lists->Stations.front());
  if (!charts) return Failure(charts.error());
  UnwatchedProgress unwatched;
  const LoadResult loaded = LoadFiles(database, *lists, *charts, unwatched);
  database.Close();
  if (loaded.Loaded.size() < charts->size()) return Failure(LoadMessage(loaded));
  return {};
}

}  // namespace hyetex
