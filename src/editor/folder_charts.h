// The chart files of a folder.
#pragma once

#include <string>
#include <utility>

#include "editor/chart_source.h"

namespace hyetex {

class FolderCharts : public ChartSource {
 public:
  /// The stations must outlive it.
  FolderCharts(std::string folder, const std::vector<StationRecord>& stations)
      : folder_(std::move(folder)), stations_(stations) {}

  const std::string& Folder() const { return folder_; }
  void SetFolder(std::string folder) { folder_ = std::move(folder); }
  /// Whether a chart file of this name stands in the folder.
  bool Holds(const ChartFileInfo& file) const;

  Result<ChartListing> List(const ChartFilter& filter, Progress& progress) override;
  Result<OpenedChart> Open(const ChartFileInfo& file, const ReadingOptions& options) override;
  /// A program that is ended between the two steps of a save under another name leaves both files, each
  /// whole: both are listed then.
  Result<std::optional<SavedChart>> Save(const OpenedChart& chart, const ChartRecord& edited,
                                         const ChartSaveQuestions& questions, Progress& progress) override;
  Question DeletionQuestion() const override;
  DeletedCharts Delete(std::span<const ChartFileInfo> files, Progress& progress) override;

 private:
  std::string PathOf(std::string_view name) const;
  /// Whether the operator lets go of what somebody else made of the file meanwhile.
  Result<bool> MayReplace(const OpenedChart& chart, const ChartSaveQuestions& questions) const;

  std::string folder_;
  const std::vector<StationRecord>& stations_;
};

}  // namespace hyetex
