// Loaded files go from the source folder into the target folder.
#include <filesystem>

#include "chartfiles/chart_reader.h"
#include "core/files.h"
#include "core/temporary_file.h"
#include "database/store/chart_to_store.h"
#include "database/store/loading.h"

namespace hyetex {
namespace {

namespace fs = std::filesystem;

// The numbers by which the file system's errors have always been told here.
int MoveError(const std::error_code& error) {
  if (error == std::errc::no_such_file_or_directory) return 53;
  if (error == std::errc::file_exists) return 58;
  if (error == std::errc::no_space_on_device) return 61;
  return 70;
}

Result<void> MoveFailure(int number, const std::string& path, const std::string& why) {
  return Failure("Error " + std::to_string(number) + " in frmLoad.MoveFilesAfterLoading\n\n" +
                 ShownName(path) + ": " + why);
}

// Between file systems: whole and flushed in its new place before it goes from the old one. In between the
// file stands in both.
Result<void> CopyAndRemove(const std::string& path, const std::string& target) {
  const auto bytes = ReadWholeFile(path, MostChartBytes);
  if (!bytes) return MoveFailure(70, path, bytes.error());
  if (const auto written = WriteWholeFile(target, *bytes, ModeOf(path)); !written)
    return MoveFailure(70, path, written.error());
  std::error_code error;
  if (!fs::remove(path, error)) return MoveFailure(MoveError(error), path, error.message());
  return {};
}

// Whether the target is what a move that ended half-way left, and not the file itself by another path.
bool IsCopy(const std::string& path, const std::string& target) {
  std::error_code error;
  if (!fs::is_regular_file(fs::symlink_status(target, error)) || fs::equivalent(path, target, error) || error)
    return false;
  const auto bytes = ReadWholeFile(path, MostChartBytes), copied = ReadWholeFile(target, MostChartBytes);
  return bytes && copied && *bytes == *copied;
}

Result<void> MoveFile(const std::string& path, const std::string& folder) {
  const std::string target = JoinPath(folder, BaseName(path));
  std::error_code error;
  if (fs::exists(fs::symlink_status(target, error))) {
    if (IsCopy(path, target)) return CopyAndRemove(path, target);  // once more, since it may not be flushed
    return MoveFailure(58, path, "There is a file of this name in " + folder);
  }
  fs::rename(path, target, error);
  if (!error) return {};
  if (error == std::errc::cross_device_link) return CopyAndRemove(path, target);
  return MoveFailure(MoveError(error), path, error.message());
}

}  // namespace

Result<void> MoveFilesAfterLoading(std::span<const std::string> paths, const std::string& folder,
                                   Progress& progress) {
  std::error_code error;
  fs::create_directories(folder, error);
  if (error) return Failure("The target folder " + folder + " cannot be made: " + error.message());
  ClearTemporaries(folder);
  for (std::size_t i = 0; i < paths.size(); ++i) {
    if (!progress.Step(static_cast<std::int64_t>(i), static_cast<std::int64_t>(paths.size()),
                       BaseName(paths[i])))
      break;
    if (const auto moved = MoveFile(paths[i], folder); !moved) return moved;
  }
  return {};
}

}  // namespace hyetex
