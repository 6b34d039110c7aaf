#include "options.h"

#include <algorithm>
#include <cmath>

#include "core/numbers.h"
#include "tracing/table.h"

namespace hyetex {

Result<Options> Options::Parse(int argc, char** argv, std::span<const OptionRule> rules,
                               std::size_t mostWords) {
  Options options;
  for (int i = 1; i < argc; ++i) {
    const std::string_view word = argv[i];
    const auto rule =
        std::find_if(rules.begin(), rules.end(), [&](const OptionRule& r) { return r.Name == word; });
    if (rule == rules.end()) {
      if (word.starts_with("--") || options.words_.size() == mostWords)
        return Failure("\"" + std::string(word) + "\" is not understood; --help tells the options");
      options.words_.emplace_back(word);
      continue;
    }
    if (options.Has(word)) return Failure(std::string(word) + " is given twice");
    if (argc - i - 1 < rule->Values) return Failure(std::string(word) + " lacks a value");
    options.given_.push_back({rule->Name, {argv + i + 1, argv + i + 1 + rule->Values}});
    i += rule->Values;
  }
  return options;
}

const Options::Given* Options::Find(std::string_view name) const {
  const auto found =
      std::find_if(given_.begin(), given_.end(), [&](const Given& given) { return given.Name == name; });
  return found == given_.end() ? nullptr : &*found;
}

std::optional<std::string> Options::Text(std::string_view name) const {
  const Given* given = Find(name);
  return given ? std::optional(given->Values.front()) : std::nullopt;
}

Result<std::optional<double>> Options::Number(std::string_view name, double least, double most,
                                              std::size_t value) const {
  const Given* given = Find(name);
  if (!given) return std::nullopt;
  const std::optional<double> number = WholeNumber(given->Values[value]);
  if (!number || *number < least || *number > most)
    return Failure(std::string(name) + " takes a number from " + ShortText(least) + " to " + ShortText(most) +
                   ", not \"" + given->Values[value] + "\"");
  return number;
}

Result<double> Options::NumberOr(std::string_view name, double otherwise, double least, double most) const {
  return Number(name, least, most).map([&](const std::optional<double>& number) {
    return number.value_or(otherwise);
  });
}

}  // namespace hyetex
