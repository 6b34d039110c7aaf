#include "pictures/guide_pictures.h"

#include <QImage>

#include "core/files.h"
#include "platform/qt_text.h"

namespace hyetex {
namespace {

struct GuidePicture {
  const char *Taken, *Name;
};
constexpr GuidePicture Pictures[] = {
    {"frmInit", "menu"}, {"frmTasks", "staging"},        {"mdiHyetex-digitizing", "desk"},
    {"frmSave", "save"}, {"frmEditor-series", "review"}, {"frmAlpha", "skew"},
};

}  // namespace

Result<void> KeepGuidePictures(const std::string& pictures, const std::string& guide) {
  for (const auto& [taken, name] : Pictures) {
    const QImage picture(ToQt(JoinPath(pictures, std::string(taken) + ".png")));
    const std::string file = JoinPath(guide, std::string(name) + ".png");
    if (picture.isNull() ||
        !picture.convertToFormat(QImage::Format_Indexed8, Qt::AvoidDither).save(ToQt(file)))
      return Failure("The picture " + file + " cannot be written");
  }
  return {};
}

}  // namespace hyetex
