#include "platform/shell.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QUrl>

#include "platform/qt_text.h"

namespace hyetex {

Result<void> OpenTextFile(const std::string& path) {
  const QFileInfo file(ToQt(path));
  if (!file.isFile()) return Failure("There is no file " + path);
  if (!QDesktopServices::openUrl(QUrl::fromLocalFile(file.absoluteFilePath())))
    return Failure("No application opens " + path);
  return {};
}

Result<void> OpenPage(const std::string& address) {
  const QUrl page(ToQt(address), QUrl::StrictMode);
  if (!page.isValid() || (page.scheme() != "http" && page.scheme() != "https") || page.host().isEmpty())
    return Failure("This is no address of a page: " + address);
  if (!QDesktopServices::openUrl(page)) return Failure("No browser opens " + address);
  return {};
}

}  // namespace hyetex
