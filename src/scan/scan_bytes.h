// The bytes of a file that may be a scan, to be read here and there: a file's head tells what it is long
// before all of it is read.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "core/result.h"

namespace hyetex {

class ScanBytes {
 public:
  virtual ~ScanBytes() = default;
  virtual std::uint64_t Size() const = 0;
  /// Fills `into` with the bytes from `at` on; how many there were.
  virtual std::size_t Read(std::uint64_t at, std::span<std::uint8_t> into) const = 0;

  /// A number of 1, 2 or 4 bytes; nothing where the file has ended before.
  std::optional<std::uint32_t> Number(std::uint64_t at, int bytes, bool bigEndian) const;
  /// Up to `most` bytes.
  std::string Text(std::uint64_t at, std::size_t most) const;
};

/// Of a file, which is held open. Fails, in words, on what is missing, cannot be read or is no plain file.
Result<std::unique_ptr<ScanBytes>> BytesOfFile(const std::string& path);

/// Of bytes in memory, which stay the caller's.
class BytesInMemory : public ScanBytes {
 public:
  explicit BytesInMemory(std::string_view bytes) : bytes_(bytes) {}
  std::uint64_t Size() const override { return bytes_.size(); }
  std::size_t Read(std::uint64_t at, std::span<std::uint8_t> into) const override;

 private:
  std::string_view bytes_;
};

}  // namespace hyetex
