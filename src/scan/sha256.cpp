#include "scan/sha256.h"

#include <nettle/sha2.h>

#include <array>
#include <vector>

#include "scan/scan_bytes.h"
#include "scan/scan_image.h"

namespace hyetex {
namespace {

std::string DigestText(sha256_ctx& context) {
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

}  // namespace

std::string Sha256OfBytes(std::string_view bytes) {
  sha256_ctx context;
  sha256_init(&context);
  sha256_update(&context, bytes.size(), reinterpret_cast<const std::uint8_t*>(bytes.data()));
  return DigestText(context);
}

Result<std::string> Sha256OfFile(const std::string& path) {
  const auto file = BytesOfFile(path);
  if (!file) return Failure(file.error());
  sha256_ctx context;
  sha256_init(&context);
  std::vector<std::uint8_t> bytes(std::size_t{1} << 16);
  std::uint64_t at = 0;
  for (std::size_t count; (count = (*file)->Read(at, bytes)) > 0; at += count)
    sha256_update(&context, count, bytes.data());
  if (at != (*file)->Size()) return Failure("Cannot read " + path + ": it cannot be read to its end");
  return DigestText(context);
}

}  // namespace hyetex
