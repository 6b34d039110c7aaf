// The built program on a screen of its own.
#include <QProcess>
#include <QStandardPaths>
#include <QtEndian>

#include "paths.h"
#include "platform/qt_text.h"
#include "windows/support.h"

namespace hyetex {
namespace {

using namespace hyetex::test;

class Program : public FolderTest {
 protected:
  void SetUp() override {
    const QString server = QStandardPaths::findExecutable("Xvfb");
    if (server.isEmpty()) GTEST_SKIP() << "Xvfb is not installed; scripts/packages.sh installs it";
    std::filesystem::create_directory(folder_ / "screen");
    screen_.start(server, {"-displayfd", "1", "-screen", "0", "1280x1024x24", "-nolisten", "tcp", "-fbdir",
                           QString::fromStdString(folder_ / "screen")});
    ASSERT_TRUE(screen_.waitForReadyRead(20000)) << screen_.readAllStandardError().toStdString();
    environment_ = QProcessEnvironment::systemEnvironment();
    environment_.insert("DISPLAY", ":" + screen_.readAllStandardOutput().trimmed());
    environment_.insert("QT_QPA_PLATFORM", "xcb");
    environment_.insert("XDG_RUNTIME_DIR", QString::fromStdString(folder_.Path()));
    // What the system's libraries keep to their end is not ours.
    WriteFile(folder_ / "leaks", "leak:libdbus\nleak:libfontconfig\n");
    environment_.insert("LSAN_OPTIONS", QString::fromStdString("suppressions=" + (folder_ / "leaks")));
    std::filesystem::copy(test::Demo("program"), folder_ / "program",
                          std::filesystem::copy_options::recursive);
  }
  void TearDown() override { Stop(screen_); }

  void Start(QProcess& program, const QStringList& words) {
    program.setProcessEnvironment(environment_);
    program.start(ToQt(test::DesktopProgram()),
                  QStringList{"--folder", QString::fromStdString(folder_ / "program")} + words);
    ASSERT_TRUE(program.waitForStarted());
  }
  static void Stop(QProcess& program) {
    program.kill();
    program.waitForFinished();
  }
  /// How many pixels of the screen are not black. The server keeps them in a file in the form of a window
  /// dump.
  qsizetype LitPixels() {
    const std::string dump = ReadFile(folder_ / "screen/Xvfb_screen0");
    const auto word = [&](std::size_t index) { return qFromBigEndian<quint32>(dump.data() + index * 4); };
    if (dump.size() < 100) return 0;
    const std::size_t pixels = word(0) + word(19) * 12U;
    qsizetype lit = 0;
    for (std::size_t at = pixels; at + 4 <= dump.size(); at += 4)
      if (dump[at] != 0 || dump[at + 1] != 0 || dump[at + 2] != 0) ++lit;
    return lit;
  }

  QProcess screen_;
  QProcessEnvironment environment_;
};

TEST_F(Program, ShowsItsLoginAndRunsOnceAFolder) {
  QProcess first, second, third;
  Start(first, {});
  ASSERT_TRUE(WaitFor([&] { return LitPixels() > 20000; }, 20000))
      << first.readAllStandardError().toStdString();
  EXPECT_EQ(first.state(), QProcess::Running);

  Start(second, {});
  const std::string refusal =
      "hyetex: Hyetex is already running on the program folder " + (folder_ / "program");
  std::string told;
  EXPECT_TRUE(WaitFor([&] {
    told += second.readAllStandardError().toStdString();
    return told.find(refusal) != std::string::npos;
  })) << told;
  Stop(second);

  // A program that died leaves its lock behind, which binds nobody.
  Stop(first);
  ASSERT_TRUE(WaitFor([&] { return LitPixels() < 20000; }));
  Start(third, {});
  EXPECT_TRUE(WaitFor([&] { return LitPixels() > 20000; }, 20000));
  Stop(third);
}

TEST_F(Program, SaysThatItsSettingsCannotBeRead) {
  std::filesystem::remove(folder_ / "program/Definitions.dat");
  std::filesystem::create_directory(folder_ / "program/Definitions.dat");
  QProcess program;
  Start(program, {});
  std::string told;
  EXPECT_TRUE(WaitFor([&] {
    told += program.readAllStandardError().toStdString();
    return told.find("hyetex: Cannot read " + (folder_ / "program/Definitions.dat")) != std::string::npos;
  })) << told;
  Stop(program);
}

TEST_F(Program, TakesAPictureOfEveryWindow) {
  QProcess program;
  const std::string pictures = folder_ / "pictures";
  program.setProcessEnvironment(environment_);
  program.start(ToQt(test::PictureProgram()), {ToQt(folder_ / "program"), ToQt(pictures)});
  ASSERT_TRUE(program.waitForFinished(240000));
  EXPECT_EQ(program.exitCode(), 0) << program.readAllStandardError().toStdString();
  for (const char* window : {"frmLogin", "frmInit", "frmMessageBox", "mdiHyetex", "frmHyetex", "frmSave"})
    for (const char* palette : {".png", "-dark.png"})
      EXPECT_TRUE(QImage(QString::fromStdString(pictures + "/" + window + palette)).width() > 100)
          << window << palette;
  EXPECT_FALSE(std::filesystem::exists(folder_ / "program/Data"))
      << "the pictures worked on the folder itself";
}

TEST(ProgramWords, AreAnsweredWithoutAScreen) {
  const auto answer = [](const QStringList& words) {
    QProcess program;
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.remove("DISPLAY");
    environment.insert("QT_QPA_PLATFORM", "xcb");
    program.setProcessEnvironment(environment);
    program.start(ToQt(test::DesktopProgram()), words);
    EXPECT_TRUE(program.waitForFinished());
    return std::pair(program.exitCode(), program.readAllStandardOutput().toStdString());
  };
  EXPECT_EQ(answer({"--version"}), std::pair(0, std::string("hyetex " HYETEX_VERSION "\n")));
  EXPECT_THAT(answer({"--help"}).second, ::testing::HasSubstr("Usage: hyetex "));
  EXPECT_EQ(answer({"--tsk", "1"}).first, 2);
}

}  // namespace
}  // namespace hyetex
