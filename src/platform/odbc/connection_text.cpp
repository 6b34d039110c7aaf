#include "platform/odbc/connection_text.h"

#include <odbcinst.h>
#include <sql.h>

#include <algorithm>
#include <array>

#include "core/text.h"

namespace hyetex {
namespace {

// The names of a section's entries. Unlike a missing entry, a missing list is never remembered.
std::vector<std::string> ProfileKeys(const std::string& section, const char* file) {
  std::array<char, 8192> names{};
  if (!section.empty())
    SQLGetPrivateProfileString(section.c_str(), nullptr, "", names.data(), names.size() - 2, file);
  std::vector<std::string> keys;
  for (const char* at = names.data(); *at != '\0'; at += keys.back().size() + 1) keys.emplace_back(at);
  return keys;
}

// Empty where there is no such entry.
std::string Profile(const std::string& section, std::string_view key, const char* file) {
  std::array<char, 1024> value{};
  for (const std::string& name : ProfileKeys(section, file))
    if (EqualIgnoringCase(name, key))
      SQLGetPrivateProfileString(section.c_str(), name.c_str(), " ", value.data(), value.size(), file);
  return std::string(Trim(value.data()));
}

struct DriverOption {
  const char* Driver;  ///< what the driver's name or library holds, in capitals
  const char* Key;
  const char* Value;
};
constexpr DriverOption DriverOptions[] = {
    {"SQLITE", "StepAPI", "1"},
    {"SQLITE", "FKSupport", "1"},
    {"SQLITE", "NoCreat", "1"},
    {"SQLITE", "Timeout", "100"},  // the link waits itself
    {"PSQL", "UseDeclareFetch", "1"},
    {"PSQL", "Fetch", "1000"},
    {"PSQL", "ByteaAsLongVarBinary", "1"},
    {"PSQL", "Protocol", "7.4-0"},  // no savepoint before each statement: the first error ends our
                                    // transactions
    {"MAODBC", "Charset", "utf8mb4"},
    {"MAODBC", "OPTION", "2"},  // count the rows that an update found, not
                                // only those that it changed
};

constexpr std::string_view Hidden = "***";

bool IsPassword(std::string_view key) {
  constexpr std::array<std::string_view, 3> Keys{"PWD", "PASSWORD", "PASSWD"};
  return std::any_of(Keys.begin(), Keys.end(), [&](std::string_view k) { return EqualIgnoringCase(k, key); });
}

// Where a value that starts at `at` ends: at its semicolon, or at the text's end.
std::size_t EndOfValue(std::string_view text, std::size_t at) {
  at = std::min(text.find_first_not_of(' ', at), text.size());
  if (at < text.size() && text[at] == '{') {
    for (++at; at < text.size(); ++at) {
      if (text[at] != '}') continue;
      if (at + 1 == text.size() || text[at + 1] != '}') break;
      ++at;
    }
  }
  return std::min(text.find(';', at), text.size());
}

// Calls `take(key, value)` for each pair, the value as it is written. A bare word, such as the
// "ODBC" that a desktop program puts in front, says nothing to a driver.
template <typename Take>
void ForEachPair(std::string_view text, Take&& take) {
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t mark = text.find_first_of("=;", at);
    if (mark == std::string_view::npos) return;
    const std::size_t start = mark + 1;
    if (text[mark] == ';') {
      at = start;
      continue;
    }
    const std::size_t end = EndOfValue(text, start);
    take(Trim(text.substr(at, mark - at)), text.substr(start, end - start));
    at = end + 1;
  }
}

std::string WithoutBraces(std::string_view value) {
  value = Trim(value);
  if (value.empty() || value.front() != '{') return std::string(value);
  value.remove_prefix(1);
  if (!value.empty() && value.back() == '}') value.remove_suffix(1);
  std::string plain;
  for (std::size_t i = 0; i < value.size(); ++i) {
    plain += value[i];
    if (value.substr(i, 2) == "}}") ++i;
  }
  return plain;
}

}  // namespace

ConnectionText::ConnectionText(std::string_view text) {
  ForEachPair(text, [this](std::string_view key, std::string_view value) {
    // Nothing typed is no wish: the data source's own value counts.
    if (!Trim(value).empty() && !EqualIgnoringCase(key, "PROVIDER"))
      Add(std::string(key), std::string(value));
  });
}

std::optional<std::string> ConnectionText::Find(std::string_view key) const {
  for (const auto& [name, value] : pairs_)
    if (EqualIgnoringCase(name, key)) return WithoutBraces(value);
  return std::nullopt;
}

std::vector<std::string> ConnectionText::Passwords() const {
  std::vector<std::string> passwords;
  for (const auto& [name, value] : pairs_) {
    if (!IsPassword(name)) continue;
    passwords.push_back(value);
    passwords.push_back(WithoutBraces(value));
  }
  // The driver takes the rest of what it needs from the data source.
  const std::string source = Find("DSN").value_or("");
  for (const std::string& key : ProfileKeys(source, "odbc.ini"))
    if (IsPassword(key)) passwords.push_back(Profile(source, key, "odbc.ini"));
  return passwords;
}

void ConnectionText::AddDriverOptions() {
  const std::string driver = Find("Driver").value_or(Profile(Find("DSN").value_or(""), "Driver", "odbc.ini"));
  // A driver goes by its library, directly or through its entry in the list of drivers.
  const std::string library = UpperAscii(driver + " " + Profile(driver, "Driver", "odbcinst.ini"));
  for (const DriverOption& option : DriverOptions)
    if (library.find(option.Driver) != std::string::npos && !Find(option.Key)) Add(option.Key, option.Value);
}

bool ConnectionText::ReplaceSource() {
  const std::string source = Find("DSN").value_or("");
  std::erase_if(pairs_, [](const auto& pair) { return EqualIgnoringCase(pair.first, "DSN"); });
  for (const std::string& key : ProfileKeys(source, "odbc.ini")) {
    const std::string pair = ConnectionPair(key, Profile(source, key, "odbc.ini"));
    if (!Find(key)) Add(key, pair.substr(key.size() + 1, pair.size() - key.size() - 2));
  }
  return Find("Driver").has_value();
}

std::string ConnectionText::Text() const {
  std::string text;
  for (const auto& [key, value] : pairs_) text += key + "=" + value + ";";
  return text;
}

std::string ConnectionPair(std::string_view key, std::string_view value) {
  std::string pair = std::string(key) + "=";
  if (value.find_first_of(";{}") == std::string_view::npos && Trim(value) == value)
    return pair.append(value) + ";";
  pair += '{';
  for (const char c : value) pair.append(c == '}' ? 2 : 1, c);
  return pair + "};";
}

std::string ShownConnection(std::string_view text) {
  std::string shown;
  const char* copied = text.data();
  ForEachPair(text, [&](std::string_view key, std::string_view value) {
    if (!IsPassword(key) || Trim(value).empty()) return;
    shown.append(copied, value.data()).append(Hidden);
    copied = value.data() + value.size();
  });
  return shown.append(copied, text.data() + text.size());
}

void HidePasswords(std::span<char* const> words) {
  for (char* const word : words) {
    const std::string_view text(word);
    ForEachPair(text, [&](std::string_view key, std::string_view value) {
      if (IsPassword(key)) std::fill_n(word + (value.data() - text.data()), value.size(), '*');
    });
  }
}

}  // namespace hyetex
