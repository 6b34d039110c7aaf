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

 private:
  explicit FolderLock(Descriptor fd) : fd_(std::move(fd)) {}
  Descriptor fd_;
};

}  // namespace hyetex
