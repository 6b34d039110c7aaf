// SHA-256 of bytes, as text.
#pragma once

#include <string>
#include <string_view>

namespace hyetex {

/// 64 lower-case hexadecimal digits.
std::string Sha256OfBytes(std::string_view bytes);

}  // namespace hyetex
