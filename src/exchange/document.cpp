#include "exchange/document.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "core/descriptor.h"
#include "core/files.h"

namespace hyetex {
namespace {

tl::unexpected<std::string> CannotRead(const std::string& path, const std::string& why) {
  return Failure("Cannot read " + path + ": " + why);
}

}  // namespace

Result<void> ReadXmlFile(const std::string& path, const XmlTaker& taker, Progress& progress) {
  // Not blocking, so that a named pipe in a file's place is an error and not a wait without end.
  const Descriptor fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  struct stat info {};
  if (!fd.Valid() || ::fstat(fd.Get(), &info) != 0) return CannotRead(path, std::strerror(errno));
  if (!S_ISREG(info.st_mode)) return CannotRead(path, "it is no file");
  const std::string name(BaseName(path));
  std::string block(1U << 16, '\0');
  XmlRows rows(taker);
  for (std::int64_t done = 0;;) {
    constexpr std::int64_t kilobyte = 1024;
    if (!progress.Step(done / kilobyte, info.st_size / kilobyte, name)) return Failure(StoppedText);
    const ssize_t got = ::read(fd.Get(), block.data(), block.size());
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return CannotRead(path, std::strerror(errno));
    if (auto taken = got == 0 ? rows.End() : rows.Take({block.data(), static_cast<std::size_t>(got)}); !taken)
      return taken;
    if (got == 0) return {};
    done += got;
  }
}

Result<XmlDocument> LoadDocument(const std::string& folder, const std::string& fileName, Progress& progress) {
  const bool isWhole = std::filesystem::path(fileName).is_absolute();
  XmlDocument document{.Path = isWhole ? fileName : JoinPath(folder, fileName)};
  const XmlTaker taker{.Root =
                           [&](std::string_view name) {
                             document.Root = name;
                             return Result<void>();
                           },
                       .Row =
                           [&](const XmlRow&) {
                             ++document.Rows;
                             return Result<void>();
                           }};
  const auto read = ReadXmlFile(document.Path, taker, progress);
  if (read) return document;
  const bool tellsAll = read.error() == StoppedText || read.error().starts_with("Cannot read");
  return Failure((tellsAll ? "" : document.Path + ", ") + read.error());
}

std::string TableOfRoot(const std::string& root) {
  return root.substr(0, root.empty() ? 0 : root.size() - 1);
}

}  // namespace hyetex
