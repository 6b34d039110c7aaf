// Any bytes as the settings: every key reads as something, one that is set reads back, and showing the file
// and keeping it unedited changes none of its lines.
#include "core/definitions.h"
#include "core/settings.h"
#include "program_folder.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace hyetex;
  using fuzz::Must;
  static const fuzz::ProgramFolder folder;
  folder.Hold(DefinitionsFileName, fuzz::Text(data, size));
  Settings settings(folder.Path());
  for (const SettingKey& key : setting::All) {
    const bool family = key.Name.find('*') != std::string_view::npos;
    (void)GetDefinition(folder.Path(), SettingName(key, family ? "frmInit" : ""));
  }
  (void)settings.Get(setting::TaskBegin);
  (void)settings.Get(setting::ViewHeight);

  const auto before = ReadDefinitions(folder.Path());
  if (!before) return 0;
  if (SaveEditedDefinitions(folder.Path(), *before, ShownDefinitions(*before)))
    Must(ShownDefinitions(ReadDefinitions(folder.Path()).value_or("")) == ShownDefinitions(*before));
  if (!settings.Set(setting::UserName, "O'Neil: Ä")) return 0;
  Must(settings.Get(setting::UserName) == "O'Neil: Ä");
  if (settings.Set(setting::CurrentChart, -7)) Must(settings.Get(setting::CurrentChart) == -7);
  return 0;
}
