#include <nettle/sha2.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

#include "scan/scan_image.h"

namespace hyetex {

Result<std::string> Sha256OfFile(const std::string& path) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"), std::fclose);
  if (!file) return Failure("Cannot read " + path + ": " + std::strerror(errno));
  sha256_ctx context;
  sha256_init(&context);
  std::vector<std::uint8_t> bytes(std::size_t{1} << 16);
  for (std::size_t count; (count = std::fread(bytes.data(), 1, bytes.size(), file.get())) > 0;)
    sha256_update(&context, count, bytes.data());
  if (std::ferror(file.get()) != 0) return Failure("Cannot read " + path + ": " + std::strerror(errno));
  std::array<std::uint8_t, SHA256_DIGEST_SIZE> digest{};
  sha256_digest(&context, digest.size(), digest.data());
  std::string text;
  constexpr char digits[] = "0123456789abcdef";
  for (const std::uint8_t byte : digest) {
    text += digits[byte >> 4];
    text += digits[byte & 15];
  }
  return text;
}

}  // namespace hyetex
