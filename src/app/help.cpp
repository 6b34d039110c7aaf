// The help page: on the site of the settings, or else the one that comes with the program, at the section of
// the window that is in front.
#include <QCoreApplication>
#include <QDir>
#include <QTextDocument>

#include "app/app_desk.h"
#include "app/help_places.h"
#include "core/files.h"
#include "platform/qt_text.h"
#include "platform/shell.h"

namespace hyetex {
namespace {

constexpr const char* Title = "Asking for help";
/// No page comes near this.
constexpr std::size_t MostHelpBytes = 1 << 20;

/// Where an installed program has it, and one that was just built.
std::string HelpFile() {
  const QDir programs(QCoreApplication::applicationDirPath());
  return JoinPath(FromQt(QDir::cleanPath(programs.filePath("../share/hyetex/help"))), BaseName(HelpPagePath));
}

// Its paragraphs on lines that can be read without a scroll bar, and printed.
QString InLines(const QString& text) {
  constexpr qsizetype Widest = 80;
  QStringList lines;
  for (const QString& paragraph : text.split('\n')) {
    lines << QString();
    for (const QString& word : paragraph.split(' ')) {
      if (!lines.last().isEmpty() && lines.last().size() + word.size() >= Widest) lines << QString();
      lines.last() += (lines.last().isEmpty() ? "" : " ") + word;
    }
  }
  return lines.join('\n');
}

// The page from a section on.
QString FromSection(const QString& page, const QString& place) {
  const qsizetype id = place.isEmpty() ? -1 : page.indexOf(" id=\"" + place + "\">");
  return id < 0 ? page : page.mid(page.lastIndexOf('<', id));
}

}  // namespace

std::string_view AppDesk::HelpPlaceOfFront() const {
  const QMdiSubWindow* front = shell_->Area().activeSubWindow();
  for (const auto& [id, frame] : frames_)
    if (frame && frame == front) return HelpPlace(id);
  return {};
}

void AppDesk::ShowHelp() {
  if (const std::string site = program_.Settings.Get(setting::HelpSite); !site.empty()) {
    if (dialogs_.MessageBox(Title,
                            "In order to view the help you need to connected to the internet, otherwise use "
                            "the manual.",
                            BoxButtons::OkCancel) != BoxAnswer::Ok)
      return;
    if (const auto opened = OpenPage(site + std::string(HelpPagePath)); !opened)
      dialogs_.MessageBox(Title, opened.error(), BoxButtons::Ok, BoxIcon::Warning);
    return;
  }
  const std::string file = HelpFile(), place(HelpPlaceOfFront());
  if (OpenLocalPage(file, place)) return;
  // A machine without a browser shows its words.
  const auto page = ReadWholeFile(file, MostHelpBytes);
  if (!page) {
    dialogs_.MessageBox(Title,
                        page.error() + "\nThe setting " + std::string(setting::HelpSite.Name) +
                            " may name a site that has the help page.",
                        BoxButtons::Ok, BoxIcon::Warning);
    return;
  }
  QTextDocument words;
  words.setHtml(FromSection(ToQt(*page), ToQt(place)));
  OpenLargeView("Help", FromQt(InLines(words.toPlainText().remove(QChar::ObjectReplacementCharacter))));
}

}  // namespace hyetex
