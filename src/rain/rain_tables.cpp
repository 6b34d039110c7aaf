#include "rain/rain_tables.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>

#include "core/dates.h"
#include "core/numbers.h"
#include "core/text.h"
#include "database/access/names.h"
#include "rain/rain_site.h"
#include "rain/rain_steps.h"

namespace hyetex {
namespace {

constexpr const char *DailyChart = "DAILy_CHART", *IntensityDuration = "Intensity_duration";
constexpr const char *Day = "date", *ClassStation = "Station";
constexpr const char *LowIntensity = "Low_Intensity", *HighIntensity = "High_intensity", *Volume = "Volume",
                     *Duration = "Duration";
constexpr const char* Title = "Filling Rain Tables";
constexpr const char* FromChart = "CHART";  // how the days were computed
constexpr std::size_t DeletedAtOnce = 200;

constexpr std::array<const char*, 4> TrustWords = {"Acceptable", "Unknown", "Marginal", "Unreliable"};

// What the tables hold, to be deleted.
struct OldRainRows {
  std::vector<RowPlace> Days, Classes;
  RainTablesCount Count() const { return {std::ssize(Days), std::ssize(Classes)}; }
};

DbResult<std::vector<RowPlace>> PlacesOf(Connection& connection, const char* table, Selection selection) {
  auto rows = Recordset::Open(connection, table, std::move(selection));
  if (!rows) return tl::unexpected(rows.error());
  std::vector<RowPlace> places;
  const auto walked = ForEachRow(*rows, [&]() -> DbResult<bool> {
    auto place = rows->Place();
    if (!place) return tl::unexpected(place.error());
    places.push_back(*std::move(place));
    return true;
  });
  if (!walked) return tl::unexpected(walked.error());
  return places;
}

// The date of the day that a moment lies in.
Date DateOfDay(RainTime time, const RainClock& clock) {
  const RainTime begin = StepBegin(time, RainDays, clock);
  return std::floor(ToLocal(begin, clock));
}

DbResult<OldRainRows> FindOld(Connection& connection, const RainChoice& choice, const RainClock& clock,
                              const std::string& station) {
  Selection days{.Columns = {Day},
                 .Where = {{column::InstrumentCode, Compare::EqualIgnoringCase, choice.Instrument}}};
  if (choice.Span.From)
    days.Where.push_back({Day, Compare::AtLeast, DbDate{DateOfDay(*choice.Span.From, clock)}});
  if (choice.Span.To)
    days.Where.push_back({Day, Compare::AtMost, DbDate{DateOfDay(*choice.Span.To - 1, clock)}});
  auto oldDays = PlacesOf(connection, DailyChart, std::move(days));
  if (!oldDays) return tl::unexpected(oldDays.error());
  auto oldClasses =
      PlacesOf(connection, IntensityDuration,
               {.Columns = {ClassStation}, .Where = {{ClassStation, Compare::EqualIgnoringCase, station}}});
  if (!oldClasses) return tl::unexpected(oldClasses.error());
  return OldRainRows{*std::move(oldDays), *std::move(oldClasses)};
}

DbResult<void> DeleteAll(Connection& connection, const char* table, std::span<const RowPlace> places) {
  for (; !places.empty(); places = places.subspan(std::min(DeletedAtOnce, places.size()))) {
    const auto some = places.first(std::min(DeletedAtOnce, places.size()));
    if (auto deleted = Recordset::DeleteRows(connection, table, some); !deleted) return deleted;
  }
  return {};
}

// How much fell at which intensity, and for how long.
class IntensityClasses {
 public:
  void Add(const RainStep& step) {
    if (step.Depth <= 0) return;
    const double intensity = step.Depth * 60 / IntensityMinutes;
    std::size_t at = std::size(IntensityBounds) - 1;
    while (at > 0 && intensity < IntensityBounds[at]) --at;
    classes_[at].Depth += AmountOf(step.Depth);
    classes_[at].Minutes += IntensityMinutes;
    most_ = std::max(most_, intensity);
  }
  std::vector<std::vector<DbValue>> Rows(const std::string& station) const {
    std::vector<std::vector<DbValue>> rows;
    for (std::size_t i = 0; i < classes_.size(); ++i) {
      if (classes_[i].Minutes == 0) continue;
      const auto high = i + 1 < classes_.size() ? std::int64_t{IntensityBounds[i + 1]}
                                                : static_cast<std::int64_t>(std::ceil(most_));
      rows.push_back({station, std::int64_t{IntensityBounds[i]}, high,
                      static_cast<std::int64_t>(std::llround(MmOf(classes_[i].Depth))), classes_[i].Minutes});
    }
    return rows;
  }

 private:
  struct Class {
    RainSum Depth = 0;
    std::int64_t Minutes = 0;
  };
  std::array<Class, std::size(IntensityBounds)> classes_;
  double most_ = 0;
};

tl::unexpected<DbError> Wrong(std::string why) {
  return tl::unexpected(DbError{db_error::StatementFailed, std::move(why), {}});
}

std::string CountText(const RainTablesCount& count) {
  const auto rows = [](std::int64_t number) {
    return std::to_string(number) + (number == 1 ? " row" : " rows");
  };
  return std::string(DailyChart) + ": " + rows(count.Days) + ", " + IntensityDuration + ": " +
         rows(count.Classes);
}

DbResult<std::int64_t> Write(Connection& connection, const char* table,
                             const std::vector<std::string>& columns,
                             std::vector<std::vector<DbValue>> rows) {
  auto writer = RowWriter::Open(connection, table, columns);
  if (!writer) return tl::unexpected(writer.error());
  for (std::vector<DbValue>& row : rows) {
    for (std::size_t i = 0; i < row.size(); ++i)
      if (auto* text = std::get_if<std::string>(&row[i]))
        *text = CutToWidth(*text, writer->Columns()[i].Size);
    if (const auto added = writer->Add(std::move(row)); !added) return tl::unexpected(added.error());
  }
  return writer->Finish();
}

}  // namespace

DbResult<RainTablesFilled> FillRainTables(HyetexPlotDB& database, const RainChoice& choice,
                                          const RainClock& clock, Dialogs& dialogs, Progress& progress) {
  const auto site = ReadRainSite(database, choice.Instrument);
  if (!site) return tl::unexpected(site.error());
  if (site->Station.empty())
    return Wrong("INSTRUMENT does not say at which station " + choice.Instrument + " stands");
  Connection& connection = database.DatabaseConnection;
  RainTablesFilled filled;
  filled.Station = site->Station;
  {
    const auto old = FindOld(connection, choice, clock, site->Station);
    if (!old) return tl::unexpected(old.error());
    filled.Old = old->Count();
  }
  if (filled.Old != RainTablesCount{} &&
      dialogs.MessageBox(Title,
                         "The tables hold rows already, which will be replaced:\n\n" + CountText(filled.Old) +
                             "\n\nThose of " + DailyChart +
                             " are of the instrument and this time, those of " + IntensityDuration +
                             " of all that is known of the station " + site->Station +
                             ".\nAre you sure you want to continue ?",
                         BoxButtons::NoUnlessYes, BoxIcon::Question) != BoxAnswer::Yes)
    return filled;

  auto transaction = Transaction::BeginWriting(connection, DailyChart, progress);
  if (!transaction) return tl::unexpected(transaction.error());
  const auto old = FindOld(connection, choice, clock, site->Station);
  if (!old) return tl::unexpected(old.error());
  if (old->Count() != filled.Old)
    return Wrong("Somebody else has changed the tables meanwhile: nothing was written");

  std::vector<std::vector<DbValue>> days;
  RainSteps daySteps(RainDays, clock, choice.Span, [&](const RainStep& day) {
    if (day.IsGap()) return;
    const std::string covered =
        day.Covered < 1 ? "covered " + RoundedText(std::floor(day.Covered * 1000) / 10, 1) + "%" : " ";
    days.push_back({site->Station, site->Instrument, DbDate{DateOfDay(day.Start, clock)}, day.Depth,
                    std::string(FromChart), std::string(TrustWords[static_cast<std::size_t>(day.Trust)]),
                    covered});
  });
  IntensityClasses classes;
  RainSteps shortSteps({RainStepKind::Unit::Minutes, IntensityMinutes}, clock, choice.Span,
                       [&](const RainStep& step) { classes.Add(step); });
  RainChoice wanted = choice;
  wanted.WithTrust = true;
  const auto remarks = ReadRain(database, wanted, {&daySteps, &shortSteps}, progress);
  if (!remarks) return tl::unexpected(remarks.error());
  filled.Remarks = *remarks;

  if (const auto gone = DeleteAll(connection, DailyChart, old->Days); !gone)
    return tl::unexpected(gone.error());
  if (const auto gone = DeleteAll(connection, IntensityDuration, old->Classes); !gone)
    return tl::unexpected(gone.error());
  const auto newDays = Write(connection, DailyChart,
                             {column::Station, column::InstrumentCode, Day, column::Depth,
                              column::ComputingMethod, column::DataReliability, column::Comments},
                             std::move(days));
  if (!newDays) return tl::unexpected(newDays.error());
  const auto newClasses =
      Write(connection, IntensityDuration, {ClassStation, LowIntensity, HighIntensity, Volume, Duration},
            classes.Rows(site->Station));
  if (!newClasses) return tl::unexpected(newClasses.error());
  if (const auto done = transaction->Commit(); !done) return tl::unexpected(done.error());
  filled.New = {*newDays, *newClasses};
  filled.Done = true;
  return filled;
}

std::string FilledMessage(const RainTablesFilled& filled) {
  if (!filled.Done) return "Nothing was written";
  std::string text = "Written: " + CountText(filled.New);
  if (filled.Old != RainTablesCount{}) text += "; replaced: " + CountText(filled.Old);
  return text;
}

}  // namespace hyetex
