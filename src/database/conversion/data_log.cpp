#include "database/conversion/data_log.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "core/dates.h"
#include "core/files.h"

namespace hyetex {

DataLog::DataLog(const std::string& folder, bool kept) : path_(JoinPath(folder, DataLogName)), kept_(kept) {}

Result<void> DataLog::StartLog() {
  trouble_.clear();
  Write("Output log for conversion performed " + GeneralDateText(Now()), "wb");
  if (!trouble_.empty()) return Failure(trouble_);
  return {};
}

void DataLog::LogLine(std::string_view text) { Write(text, "ab"); }

void DataLog::Write(std::string_view text, const char* mode) {
  if (!kept_ || !trouble_.empty()) return;
  const std::string line = std::string(text) + "\r\n";
  std::FILE* file = std::fopen(path_.c_str(), mode);
  const bool written = file != nullptr && std::fwrite(line.data(), 1, line.size(), file) == line.size();
  const bool closed = file != nullptr && std::fclose(file) == 0;
  if (!written || !closed) trouble_ = "The data log " + path_ + " cannot be written: " + std::strerror(errno);
}

}  // namespace hyetex
