// Saving a digitization: what the save window decides, and the way of a chart's text into its file.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "chartfiles/chart_report.h"
#include "chartfiles/chart_text.h"
#include "core/colour.h"
#include "core/numbers.h"
#include "core/result.h"
#include "core/session.h"
#include "core/settings.h"
#include "staging/lists/lists.h"

namespace hyetex {

/// Who and what the file of a staged chart names. Fails, with one line, where no file could be named after
/// it: no station has its code, or the code cannot stand in a file name.
Result<ChartOrigin> OriginOfChart(const ReferenceLists& lists, const ChartRecord& chart, std::string user);

/// A chart's details as the operator has edited them.
struct EditedDetails {
  Date BeginDate = 0, BeginTime = 0;  ///< of a date the whole days count, of a time the fraction
  Date EndDate = 0, EndTime = 0;
  std::string EyedDepth, ManualDepth;  ///< as typed; their leading numbers count
};
/// A chart's details as they are shown for editing.
EditedDetails DetailsOf(const ChartRecord& chart);
/// Takes all of them, or says why it takes none: the end is not behind the start.
std::optional<std::string> TakeDetails(const EditedDetails& edited, ChartRecord& chart);
/// Whether a chart as it is shown was edited: in what is shown of it, to the minute.
bool DetailsDiffer(const EditedDetails& edited, const ChartRecord& chart);

/// The depths that an operator may choose from, in the order of their list.
enum class DepthChoice { Eyed, Digitized, Average, Manual, Other };
/// The depth of a choice, mm; `NoDepth` where it is not known, nothing for Other. The digitized depth is
/// rounded to 1 decimal, and the average (of that and the eyed depth) again.
std::optional<float> ChosenDepth(const Session& session, DepthChoice choice);

/// Whether a factor of the report makes its caption blink. The manual one never does.
bool FactorBlinks(Factor factor, const ChartReport& report, const ChartRecord& chart);
/// The colour of a factor's caption after a tick of the timer: in alert it changes between red and the
/// window's own colour, where it cannot be seen; without alert it stays unseen.
Rgb BlinkedColour(Rgb fore, Rgb back, bool alert);

/// Asks the operator; true to go on.
using Confirm = std::function<bool(const std::string& question)>;

/// Writes a chart's text into `folder` under the chart's name. Before it takes another file's place it asks,
/// with OverwriteQuestion. The file's path; nothing, and nothing written, when the answer is no.
Result<std::optional<std::string>> WriteChartFile(std::string_view text, const std::string& folder,
                                                  const std::string& name, const Confirm& mayOverwrite);

enum class SaveOutcome {
  Written,      ///< the session counts as saved
  KeptOldFile,  ///< the operator did not let go of the file that was there
  NotWanted,    ///< the operator wants to mend first what the notes tell, or a folder
};
struct SaveQuestions {
  Confirm Overwrite;
  /// What readers of the file will not see (ChartText::Notes), a line each; asked only if there is any.
  Confirm DespiteNotes;
  /// Another folder, because of what it is told; nothing when the operator wants none. Without it the program
  /// folder stands in for a target folder that is gone.
  std::function<std::optional<std::string>(const std::string& why)> OtherFolder = {};
};
/// Writes the session's chart file into the target folder and moves the task list's highlight to the next
/// row. A folder that takes no file is asked about; the settings keep it, for it may be back for the next
/// chart. Fails, with nothing changed, on a session that has no chart to save, a chart of no length, a text
/// that cannot stand in the file, and where no folder takes the file.
Result<SaveOutcome> SaveDigitization(Session& session, const ChartOrigin& origin, Settings& settings,
                                     std::string_view digitizerComment, const SaveQuestions& questions);

}  // namespace hyetex
