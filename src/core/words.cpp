#include "core/words.h"

#include <algorithm>
#include <charconv>

namespace hyetex {

std::string OptionLines(std::span<const Option> options) {
  std::string text;
  for (const Option& option : options) {
    std::string name =
        "  " + std::string(option.Name) + (option.Value.empty() ? "" : " ") + std::string(option.Value);
    name.resize(std::max<std::size_t>(name.size() + 2, 22), ' ');
    text += name + std::string(option.Help) + "\n";
  }
  return text;
}

Result<Words> Words::Parse(std::span<const std::string> words, std::span<const Option> options) {
  Words parsed;
  for (std::size_t i = 0; i < words.size(); ++i) {
    const std::string& word = words[i];
    if (word == "--") {
      parsed.rest_.insert(parsed.rest_.end(), words.begin() + static_cast<std::ptrdiff_t>(i) + 1,
                          words.end());
      break;
    }
    if (!word.starts_with("--")) {
      parsed.rest_.push_back(word);
      continue;
    }
    const auto option =
        std::find_if(options.begin(), options.end(), [&](const Option& o) { return o.Name == word; });
    if (option == options.end()) return Failure("there is no option " + word);
    if (!option->Value.empty() && i + 1 == words.size()) return Failure(word + " wants a value");
    parsed.values_.insert_or_assign(word, option->Value.empty() ? std::string() : words[++i]);
  }
  return parsed;
}

std::optional<std::string> Words::Value(std::string_view option) const {
  const auto found = values_.find(option);
  if (found == values_.end()) return std::nullopt;
  return found->second;
}

Result<std::optional<int>> Words::Number(std::string_view option, int least, int most) const {
  const auto text = Value(option);
  if (!text) return std::optional<int>();
  int value = 0;
  const auto [end, error] = std::from_chars(text->data(), text->data() + text->size(), value);
  if (error != std::errc{} || end != text->data() + text->size() || value < least || value > most)
    return Failure(std::string(option) + " wants a number from " + std::to_string(least) + " to " +
                   std::to_string(most) + ", not \"" + *text + "\"");
  return std::optional<int>(value);
}

}  // namespace hyetex
