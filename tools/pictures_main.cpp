// hyetex-pictures: writes a picture of every window of the desktop program.
#include <QApplication>
#include <QIcon>

#include "commandline/parser.h"
#include "pictures/guide_pictures.h"
#include "pictures/pictures.h"

int main(int argc, char** argv) {
  using namespace hyetex::commandline;
  Description program("hyetex-pictures", "Writes a picture of every window of the desktop program.");
  std::string programFolder, pictures, guide;
  AddWord(program, "PROGRAM_FOLDER", programFolder, "what the windows show; left as it is")->required();
  AddWord(program, "PICTURES_FOLDER", pictures, "where to write the pictures")->required();
  AddName(program, "--guide", guide, "DIR", "where to write those of the guide for operators too");
  if (const auto answer = Parse(program, std::vector<std::string>(argv + 1, argv + argc)))
    return Give(program.get_name(), *answer);
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication app(argc, argv);
  QApplication::setWindowIcon(QIcon(":/icons/hyetex.svg"));
  QApplication::setQuitOnLastWindowClosed(false);
  auto taken = hyetex::TakePictures(programFolder, pictures);
  if (taken && !guide.empty()) taken = hyetex::KeepGuidePictures(pictures, guide);
  return taken ? Done : Fail(program.get_name(), taken.error());
}
