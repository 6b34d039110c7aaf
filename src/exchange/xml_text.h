// Values as the text of XML elements, and back. What XML has no character for (most control characters, bytes
// that are no UTF-8) stands there as base64, and so does a text of no characters, since an element without
// content is a value that is not there.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace hyetex {

/// The attribute of an element whose text is base64, and its value.
inline constexpr std::string_view EncodingAttribute = "encoding", Base64Encoding = "base64";

/// What an XML reader makes of a text that is written as it stands.
enum class XmlText {
  Plain,    ///< the same text
  Changed,  ///< another one: it holds a carriage return, which is read as a line feed
  Markup,   ///< its own marks, "<", "&" or "]]>", so that it cannot read the file
  Unfit,    ///< nothing: it holds what XML has no character for
};
XmlText KindOfXmlText(std::string_view text);

/// Adds `text`, which is not Unfit, with its marks and carriage returns written so that it is read back as it
/// is.
void AppendEscaped(std::string& to, std::string_view text);

void AppendBase64(std::string& to, std::string_view bytes);
/// The bytes; blanks and line ends between the characters are passed over. Nothing for what is no base64.
std::optional<std::string> FromBase64(std::string_view text);

/// Whether a table or column can name an element: letters, digits, "_", "-", "." and what is beyond ASCII,
/// the first none of digit, "-" and ".".
bool IsXmlName(std::string_view name);

}  // namespace hyetex
