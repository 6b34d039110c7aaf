// The yardstick of the scan that traces itself: charts drawn from random storms, each kind of damage alone
// and several mixed, traced and held against what was drawn. One table, a row a kind.
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

#include "core/files.h"
#include "drawn_chart.h"
#include "grid_rows.h"
#include "scan/trace_picture.h"
#include "scans/scan_damage.h"
#include "scans/scan_file.h"

namespace hyetex {
namespace {

// A row of the table. What is held back is for the end, unseen while the tracing is tuned.
struct Kind {
  std::string Name, Damage;
  bool HeldBack = false;
};

const std::vector<Kind>& Kinds() {
  static const std::vector<Kind> kinds{
      {"none", ""},
      {"150 dpi", "coarse=0.75"},
      {"grey", "grey"},
      {"1 bit", "bits=0.5"},
      {"tilt", "tilt=0.5"},
      {"tilt 3 degrees", "tilt=1"},
      {"shear", "shear=0.5"},
      {"shrink", "shrink=0.5"},
      {"warp", "warp=0.5"},
      {"borders", "borders=0.5"},
      {"tint", "tint=0.5"},
      {"stains", "stains=0.5"},
      {"holes", "holes=0.5"},
      {"writing", "writing=0.5"},
      {"faint", "faint=0.5"},
      {"thin", "thin=0.5"},
      {"dotted", "dotted=0.5"},
      {"gaps", "gaps=0.3"},
      {"noise", "noise=0.5"},
      {"jpeg", "jpeg=0.5"},
      {"grey, 150 dpi, jpeg, tilt", "grey,coarse=0.75,jpeg=0.6,tilt=0.4"},
      {"1 bit, tilt, warp, writing", "bits=0.5,tilt=0.4,warp=0.4,writing=0.4"},
      {"faint, stains, tint, shrink", "faint=0.5,stains=0.4,tint=0.6,shrink=0.4"},
      {"folds", "folds=0.5", true},
      {"marks", "marks=0.5", true},
      {"worn", "worn=0.6", true},
      {"unsteady", "unsteady=0.6", true},
      {"blots", "blots=0.4", true},
      {"salt", "salt=0.3", true},
      {"blur", "blur=0.4", true},
      {"shade", "shade=0.5", true},
      {"pale", "pale=0.5", true},
      {"folds, shade, blots, jpeg", "folds=0.5,shade=0.4,blots=0.3,jpeg=0.4", true},
      {"1 bit, worn, dotted, marks", "bits=0.4,worn=0.5,dotted=0.4,marks=0.4", true},
  };
  return kinds;
}

struct Row {
  int Charts = 0, Clean = 0, NotTraced = 0, Emptyings = 0, Missed = 0, Invented = 0, Hours = 0, Wrong = 0,
      Silent = 0;
  double WorstEmptying = 0;
  std::vector<double> Depth, CleanDepth, Seconds;

  void Add(const ScanTrace& trace, const TraceErrors& errors, double seconds) {
    ++Charts;
    Seconds.push_back(seconds);
    if (trace.Verdict == TraceVerdict::NotTraced) {
      ++NotTraced;
      return;
    }
    Depth.push_back(errors.DepthError());
    if (trace.Verdict == TraceVerdict::Clean) {
      ++Clean;
      CleanDepth.push_back(errors.DepthError());
    }
    Emptyings += errors.Emptyings;
    Missed += errors.Missed;
    Invented += errors.Invented;
    WorstEmptying = std::max(WorstEmptying, errors.WorstEmptyingHours);
    Hours += errors.Hours;
    Wrong += errors.Wrong;
    Silent += errors.Silent;
  }
  void Add(const Row& other) {
    Charts += other.Charts;
    Clean += other.Clean;
    NotTraced += other.NotTraced;
    Emptyings += other.Emptyings;
    Missed += other.Missed;
    Invented += other.Invented;
    Hours += other.Hours;
    Wrong += other.Wrong;
    Silent += other.Silent;
    WorstEmptying = std::max(WorstEmptying, other.WorstEmptying);
    Depth.insert(Depth.end(), other.Depth.begin(), other.Depth.end());
    CleanDepth.insert(CleanDepth.end(), other.CleanDepth.begin(), other.CleanDepth.end());
    Seconds.insert(Seconds.end(), other.Seconds.begin(), other.Seconds.end());
  }
};

double Quantile(std::vector<double> values, double share) {
  if (values.empty()) return 0;
  std::sort(values.begin(), values.end());
  return values[static_cast<std::size_t>(share * static_cast<double>(values.size() - 1) + 0.5)];
}

void PrintRow(const std::string& name, const Row& row) {
  const auto percent = [](double part, double all) { return all > 0 ? 100 * part / all : 0; };
  std::printf(
      "| %-28s | %3d | %3.0f | %3.0f | %5.2f | %6.2f | %6.2f | %3d | %3d | %3d | %6.3f | %5.2f | %5.2f | "
      "%5.2f |\n",
      name.c_str(), row.Charts, percent(row.Clean, row.Charts), percent(row.NotTraced, row.Charts),
      100 * Quantile(row.Depth, 0.5), 100 * Quantile(row.Depth, 0.95), 100 * Quantile(row.CleanDepth, 1),
      row.Emptyings, row.Missed, row.Invented, row.WorstEmptying, percent(row.Wrong, row.Hours),
      percent(row.Silent, row.Hours), Quantile(row.Seconds, 0.5));
  std::fflush(stdout);
}

struct Words {
  int Each = 2;
  int Seed = 1;
  bool HeldBack = false, Grid = false;
  DrawnPaper Paper = DrawnPaper::Siphon;
  std::string Only, Keep, Damage;
};

std::optional<DrawnPaper> PaperOf(const std::string& name) {
  if (name == "siphon") return DrawnPaper::Siphon;
  if (name == "arc") return DrawnPaper::Arc;
  if (name == "tipping") return DrawnPaper::Tipping;
  return std::nullopt;
}

// The grids alone: these kinds, and hard mixes; or a mix that is given.
int MeasureGridsOf(const Words& words) {
  std::vector<GridKind> kinds;
  if (!words.Damage.empty()) kinds.push_back({words.Damage, words.Damage});
  if (words.Damage.empty()) {
    for (const Kind& kind : Kinds())
      if (kind.HeldBack == words.HeldBack) kinds.push_back({kind.Name, kind.Damage});
    if (!words.HeldBack) kinds.insert(kinds.end(), HardGrids().begin(), HardGrids().end());
  }
  if (!words.Only.empty())
    std::erase_if(kinds, [&](const GridKind& kind) { return kind.Name != words.Only; });
  cv::setNumThreads(1);
  const std::string folder =
      (std::filesystem::temp_directory_path() / ("hyetex-grids-" + std::to_string(getpid()))).string();
  std::filesystem::create_directory(folder);
  const int done = MeasureGrids(kinds, words.Each, words.Seed, folder);
  std::filesystem::remove_all(folder);
  return done;
}

int Measure(const Words& words) {
  cv::setNumThreads(1);
  std::printf(
      "| damage | charts | clean %% | not traced %% | depth error %%, median | 95%% | worst of the clean | "
      "emptyings | "
      "missed | invented | worst time, h | hours wrong %% | and no doubt told %% | s a chart |\n"
      "| --- | --- | --- | --- | --- | --- | --- | --- | --- | --- | --- | --- | --- | --- |\n");
  Row all;
  const std::string folder =
      (std::filesystem::temp_directory_path() / ("hyetex-autotrace-" + std::to_string(getpid()))).string();
  std::filesystem::create_directory(folder);
  std::uint64_t day = 0;  // another one for each chart, so that few charts hold many days
  for (const Kind& kind : Kinds()) {
    day += 37;
    if (kind.HeldBack != words.HeldBack || (!words.Only.empty() && kind.Name != words.Only)) continue;
    Row row;
    for (int i = 0; i < words.Each; ++i) {
      const auto seed = static_cast<std::uint64_t>(words.Seed) * 10000 + day + static_cast<std::uint64_t>(i);
      const PenLine line = RandomChart(seed, words.Paper);
      ScanStyle style = PlainStyle(line);
      if (const auto damaged = Damage(style, kind.Damage, seed); !damaged) {
        std::fprintf(stderr, "%s\n", damaged.error().c_str());
        return 1;
      }
      const auto drawn = DrawScan(line, style, seed);
      if (!drawn) {
        std::fprintf(stderr, "%s\n", drawn.error().c_str());
        return 1;
      }
      const std::string path = folder + (style.JpegQuality ? "/scan.jpg" : "/scan.png");
      const auto bytes = EncodeScan(drawn->Image, path, style.Dpi, style.JpegQuality.value_or(92));
      if (!bytes || !WriteWholeFile(path, *bytes)) return 1;
      const std::clock_t begun = std::clock();  // of the processor: the machine may have other work
      const auto image = ScanImage::Open(path);
      const ScanTrace trace = image ? TraceScan(*image, WishOf(line, style)) : ScanTrace{};
      const double seconds = static_cast<double>(std::clock() - begun) / CLOCKS_PER_SEC;
      const TraceErrors errors = Compare(trace, line);
      row.Add(trace, errors, seconds);
      if (!words.Keep.empty() && image) {
        const std::string kept = words.Keep + "/" + kind.Name + "-" + std::to_string(seed);
        std::filesystem::copy_file(path, kept + path.substr(path.rfind('.')),
                                   std::filesystem::copy_options::overwrite_existing);
        std::string text = VerdictText(trace.Verdict) + ", " + std::to_string(errors.TrueMm) + " mm true, " +
                           std::to_string(errors.Mm) + " mm traced\n";
        for (const TraceDoubt& doubt : trace.Doubts)
          text +=
              std::to_string(doubt.FromHour) + " " + std::to_string(doubt.ToHour) + " " + doubt.Why + "\n";
        if (!WriteWholeFile(kept + ".txt", text)) return 1;
        const auto picture = PictureOfTrace(*image, trace, kept + "-traced.png");
        if (!picture || !WriteWholeFile(kept + "-traced.png", *picture)) return 1;
      }
    }
    PrintRow(kind.Name, row);
    all.Add(row);
  }
  PrintRow("all", all);
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  std::printf("\nMost memory, the drawing of the charts included: %ld MB\n", usage.ru_maxrss / 1024);
  std::filesystem::remove_all(folder);
  return 0;
}

}  // namespace
}  // namespace hyetex

int main(int count, char** given) {
  hyetex::Words words;
  for (int i = 1; i < count; ++i) {
    const std::string word = given[i];
    const auto value = [&] { return i + 1 < count ? std::string(given[++i]) : std::string(); };
    if (word == "--each")
      words.Each = std::max(1, std::atoi(value().c_str()));
    else if (word == "--seed")
      words.Seed = std::max(1, std::atoi(value().c_str()));
    else if (word == "--held-back")
      words.HeldBack = true;
    else if (const auto paper = word == "--paper" ? hyetex::PaperOf(value()) : std::nullopt; paper)
      words.Paper = *paper;
    else if (word == "--grid")
      words.Grid = true;
    else if (word == "--damage")
      words.Damage = value();
    else if (word == "--only")
      words.Only = value();
    else if (word == "--keep")
      words.Keep = value();
    else {
      std::fprintf(stderr,
                   "hyetex-autotrace-bench [--paper siphon|arc|tipping] [--each N] [--seed N] [--held-back] "
                   "[--only KIND] [--keep DIR]\n"
                   "hyetex-autotrace-bench --grid [--each N] [--seed N] [--held-back] [--only KIND] "
                   "[--damage LIST]\n");
      return word == "--help" ? 0 : 2;
    }
  }
  return words.Grid ? hyetex::MeasureGridsOf(words) : hyetex::Measure(words);
}
