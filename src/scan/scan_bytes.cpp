#include "scan/scan_bytes.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

namespace hyetex {
namespace {

class BytesOnDisk : public ScanBytes {
 public:
  BytesOnDisk(std::FILE* file, std::uint64_t size) : file_(file, std::fclose), size_(size) {}
  std::uint64_t Size() const override { return size_; }
  std::size_t Read(std::uint64_t at, std::span<std::uint8_t> into) const override {
    if (at >= size_ || fseeko(file_.get(), static_cast<off_t>(at), SEEK_SET) != 0) return 0;
    return std::fread(into.data(), 1, into.size(), file_.get());
  }

 private:
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> file_;
  std::uint64_t size_;
};

}  // namespace

std::optional<std::uint32_t> ScanBytes::Number(std::uint64_t at, int bytes, bool bigEndian) const {
  std::array<std::uint8_t, 4> read{};
  const auto count = static_cast<std::size_t>(bytes);
  if (Read(at, std::span(read).first(count)) != count) return std::nullopt;
  std::uint32_t number = 0;
  for (std::size_t i = 0; i < count; ++i) number = number << 8 | read[bigEndian ? i : count - 1 - i];
  return number;
}

std::string ScanBytes::Text(std::uint64_t at, std::size_t most) const {
  std::string text(most, '\0');
  text.resize(Read(at, std::span(reinterpret_cast<std::uint8_t*>(text.data()), most)));
  return text;
}

std::size_t BytesInMemory::Read(std::uint64_t at, std::span<std::uint8_t> into) const {
  if (at >= bytes_.size()) return 0;
  const std::string_view rest = bytes_.substr(static_cast<std::size_t>(at), into.size());
  std::memcpy(into.data(), rest.data(), rest.size());
  return rest.size();
}

Result<std::unique_ptr<ScanBytes>> BytesOfFile(const std::string& path) {
  namespace fs = std::filesystem;
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  // A pipe would be waited for.
  if (fs::exists(status) && !fs::is_regular_file(status))
    return Failure("Cannot read " + path + ": it is no file");
  std::FILE* file = std::fopen(path.c_str(), "rb");
  if (!file) return Failure("Cannot read " + path + ": " + std::strerror(errno));
  const std::uint64_t size = fs::file_size(path, error);
  return std::make_unique<BytesOnDisk>(file, error ? 0 : size);
}

}  // namespace hyetex
