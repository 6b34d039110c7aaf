#include "staging/lists/list_recovery.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "core/files.h"
#include "core/program_files.h"
#include "core/text.h"
#include "staging/lists/list_reading.h"
#include "staging/lists/login.h"

namespace hyetex {
namespace {

constexpr std::size_t MostToldLines = 4;

}  // namespace

Result<RecoveredLists> RecoverLists(const std::string& programFolder) {
  const std::string path = JoinPath(programFolder, ListsFileName);
  CreateIfMissing(path);
  const Result<std::string> bytes = ReadProgramFile(path);
  if (!bytes) return Failure(bytes.error());

  SalvagedLists salvaged = SalvageLists(*bytes);
  RecoveredLists recovered;
  ReferenceLists& lists = recovered.Lists = std::move(salvaged.Lists);
  const bool isDamaged = !salvaged.Damage.empty();
  for (std::string& line : BringBackHidden(lists)) salvaged.Damage.push_back(std::move(line));
  if (salvaged.Damage.empty()) return recovered;

  recovered.Notice = "The file " + std::string(ListsFileName) +
                     " is damaged. What can be read of it is used." +
                     FirstLines(salvaged.Damage, MostToldLines, "\n- ", "");
  if (isDamaged) {
    const auto kept = KeepCopy(path);
    recovered.Notice += kept
                            ? "\nThe damaged file is kept as " + std::string(BaseName(*kept)) + "."
                            : "\nIt could not be copied, so the lists cannot be saved. " + kept.error() + ".";
  }
  const auto isAdministrator = [](const UserRecord& user) { return IsAllowed(Right::Users, user.Level); };
  const auto known = lists.Users.begin() + salvaged.UserCount;
  if (salvaged.UsersAreWhole || std::any_of(lists.Users.begin(), known, isAdministrator)) return recovered;

  lists.WhyNotSaved = "no administrator could be read from the damaged " + std::string(ListsFileName) +
                      ". Put a whole copy of it in its place, or remove it to begin anew.";
  recovered.NobodyIsKnown = salvaged.UserCount == 0;
  if (recovered.NobodyIsKnown) AdmitByName(lists, {}, {});
  recovered.Notice +=
      recovered.NobodyIsKnown
          ? "\nNo user could be read. Any name may log in, with the rights of a digitizer operator"
          : "\nNo administrator could be read";
  recovered.Notice +=
      "; changes of the lists cannot be saved until a whole copy is put in the file's place and "
      "the program is started again.";
  return recovered;
}

Result<void> RereadLists(const std::string& programFolder, ReferenceLists& lists, std::int16_t currentUser) {
  auto read = RecoverLists(programFolder);
  if (!read) return Failure(read.error());
  const auto user = static_cast<std::size_t>(currentUser);
  const auto& users = read->Lists.Users;
  if (read->Notice.empty() && user < users.size() && user < lists.Users.size() &&
      users[user].Name == lists.Users[user].Name)
    lists = std::move(read->Lists);
  return {};
}

void AdmitByName(ReferenceLists& lists, std::string_view name, std::string_view password) {
  lists.Users = {{std::string(name), std::string(password), DigitizerLevel}};
}

}  // namespace hyetex
