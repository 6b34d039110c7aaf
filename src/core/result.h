// A value, or one clear line for the operator that says why there is none.
#pragma once

#include <string>
#include <tl/expected.hpp>
#include <utility>

namespace hyetex {

template <typename T>
using Result = tl::expected<T, std::string>;

inline tl::unexpected<std::string> Failure(std::string why) {
  return tl::unexpected<std::string>(std::move(why));
}

}  // namespace hyetex
