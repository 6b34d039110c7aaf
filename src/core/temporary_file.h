// The file that a write goes to before it takes its place: in the same folder, under a name that no list of
// charts shows, held by a lock while its program lives.
#pragma once

#include <string>
#include <string_view>

#include "core/descriptor.h"
#include "core/result.h"

namespace hyetex {

/// Whether a file's name is that of a temporary file of ours, or of what a database driver keeps beside one.
bool IsTemporary(std::string_view name);
/// Removes the temporary files that programs left in the folder when they were ended; those of programs that
/// live stay. What cannot be removed stays too.
void ClearTemporaries(const std::string& folder);

class TemporaryFile {
 public:
  /// An empty file in the folder, for its owner alone; "." where the folder's name is empty. Fails with
  /// errno's text.
  static Result<TemporaryFile> In(std::string folder);
  TemporaryFile(TemporaryFile&& other) noexcept;
  TemporaryFile& operator=(TemporaryFile&&) = delete;
  /// A file that has not taken its place is removed.
  ~TemporaryFile();

  const std::string& Path() const { return path_; }
  int Get() const { return fd_.Get(); }

  /// Flushes the file, gives it its mode and puts it in the place of `path`, in the same folder, which is
  /// flushed after. Fails with errno's text; the file at `path` is then as it was, unless only the folder
  /// could not be flushed.
  Result<void> Replace(const std::string& path, unsigned mode);
  /// The same, but never takes the place of a file that is there.
  Result<void> Become(const std::string& path, unsigned mode);

 private:
  TemporaryFile(std::string folder, std::string path, int fd);
  Result<void> Place(const std::string& path, unsigned mode, bool replace);

  std::string folder_, path_;
  Descriptor fd_;
};

}  // namespace hyetex
