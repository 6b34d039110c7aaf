// The commands of hyetex-cli, each with what its words say. Results go to standard output, messages to
// standard error.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "chartfiles/chart_reader.h"
#include "commandline/answer.h"
#include "core/settings.h"
#include "digitizing/desk_view.h"
#include "staging/lists/lists.h"

namespace hyetex::cli {

using commandline::Exit;
using enum Exit;

struct FolderWords {
  std::string Folder;  ///< the program folder
};
struct DatabaseWords : FolderWords {
  std::string Database;  ///< a connection text; empty for the program folder's own
};

struct DecodeWords {
  int Tablet = 0;
  std::string From = "-";
};
struct TraceWords : DecodeWords {
  std::string Journal;  ///< empty for standard output
};
Exit RunDecode(const DecodeWords& words);  // tablet_commands.cpp
Exit RunTrace(const TraceWords& words);

struct DigitizeWords : FolderWords {
  int Task = 0;
  std::optional<int> ChartType;
  std::string User, Target;  ///< empty for those of the settings
  std::string Comment;
  bool Overwrite = false;
  std::string Journal;  ///< empty for none
};
Exit RunDigitize(const DigitizeWords& words);  // digitize_command.cpp
/// The user of that name, or else the settings' last one.
Result<std::string> FindUserName(const std::string& given, const Settings& settings,
                                 const ReferenceLists& lists);

struct AutotraceWords : FolderWords {
  std::optional<int> Task, ChartType;
  std::string Chart;        ///< the chart by its file's name, in place of Task; empty for none
  std::string Scan, Scans;  ///< one image, or a folder of them; empty for none
  int Page = 0;
  int Jobs = 0;  ///< at once; 0 for as many as there are processors
  std::string User, Target, Report;
  std::string Picture, Pictures;  ///< of one scan, or a folder for those of all
  std::vector<double> Start;      ///< x and y of the page's bottom-left corner; empty where it is looked for
  int Line = 0;                   ///< of two lines on a sheet
  bool MakeForm = false;          ///< the chart type's blank form is made anew first
  bool Doubtful = false;          ///< charts to review get their chart file as well
  bool Again = false;             ///< charts whose journal is to be reviewed are traced anew
};
Exit RunAutotrace(const AutotraceWords& words);  // autotrace_command.cpp

struct ShowWords : FolderWords {
  std::vector<std::string> Files;
};
struct SeriesWords : FolderWords {
  bool Alpha = false, Exact = false;
  double Lapse = 0;  ///< minutes
  std::string File;
};
Exit RunShow(const ShowWords& words);  // chart_commands.cpp
Exit RunReport(const ShowWords& words);
Exit RunSeries(const SeriesWords& words);

struct PlotWords : FolderWords {
  bool Series = false;  ///< the view of time and depth, else the trace
  double Step = 0;      ///< minutes of the intensity bars; 0 for none
  bool Alpha = false, NoGrid = false;
  bool Portrait = false, Landscape = false;  ///< neither is landscape
  double FontSize = 10;
  std::string Pdf, Png, Svg;  ///< where the pictures go; empty for none
  std::string File;
};
Exit RunPlot(const PlotWords& words);  // plot_command.cpp

/// Reads a chart file by the name that the words give, with the folder's stations, and says what was left out
/// of it. False, and said, where it cannot be read.
bool ReadChart(const std::string& folder, const std::string& name, ReadingOptions options,
               ChartReading& reading);

struct SettingWords : FolderWords {
  std::string Key, Value;
};
Exit RunGetSetting(const SettingWords& words);  // folder_commands.cpp
Exit RunSetSetting(const SettingWords& words);
Exit RunLists(const FolderWords& words);
Exit RunTasks(const FolderWords& words);

struct StructureWords : DatabaseWords {
  bool Keys = false;
  std::string Script;  ///< empty for none
};
struct CreateTablesWords : DatabaseWords {
  bool Complete = false, Print = false;
  std::string NewFile;  ///< empty for a database that is there
};
Exit RunStructure(const StructureWords& words);  // database_commands.cpp
Exit RunCreateTables(const CreateTablesWords& words);

struct LoadWords : DatabaseWords {
  std::vector<std::string> Files;
};
struct ExtractWords : DatabaseWords {
  std::string To;
  std::string Instrument;  ///< empty for all
};
Exit RunLoad(const LoadWords& words);  // load_commands.cpp
Exit RunExtract(const ExtractWords& words);

struct PopulateWords : DatabaseWords {
  std::string Instrument;
  bool All = false, Alpha = false, Manual = false, Overwrite = false, Log = false;
  double Lapse = 0;  ///< minutes
  double Gmt = 2;    ///< hours
};
Exit RunPopulate(const PopulateWords& words);  // populate_command.cpp

struct AlphaWords : DatabaseWords {
  std::string Instrument;
  std::optional<std::string> Write;  ///< the value to write, or "None"
};
Exit RunAlpha(const AlphaWords& words);  // alpha_command.cpp

struct RowsWords : DatabaseWords {
  std::string Table;
  std::string Instrument;  ///< empty for all
};
Exit RunRows(const RowsWords& words);  // rows_command.cpp

struct RainWords : DatabaseWords {
  std::string Instrument;
  std::optional<double> From, To;  ///< `Date`s of local time
  double Local = 0;                ///< hours that local time is ahead of GMT
  int DayBegins = 0;               ///< minutes behind midnight
  int Step = 0;                    ///< minutes; 0 for none
  bool Daily = false, Maxima = false, Storms = false;
  double Dry = 6;                  ///< hours
  std::string Sef, Pdf, Png, Svg;  ///< where files go; empty for none
  bool Fill = false, Overwrite = false;
};
Exit RunRain(const RainWords& words);  // rain_command.cpp

struct ExportWords : DatabaseWords {
  std::string To;
  bool Unchanged = false;
  std::vector<std::string> Tables;  ///< empty for all of ours
};
struct ImportWords : DatabaseWords {
  std::vector<std::string> Files;
};
Exit RunExport(const ExportWords& words);  // exchange_commands.cpp
Exit RunImport(const ImportWords& words);

struct SynchroniseWords : DatabaseWords {
  std::optional<std::string> Start;
};
Exit RunSynchronise(const SynchroniseWords& words);  // synchronise_command.cpp

/// Says on standard error why a command failed, or what is off with its words.
Exit Fail(std::string_view why);
Exit Off(std::string_view why);
void Say(std::string_view line);

/// The desk of a session without a screen: says what the operator would be told.
class SaidView : public SilentView {
 public:
  void ShowMessage(std::string_view, std::string_view text) override { Say(text); }
};

/// Writes to standard output; a command whose output could not be written has failed.
void Print(std::string_view text);

}  // namespace hyetex::cli
