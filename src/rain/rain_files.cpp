#include "rain/rain_files.h"

#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "core/dates.h"
#include "core/files.h"
#include "core/numbers.h"
#include "core/temporary_file.h"
#include "core/text.h"
#include "rain/rain_steps.h"
#include "rain/rain_text.h"

namespace hyetex {

struct RainFile::State {
  TemporaryFile File;
  std::string Text = {};
  int Error = 0;

  void Flush() {
    std::string_view rest = Text;
    while (!rest.empty() && Error == 0) {
      const ssize_t written = ::write(File.Get(), rest.data(), rest.size());
      if (written < 0 && errno == EINTR) continue;
      if (written <= 0) Error = written < 0 ? errno : EIO;
      if (written > 0) rest.remove_prefix(static_cast<std::size_t>(written));
    }
    Text.clear();
  }
};

RainFile::RainFile(std::unique_ptr<State> state) : state_(std::move(state)) {}
RainFile::RainFile(RainFile&&) noexcept = default;
RainFile& RainFile::operator=(RainFile&&) noexcept = default;
RainFile::~RainFile() = default;

Result<RainFile> RainFile::In(const std::string& folder) {
  ClearTemporaries(folder.empty() ? "." : folder);
  auto file = TemporaryFile::In(folder);
  if (!file) return Failure("Cannot write into " + (folder.empty() ? "." : folder) + ": " + file.error());
  return RainFile(std::make_unique<State>(State{*std::move(file)}));
}

void RainFile::Add(std::string_view text) {
  constexpr std::size_t writtenAtOnce = 1U << 18;
  state_->Text += text;
  if (state_->Text.size() >= writtenAtOnce) state_->Flush();
}

Result<void> RainFile::Finish(const std::string& path) {
  state_->Flush();
  if (state_->Error != 0) return Failure("Cannot write " + path + ": " + std::strerror(state_->Error));
  if (const auto placed = state_->File.Replace(path, ModeOf(path).value_or(NewFileMode())); !placed)
    return Failure("Cannot write " + path + ": " + placed.error());
  return {};
}

Result<RainFileResult> WriteRainCsv(HyetexPlotDB& database, const RainChoice& choice, RainStepKind kind,
                                    const RainClock& clock, const std::string& path, Progress& progress) {
  // A link keeps pointing where it points: the file behind it is the one that is replaced.
  std::error_code noTarget;
  std::string target = std::filesystem::weakly_canonical(path, noTarget).string();
  if (noTarget || target.empty()) target = path;
  auto file = RainFile::In(std::filesystem::path(target).parent_path().string());
  if (!file) return Failure(file.error());
  file->Add(StepsHeading);
  RainSteps steps(kind, clock, choice.Span, [&](const RainStep& step) { file->Add(StepLine(step, clock)); });
  auto remarks = ReadRain(database, choice, {&steps}, progress);
  if (!remarks) return Failure(remarks.error().Description);
  if (const auto done = file->Finish(target); !done) return Failure(done.error());
  return RainFileResult{{path}, *remarks, {}};
}

namespace {

// A value of a header: a line of it, in which "|" parts two entries.
std::string Entry(std::string_view text) {
  std::string entry = OneLine(ShownText(text));
  for (char& c : entry)
    if (c == '\t' || c == '|') c = ' ';
  return std::string(Trim(entry));
}

// A part of a file's name, and a code without blanks: the parts of a name stand between "_".
std::string NamePart(std::string_view text) {
  std::string name;
  for (const char c : Entry(text)) {
    const bool isLetter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
    if (isLetter)
      name += c;
    else if (!name.empty() && name.back() != '-')
      name += '-';
  }
  while (name.ends_with('-')) name.pop_back();
  return name;
}

std::string Degrees(const std::optional<double>& value) { return value ? RoundedText(*value, 5) : ""; }

// The steps of one length, as the lines of a file.
class SefTable : public RainSink {
 public:
  SefTable(int minutes, const RainClock& clock, RainSpan span, const RainSite& site, RainFile file)
      : minutes_(minutes),
        clock_(clock),
        site_(site),
        file_(std::move(file)),
        steps_({RainStepKind::Unit::Minutes, minutes}, clock, span,
               [this](const RainStep& step) { Add(step); }) {
    const auto line = [&](const char* key, const std::string& value) {
      file_.Add(std::string(key) + "\t" + value + "\n");
    };
    line("SEF", "1.0.0");
    line("ID", NamePart(site.Instrument));
    line("Name", Entry(site.Station));
    line("Lat", Degrees(site.Latitude));
    line("Lon", Degrees(site.Longitude));
    line("Alt", site.Altitude ? RoundedText(*site.Altitude, 2) : "");
    line("Source", Entry(site.Agency));
    line("Link", "");
    line("Vbl", "rr");
    line("Stat", "sum");
    line("Units", "mm");
    line("Meta", Meta());
    file_.Add("Year\tMonth\tDay\tHour\tMinute\tPeriod\tValue\tMeta\n");
  }
  SefTable(const SefTable&) = delete;
  SefTable& operator=(const SefTable&) = delete;

  void Take(const RainPiece& piece) override { steps_.Take(piece); }
  void End() override { steps_.End(); }
  bool IsEmpty() const { return !first_; }

  Result<std::string> Finish(const std::string& folder) {
    const auto day = [](RainTime time) {
      const CalendarTime at = ToCalendar(ToLocal(time, {}));
      char text[32];
      std::snprintf(text, sizeof text, "%04d%02d%02d", at.Year, at.Month, at.Day);
      return std::string(text);
    };
    std::string name = NamePart(site_.Agency);
    if (!name.empty()) name += "_";
    name += NamePart(site_.Instrument) + "_" + day(*first_) + "-" + day(last_) + "_rr_" +
            (minutes_ == MinutesPerDay ? "daily" : Period()) + ".tsv";
    const std::string path = JoinPath(folder, name);
    if (const auto done = file_.Finish(path); !done) return Failure(done.error());
    return path;
  }

 private:
  std::string Period() const {
    return minutes_ % 60 == 0 ? std::to_string(minutes_ / 60) + "hour" : std::to_string(minutes_) + "minute";
  }
  std::string Meta() const {
    std::string meta = "Instrument=" + Entry(site_.Instrument);
    const auto add = [&](const char* key, const std::string& value) {
      if (!value.empty()) meta += "|" + std::string(key) + "=" + value;
    };
    add("Instrument type", Entry(site_.InstrumentType));
    add("Station code", Entry(site_.StationCode));
    add("Height above ground", site_.HeightAboveGround ? RoundedText(*site_.HeightAboveGround, 3) : "");
    char begins[16];
    std::snprintf(begins, sizeof begins, "%02d:%02d", clock_.DayBegins / 60 % 24, clock_.DayBegins % 60);
    add("UTC offset of local time", IsoWithZone(0, clock_).substr(19));
    add("Day begins (local time)", begins);
    add("Time", "end of period");
    return meta;
  }
  void Add(const RainStep& step) {
    if (step.IsGap()) return;
    if (!first_) first_ = step.End;
    last_ = step.End;
    const CalendarTime at = ToCalendar(ToLocal(step.End, {}));
    char text[64];
    std::snprintf(text, sizeof text, "%d\t%d\t%d\t%d\t%d\t", at.Year, at.Month, at.Day, at.Hour, at.Minute);
    file_.Add(
        text + Period() + "\t" + DepthText(step.Depth) + "\t" +
        (step.Covered < 1 ? "Covered=" + RoundedText(std::floor(step.Covered * 1000) / 10, 1) + "%" : "") +
        "\n");
  }

  int minutes_;
  RainClock clock_;
  RainSite site_;
  RainFile file_;
  RainSteps steps_;
  std::optional<RainTime> first_;
  RainTime last_ = 0;
};

}  // namespace

Result<RainFileResult> WriteRainSef(HyetexPlotDB& database, const RainChoice& choice, int minutes,
                                    const RainClock& clock, const std::string& folder, Progress& progress) {
  auto site = ReadRainSite(database, choice.Instrument);
  if (!site) return Failure(site.error().Description);
  auto shortFile = RainFile::In(folder), dayFile = RainFile::In(folder);
  if (!shortFile) return Failure(shortFile.error());
  if (!dayFile) return Failure(dayFile.error());
  SefTable steps(minutes, clock, choice.Span, *site, *std::move(shortFile));
  SefTable days(MinutesPerDay, clock, choice.Span, *site, *std::move(dayFile));
  std::vector<RainSink*> sinks = {&days};
  if (minutes != MinutesPerDay) sinks.push_back(&steps);
  const auto remarks = ReadRain(database, choice, sinks, progress);
  if (!remarks) return Failure(remarks.error().Description);
  if (days.IsEmpty()) return Failure("There is no rain of " + choice.Instrument + " in that time");
  RainFileResult result{{}, *remarks, site->Notes};
  for (SefTable* table : {&steps, &days}) {
    if (table == &steps && minutes == MinutesPerDay) continue;
    auto path = table->Finish(folder);
    if (!path) return Failure(path.error());
    result.Paths.push_back(*std::move(path));
  }
  return result;
}

}  // namespace hyetex
