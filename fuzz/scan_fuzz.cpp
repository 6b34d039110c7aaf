// Any bytes as a scan: its head is read, and whether it is whole, without anything being decoded.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "scan/scan_heads.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace hyetex;
  const BytesInMemory bytes(std::string_view(reinterpret_cast<const char*>(data), size));
  const auto head = ReadScanHead(bytes, 0);
  if (!head) return head.error().empty() ? std::abort(), 0 : 0;
  (void)IsWhole(bytes, *head);
  const auto facts = FactsOf(*head);
  if (facts &&
      (facts->Width < 1 || facts->Height < 1 || std::int64_t{facts->Width} * facts->Height > MostScanPixels ||
       !(facts->PixelsPerMm.value_or(1) > 0)))
    std::abort();
  return 0;
}
