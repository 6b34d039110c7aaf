#include "chartfiles/empty_form.h"

#include "core/files.h"

namespace hyetex {

Result<std::optional<std::string>> WriteEmptyForm(const ChartRecord& task, int chartMethod,
                                                  const ChartOrigin& origin, const std::string& folder,
                                                  const Confirm& mayOverwrite) {
  const auto form = MakeEmptyChartText(task, chartMethod, origin);
  if (!form) return Failure(form.error());
  const std::string path = JoinPath(folder, ChartFileName(origin.InstrumentCode, task.StartTime));
  if (FileExists(path) && !mayOverwrite(OverwriteQuestion(path))) return std::nullopt;
  if (const auto written = WriteWholeFile(path, form->Text); !written) return Failure(written.error());
  return path;
}

}  // namespace hyetex
