// The words behind a program's name: options that each take a fixed number of values, and nothing left over.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/result.h"

namespace hyetex {

struct OptionRule {
  std::string_view Name;  ///< with its dashes; without them, a word that stands for itself
  int Values = 0;
};

class Options {
 public:
  /// Fails on an option that is not in `rules`, comes twice, or lacks a value. At most `mostWords` plain
  /// words.
  static Result<Options> Parse(int argc, char** argv, std::span<const OptionRule> rules,
                               std::size_t mostWords = 0);

  bool Has(std::string_view name) const { return Find(name) != nullptr; }
  std::optional<std::string> Text(std::string_view name) const;
  /// The option's value as a whole, finite number within `least` to `most`; nothing if it was not given.
  Result<std::optional<double>> Number(std::string_view name, double least, double most,
                                       std::size_t value = 0) const;
  /// The same, with a value for an option that was not given.
  Result<double> NumberOr(std::string_view name, double otherwise, double least, double most) const;
  const std::vector<std::string>& Words() const { return words_; }

 private:
  struct Given {
    std::string_view Name;
    std::vector<std::string> Values;
  };
  const Given* Find(std::string_view name) const;

  std::vector<Given> given_;
  std::vector<std::string> words_;
};

}  // namespace hyetex
