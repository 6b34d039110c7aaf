// autotrace: from the scans of staged charts to journals, chart files, and a report of what a person should
// look at.
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <map>
#include <opencv2/core.hpp>
#include <thread>

#include "cli/commands.h"
#include "core/files.h"
#include "core/folder_lock.h"
#include "core/temporary_file.h"
#include "core/text.h"
#include "scan/blank_form.h"
#include "scan/box/chart_tracing.h"
#include "scan/find_scans.h"
#include "staging/lists/lists.h"
#include "staging/tasks/activation.h"
#include "staging/tasks/tasks.h"

namespace hyetex::cli {
namespace {

constexpr std::size_t MostReportBytes = 256U << 20;

struct Box {
  const AutotraceWords& Words;
  Settings Given;
  ReferenceLists Lists;
  std::string User, Target;
  std::optional<FolderLock> Lock;  // the program folder's, where files go into it
  std::shared_ptr<const BlankForm> Form = {};
};

std::string Rounded(double value, int digits) {
  char text[48];
  std::snprintf(text, sizeof text, "%.*f", digits, value);
  return text;
}

BoxWish WishFor(const Box& box, const BoxedChart& chart) {
  const AutotraceWords& words = box.Words;
  BoxWish wish{.Target = box.Target,
               .Line = words.Line,
               .Form = box.Form,
               .Doubtful = words.Doubtful,
               .Picture = words.Picture};
  if (const auto& start = words.Start; !start.empty()) wish.Start = TraceWish::Place{start[0], start[1]};
  if (!words.Pictures.empty()) wish.Picture = JoinPath(words.Pictures, NameWithEnding(chart.Name(), ".jpg"));
  return wish;
}

// Why a chart is not traced now.
std::optional<std::string> WhyNot(const Box& box, const BoxedChart& chart) {
  if (IsBegunAtTheDesk(box.Words.Folder, chart.Chart.Task)) return std::string(BegunAtTheDesk);
  const Standing::Of stands = FindStanding(box.Target, chart.Name()).What;
  const bool again = box.Words.Doubtful || box.Words.Again;
  if (again && stands == Standing::Of::ToReview) return std::nullopt;
  std::string why = StandingText(stands);
  return why.empty() ? std::nullopt : std::optional(std::move(why));
}

Result<BoxedChart> MakeJob(const Box& box, int task) {
  auto chart = ActivateChart(box.Given, box.Lists, task, box.Words.ChartType);
  if (!chart) return Failure(chart.error());
  return MakeBoxedChart(box.Lists, *std::move(chart), box.User);
}

// As it is found from any folder, since it goes into journal and chart file.
std::string WholePath(const std::string& path) {
  std::error_code error;
  const auto whole = std::filesystem::absolute(path, error);
  return error ? path : whole.lexically_normal().string();
}

Result<std::vector<BoxedChart>> FindJobs(const Box& box) {
  const AutotraceWords& words = box.Words;
  std::vector<BoxedChart> jobs;
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
      if (words.Chart.empty()) Say("Staged chart " + std::to_string(i) + " is left out: " + job.error());
      continue;
    }
    if (!words.Chart.empty() && ShownText(job->Name()) != ShownText(words.Chart)) continue;
    wanted.push_back({job->Origin.InstrumentCode, job->Chart.Task.StartTime});
    jobs.push_back(*std::move(job));
  }
  if (!words.Chart.empty() && jobs.empty())
    return Failure("There is no staged chart " + words.Chart + " that can be traced");
  if (!words.Scan.empty()) {
    jobs.resize(1);
    jobs.front().Scan = {WholePath(words.Scan), words.Page};
    return jobs;
  }
  const auto scans = FindScans(words.Scans, wanted);
  if (!scans) return Failure(scans.error());
  std::vector<BoxedChart> found;
  for (std::size_t i = 0; i < jobs.size(); ++i) {
    if (!(*scans)[i]) {
      Say(jobs[i].Name() + " is left out: " + (*scans)[i].error());
      continue;
    }
    jobs[i].Scan.Path = WholePath(*(*scans)[i]);
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
    auto lock = FolderLock::TakeOrShare(words.Folder);
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

  Exit All(const std::vector<BoxedChart>& all) {
    std::vector<const BoxedChart*> jobs;
    for (const BoxedChart& job : all) {
      const auto why = WhyNot(box_, job);
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
    for (const BoxedChart* job : jobs) {
      while (running_.size() >= most) Wait();
      Begin(*job);
    }
    while (!running_.empty()) Wait();
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begun).count();
    const auto count = [&](TraceOutcome what) { return std::to_string(counts_[what]); };
    Say(count(TraceOutcome::Clean) + " clean, " + count(TraceOutcome::ToReview) + " to review, " +
        count(TraceOutcome::NotTraced) + " not traced, " + count(TraceOutcome::Failed) + " failed, " +
        std::to_string(passedOver_) + " passed over, in " + Rounded(seconds, 1) + " s");
    if (!trouble_.empty()) return Fail(trouble_);
    if (counts_[TraceOutcome::Failed] > 0) return Failed;
    return counts_[TraceOutcome::ToReview] + counts_[TraceOutcome::NotTraced] > 0 ? ToReview : Done;
  }

 private:
  struct Running {
    int Pipe;
    const BoxedChart* What;
  };

  void Begin(const BoxedChart& job) {
    int ends[2];
    if (pipe(ends) != 0) return Count(job, {}, TraceOutcome::Failed);
    const pid_t parent = getpid(), child = fork();
    if (child == 0) {
      // Whoever ends the box ends its charts.
      prctl(PR_SET_PDEATHSIG, SIGKILL);
      if (getppid() != parent) _exit(static_cast<int>(TraceOutcome::Failed));
      close(ends[0]);
      cv::setNumThreads(1);
      const TracedChart traced = TraceChart(job, WishFor(box_, job));
      const std::string line = ReportLine(traced);
      for (std::size_t sent = 0; sent < line.size();) {
        const ssize_t count = write(ends[1], line.data() + sent, line.size() - sent);
        if (count <= 0) break;
        sent += static_cast<std::size_t>(count);
      }
      _exit(static_cast<int>(traced.What));
    }
    close(ends[1]);
    if (child < 0) {
      close(ends[0]);
      return Count(job, {}, TraceOutcome::Failed);
    }
    running_[child] = {ends[0], &job};
  }

  void Wait() {
    int status = 0;
    const pid_t child = wait(&status);
    const auto at = running_.find(child);
    if (at == running_.end()) return;
    std::string line;
    char bytes[4096];
    for (ssize_t count; (count = read(at->second.Pipe, bytes, sizeof bytes)) > 0;)
      line.append(bytes, static_cast<std::size_t>(count));
    close(at->second.Pipe);
    Count(*at->second.What, std::move(line),
          WIFEXITED(status) ? static_cast<TraceOutcome>(WEXITSTATUS(status)) : TraceOutcome::Failed);
    running_.erase(at);
  }

  void Count(const BoxedChart& job, std::string line, TraceOutcome what) {
    ++counts_[what];
    if (line.empty()) line = ReportLine(EndedChart(job.Name(), job.Scan.Path));
    Print(line);
    if (!box_.Words.Report.empty()) Report(line);
  }
  // A chart has one line: those of charts that are traced now make way.
  Result<void> BeginReport(const std::vector<const BoxedChart*>& jobs) const {
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
      const bool again = std::any_of(jobs.begin(), jobs.end(), [&](const BoxedChart* job) {
        return line.starts_with(ReportLineBegin(job->Name()));
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
  std::map<TraceOutcome, int> counts_;
  int passedOver_ = 0;
  std::string trouble_;
};

}  // namespace

Exit RunAutotrace(const AutotraceWords& words) {
  if (words.Scan.empty() == words.Scans.empty()) return Off("--scan or --scans is missing");
  if (!words.Scan.empty() && !words.Task && words.Chart.empty())
    return Off("--scan wants the --task that it is of");
  auto box = OpenBox(words);
  if (!box) return Fail(box.error());
  const auto jobs = FindJobs(*box);
  if (!jobs) return Fail(jobs.error());
  if (words.MakeForm) {
    const auto leftOut = MakeKeptForm(*jobs, words.Folder, !words.Scan.empty());
    if (!leftOut) return Fail("No form was made: " + leftOut.error());
    for (const std::string& one : *leftOut) Say("Left out of the form: " + one);
    Say("The form of the chart type is kept");
    if (!words.Scan.empty()) return Done;
  }
  if (!jobs->empty()) {
    auto form = KeptBlankForm(words.Folder, jobs->front().Chart.ChartType.Name);
    if (!form) return Fail(form.error());
    box->Form = *std::move(form);
  }
  return Run(*box).All(*jobs);
}

}  // namespace hyetex::cli
