// Connection texts: "key=value" pairs with ";" between them, keys without regard to case, the first of a key
// counts. A value in braces may hold anything; a closing brace in it is doubled.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace hyetex {

class ConnectionText {
 public:
  explicit ConnectionText(std::string_view text);
  /// The value of a key, without its braces.
  std::optional<std::string> Find(std::string_view key) const;
  /// All passwords in it, each as it is written and without its braces, and those of its data source.
  std::vector<std::string> Passwords() const;
  void Add(std::string key, std::string value) { pairs_.emplace_back(std::move(key), std::move(value)); }
  /// Adds what the driver needs and the text does not set, whatever the data source says: to stream results,
  /// to wait five seconds for a lock, not to make missing files, to keep long binary columns.
  void AddDriverOptions();
  /// Puts what the data source holds in the place of its name; false where there is none of that name. The
  /// driver manager remembers for 20 seconds that it did not find one, so that one just made has to be
  /// reached this way.
  bool ReplaceSource();
  std::string Text() const;

 private:
  std::vector<std::pair<std::string, std::string>> pairs_;  // values as they were written
};

/// "key=value;", the value in braces where it would not be read back without them.
std::string ConnectionPair(std::string_view key, std::string_view value);
/// The text with every password as "***": what may be shown.
std::string ShownConnection(std::string_view text);
/// Overwrites every password in a program's words where they stand. The list of the machine's processes shows
/// them from there to all its users.
void HidePasswords(std::span<char* const> words);

}  // namespace hyetex
