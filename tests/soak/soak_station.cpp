#include "soak/soak_station.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>

#include "chartfiles/chart_text.h"
#include "core/dates.h"
#include "core/definitions.h"
#include "core/text.h"
#include "digitizing/tablets.h"
#include "paths.h"
#include "staging/lists/lists.h"
#include "staging/tasks/tasks.h"
#include "support.h"
#include "tracing/stream.h"

namespace hyetex::test {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr auto Patience = 20s;
// A chart of the weekly paper, and one of a day.
constexpr double DaysOf(const ChartTypeRecord& paper) { return paper.TimeScale > 0.25F ? 7 : 1; }

const TabletType& TypeOf(int tablet) { return TabletTypes()[static_cast<std::size_t>(tablet)]; }

}  // namespace

SoakStation::SoakStation(StationOrder order, SoakCounts& counts)
    : order_(std::move(order)),
      counts_(counts),
      chance_(order_.Seed),
      tablet_(order_.Tablet),
      port_(order_.Folder + "/tablet"),
      program_(order_.Folder + "/program"),
      reference_(order_.Folder + "/reference") {}

bool SoakStation::Wrong(const std::string& what) {
  std::printf("%s, session %d: %s\n", order_.Instrument.c_str(), session_, what.c_str());
  for (const std::string& box : desk_.Boxes) std::printf("    box: %s\n", box.c_str());
  std::fflush(stdout);
  return false;
}

double SoakStation::StartOf(int index) const { return MakeDate(1990, 1, 1, 7) + index * days_; }
std::string SoakStation::ChartName(int index) const {
  return ChartFileName(order_.Instrument, StartOf(index));
}

void SoakStation::Stage() {
  const auto lists = ReadLists(Demo("program"));
  if (!lists) std::abort();
  paper_ = lists->ChartTypes[static_cast<std::size_t>(order_.ChartType)];
  days_ = DaysOf(paper_);
  std::vector<ChartRecord> tasks;
  for (int i = 0; i < order_.Sessions; ++i) {
    ChartRecord task;
    task.InstrumentCode = order_.Instrument;
    task.StartTime = StartOf(i);
    task.EndTime = StartOf(i) + days_;
    task.EyedDepth = 10;
    task.ManualDepth = NoDepth;
    task.Reliability = 1;
    tasks.push_back(task);
  }
  for (const std::string& folder : {program_, reference_}) {
    fs::create_directories(folder + "/out");
    fs::copy(Demo("program"), folder, fs::copy_options::recursive);
    const std::pair<const char*, std::string> settings[] = {
        {"TargetFolder", folder + "/out"},
        {"CurrentChart", std::to_string(order_.ChartType)},
        {"SerialPort2", "none"}};
    for (const auto& [key, value] : settings)
      if (!SetDefinition(folder, key, value)) std::abort();
    if (!SaveTasks(folder, tasks)) std::abort();
  }
}

void SoakStation::RunAll() {
  Stage();
  PlugIn();
  for (session_ = 0; session_ < order_.Sessions; ++session_) {
    if (!RunSession(session_)) {
      ++counts_.Lost;
      desk_.Kill();  // the next chart begins anew
      std::error_code ignored;
      fs::remove(program_ + "/Journal.txt", ignored);
    }
    ++counts_.Sessions;
    desk_.Boxes.clear();
  }
  if (!desk_.Leave()) ++counts_.Crashed, Wrong("the program did not leave in order");
}

// ---- The tablet

void SoakStation::PlugIn() {
  auto line = PtyLine::Open();
  if (!line) std::abort();
  line_.emplace(*std::move(line));
  fs::remove(port_);
  fs::create_symlink(line_->Path(), port_);
}
void SoakStation::Unplug() {
  fs::remove(port_);
  line_.reset();
}
// As fast as it is read, but never so much ahead that the program has to take it for noise.
void SoakStation::Send(std::string_view bytes) {
  constexpr std::size_t Ahead = 400;
  while (!bytes.empty()) {
    std::string_view piece = bytes.substr(0, Ahead);
    bytes.remove_prefix(piece.size());
    if (line_->Write(piece) != PtyLine::End::Done || !piece.empty() ||
        line_->WaitUntilRead() != PtyLine::End::Done)
      return;
  }
}
void SoakStation::Rest() {
  const TabletExtents& size = TypeOf(tablet_).Extents;
  if (line_->WaitUntil(Clock::now()) != PtyLine::End::Done || line_->Readers() == 0) return;
  Send(EncodeReport(TypeOf(tablet_), {static_cast<int>(size.TabletWidthUnits / 2),
                                      static_cast<int>(size.TabletHeightUnits / 2), -1}));
}

// ---- The program

bool SoakStation::EnsureDesk() {
  if (desk_.Runs()) return true;
  desk_.Start({fs::read_symlink("/proc/self/exe"), "--desk", program_, std::to_string(tablet_), port_});
  return desk_.Runs();
}

bool SoakStation::OpenChart(int index) {
  const std::string answer =
      desk_.Ask("open " + order_.Instrument + " " + std::to_string(index), [this] { Rest(); });
  if (answer.empty()) ++counts_.Crashed;
  return answer == "open" || Wrong("the chart was not opened: " + answer);
}

std::vector<std::string> SoakStation::JournalLines() const {
  std::vector<std::string> lines;
  for (const JournalEvent& event : ReadJournal(ReadFile(program_ + "/Journal.txt")).Events)
    lines.push_back(JournalLine(event));
  return lines;
}

bool SoakStation::Journaled(const PlannedSession& plan, std::size_t steps) {
  const auto until = Clock::now() + Patience;
  const auto planned = plan.Lines();
  std::vector<std::string> lines;
  while (Clock::now() < until) {
    lines = JournalLines();
    if (lines.size() >= steps) break;
    ::usleep(300);
  }
  const auto [mine, its] = std::mismatch(planned.begin(), planned.end(), lines.begin(), lines.end());
  if (lines.size() == steps && its == lines.end()) return true;
  const auto at = std::to_string(its - lines.begin() + 1);
  return Wrong("the journal has " + std::to_string(lines.size()) + " of " + std::to_string(steps) +
               " steps; step " + at + " is '" + (its == lines.end() ? "" : *its) + "' and not '" +
               (mine == planned.end() ? "" : *mine) + "'");
}

// ---- A session

bool SoakStation::RunSession(int index) {
  if (!order_.Steady && !desk_.Runs()) tablet_ = Between(chance_, 0, TabletTypeCount - 1);
  const auto plan = PlanSession(chance_, paper_, days_ * 24, tablet_);
  if (!plan) return Wrong("no plan: " + plan.error());
  if (!EnsureDesk() || !OpenChart(index)) return Wrong("no desk");
  if (!Trace(index, *plan)) return false;
  counts_.Steps += static_cast<long>(plan->Steps.size());
  if (!SaveChart(Once(chance_, 8))) return false;

  // What has to come out, from the plan alone.
  const std::string journal = order_.Folder + "/planned.txt";
  WriteFile(journal, JournalText(tablet_, plan->Steps));
  const Ended made = RunCommand(
      {CommandLineProgram(), "digitize", "--folder", reference_, "--task", std::to_string(index), journal});
  const std::string name = ChartName(index);
  if (made.Status != 0) return Wrong("the plan gives no chart: " + made.Told);
  if (ReadFile(program_ + "/out/" + name) != ReadFile(reference_ + "/out/" + name))
    return Wrong(name + " is not what was traced");
  Watch(index);
  return KeepInDatabases(program_ + "/out/" + name);
}

bool SoakStation::Trace(int index, const PlannedSession& plan) {
  const auto& steps = plan.Steps;
  Incident incident = Incident::None;
  if (Once(chance_, 3)) incident = static_cast<Incident>(Between(chance_, 1, 3));
  if (incident == Incident::Kill && order_.Steady) incident = Incident::Unplug;
  const auto strikesAt = static_cast<std::size_t>(Between(chance_, 3, static_cast<int>(steps.size()) - 2));
  for (std::size_t next = 0; next < steps.size();) {
    if (const std::string entry = MenuEntryOf(steps[next]); !entry.empty()) {
      if (const auto answer = desk_.Ask("choose " + entry); answer != "chosen")
        return Wrong(entry + ": " + answer);
      if (!Journaled(plan, ++next)) return false;
      continue;
    }
    // As much as the tablet sends without waiting for anybody.
    std::size_t to = next;
    while (to < steps.size() && MenuEntryOf(steps[to]).empty() && !IsComment(steps[to])) ++to;
    const bool asks = to < steps.size() && IsComment(steps[to]);
    // Not in the moment at which a question is put: what is in the journal of it nobody can foretell.
    const std::size_t at = std::max(strikesAt, next);
    const bool strikes = incident != Incident::None && at + (asks ? 1 : 0) < to;
    if (!strikes) {
      if (!SendBurst(plan, next, to, Incident::None)) return false;
      next = to;
      if (asks) {
        // The button has been let go: all that the tablet sent is read.
        if (const auto answer = desk_.Ask("comment"); answer != "written")
          return Wrong("the comment: " + answer);
        ++next;
      }
      if (!Journaled(plan, next)) return false;
      continue;
    }
    if (!SendBurst(plan, next, at + 1, incident)) return false;
    if (!GoOnAfter(incident, index)) return false;
    // What is in the journal is traced. Behind a full disk the program has more than that, and writes it with
    // the next step.
    const std::size_t kept = incident == Incident::FullDisk ? at + 1 : JournalLines().size();
    if (kept < next || kept > at + 1) return Wrong("the journal has lost steps");
    if (incident != Incident::FullDisk && !Journaled(plan, kept)) return false;
    next = kept;
    incident = Incident::None;
  }
  return true;
}

bool SoakStation::SendBurst(const PlannedSession& plan, std::size_t from, std::size_t to, Incident incident) {
  const std::span<const JournalEvent> steps(plan.Steps.data() + from, to - from);
  const std::string bytes = EncodeSteps(TypeOf(tablet_), steps);
  std::string_view sent = bytes;
  if (incident == Incident::Unplug || incident == Incident::Kill)
    sent = sent.substr(0, static_cast<std::size_t>(Between(chance_, 0, static_cast<int>(bytes.size()))));
  if (incident == Incident::FullDisk)
    desk_.FillDisk(static_cast<long>(ReadFile(program_ + "/Journal.txt").size()));
  Send(sent);
  switch (incident) {
    case Incident::None:
      break;
    case Incident::Unplug:
      ++counts_.Unplugged;
      Unplug();
      break;
    case Incident::Kill:
      ++counts_.Killed;
      desk_.Kill();
      break;
    case Incident::FullDisk:
      ++counts_.FullDisks;
      (void)line_->WaitUntilRead();
      break;
  }
  return true;
}

bool SoakStation::GoOnAfter(Incident incident, int index) {
  if (incident == Incident::Unplug) {
    if (const auto answer = desk_.Ask("lost"); answer != "lost") return Wrong("unplugged: " + answer);
    PlugIn();
    const auto answer = desk_.Ask("regained");
    return answer == "regained" || Wrong("plugged in again: " + answer);
  }
  if (incident == Incident::FullDisk) {
    // All that was read is handled when this is answered. The next step brings to the disk what did not fit.
    if (desk_.Ask("points").empty()) return Wrong("the full disk ended the program");
    desk_.FillDisk(-1);
    return true;
  }
  ++counts_.GoneOn;
  line_->Forget();
  return EnsureDesk() && OpenChart(index);
}

bool SoakStation::SaveChart(bool fullDisk) {
  if (fullDisk) {
    ++counts_.FullDisks;
    desk_.FillDisk(200);
    if (const auto answer = desk_.Ask("save"); answer != "unsaved")
      return Wrong("saved on a full disk: " + answer);
    desk_.FillDisk(-1);
  }
  const std::string answer = desk_.Ask("save");
  if (answer.empty()) ++counts_.Crashed;
  if (answer != "saved") return Wrong("the chart was not saved: " + answer);
  return !fs::exists(program_ + "/Journal.txt") || Wrong("the journal stays");
}

// ---- Behind it

bool SoakStation::KeepInDatabases(const std::string& chart) {
  for (const std::string& database : order_.Databases)
    for (const auto& words : {std::vector<std::string>{"load", chart},
                              {"populate", "--overwrite", "--instrument", order_.Instrument}}) {
      std::vector<std::string> all{CommandLineProgram(), words[0], "--folder", program_, "--db", database};
      all.insert(all.end(), words.begin() + 1, words.end());
      ++counts_.Loads;
      Disturbance disturbance;
      if (Once(chance_, 10)) {
        disturbance.KillAfterMs = Between(chance_, 1, 60);
        ++counts_.LoadsKilled;
      } else if (Once(chance_, 10)) {
        disturbance.FullAfterBytes = Between(chance_, 0, 20000);
        ++counts_.LoadsFull;
      }
      const Ended first = RunCommand(all, disturbance);
      if (first.Status == 0) continue;
      const bool disturbed = disturbance.KillAfterMs >= 0 || disturbance.FullAfterBytes >= 0;
      if (!disturbed) return Wrong(words[0] + ": " + first.Told);
      if (const Ended again = RunCommand(all); again.Status != 0)
        return Wrong(words[0] + " again: " + again.Told);
    }
  return true;
}

void SoakStation::Watch(int index) {
  if (!order_.Steady) return;
  const Held held = HeldBy(desk_.Id());
  ++counts_.SteadySessions;
  counts_.KilobytesNow = held.Kilobytes;
  counts_.HandlesNow = held.Handles;
  if (index > order_.Sessions / 4) return;
  counts_.KilobytesThen = held.Kilobytes;
  counts_.HandlesThen = held.Handles;
}

}  // namespace hyetex::test
