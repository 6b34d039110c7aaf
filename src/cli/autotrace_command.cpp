// autotrace: from the scans of staged charts to journals, chart files, and a report of what a person should
// look at.
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <map>
#include <opencv2/core.hpp>
#include <thread>

#include "chartfiles/chart_text.h"
#include "chartfiles/saving.h"
#include "cli/commands.h"
#include "core/files.h"
#include "core/folder_lock.h"
#include "core/numbers.h"
#include "core/temporary_file.h"
#include "core/text.h"
#include "digitizing/action_machine.h"
#include "digitizing/scan_placement.h"
#include "scan/find_scans.h"
#include "scan/trace_picture.h"
#include "scan/trace_steps.h"
#include "staging/lists/lists.h"
#include "staging/tasks/activation.h"
#include "staging/tasks/tasks.h"

namespace hyetex::cli {
namespace {

constexpr std::string_view ReportHeading =
    "chart,scan,verdict,seconds,rain_mm,eyed_mm,gage_mm,emptyings,confidence,doubts,words\n";
constexpr std::string_view VerdictLine = "# traced from a scan: ";
constexpr std::size_t MostReportBytes = 256U << 20;
constexpr std::size_t MostWords = 16000;  // of one chart: a process hands them over in one go

struct Box {
  const AutotraceWords& Words;
  Settings Given;
  ReferenceLists Lists;
  std::string User, Target;
  std::optional<FolderLock> Lock;  // the program folder's, where files go into it
};

// One chart of the box, and what came of it.
struct Job {
  ActivatedChart Chart;
  ChartOrigin Origin;
  std::string Scan;

  std::string Name() const { return ChartFileName(Origin.InstrumentCode, Chart.Task.StartTime); }
};
enum class Outcome : int { Clean = 0, ToReview = 1, NotTraced = 2, Failed = 3 };

std::string InQuotes(std::string_view text) {
  std::string quoted = "\"";
  for (const char c : text) quoted += c == '"' ? "\"\"" : std::string(1, c);
  return quoted + "\"";
}

std::string Rounded(double value, int digits) {
  char text[48];
  std::snprintf(text, sizeof text, "%.*f", digits, value);
  return text;
}
std::string Known(float depth) { return depth > 0 ? ShortText(depth) : std::string(); }

TraceWish WishFor(const Box& box, const ActivatedChart& chart) {
  TraceWish wish = WishOf(chart.ChartType, chart.Task);
  if (const auto& start = box.Words.Start; !start.empty()) wish.Start = TraceWish::Place{start[0], start[1]};
  return wish;
}

// A chart file's name with another ending.
std::string NameWith(const Job& job, std::string_view ending) {
  const std::string name = job.Name();
  return name.substr(0, name.rfind('.')) + std::string(ending);
}
std::string JournalPath(const Box& box, const Job& job) {
  return JoinPath(box.Target, NameWith(job, ".journal"));
}
std::string PicturePath(const Box& box, const Job& job) {
  return box.Words.Pictures.empty() ? box.Words.Picture : JoinPath(box.Words.Pictures, NameWith(job, ".jpg"));
}

// Why a chart needs no tracing: its files stand. A journal without a doubt whose chart file is missing was
// interrupted.
std::optional<std::string> Stands(const Box& box, const Job& job) {
  if (FileExists(JoinPath(box.Target, job.Name()))) return "its chart file stands";
  const auto journal = ReadFirstBytes(JournalPath(box, job), 4096);
  if (!journal) return std::nullopt;
  const bool clean =
      journal->find(std::string(VerdictLine) + VerdictText(TraceVerdict::Clean)) != std::string::npos;
  if (clean || box.Words.Doubtful || box.Words.Again) return std::nullopt;
  return "its journal stands, to be reviewed";
}

// Journal and chart file of a trace. Nothing is written of a chart that cannot be saved.
Result<void> WriteFiles(const Box& box, const Job& job, const ScanTrace& trace, const TracedSteps& steps) {
  const TabletType& tablet = TabletTypes()[ScanTablet];
  Session session(tablet.Extents, job.Chart.ChartType, job.Chart.Task);
  if (const auto refusal = CheckChartScales(session.Line.Scales())) return Failure(*refusal);
  SilentView view;
  ActionMachine machine(session, tablet, view);
  machine.Start();
  const std::string text = JournalOfTrace(steps, trace);
  const Journal journal = ReadJournal(text);
  if (journal.Error) return Failure(*journal.Error);
  if (const auto replayed = Replay(journal, machine); !replayed) return replayed;
  if (const auto error = SessionError(session)) return Failure(*error);
  const auto file = MakeChartText(session, job.Origin, "Traced from a scan by the program");
  if (!file) return Failure(file.error());
  if (const auto written = WriteWholeFile(JournalPath(box, job), text); !written) return written;
  if (trace.Verdict != TraceVerdict::Clean && !box.Words.Doubtful) return {};
  const auto path =
      WriteChartFile(file->Text, box.Target, job.Name(), [](const std::string&) { return false; });
  if (!path) return Failure(path.error());
  return {};
}

struct Told {
  Outcome What = Outcome::Failed;
  std::string Line;  // of the report
};

Told TraceOne(const Box& box, const Job& job) {
  const auto begun = std::chrono::steady_clock::now();
  const TraceWish wish = WishFor(box, job.Chart);
  ScanTrace trace;
  std::string trouble;
  const auto notTraced = [&](const std::string& why) {
    trace.Doubts.push_back({TraceDoubt::Kind::Chart, 0, wish.Hours, 0, -1, why});
  };
  const auto image = ScanImage::Open(job.Scan, box.Words.Page);
  if (!image) {
    notTraced(image.error());
  } else if (const auto tracer = ScanTracer::Open(*image, wish); !tracer) {
    notTraced("Not traced: " + tracer.error() + ".");
  } else {
    trace = tracer->Trace();
    if (trace.Verdict != TraceVerdict::NotTraced) {
      const auto steps = StepsOfTrace(trace, *tracer, *image, wish);
      const auto written = steps ? WriteFiles(box, job, trace, *steps) : Result<void>(Failure(steps.error()));
      if (!written) trouble = written.error();
    }
  }
  if (const std::string name = PicturePath(box, job); trouble.empty() && image && !name.empty()) {
    const auto picture = PictureOfTrace(*image, trace, name);
    const auto written = picture ? WriteWholeFile(name, *picture) : Result<void>(Failure(picture.error()));
    if (!written) trouble = written.error();
  }
  std::string words = trouble;
  for (const TraceDoubt& doubt : trace.Doubts)
    if (words.size() < MostWords) words += (words.empty() ? "" : " ") + doubt.Why;
  const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begun).count();
  const Outcome what = !trouble.empty()                          ? Outcome::Failed
                       : trace.Verdict == TraceVerdict::Clean    ? Outcome::Clean
                       : trace.Verdict == TraceVerdict::ToReview ? Outcome::ToReview
                                                                 : Outcome::NotTraced;
  const ChartRecord& task = job.Chart.Task;
  return {what, InQuotes(job.Name()) + "," + InQuotes(job.Scan) + "," +
                    (trouble.empty() ? VerdictText(trace.Verdict) : "failed") + "," + Rounded(seconds, 2) +
                    "," + Rounded(trace.RainMm, 2) + "," + Known(task.EyedDepth) + "," +
                    Known(task.ManualDepth) + "," + std::to_string(trace.EmptyingHours.size()) + "," +
                    Rounded(trace.Confidence, 2) + "," + std::to_string(trace.Doubts.size()) + "," +
                    InQuotes(words) + "\n"};
}

Result<Job> MakeJob(const Box& box, int task) {
  auto chart = ActivateChart(box.Given, box.Lists, task, box.Words.ChartType);
  if (!chart) return Failure(chart.error());
  if (const auto refusal = CheckTraceable(chart->Task)) return Failure(*refusal);
  auto origin = OriginOfChart(box.Lists, chart->Task, box.User);
  if (!origin) return Failure(origin.error());
  return Job{*std::move(chart), *std::move(origin), {}};
}

// As it is found from any folder, since it goes into journal and chart file.
std::string WholePath(const std::string& path) {
  std::error_code error;
  const auto whole = std::filesystem::absolute(path, error);
  return error ? path : whole.lexically_normal().string();
}

Result<std::vector<Job>> FindJobs(const Box& box) {
  const AutotraceWords& words = box.Words;
  std::vector<Job> jobs;
  std::vector<WantedScan> wanted;
  int count = 1;
  if (!words.Task) {
    const auto table = LoadTasks(words.Folder, box.Lists.Stations);
    if (!table) return Failure(table.error());
    count = static_cast<int>(table->Tasks.size());
  }
  for (int i = 0; i < count; ++i) {
    auto job = MakeJob(box, words.Task.value_or(i));
    if (!job && words.Task) return Failure(job.error());
    if (!job) {
      Say("Staged chart " + std::to_string(i) + " is left out: " + job.error());
      continue;
    }
    wanted.push_back({job->Origin.InstrumentCode, job->Chart.Task.StartTime});
    jobs.push_back(*std::move(job));
  }
  if (!words.Scan.empty()) {
    jobs.front().Scan = WholePath(words.Scan);
    return jobs;
  }
  const auto scans = FindScans(words.Scans, wanted);
  if (!scans) return Failure(scans.error());
  std::vector<Job> found;
  for (std::size_t i = 0; i < jobs.size(); ++i) {
    if (!(*scans)[i]) {
      Say(jobs[i].Name() + " is left out: " + (*scans)[i].error());
      continue;
    }
    jobs[i].Scan = WholePath(*(*scans)[i]);
    found.push_back(std::move(jobs[i]));
  }
  return found;
}

Result<Box> OpenBox(const AutotraceWords& words) {
  const Settings settings(words.Folder);
  if (!FolderExists(words.Folder)) return Failure("There is no program folder " + words.Folder);
  auto lists = ReadLists(words.Folder);
  if (!lists) return Failure(lists.error());
  auto user = FindUserName(words.User, settings, *lists);
  if (!user) return Failure(user.error());
  auto target = words.Target.empty() ? ReadTargetFolder(settings) : Result<std::string>(words.Target);
  if (!target) return Failure(target.error());
  if (!FolderExists(*target)) return Failure("There is no target folder " + *target);
  if (!words.Pictures.empty() && !FolderExists(words.Pictures))
    return Failure("There is no folder " + words.Pictures);
  Box box{words, settings, *std::move(lists), *std::move(user), *std::move(target), std::nullopt};
  std::error_code error;
  if (std::filesystem::equivalent(box.Target, words.Folder, error)) {
    auto lock = FolderLock::Take(words.Folder);
    if (!lock) return Failure(lock.error());
    box.Lock.emplace(*std::move(lock));
  }
  ClearTemporaries(box.Target);
  return box;
}

// The charts of a box, each in a process of its own: one that breaks on a scan takes no other with it.
class Run {
 public:
  explicit Run(const Box& box) : box_(box) {}

  Exit All(const std::vector<Job>& all) {
    std::vector<const Job*> jobs;
    for (const Job& job : all) {
      const auto why = Stands(box_, job);
      if (why) Say(job.Name() + " is passed over: " + *why);
      passedOver_ += why ? 1 : 0;
      if (!why) jobs.push_back(&job);
    }
    if (const auto begun = BeginReport(jobs); !begun) return Fail(begun.error());
    const auto begun = std::chrono::steady_clock::now();
    const auto most = static_cast<std::size_t>(
        box_.Words.Jobs > 0 ? box_.Words.Jobs
                            : static_cast<int>(std::max(1U, std::thread::hardware_concurrency())));
    Print(ReportHeading);
    for (const Job* job : jobs) {
      while (running_.size() >= most) Wait();
      Begin(*job);
    }
    while (!running_.empty()) Wait();
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begun).count();
    const auto count = [&](Outcome what) { return std::to_string(counts_[what]); };
    Say(count(Outcome::Clean) + " clean, " + count(Outcome::ToReview) + " to review, " +
        count(Outcome::NotTraced) + " not traced, " + count(Outcome::Failed) + " failed, " +
        std::to_string(passedOver_) + " passed over, in " + Rounded(seconds, 1) + " s");
    if (!trouble_.empty()) return Fail(trouble_);
    if (counts_[Outcome::Failed] > 0) return Failed;
    return counts_[Outcome::ToReview] + counts_[Outcome::NotTraced] > 0 ? ToReview : Done;
  }

 private:
  struct Running {
    int Pipe;
    const Job* What;
  };

  void Begin(const Job& job) {
    int ends[2];
    if (pipe(ends) != 0) return Count(job, {Outcome::Failed, {}});
    const pid_t child = fork();
    if (child == 0) {
      close(ends[0]);
      cv::setNumThreads(1);
      const Told told = TraceOne(box_, job);
      for (std::size_t sent = 0; sent < told.Line.size();) {
        const ssize_t count = write(ends[1], told.Line.data() + sent, told.Line.size() - sent);
        if (count <= 0) break;
        sent += static_cast<std::size_t>(count);
      }
      _exit(static_cast<int>(told.What));
    }
    close(ends[1]);
    if (child < 0) {
      close(ends[0]);
      return Count(job, {Outcome::Failed, {}});
    }
    running_[child] = {ends[0], &job};
  }

  void Wait() {
    int status = 0;
    const pid_t child = wait(&status);
    const auto at = running_.find(child);
    if (at == running_.end()) return;
    Told told;
    char bytes[4096];
    for (ssize_t count; (count = read(at->second.Pipe, bytes, sizeof bytes)) > 0;)
      told.Line.append(bytes, static_cast<std::size_t>(count));
    close(at->second.Pipe);
    if (WIFEXITED(status)) told.What = static_cast<Outcome>(WEXITSTATUS(status));
    Count(*at->second.What, told);
    running_.erase(at);
  }

  void Count(const Job& job, const Told& told) {
    ++counts_[told.What];
    const std::string line = !told.Line.empty()
                                 ? told.Line
                                 : InQuotes(job.Name()) + "," + InQuotes(job.Scan) +
                                       ",failed,,,,,,,,\"The tracing ended before its end.\"\n";
    Print(line);
    if (!box_.Words.Report.empty()) Report(line);
  }
  // A chart has one line: those of charts that are traced now make way.
  Result<void> BeginReport(const std::vector<const Job*>& jobs) const {
    const std::string& path = box_.Words.Report;
    if (path.empty()) return {};
    std::string text, kept(ReportHeading);
    if (FileExists(path)) {
      auto read = ReadWholeFile(path, MostReportBytes);
      if (!read) return Failure(read.error());
      text = *std::move(read);
    }
    if (!text.empty() && !text.starts_with(ReportHeading))
      return Failure(path + " is no report of traced charts; nothing was written");
    for (std::size_t at = ReportHeading.size(); at < text.size();) {
      const std::size_t end = std::min(text.find('\n', at), text.size() - 1) + 1;
      const std::string_view line(text.data() + at, end - at);
      const bool again = std::any_of(jobs.begin(), jobs.end(), [&](const Job* job) {
        return line.starts_with(InQuotes(job->Name()) + ",");
      });
      if (!again && line.ends_with('\n')) kept += line;
      at = end;
    }
    return kept == text ? Result<void>() : WriteWholeFile(path, kept);
  }
  void Report(std::string_view line) {
    if (const auto written = AppendToFile(box_.Words.Report, line); !written) trouble_ = written.error();
  }

  const Box& box_;
  std::map<pid_t, Running> running_;
  std::map<Outcome, int> counts_;
  int passedOver_ = 0;
  std::string trouble_;
};

}  // namespace

Exit RunAutotrace(const AutotraceWords& words) {
  if (words.Scan.empty() == words.Scans.empty()) return Off("--scan or --scans is missing");
  if (!words.Scan.empty() && !words.Task) return Off("--scan wants the --task that it is of");
  const auto box = OpenBox(words);
  if (!box) return Fail(box.error());
  const auto jobs = FindJobs(*box);
  if (!jobs) return Fail(jobs.error());
  return Run(*box).All(*jobs);
}

}  // namespace hyetex::cli
