#include "digitizing/resume.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <vector>

#include "core/dates.h"
#include "core/files.h"
#include "core/numbers.h"
#include "core/program_files.h"
#include "core/text.h"
#include "digitizing/tablets.h"

namespace hyetex {
namespace {

constexpr std::string_view ChartLine = "# task ";

std::string NamedChart(std::string_view name) {
  return name.empty() ? "a chart without a name" : "the chart " + ShownText(name);
}

}  // namespace

std::string ChartName(const ChartRecord& chart) {
  return chart.InstrumentCode + " " + GeneralDateText(chart.StartTime);
}

// ---- Keeping

void SessionJournal::Start(const std::string& programFolder, int tablet, const ChartRecord& chart) {
  path_ = JoinPath(programFolder, JournalFileName);
  collected_ = JournalHead(tablet) + std::string(ChartLine) + ChartName(chart) + "\n" + collected_;
  TryToOpen();
}

void SessionJournal::Record(const JournalEvent& event) {
  if (file_) {
    file_->Record(event);
    return;
  }
  collected_ += JournalLine(event) + "\n";
  if (!path_.empty()) TryToOpen();
}

void SessionJournal::Note(std::string_view text) {
  if (file_)
    file_->Note(text);
  else
    collected_ += "# " + std::string(text) + "\n";
}

void SessionJournal::TryToOpen() {
  trouble_.reset();
  if (const auto written = WriteWholeFile(path_, collected_); !written) {
    trouble_ = written.error();
    return;
  }
  if (auto file = JournalFile::Continue(path_)) {
    file_.emplace(*std::move(file));
    collected_.clear();
  } else {
    trouble_ = file.error();
  }
}

Result<void> SessionJournal::SetAside() {
  if (path_.empty()) return {};
  const std::string folder = path_.substr(0, path_.size() - BaseName(path_).size());
  file_.reset();
  path_.clear();
  return SetJournalAside(folder);
}

void SessionJournal::Remove() {
  if (file_)
    file_->Remove();
  else if (!path_.empty())
    std::remove(path_.c_str());
  file_.reset();
  path_.clear();
}

Result<void> SetJournalAside(const std::string& programFolder) {
  const std::string path = JoinPath(programFolder, JournalFileName);
  if (!FileExists(path)) return {};
  std::error_code error;
  if (FindUnfinishedChart(programFolder)) {
    std::filesystem::rename(path, BackupName(path), error);
    if (error) return Failure("Cannot rename " + path + ": " + error.message());
  } else {
    std::filesystem::remove(path, error);
  }
  // One that cannot be let go does no harm.
  std::vector<std::filesystem::path> kept;
  const std::string stem = std::string(JournalFileName) + ".bak-";
  for (const auto& entry : std::filesystem::directory_iterator(programFolder, error))
    if (entry.path().filename().string().starts_with(stem)) kept.push_back(entry.path());
  std::sort(kept.begin(), kept.end());
  for (std::size_t i = 0; i + JournalsKept < kept.size(); ++i) std::filesystem::remove(kept[i], error);
  return {};
}

// ---- Resuming

std::optional<UnfinishedChart> FindUnfinishedChart(const std::string& programFolder) {
  const std::string path = JoinPath(programFolder, JournalFileName);
  if (!FileExists(path)) return std::nullopt;
  UnfinishedChart unfinished;
  const auto bytes = ReadWholeFile(path, MostJournalBytes);
  if (!bytes) {
    unfinished.Steps.Error = bytes.error();
    return unfinished;
  }
  const std::string_view text = std::string_view(*bytes).substr(0, bytes->rfind('\n') + 1);
  if (text.empty()) return std::nullopt;
  ForEachLine(text, [&](std::string_view line) {
    if (unfinished.Name.empty() && line.starts_with(ChartLine))
      unfinished.Name = line.substr(ChartLine.size());
  });
  unfinished.Steps = ReadJournal(text);
  const auto& events = unfinished.Steps.Events;
  if (!HoldsSteps(unfinished.Steps) && !unfinished.Steps.Error) return std::nullopt;
  for (const JournalEvent& event : events)
    if (event.What == JournalEvent::Kind::Scan) unfinished.Scan = event.Scan;
  unfinished.Presses = static_cast<int>(std::count_if(
      events.begin(), events.end(), [](const auto& e) { return e.What == JournalEvent::Kind::Press; }));
  return unfinished;
}

ResumeOffer MakeResumeOffer(const UnfinishedChart& unfinished, const ChartRecord& chart, int tablet,
                            bool onScan) {
  const Journal& steps = unfinished.Steps;
  if (steps.Events.empty())
    return {false, std::string(ResumeTitle) + ": not readable",
            "The last session ended without its chart being saved, and what it left behind cannot be read (" +
                steps.Error.value_or("") +
                "). Do you want to set it aside?\n\nNo leaves it as it is and closes this session."};
  const std::string left = "The digitization of " + NamedChart(unfinished.Name) +
                           " was not saved when the last session ended. Its " +
                           ShortText(unfinished.Presses) + " presses have been kept.";
  const std::string choice = " Do you want to set them aside?\n\nNo keeps them and closes this session.";
  const std::string ofAnother = std::string(ResumeTitle) + " of another chart";
  if (unfinished.Name != ChartName(chart))
    return {false, ofAnother, left + " This session is for " + NamedChart(ChartName(chart)) + "." + choice};
  if (unfinished.Scan && !onScan)
    return {false, std::string(ResumeTitle) + " of a scan",
            left + " They were made on the scan " + ShownText(unfinished.Scan->Path) +
                ", and this session has none." + choice};
  if (onScan && !unfinished.Scan)
    return {false, std::string(ResumeTitle) + " without a scan",
            left + " They were made without a scan, and this session has one." + choice};
  if (steps.Tablet != tablet) {
    const auto name = [](int type) {
      return std::string(TabletTypes()[static_cast<std::size_t>(type)].Name);
    };
    return {false, std::string(ResumeTitle) + " on another tablet",
            left + " They were made on the tablet " + name(steps.Tablet) + ", and this one is a " +
                name(tablet) + "." + choice};
  }
  return {true, std::string(ResumeTitle),
          left +
              " Do you want to go on with it?\n\nNo sets them aside and begins the chart anew. Cancel keeps "
              "them and closes this session."};
}

}  // namespace hyetex
