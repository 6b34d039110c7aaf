#include "platform/shell.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QGuiApplication>
#include <QProcess>
#include <QStandardPaths>
#include <QUrl>

#include "platform/qt_text.h"

namespace hyetex {

namespace {

// A desktop's opener reports success as soon as it has been started, so that a file without an application
// would be opened by nobody and nothing would be told. What the desktop names for the type is asked first.
bool HasApplication([[maybe_unused]] const QString& mimeType) {
#if defined(Q_OS_UNIX) && !defined(Q_OS_MACOS)
  if (QGuiApplication::platformName() == "offscreen") return true;  // there is no desktop to ask
  constexpr int MostMs = 3000;
  const QString query = QStandardPaths::findExecutable("xdg-mime");
  if (query.isEmpty()) return true;
  QProcess asked;
  asked.start(query, {"query", "default", mimeType});
  if (asked.waitForFinished(MostMs)) return !asked.readAllStandardOutput().trimmed().isEmpty();
  asked.kill();
  asked.waitForFinished(MostMs);
#endif
  return true;
}

Result<void> OpenFile(const std::string& path, const QString& mimeType, const std::string& place = {}) {
  const QFileInfo file(ToQt(path));
  if (!file.isFile()) return Failure("There is no file " + path);
  QUrl address = QUrl::fromLocalFile(file.absoluteFilePath());
  if (!place.empty()) address.setFragment(ToQt(place));
  if (!HasApplication(mimeType) || !QDesktopServices::openUrl(address))
    return Failure("No application opens " + path);
  return {};
}

}  // namespace

Result<void> OpenTextFile(const std::string& path) { return OpenFile(path, "text/plain"); }

Result<void> OpenXmlFile(const std::string& path) { return OpenFile(path, "application/xml"); }

Result<void> OpenLocalPage(const std::string& path, const std::string& place) {
  return OpenFile(path, "text/html", place);
}

Result<void> OpenPage(const std::string& address) {
  const QUrl page(ToQt(address), QUrl::StrictMode);
  if (!page.isValid() || (page.scheme() != "http" && page.scheme() != "https") || page.host().isEmpty())
    return Failure("This is no address of a page: " + address);
  if (!QDesktopServices::openUrl(page)) return Failure("No browser opens " + address);
  return {};
}

}  // namespace hyetex
