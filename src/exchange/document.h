// A file of XML that holds the rows of a table.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "core/progress.h"
#include "core/result.h"
#include "exchange/xml_rows.h"

namespace hyetex {

/// Reads a file from its beginning to its end, telling how far it has come in kilobytes. Fails on a file that
/// cannot be read, on what XmlRows fails on, and with Stopped when the operator wants no more.
Result<void> ReadXmlFile(const std::string& path, const XmlTaker& taker, Progress& progress);
inline constexpr const char* StoppedText = "Stopped";

/// A document that was read once to its end, so that it is known to be whole.
struct XmlDocument {
  std::string Path = {};
  std::string Root = {};  ///< the name of its root element
  std::int64_t Rows = 0;  ///< elements in it
};

/// Reads a document through without keeping it; a name that is no whole path is one in the folder. Fails with
/// a line that names the file and, where it is no XML, line and column.
Result<XmlDocument> LoadDocument(const std::string& folder, const std::string& fileName, Progress& progress);

/// The table that a root element names: its name without the last character. Empty for a name that is too
/// short.
std::string TableOfRoot(const std::string& root);

}  // namespace hyetex
