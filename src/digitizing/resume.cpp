#include "digitizing/resume.h"

#include <algorithm>
#include <cstdio>

#include "core/dates.h"
#include "core/files.h"
#include "core/numbers.h"
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

void SessionJournal::Remove() {
  if (file_)
    file_->Remove();
  else if (!path_.empty())
    std::remove(path_.c_str());
  file_.reset();
  path_.clear();
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
  if (events.empty() && !unfinished.Steps.Error) return std::nullopt;
  unfinished.Presses = static_cast<int>(std::count_if(
      events.begin(), events.end(), [](const auto& e) { return e.What == JournalEvent::Kind::Press; }));
  return unfinished;
}

ResumeOffer MakeResumeOffer(const UnfinishedChart& unfinished, const ChartRecord& chart, int tablet) {
  const Journal& steps = unfinished.Steps;
  if (steps.Events.empty())
    return {false,
            "The last session ended without its chart being saved, and what it left behind cannot be read (" +
                steps.Error.value_or("") + "). Do you want to give it up?"};
  const std::string left = "The digitization of " + NamedChart(unfinished.Name) +
                           " was not saved when the last session ended. Its " +
                           ShortText(unfinished.Presses) + " presses have been kept.";
  const std::string choice = " Do you want to give them up?\n\nNo keeps them and closes this session.";
  if (unfinished.Name != ChartName(chart))
    return {false, left + " This session is for " + NamedChart(ChartName(chart)) + "." + choice};
  if (steps.Tablet != tablet) {
    const auto name = [](int type) {
      return std::string(TabletTypes()[static_cast<std::size_t>(type)].Name);
    };
    return {false, left + " They were made on the tablet " + name(steps.Tablet) + ", and this one is a " +
                       name(tablet) + "." + choice};
  }
  return {true, left + " Do you want to go on with it?\n\nNo gives them up and begins the chart anew."};
}

}  // namespace hyetex
