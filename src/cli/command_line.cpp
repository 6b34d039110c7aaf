// All commands of hyetex-cli with their options: the one place that says what may be asked of it.
#include "cli/command_line.h"

#include <cmath>
#include <functional>
#include <memory>

#include "alpha/selected_alpha.h"
#include "cli/commands.h"
#include "commandline/parser.h"
#include "core/definitions.h"
#include "core/files.h"
#include "core/numbers.h"
#include "core/records.h"
#include "core/text.h"
#include "database/conversion/population.h"
#include "database/stations/synchronising.h"
#include "editor/chart_views.h"
#include "rain/rain_storms.h"
#include "rain/rain_time.h"

namespace hyetex::cli {
namespace {

using namespace commandline;

constexpr double MostMinutes = 1e6;

class CommandLine : public Description {
 public:
  CommandLine() : Description("hyetex-cli", "What a rain-gauge service wants to script, without a screen.") {
    require_subcommand(1);
    footer("hyetex-cli COMMAND --help tells more.");
    AddTabletCommands();
    AddChartCommands();
    AddFolderCommands();
    AddDatabaseCommands();
    AddConversionCommands();
    AddRain();
    AddExchangeCommands();
  }

  std::function<Exit()> Chosen;  ///< what the words ask for, after they are read

 private:
  // A command, and where its words go.
  template <typename Words>
  struct Command {
    CLI::App& Line;
    Words& Given;

    void Flag(const std::string& option, bool Words::*value, const std::string& help) {
      Line.add_flag(option, Given.*value, help);
    }
    CLI::Option* Name(const std::string& option, std::string Words::*value, const std::string& what,
                      const std::string& help) {
      return AddName(Line, option, Given.*value, what, help);
    }
  };

  template <typename Words>
  Command<Words> Add(const std::string& name, const std::string& does, Exit (*run)(const Words& words),
                     const std::string& more = {}) {
    CLI::App& line = *add_subcommand(name, does);
    line.footer(more);
    const auto given = std::make_shared<Words>();
    Run(line, given, run);
    return {line, *given};
  }
  template <typename Words>
  void Run(CLI::App& line, const std::shared_ptr<Words>& given, Exit (*run)(const Words& words)) {
    line.final_callback([this, given, run] {
      Chosen = [given, run] {
        if constexpr (std::is_base_of_v<FolderWords, Words>)
          if (const auto settings = CheckSettings(given->Folder); !settings) return Fail(settings.error());
        return run(*given);
      };
    });
  }

  void AddTabletCommands();
  void AddAutotrace();
  void AddChartCommands();
  void AddPlot();
  void AddFolderCommands();
  void AddDatabaseCommands();
  void AddConversionCommands();
  void AddRain();
  void AddExchangeCommands();
};

void AddFolder(CLI::App& line, FolderWords& words) {
  words.Folder = DefaultProgramFolder();
  AddName(line, "--folder", words.Folder, "DIR", "the program folder (default: the user's own)");
}

CLI::Option* AddDatabase(CLI::App& line, DatabaseWords& words) {
  CLI::Option* db = AddName(line, "--db", words.Database, "TEXT",
                            "the database, as in \"DSN=rain\" (default: the program folder's)");
  AddFolder(line, words);
  return db;
}

void AddFiles(CLI::App& line, std::vector<std::string>& files) {
  line.add_option("FILE", files, "chart files")->type_name("")->required();
}

void AddLapse(CLI::App& line, double& lapse) {
  AddNumber(line, "--lapse", lapse, 0, MostMinutes, "MINUTES", "join steps that are shorter");
}

void AddDecodeWords(CLI::App& line, DecodeWords& words) {
  AddTablet(line, words.Tablet)->required();
  AddWord(line, "FILE|PORT", words.From, "a recorded stream or a serial line; - is standard input")
      ->capture_default_str();
}

void CommandLine::AddTabletCommands() {
  const auto decode = Add(
      "decode", "Turns a tablet's bytes into one line a report: X Y BUTTON, the button -1 when none is down.",
      RunDecode, "Bytes that belong to no report are passed over.");
  AddDecodeWords(decode.Line, decode.Given);

  auto trace =
      Add("trace", "Runs a session at a tablet without a screen and writes its journal.", RunTrace,
          "The first two presses calibrate the page, then presses trace the pen line; the tool board lies "
          "in the top\nright corner of the tablet. A gap or a recovered segment gets its code without a "
          "text. Ends with the stream.");
  AddDecodeWords(trace.Line, trace.Given);
  trace.Name("--journal", &TraceWords::Journal, "FILE",
             "where the journal goes (default: standard output); one with steps stays");

  auto digitize = Add(
      "digitize",
      "Replays a session's journal for a staged chart, writes its chart file and prints the chart report.",
      RunDigitize, "A chart marked as extremely defective gets its empty file, and no journal.");
  AddFolder(digitize.Line, digitize.Given);
  AddWhole(digitize.Line, "--task", digitize.Given.Task, 0, MaxTask, "N",
           "the staged chart, from 0 in the order of the task list")
      ->required();
  AddWhole(digitize.Line, "--chart-type", digitize.Given.ChartType, 0, MaxChartType, "K",
           "the chart type (default: the current one of the settings)");
  digitize.Name("--user", &DigitizeWords::User, "NAME", "who digitized it (default: the last user)");
  digitize.Name("--target", &DigitizeWords::Target, "DIR",
                "where the chart file goes (default: the target folder of the settings)");
  digitize.Line.add_option("--comment", digitize.Given.Comment, "the digitizer's comment")->type_name("TEXT");
  digitize.Flag("--overwrite", &DigitizeWords::Overwrite, "take the place of a chart file that is there");
  AddWord(digitize.Line, "JOURNAL", digitize.Given.Journal, "the session's journal");
  AddAutotrace();
}

void CommandLine::AddAutotrace() {
  auto trace = Add("autotrace",
                   "Traces scanned charts by itself: journals, chart files, and a report of what to look at.",
                   RunAutotrace,
                   "A chart without a doubt gets its chart file, and beside it its journal (.journal). One "
                   "with doubts gets\n"
                   "the journal alone, with the doubts in it, and one that cannot be traced gets neither. "
                   "Charts whose files\n"
                   "stand are passed over, so a run that was ended goes on where it was. Ends with 3 where a "
                   "chart is to be\n"
                   "reviewed or is not traced.");
  AddFolder(trace.Line, trace.Given);
  AddWhole(trace.Line, "--task", trace.Given.Task, 0, MaxTask, "N",
           "the staged chart, from 0 in the order of the task list (default: all that have a scan)");
  trace
      .Name("--chart", &AutotraceWords::Chart, "NAME",
            "the staged chart by the name of its chart file, in place of --task")
      ->excludes("--task");
  CLI::Option* scan = trace.Name("--scan", &AutotraceWords::Scan, "FILE", "the scan of that chart");
  CLI::Option* scans = trace.Name("--scans", &AutotraceWords::Scans, "DIR",
                                  "a folder in which the scans of staged charts are found by their names");
  scan->excludes(scans);
  AddWhole(trace.Line, "--page", trace.Given.Page, 0, 9999, "N", "of the scan, from 0 (default: 0)")
      ->needs(scan);
  AddWhole(trace.Line, "--chart-type", trace.Given.ChartType, 0, MaxChartType, "K",
           "the chart type (default: the current one of the settings)");
  AddWhole(trace.Line, "--jobs", trace.Given.Jobs, 1, 1024, "N",
           "charts at once (default: one for each processor)");
  trace.Name("--user", &AutotraceWords::User, "NAME", "who answers for it (default: the last user)");
  trace.Name("--target", &AutotraceWords::Target, "DIR",
             "where files go (default: the target folder of the settings)");
  trace.Name("--report", &AutotraceWords::Report, "FILE", "a line for each chart is added to this CSV file");
  trace.Name("--picture", &AutotraceWords::Picture, "OUT", "the scan with its line, a .png, .jpg or .tif")
      ->needs(scan);
  trace.Name("--pictures", &AutotraceWords::Pictures, "DIR",
             "a folder for such a picture of each chart (.jpg)");
  AddNumber(
      trace.Line, "--start", trace.Given.Start, 0, 1e6, "X Y",
      "the left end of the page's bottom line, pixels from the scan's left and top edges (default: found)")
      ->expected(2)
      ->needs(scan);
  AddWhole(trace.Line, "--line", trace.Given.Line, 1, 2, "N",
           "of the two lines on a sheet that was left on its drum, the one written first or the other")
      ->needs(scan);
  trace.Flag(
      "--make-form", &AutotraceWords::MakeForm,
      "first make the chart type's blank form of five scans or more, which makes print known from ink; "
      "with --scan, of this empty chart, and trace nothing");
  trace.Flag("--again", &AutotraceWords::Again, "trace charts anew whose journal is to be reviewed");
  trace.Flag("--doubtful", &AutotraceWords::Doubtful, "write the chart files of charts to review, too");
}

void CommandLine::AddChartCommands() {
  const auto show =
      Add("show", "Prints the chart record of chart files, one \"Field: value\" a line.", RunShow,
          "A bare name that is no file here is looked for in the folder Data of the program folder.");
  AddFolder(show.Line, show.Given);
  AddFiles(show.Line, show.Given.Files);

  const auto report =
      Add("report", "Sums chart files up, a line each, as the editor's file summary does.", RunReport,
          "Depths are mm, times hours, factors percent. A file that cannot be read is named, and "
          "the rest goes on.");
  AddFolder(report.Line, report.Given);
  AddFiles(report.Line, report.Given.Files);

  auto series = Add("series", "Prints a chart's time-depth series as CSV: time,depth,comment.", RunSeries,
                    "Depths are mm of water since the chart's start; times are ISO 8601, without a zone.");
  AddFolder(series.Line, series.Given);
  series.Flag("--alpha", &SeriesWords::Alpha, "take the pen's skew out with the selected alpha");
  AddLapse(series.Line, series.Given.Lapse);
  series.Flag("--exact", &SeriesWords::Exact,
              "days and depths in the shortest form that reads back the same");
  AddWord(series.Line, "FILE", series.Given.File, "a chart file")->required();

  AddPlot();
}

void CommandLine::AddPlot() {
  auto plot = Add(
      "plot", "Draws a chart as pictures of an A4 page: its trace, or its depth over time.", RunPlot,
      "At least one of --pdf, --png and --svg is wanted; a file that is there is replaced. A chart without\n"
      "points or series gives a page that says so, which is said on standard error too.");
  AddFolder(plot.Line, plot.Given);
  plot.Line.add_option("--view", plot.Given.Series, "what is drawn")
      ->type_name("trace|series")
      ->required()
      ->transform(CLI::Validator(
          [](std::string& view) {
            if (view != "trace" && view != "series") return "trace or series is wanted, not \"" + view + "\"";
            view = view == "series" ? "true" : "false";
            return std::string();
          },
          {}));
  AddNumber(plot.Line, "--step", plot.Given.Step, LeastHyetographMinutes, MostHyetographMinutes, "MINUTES",
            "the intensity too, in bars of this step (series)");
  plot.Flag("--alpha", &PlotWords::Alpha, "take the pen's skew out with the selected alpha");
  CLI::Option* portrait = plot.Line.add_flag("--portrait", plot.Given.Portrait, "an upright page");
  plot.Line.add_flag("--landscape", plot.Given.Landscape, "a page that lies (this is so without either)")
      ->excludes(portrait);
  plot.Flag("--no-grid", &PlotWords::NoGrid, "without grid and day marks");
  AddNumber(plot.Line, "--font-size", plot.Given.FontSize, LeastFontPoints, MostFontPoints, "POINTS",
            "of all texts but the title")
      ->capture_default_str();
  plot.Name("--pdf", &PlotWords::Pdf, "OUT", "a page as PDF");
  plot.Name("--png", &PlotWords::Png, "OUT", "a picture of 150 pixels an inch as PNG");
  plot.Name("--svg", &PlotWords::Svg, "OUT", "a drawing as SVG");
  AddWord(plot.Line, "FILE", plot.Given.File, "a chart file")->required();
}

void CommandLine::AddFolderCommands() {
  CLI::App& setting = *add_subcommand("setting", "Reads or writes one key of the program folder's settings.");
  setting.require_subcommand(1);
  setting.footer("");
  const auto given = std::make_shared<SettingWords>();
  AddFolder(setting, *given);
  const auto addUse = [&](const std::string& name, const std::string& does,
                          Exit (*run)(const SettingWords& words)) -> CLI::App& {
    CLI::App& line = *setting.add_subcommand(name, does);
    line.fallthrough();  // --folder may stand behind, too
    AddWord(line, "KEY", given->Key, "the setting's name")->required();
    Run(line, given, run);
    return line;
  };
  addUse("get", "Prints a key's value. A missing key reads as empty.", RunGetSetting);
  CLI::App& set = addUse("set", "Writes a key's value.", RunSetSetting);
  AddWord(set, "VALUE", given->Value, "the new value")->required();

  const auto lists = Add("lists", "Prints all reference lists. Passwords are left out.", RunLists);
  AddFolder(lists.Line, lists.Given);
  const auto tasks =
      Add("tasks", "Prints all staged charts, with the numbers that digitize takes.", RunTasks);
  AddFolder(tasks.Line, tasks.Given);
}

void CommandLine::AddDatabaseCommands() {
  auto structure = Add(
      "structure", "Prints the tables and columns of a database, with the columns' type numbers and sizes.",
      RunStructure);
  AddDatabase(structure.Line, structure.Given);
  structure.Flag("--keys", &StructureWords::Keys,
                 "print the keys instead: type 1 is a primary key, 2 a foreign one");
  structure.Name("--script", &StructureWords::Script, "FILE",
                 "write the script for a database administrator too");

  auto create =
      Add("create-tables", "Makes the tables that a database lacks, and prints their names.", RunCreateTables,
          "What is there stays as it is. With --new the database itself is made; a file that is there is "
          "refused.");
  CLI::Option* db = AddDatabase(create.Line, create.Given);
  create.Flag("--complete", &CreateTablesWords::Complete,
              "add the column loaded of CHART_ASCII, the table CHART_CONVERSION and the indexes too");
  create.Flag("--print", &CreateTablesWords::Print,
              "print the statements for the database's administrator, and make nothing");
  create
      .Name("--new", &CreateTablesWords::NewFile, "FILE",
            "make a complete SQLite database in a new file, and print what connects to it")
      ->excludes(db);

  auto rows = Add("rows", "Prints the rows of a table as CSV, times in ISO 8601.", RunRows,
                  "Columns that hold whole files are left out.");
  AddDatabase(rows.Line, rows.Given);
  rows.Name("--instrument", &RowsWords::Instrument, "CODE", "only the rows of this instrument");
  AddWord(rows.Line, "TABLE", rows.Given.Table, "such as CHART")->required();

  const auto synchronise = Add(
      "synchronise", "Brings the station list and the database's instruments in line.", RunSynchronise,
      "Instruments that the list lacks are taken into it; stations that the database lacks are added there.");
  AddDatabase(synchronise.Line, synchronise.Given);
  synchronise.Line
      .add_option("--start", synchronise.Given.Start,
                  "the start date of every instrument that the database lacks")
      ->type_name("DD/MM/YYYY")
      ->check([](const std::string& text) {
        return ConvertStartDate(text) ? std::string() : "a day as dd/mm/yyyy is wanted, not \"" + text + "\"";
      });
}

void CommandLine::AddConversionCommands() {
  const auto load =
      Add("load", "Loads chart files into the database; a chart that is there is replaced.", RunLoad,
          "The instruments must be in the program folder's list of stations and in the database. Files are\n"
          "named CODE-YYYYMMDD-HHMM.dat; others are left out.");
  AddDatabase(load.Line, load.Given);
  AddFiles(load.Line, load.Given.Files);

  auto extract =
      Add("extract", "Writes the database's charts as files, as they were loaded.", RunExtract,
          "They stay in the database. Chart files of their names that are in the folder are replaced.");
  AddDatabase(extract.Line, extract.Given);
  extract.Name("--to", &ExtractWords::To, "DIR", "the folder to write to; made when it is missing")
      ->required();
  extract.Name("--instrument", &ExtractWords::Instrument, "CODE", "only the charts of this instrument");

  auto populate =
      Add("populate", "Converts an instrument's stored charts into rows of CHART, in GMT, one row a step.",
          RunPopulate,
          "Each chart is converted wholly or not at all. The status is 1 if a chart was skipped or\n"
          "could not be converted, or the log not be kept; the others are converted all the same.");
  AddDatabase(populate.Line, populate.Given);
  populate
      .Name("--instrument", &PopulateWords::Instrument, "CODE", "the instrument whose charts are converted")
      ->required();
  populate.Flag("--all", &PopulateWords::All, "charts that were converted before, too");
  populate.Flag("--alpha", &PopulateWords::Alpha, "take the pen's skew out with each chart's selected alpha");
  AddLapse(populate.Line, populate.Given.Lapse);
  AddNumber(populate.Line, "--gmt", populate.Given.Gmt, -MostGmtHours, MostGmtHours, "HOURS",
            "taken off local time to get GMT")
      ->capture_default_str();
  populate.Flag("--manual", &PopulateWords::Manual,
                "scale to the manual gage's depth, not the digitized one");
  populate.Flag("--overwrite", &PopulateWords::Overwrite,
                "replace rows that are there; without it such charts are skipped");
  populate.Flag("--log", &PopulateWords::Log, "write datalog.txt in the program folder");

  auto alpha = Add(
      "alpha",
      "Prints the alpha values (pen skew) of an instrument's stored charts as CSV, and their average.",
      RunAlpha,
      "The last line is the average of all alpha values, to 5 decimals, in the place of the selected alpha.\n"
      "With --write the value goes into the instrument's charts first; one whose text does not take it is\n"
      "named, and after an error of the database none has it. Charts that were converted need it again.");
  AddDatabase(alpha.Line, alpha.Given);
  alpha.Name("--instrument", &AlphaWords::Instrument, "CODE", "the instrument whose charts are looked over")
      ->required();
  alpha.Line
      .add_option("--write", alpha.Given.Write, "the selected alpha to write into the charts' texts, or None")
      ->type_name("VALUE")
      ->check([](const std::string& typed) {
        const auto value = ReadSelectedAlpha(typed);
        if (!value) return value.error();
        return value->Value || EqualIgnoringCase(Trim(typed), NoAlphaText)
                   ? std::string()
                   : "a number or None is wanted, not \"" + typed + "\"";
      });
}

// A day or a moment of local time.
void AddTime(CLI::App& line, const std::string& option, std::optional<double>& time,
             const std::string& help) {
  line.add_option_function<std::string>(
          option,
          [option, &time](const std::string& text) {
            const auto read = ReadRainTime(text);
            if (!read) throw CLI::ValidationError(option, read.error());
            time = *read;
          },
          help)
      ->type_name("TIME");
}

void CommandLine::AddRain() {
  auto rain =
      Add("rain", "Sums an instrument's rows of CHART: steps, days, maxima, storms as CSV, and as files.",
          RunRain,
          "One of --step, --daily, --maxima and --storms is printed. Times are read and given in the "
          "clock of\n--local, as 2001-03-05 or 2001-03-05T07:00. What of the time nothing is known of has "
          "no depth and covered 0.\nWhat is odd about the rows is said on standard error.");
  CLI::App& line = rain.Line;
  RainWords& given = rain.Given;
  AddDatabase(line, given);
  rain.Name("--instrument", &RainWords::Instrument, "CODE", "the instrument")->required();
  AddTime(line, "--from", given.From, "where to begin (default: with its first row)");
  AddTime(line, "--to", given.To, "where to end, that moment left out (default: with its last row)");
  AddNumber(line, "--local", given.Local, -MostHoursFromGmt, MostHoursFromGmt, "HOURS",
            "what local time is ahead of GMT")
      ->capture_default_str();
  line.add_option_function<std::string>(
          "--day-begins",
          [&given](const std::string& text) {
            const auto minutes = ReadDayBegins(text);
            if (!minutes) throw CLI::ValidationError("--day-begins", minutes.error());
            given.DayBegins = *minutes;
          },
          "when a day begins, in local time (default: 00:00)")
      ->type_name("HH:MM");
  CLI::Option* step = line.add_option("--step", given.Step, "print the depth of each step")
                          ->type_name("MINUTES")
                          ->check([](const std::string& text) {
                            const auto minutes = LeadingNumber(text);
                            return minutes == std::floor(minutes) && IsRainStep(static_cast<int>(minutes))
                                       ? std::string()
                                       : "whole minutes that divide a day are wanted, not \"" + text + "\"";
                          });
  CLI::Option* daily = line.add_flag("--daily", given.Daily, "print the depth of each day");
  CLI::Option* maxima = line.add_flag(
      "--maxima", given.Maxima, "print the greatest depths in 5 minutes to 24 hours, over every moment");
  CLI::Option* storms =
      line.add_flag("--storms", given.Storms, "print the storms; peaks are those of 5 minutes");
  for (CLI::Option* one : {step, daily, maxima, storms})
    for (CLI::Option* other : {step, daily, maxima, storms})
      if (one != other) one->excludes(other);
  AddNumber(line, "--dry", given.Dry, LeastDryHours, MostDryHours, "HOURS", "without rain end a storm")
      ->capture_default_str();
  rain.Name("--sef", &RainWords::Sef, "DIR",
            "write SEF 1.0.0 files of the steps (of an hour without --step) and days into this folder, made "
            "when it is "
            "missing");
  rain.Name("--pdf", &RainWords::Pdf, "OUT",
            "write a report of each year: a page a month, and one of maxima");
  rain.Name("--png", &RainWords::Png, "OUT", "write a picture of the steps and their sum as PNG");
  rain.Name("--svg", &RainWords::Svg, "OUT", "the same as SVG");
  rain.Flag("--fill", &RainWords::Fill, "fill DAILy_CHART and Intensity_duration");
  rain.Flag("--overwrite", &RainWords::Overwrite,
            "with --fill: replace rows that are there; without it nothing is filled then");
}

void CommandLine::AddExchangeCommands() {
  auto out =
      Add("export", "Writes tables as XML files, TABLE.xml, which import reads into any database.", RunExport,
          "Files of their names are replaced. A value that XML cannot hold, or a text without a "
          "character, is\nwritten as base64, and its element says so.");
  AddDatabase(out.Line, out.Given);
  out.Name("--to", &ExportWords::To, "DIR", "the folder to write to; made when it is missing")->required();
  out.Flag("--unchanged", &ExportWords::Unchanged,
           "write \"<\", \"&\" and carriage returns as they are, even where no XML program reads the file");
  out.Line
      .add_option("TABLE", out.Given.Tables, "such as chart (default: all tables of ours that are there)")
      ->type_name("");

  const auto in =
      Add("import", "Reads the rows of XML files into the tables that their root elements name.", RunImport,
          "Each file is one transaction. Rows whose unique key is there, and rows that do not fit "
          "their table,\nare refused, and the status is 1; the others are added all the same.");
  AddDatabase(in.Line, in.Given);
  in.Line.add_option("FILE", in.Given.Files, "files that export has written")->type_name("")->required();
}

}  // namespace

Exit RunCommandLine(std::span<const std::string> words) {
  CommandLine line;
  if (const auto answer = Parse(line, words))
    return answer->Status == Done ? Give(line.get_name(), *answer) : Off(answer->Text);
  return line.Chosen();
}

}  // namespace hyetex::cli
