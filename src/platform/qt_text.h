// Text between the logic, where it is bytes, and the toolkit.
#pragma once

#include <QString>
#include <string>
#include <string_view>

#include "core/text.h"

namespace hyetex {

/// Bytes from a file or an operator as they are shown: UTF-8, or Windows-1252 where they are none.
inline QString ToQt(std::string_view bytes) { return QString::fromStdString(ShownText(bytes)); }

/// What an operator typed, as UTF-8.
inline std::string FromQt(const QString& text) { return text.toStdString(); }

}  // namespace hyetex
