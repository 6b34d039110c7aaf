#include "pictures/guide_pictures.h"

#include <QHash>
#include <QImage>
#include <QList>
#include <algorithm>
#include <utility>

#include "core/files.h"
#include "platform/qt_text.h"

namespace hyetex {
namespace {

struct GuidePicture {
  const char *Taken, *Name;
};
constexpr GuidePicture Pictures[] = {
    {"frmInit", "menu.png"},        {"frmTasks", "staging.png"},
    {"frmSave", "save.png"},        {"mdiHyetex-digitizing", "desk.png"},
    {"frmAlpha", "skew.png"},       {"mdiHyetex-scan-traced", "scan.jpg"},
    {"frmRainfall", "results.png"}, {"frmEditor-series", "review.png"},
    {"frmTraceScans", "box.png"},
};

// The colours that most of a window's pixels have; the others are shades at the edges of letters.
QList<QRgb> MainColours(const QImage& picture) {
  constexpr qsizetype Most = 64;
  QHash<QRgb, int> counts;
  for (int y = 0; y < picture.height(); ++y)
    for (int x = 0; x < picture.width(); ++x) ++counts[picture.pixel(x, y)];
  QList<QRgb> colours = counts.keys();
  std::ranges::sort(colours,
                    [&](QRgb a, QRgb b) { return std::pair(counts[a], a) > std::pair(counts[b], b); });
  return colours.first(std::min(Most, colours.size()));
}

// As small as they may be: windows in few colours, a photograph of paper as one.
bool Keep(const QImage& picture, const QString& file) {
  if (file.endsWith(".jpg")) return picture.save(file, nullptr, 80);
  return picture.convertToFormat(QImage::Format_Indexed8, MainColours(picture), Qt::AvoidDither).save(file);
}

}  // namespace

Result<void> KeepGuidePictures(const std::string& pictures, const std::string& guide) {
  for (const auto& [taken, name] : Pictures) {
    const QImage picture(ToQt(JoinPath(pictures, std::string(taken) + ".png")));
    const std::string file = JoinPath(guide, name);
    if (picture.isNull() || !Keep(picture, ToQt(file)))
      return Failure("The picture " + file + " cannot be written");
  }
  return {};
}

}  // namespace hyetex
