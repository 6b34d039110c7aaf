#include "core/settings.h"

#include <cmath>

#include "core/dates.h"
#include "core/definitions.h"
#include "core/files.h"
#include "core/numbers.h"

namespace hyetex {

std::string SettingName(const SettingKey& key, std::string_view member) {
  std::string name(key.Name);
  if (const auto place = name.find('*'); place != std::string::npos) name.replace(place, 1, member);
  return name;
}

std::string Settings::Text(const SettingKey& key, std::string_view member) const {
  std::string value = GetDefinition(folder_, SettingName(key, member));
  return value.empty() ? std::string(key.Default) : value;
}

Result<std::string> Settings::Read(const TextKey& key) const {
  auto value = ReadDefinition(folder_, SettingName(key));
  return value && value->empty() ? std::string(key.Default) : value;
}
Result<std::int16_t> Settings::Read(const Int16Key& key) const {
  const auto value = ReadDefinition(folder_, SettingName(key));
  if (!value) return Failure(value.error());
  return LeadingInt16(value->empty() ? key.Default : *value);
}

Result<void> Settings::Put(const std::string& name, std::string_view value) {
  return SetDefinition(folder_, name, value);
}

bool Settings::Has(const SettingKey& key, std::string_view member) const {
  return !GetDefinition(folder_, SettingName(key, member)).empty();
}

std::int16_t Settings::Get(const Int16Key& key) const { return LeadingInt16(Text(key)); }
float Settings::Get(const FloatKey& key) const { return LeadingFloat(Text(key)); }
bool Settings::Get(const FlagKey& key) const { return LeadingNumber(Text(key)) != 0; }
std::optional<Date> Settings::Get(const DateKey& key) const {
  const auto parsed = ParseDateText(Text(key));
  return parsed ? std::optional(std::floor(parsed->Value)) : std::nullopt;
}
float Settings::Get(const FloatFamily& family, std::string_view member) const {
  return LeadingFloat(Text(family, member));
}

Result<void> Settings::Set(const Int16Key& key, int value) { return Put(SettingName(key), ShortText(value)); }
Result<void> Settings::Set(const FloatKey& key, float value) {
  return Put(SettingName(key), ShortText(value));
}
Result<void> Settings::Set(const FlagKey& key, bool value) {
  return Put(SettingName(key), value ? "1" : "0");
}
Result<void> Settings::Set(const DateKey& key, Date value) {
  return Put(SettingName(key), GeneralDateText(std::floor(value)));
}
Result<void> Settings::Set(const TextFamily& family, std::string_view member, std::string_view value) {
  return Put(SettingName(family, member), value);
}
Result<void> Settings::Set(const FloatFamily& family, std::string_view member, float value) {
  return Put(SettingName(family, member), ShortText(value));
}

std::string TargetFolder(const Settings& settings) {
  return CheckTargetFolder(settings.Get(setting::TargetFolder), settings.Folder());
}

Result<std::string> ReadTargetFolder(const Settings& settings) {
  const auto stored = settings.Read(setting::TargetFolder);
  if (!stored) return stored;
  return CheckTargetFolder(*stored, settings.Folder());
}

}  // namespace hyetex
