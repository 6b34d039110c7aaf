// The words of a command line: options with and without a value, and what is left over.
#pragma once

#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/result.h"

namespace hyetex {

struct Option {
  std::string_view Name;   ///< with its dashes
  std::string_view Value;  ///< what stands for its value in the help; empty for a switch
  std::string_view Help;
};

/// The options' part of a help text, one line each.
std::string OptionLines(std::span<const Option> options);

class Words {
 public:
  /// Sorts the words by the options a command knows; "--" ends the options. Says what is off.
  static Result<Words> Parse(std::span<const std::string> words, std::span<const Option> options);

  bool Has(std::string_view option) const { return values_.contains(option); }
  std::optional<std::string> Value(std::string_view option) const;
  /// A whole number from `least` to `most`; nothing if the option was not given.
  Result<std::optional<int>> Number(std::string_view option, int least, int most) const;
  const std::vector<std::string>& Rest() const { return rest_; }

 private:
  std::map<std::string, std::string, std::less<>> values_;
  std::vector<std::string> rest_;
};

}  // namespace hyetex
