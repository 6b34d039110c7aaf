#include "database/conversion/data_log.h"

#include "core/dates.h"
#include "core/files.h"

namespace hyetex {

DataLog::DataLog(const std::string& folder, bool kept) : path_(JoinPath(folder, DataLogName)), kept_(kept) {}

void DataLog::StartLog() {
  trouble_.clear();
  const std::string head = "Output log for conversion performed " + GeneralDateText(Now()) + "\r\n";
  if (kept_) Keep(WriteWholeFile(path_, head));
}

void DataLog::LogLine(std::string_view text) {
  if (kept_ && trouble_.empty()) Keep(AppendToFile(path_, std::string(text) + "\r\n"));
}

void DataLog::Keep(const Result<void>& written) {
  if (!written) trouble_ = "The data log could not be kept. " + written.error();
}

}  // namespace hyetex
