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

// What the table editors show. The picture is the smallest file of its kind that looks like something.
Result<void> AddRecords(Connection& connection, const StationRecord& station) {
  std::string picture = "P6 48 32 255\n";
  for (int y = 0; y < 32; ++y)
    for (int x = 0; x < 48; ++x) {
      const bool hill = y > 24 - (x < 24 ? x : 48 - x) / 2;
      picture += hill ? std::string("\x4A\x7B\x3B") : std::string("\x9C\xC4\xE8");
    }
  const DbValue code = station.InstrumentCode, name = station.Name;
  const auto run = [&](const char* sql, std::vector<DbValue> values) {
    return connection.Execute(sql, values);
  };
  auto done = run(
      "UPDATE INSTRUMENT SET instrument_type = 'Siphon', manufacturer = 'Weathercraft', model_number = "
      "'W-10', "
      "date_start_instrument = ?, height_above_ground = 1.2, purchase_year = 1986, orifice_diameter = 200, "
      "systematic_errors = 'Siphons late in frost', minimum_depth_unit = 0.1, comments = 'On the roof of the "
      "school' WHERE instrument_code_id = ?",
      {DbDate{MakeDate(1986, 10, 1)}, code});
  if (done)
    done =
        run("INSERT INTO AREA_DESCRIPTION (area_description_id, station_code_id, date_of_area_description, "
            "area_description, image_file, station) VALUES (1, ?, ?, 'A bare slope to the south; trees to "
            "the north', "
            "?, ?)",
            {code, DbDate{MakeDate(1987, 4, 12)}, DbBinary{picture}, name});
  for (int day = 5; done && day < 12; ++day) {
    done =
        run("INSERT INTO MANUAL_GAGE (instrument_code_id, start_date, end_date, depth, method_to_obtain, "
            "data_Reliability_code) VALUES (?, ?, ?, ?, 'Dip stick', 'Acceptable')",
            {code, DbDate{MakeDate(1998, 3, day, 7)}, DbDate{MakeDate(1998, 3, day + 1, 7)}, day * 1.25});
    if (done)
      done =
          run("INSERT INTO JORDAN_CHARTS_By_HAND (instrument_code_id, station, chart_date, five_minute_max, "
              "ten_minute_max, sixty_minute_max, hrly_depth_twelve_am_one, comments) VALUES (?, ?, ?, 1.5, "
              "2.4, 6, "
              "0.4, 'Read twice')",
              {code, name, DbDate{MakeDate(1998, 3, day)}});
  }
  if (!done) return Failure(done.error().Description);
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
  if (auto added = AddRecords(database.DatabaseConnection, lists->Stations.front()); !added) return added;
  const auto charts = WriteCharts(JoinPath(settings.Folder(), "Data"), lists->Stations.front());
  if (!charts) return Failure(charts.error());
  UnwatchedProgress unwatched;
  const LoadResult loaded = LoadFiles(database, *lists, *charts, unwatched);
  database.Close();
  if (loaded.Loaded.size() < charts->size()) return Failure(LoadMessage(loaded));
  return {};
}

}  // namespace hyetex
