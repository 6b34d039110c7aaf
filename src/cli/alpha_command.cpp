// alpha: an instrument's alpha values, and the selected one into its charts.
#include "alpha/alpha_review.h"
#include "alpha/alpha_writing.h"
#include "cli/database.h"
#include "core/dates.h"
#include "core/text.h"
#include "database/store/instruments.h"
#include "database/store/stored_text.h"

namespace hyetex::cli {
namespace {

constexpr int SelectedColumn = 2;  // of the grid; before it stand the instrument and the start

// Each line has as many fields as the heading.
void PrintCharts(const AlphaReview& review) {
  const int columns = review.ColumnCount();
  std::string text = "start,selected_alpha";
  for (int alpha = 1; alpha < columns - SelectedColumn; ++alpha) text += ",alpha_" + std::to_string(alpha);
  for (int row = 0; row < review.RowCount(); ++row) {
    const Date start = review.Charts()[static_cast<std::size_t>(row)].Start();
    text += "\n" + (start == 0 ? std::string() : IsoText(start));
    for (int column = SelectedColumn; column < columns; ++column) text += "," + review.Cell(row, column);
  }
  text += "\naverage," + review.Average(review.WorkedOn({}));
  text.append(static_cast<std::size_t>(columns - SelectedColumn - 1), ',');
  Print(text + "\n");
}

}  // namespace

Exit RunAlpha(const AlphaWords& words) {
  CommandDatabase opened(words);
  if (const auto done = opened.Open(); !done) return Fail(done.error());
  HyetexPlotDB& database = opened.Database;
  SaidWaits progress;
  auto list = ReadAlphaList(database, words.Instrument, progress);
  if (!list) return Fail(list.error().Description);
  if (list->Charts.empty()) {
    const auto codes = ReadInstrumentCodes(database);
    if (!codes) return Fail(codes.error().Description);
    if (!codes->contains(ComparedCode(words.Instrument)))
      return Fail("There is no instrument " + words.Instrument + " in the database");
  }
  bool isClean = true;
  if (words.Write && !list->Charts.empty()) {
    const SelectedAlpha alpha = *ReadSelectedAlpha(*words.Write);
    const AlphaWriting result = WriteSelectedAlpha(database, words.Instrument, list->Charts, alpha, progress);
    Say(AlphaMessage(result, alpha));
    if (!result.IsDone()) return Failed;
    isClean = result.Report.IsClean();
    list = ReadAlphaList(database, words.Instrument, progress);
    if (!list) return Fail(list.error().Description);
  }
  for (const std::string& note : list->Notes) Say(note);
  isClean &= list->Notes.empty();
  AlphaReview review;
  review.Show(*std::move(list));
  PrintCharts(review);
  return isClean ? Done : Failed;
}

}  // namespace hyetex::cli
