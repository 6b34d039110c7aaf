// One running copy a program folder: settings and lists are rewritten whole, so two programs would undo each
// other's changes.
#pragma once

#include <string>

#include "core/descriptor.h"
#include "core/result.h"

namespace hyetex {

class FolderLock {
 public:
  /// Takes the folder for this program, for as long as the lock lives, and clears away what programs that
  /// were ended left half written in it. Fails, naming the process, while another holds it, and on a folder
  /// that cannot be written. A program that ends in any way lets go of its lock.
  static Result<FolderLock> Take(const std::string& folder);
  /// The same for a program that another one has started to work for it: where that one holds the folder, its
  /// lock stands for both. The one that started it must not write what this one writes.
  static Result<FolderLock> TakeOrShare(const std::string& folder);

 private:
  static Result<FolderLock> Take(const std::string& folder, bool orShare);
  explicit FolderLock(Descriptor fd) : fd_(std::move(fd)) {}
  Descriptor fd_;
};

}  // namespace hyetex
