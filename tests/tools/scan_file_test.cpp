// Drawn scans as files, and the words that they are asked for with.
#include "scans/scan_file.h"

#include <gmock/gmock.h>

#include <opencv2/imgcodecs.hpp>

#include "cli/run.h"
#include "core/files.h"
#include "paths.h"
#include "support.h"

namespace hyetex::test {
namespace {

using ::testing::HasSubstr;

std::uint32_t NumberAt(const std::string& bytes, std::size_t at, int length, bool little) {
  std::uint32_t number = 0;
  for (int i = 0; i < length; ++i) {
    const auto byte =
        static_cast<unsigned char>(bytes.at(at + static_cast<std::size_t>(little ? length - 1 - i : i)));
    number = number << 8 | byte;
  }
  return number;
}

// The value of a TIFF's entry; of a ratio the first of its two numbers over the second.
std::optional<double> TiffEntry(const std::string& bytes, std::uint32_t tag) {
  const std::size_t directory = NumberAt(bytes, 4, 4, true);
  for (std::uint32_t i = 0; i < NumberAt(bytes, directory, 2, true); ++i) {
    const std::size_t entry = directory + 2 + 12 * i;
    if (NumberAt(bytes, entry, 2, true) != tag) continue;
    const std::uint32_t value = NumberAt(bytes, entry + 8, 4, true);
    if (NumberAt(bytes, entry + 2, 2, true) != 5) return value;
    return static_cast<double>(NumberAt(bytes, value, 4, true)) / NumberAt(bytes, value + 4, 4, true);
  }
  return std::nullopt;
}

cv::Mat Decoded(const std::string& bytes) {
  return cv::imdecode(std::vector<std::uint8_t>(bytes.begin(), bytes.end()), cv::IMREAD_UNCHANGED);
}

// Sizes that are no multiple of eight, runs of all lengths, and rows that repeat.
cv::Mat Sample(int type, bool bits) {
  cv::Mat image(61, 303, type);
  cv::RNG random(5);
  random.fill(image, cv::RNG::UNIFORM, 0, 256);
  image.rowRange(10, 20).setTo(cv::Scalar::all(255));
  image.colRange(100, 260).setTo(cv::Scalar::all(0));
  return bits ? cv::Mat(image > 128) : image;
}

TEST(DrawnScanFile, KeepsEveryPixelAndTellsItsResolution) {
  for (const cv::Mat& image : {Sample(CV_8UC3, false), Sample(CV_8U, false), Sample(CV_8U, true)})
    for (const char* name : {"a.png", "a.tif", "a.BMP"}) {
      SCOPED_TRACE(name);
      const std::string bytes = EncodeScan(image, name, 240).value();
      cv::Mat read = Decoded(bytes);
      ASSERT_EQ(read.size(), image.size());
      if (read.channels() != image.channels()) cv::extractChannel(read, read, 0);
      EXPECT_EQ(cv::norm(read, image, cv::NORM_INF), 0);
      EXPECT_FALSE(Decoded(EncodeScan(image, name, std::nullopt).value()).empty());
    }
}

TEST(DrawnScanFile, WritesResolutionAsEachFormatHasIt) {
  const cv::Mat image = Sample(CV_8U, false);
  const std::string png = EncodeScan(image, "a.png", 240).value();
  const std::size_t chunk = png.find("pHYs");
  ASSERT_NE(chunk, std::string::npos);
  EXPECT_EQ(NumberAt(png, chunk + 4, 4, false), 9449U);
  EXPECT_EQ(EncodeScan(image, "a.png", std::nullopt)->find("pHYs"), std::string::npos);

  const std::string jpeg = EncodeScan(image, "a.jpg", 240).value();
  EXPECT_EQ(jpeg[13], 1);
  EXPECT_EQ(NumberAt(jpeg, 14, 2, false), 240U);
  EXPECT_EQ(NumberAt(jpeg, 16, 2, false), 240U);
  EXPECT_EQ((*EncodeScan(image, "a.jpg", std::nullopt))[13], 0);

  const std::string tiff = EncodeScan(image, "a.tif", 240.5).value();
  EXPECT_EQ(TiffEntry(tiff, 282), 240.5);
  EXPECT_EQ(TiffEntry(tiff, 283), 240.5);
  EXPECT_EQ(TiffEntry(tiff, 296), 2);
  EXPECT_EQ(TiffEntry(*EncodeScan(image, "a.tif", std::nullopt), 282), std::nullopt);

  EXPECT_EQ(NumberAt(*EncodeScan(image, "a.bmp", 240), 38, 4, true), 9449U);
}

TEST(DrawnScanFile, BlackAndWhiteTakesOneBit) {
  const cv::Mat image = Sample(CV_8U, true);
  EXPECT_EQ(EncodeScan(image, "a.png", 300)->at(24), 1);
  EXPECT_EQ(TiffEntry(*EncodeScan(image, "a.tif", 300), 258), 1);
  EXPECT_EQ(TiffEntry(*EncodeScan(Sample(CV_8U, false), "a.tif", 300), 258), 8);
}

class ScanWords : public ::testing::Test {
 protected:
  static Ran Trace(std::vector<std::string> words) { return RunProgram(TraceProgram(), std::move(words)); }
  ScanWords() { WriteFile(Rain, "hour,mm\n7,0\n12,9\n31,12\n"); }

  const TempFolder Folder;
  const std::string Rain = Folder / "rain.csv", Scan = Folder / "scan.png";
};

TEST_F(ScanWords, DrawScanWithTruthAndJournal) {
  const Ran ran =
      Trace({"--scan", Scan, "--rain", Rain, "--dpi", "100", "--damage", "tilt=0.3,stains,bits", "--truth",
             Folder / "truth.csv", "--journal", Folder / "journal.txt", "--false-dpi", "72"});
  EXPECT_EQ(ran.Status, 0) << ran.Error;
  const std::string bytes = ReadFile(Scan);
  EXPECT_EQ(NumberAt(bytes, bytes.find("pHYs") + 4, 4, false), 2835U);
  EXPECT_FALSE(Decoded(bytes).empty());
  EXPECT_THAT(ReadFile(Folder / "truth.csv"), HasSubstr("\n31,12,"));
  EXPECT_THAT(ReadFile(Folder / "journal.txt"), HasSubstr("tablet 0\npress "));
}

TEST_F(ScanWords, TellWhatIsWrongWithThem) {
  const std::vector<std::string> good{"--scan", Scan, "--rain", Rain};
  struct Wrong {
    std::vector<std::string> Words;
    const char* Says;
  };
  for (const auto& [more, says] : std::vector<Wrong>{
           {{"--damage", "rust"}, "\"rust\" is no kind of damage"},
           {{"--damage", "tilt=3"}, "a strength goes from 0 to 1"},
           {{"--dpi", "5"}, "--dpi"},
           {{"--ink", "rainbow"}, "six hexadecimal digits"},
           {{"--mode", "sepia"}, "sepia"},
           {{"--tablet", "1"}, "--tablet"},
           {{"--stream", Folder / "stream"}, "--tablet"},
           {{"--no-dpi", "--false-dpi", "72"}, "--false-dpi"},
       }) {
    std::vector<std::string> words = good;
    words.insert(words.end(), more.begin(), more.end());
    const Ran ran = Trace(words);
    EXPECT_EQ(ran.Status, 2) << more.front();
    EXPECT_THAT(ran.Error, HasSubstr(says));
    EXPECT_FALSE(std::filesystem::exists(Scan));
  }
  EXPECT_THAT(Trace({"--scan", Folder / "scan.gif", "--rain", Rain}).Error,
              HasSubstr(".png, .jpg, .tif or .bmp"));
  EXPECT_EQ(Trace({"--journal", Folder / "journal.txt", "--rain", Rain}).Status, 2);
  EXPECT_THAT(Trace({"--scan", Folder / "none/scan.png", "--rain", Rain}).Error, HasSubstr("none/scan.png"));
}

// The desk finds a scan by the staged chart's name.
TEST(DemoScans, StandForStagedCharts) {
  const std::string staged = ReadFile(Demo("program/Tasks.lst"));
  struct Scan {
    const char *File, *Task;
    int Channels;
  };
  for (const Scan& scan :
       {Scan{"NM-Hill Farm-01-19980305-0700.tif", "NM-Hill Farm-01 , 05/03/1998 07:00:00", 1},
        Scan{"NM-Hill Farm-01-19980307-0700.jpg", "NM-Hill Farm-01 , 07/03/1998 07:00:00", 3},
        Scan{"NW-Upper Dam-02-19670206-0700.png", "NW-Upper Dam-02 , 06/02/1967 07:00:00", 1}}) {
    EXPECT_THAT(staged, HasSubstr(scan.Task));
    const std::string bytes = ReadFile(Demo(std::string("scans/") + scan.File));
    EXPECT_LT(bytes.size(), 1U << 20);
    EXPECT_EQ(Decoded(bytes).channels(), scan.Channels) << scan.File;
  }
}

}  // namespace
}  // namespace hyetex::test
