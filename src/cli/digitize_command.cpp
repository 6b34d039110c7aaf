// digitize: from a session's journal to a chart file.
#include <filesystem>

#include "chartfiles/chart_report.h"
#include "chartfiles/chart_text.h"
#include "chartfiles/saving.h"
#include "cli/commands.h"
#include "core/files.h"
#include "core/folder_lock.h"
#include "core/settings.h"
#include "core/temporary_file.h"
#include "core/text.h"
#include "digitizing/action_machine.h"
#include "staging/lists/lists.h"
#include "staging/tasks/activation.h"

namespace hyetex::cli {
namespace {

// What the words and the program folder say of the chart to digitize.
struct Work {
  std::optional<FolderLock> Lock;  // the program folder's, where the chart file goes into it
  ActivatedChart Chart;
  ChartOrigin Origin;
  std::string TargetFolder;
};

Result<Work> Prepare(const DigitizeWords& words) {
  const Settings settings(words.Folder);
  const std::string& folder = words.Folder;
  if (!FolderExists(folder)) return Failure("There is no program folder " + folder);
  const auto lists = ReadLists(folder);
  if (!lists) return Failure(lists.error());
  auto chart = ActivateChart(settings, *lists, words.Task, words.ChartType);
  if (!chart) return Failure(chart.error());
  for (const std::string& note : chart->Notes) Say(note);
  auto user = FindUserName(words.User, settings, *lists);
  if (!user) return Failure(user.error());
  auto origin = OriginOfChart(*lists, chart->Task, *std::move(user));
  if (!origin) return Failure(origin.error());

  const auto target = words.Target.empty() ? ReadTargetFolder(settings) : Result<std::string>(words.Target);
  if (!target) return Failure(target.error());
  Work work{std::nullopt, *std::move(chart), *std::move(origin), *target};
  if (!FolderExists(work.TargetFolder)) return Failure("There is no target folder " + work.TargetFolder);
  std::error_code error;
  if (std::filesystem::equivalent(work.TargetFolder, folder, error)) {
    auto lock = FolderLock::Take(folder);
    if (!lock) return Failure(lock.error());
    work.Lock.emplace(*std::move(lock));
  }
  ClearTemporaries(work.TargetFolder);
  return work;
}

Exit Save(const DigitizeWords& words, const Work& work, const ChartText& file) {
  for (const std::string& note : file.Notes) Say(note);
  std::string refusal;
  const auto mayOverwrite = [&](const std::string& question) {
    refusal = question;
    return words.Overwrite;
  };
  const auto path =
      WriteChartFile(file.Text, work.TargetFolder,
                     ChartFileName(work.Origin.InstrumentCode, work.Chart.Task.StartTime), mayOverwrite);
  if (!path) return Fail(path.error());
  if (!*path) return Fail(refusal + " Say --overwrite if it may.");
  Print("Chart file: " + **path + "\n");
  return Done;
}

// Reports are joined by carriage return and line feed; a terminal wants line feeds.
void PrintReport(std::string_view report) {
  ForEachLine(report, [](std::string_view line) { Print(std::string(line) + "\n"); });
}

Exit DigitizeJournal(const DigitizeWords& words, const Work& work) {
  const auto text = ReadWholeFile(words.Journal, MostJournalBytes);
  if (!text) return Fail(text.error());
  const Journal journal = ReadJournal(*text);
  if (journal.Tablet < 0) return Fail(*journal.Error);

  const TabletType& tablet = TabletTypes()[static_cast<std::size_t>(journal.Tablet)];
  Session session(tablet.Extents, work.Chart.ChartType, work.Chart.Task);
  if (const auto refusal = CheckChartScales(session.Line.Scales())) return Fail(*refusal);
  SaidView view;
  ActionMachine machine(session, tablet, view);
  machine.Start();
  if (const auto replayed = Replay(journal, machine); !replayed) return Fail(replayed.error());

  if (const auto error = SessionError(session)) {
    PrintReport(*error);
    return Fail("there is no chart to save");
  }
  const auto file = MakeChartText(session, work.Origin, words.Comment);
  if (!file) return Fail(file.error());
  ChartReport report;
  WriteReport(session, report);
  PrintReport(report.Text);
  return Save(words, work, *file);
}

}  // namespace

Result<std::string> FindUserName(const std::string& given, const Settings& settings,
                                 const ReferenceLists& lists) {
  const auto last = settings.Read(setting::UserName);
  if (!last) return last;
  const std::string name = given.empty() ? *last : given;
  int user = FindUser(lists.Users, name);
  // The list may be older than the words' UTF-8.
  for (std::size_t i = 0; user < 0 && i < lists.Users.size(); ++i)
    if (ShownText(lists.Users[i].Name) == name) user = static_cast<int>(i);
  if (user < 0) return Failure("There is no such user: \"" + ShownText(name) + "\"");
  return lists.Users[static_cast<std::size_t>(user)].Name;
}

Exit RunDigitize(const DigitizeWords& words) {
  const auto work = Prepare(words);
  if (!work) return Fail(work.error());
  const ChartRecord& chart = work->Chart.Task;
  if (const auto refusal = CheckTraceable(chart)) {
    if (!words.Journal.empty()) return Fail(*refusal + ", and gets an empty file without a journal");
    const auto file = MakeEmptyChartText(chart, chart.ChartMethod, work->Origin);
    return file ? Save(words, *work, *file) : Fail(file.error());
  }
  if (words.Journal.empty()) return Off("the journal is missing");
  return DigitizeJournal(words, *work);
}

}  // namespace hyetex::cli
