#include "scan/scan_image.h"

#include <gmock/gmock.h>

#include <opencv2/imgproc.hpp>

#include "scan/images.h"
#include "support.h"

namespace hyetex {
namespace {

using namespace test;
using ::testing::HasSubstr;

class ScanFile : public ::testing::Test {
 protected:
  std::string Put(const std::string& bytes, const std::string& name = "scan") {
    WriteFile(folder_ / name, bytes);
    return folder_ / name;
  }
  // Both ways of reading must refuse it.
  void ExpectRefused(const std::string& bytes, const std::string& why, int page = 0) {
    const std::string path = Put(bytes);
    const auto facts = LookAtScan(path, page);
    ASSERT_FALSE(facts) << why;
    EXPECT_THAT(facts.error(), HasSubstr(why));
    const auto image = ScanImage::Open(path, page);
    ASSERT_FALSE(image) << why;
    EXPECT_THAT(image.error(), HasSubstr(why));
  }
  // What breaks off behind its head is found when it is opened.
  void ExpectBroken(const std::string& bytes, const std::string& why) {
    const auto image = ScanImage::Open(Put(bytes));
    ASSERT_FALSE(image) << why;
    EXPECT_THAT(image.error(), HasSubstr(why));
  }

  TempFolder folder_;
};

// All of an image, pixel by pixel.
cv::Mat Shown(const ScanImage& image) {
  std::vector<std::uint32_t> pixels(static_cast<std::size_t>(image.Width()) *
                                    static_cast<std::size_t>(image.Height()));
  image.Render({}, {}, 0, pixels, image.Width(), image.Height());
  return cv::Mat(image.Height(), image.Width(), CV_8UC4, pixels.data()).clone();
}
cv::Mat GreyOf(const ScanImage& image) {
  cv::Mat grey;
  cv::extractChannel(Shown(image), grey, 0);
  return grey;
}
bool Same(const cv::Mat& a, const cv::Mat& b) {
  return a.size() == b.size() && a.type() == b.type() && cv::norm(a, b, cv::NORM_INF) == 0;
}

TEST_F(ScanFile, SaysTheSameBeforeAndAfterDecoding) {
  cv::Mat colour(40, 90, CV_8UC3);
  cv::randu(colour, 0, 256);
  const cv::Mat grey = Gradient(90, 40);
  cv::Mat deep;
  grey.convertTo(deep, CV_16U, 257);
  struct Case {
    std::string Format, Bytes;
    cv::Mat Image;
  };
  for (const auto& [format, bytes, image] : {Case{"PNG", Encoded(colour, ".png"), colour},
                                             {"PNG", Encoded(grey, ".png"), grey},
                                             {"PNG", Encoded(deep, ".png"), grey},
                                             {"BMP", Encoded(colour, ".bmp"), colour},
                                             {"TIFF", Encoded(colour, ".tif"), colour},
                                             {"TIFF", Encoded(deep, ".tif"), grey},
                                             {"TIFF", Tiff({{grey}}, true), grey}}) {
    const std::string path = Put(bytes, "scan.dat");
    const auto facts = LookAtScan(path);
    ASSERT_TRUE(facts) << facts.error();
    const auto opened = ScanImage::Open(path);
    ASSERT_TRUE(opened) << opened.error();
    EXPECT_EQ(facts->Format, format);
    EXPECT_EQ(facts->Pages, 1);
    EXPECT_EQ(std::pair(facts->Width, facts->Height), std::pair(90, 40));
    EXPECT_EQ(std::pair(opened->Width(), opened->Height()), std::pair(90, 40));
    EXPECT_EQ(facts->PixelsPerMm, opened->PixelsPerMm());
    EXPECT_EQ(opened->Sha256(), *Sha256OfFile(path));
    cv::Mat shown;
    cv::cvtColor(Shown(*opened), shown, image.channels() == 1 ? cv::COLOR_BGRA2GRAY : cv::COLOR_BGRA2BGR);
    EXPECT_TRUE(Same(shown, image)) << format << " " << image.type();
  }
  EXPECT_EQ(Sha256OfFile(Put("abc")), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
}

TEST_F(ScanFile, ReadsResolutions) {
  const cv::Mat image = Gradient(30, 20);
  const std::string jpeg = Encoded(image, ".jpg"), bmp = Encoded(image, ".bmp");
  const auto jfif = [&](int unit, int x, int y) {
    std::string bytes = With(jpeg, 13, static_cast<std::uint32_t>(unit), 1, true);
    return With(With(bytes, 14, static_cast<std::uint32_t>(x), 2, true), 16, static_cast<std::uint32_t>(y), 2,
                true);
  };
  const auto look = [&](const std::string& bytes) { return LookAtScan(Put(bytes)).value_or(ScanFacts()); };
  for (const std::string& bytes : {PngWithDpi(image, 300, 300), jfif(1, 300, 300),
                                   With(With(bmp, 38, 11811, 4, false), 42, 11811, 4, false), Tiff({{image}}),
                                   Tiff({{image, 1, 300 / 2.54, 300 / 2.54, 3}})}) {
    EXPECT_NEAR(look(bytes).PixelsPerMm.value_or(0), 300 / 25.4, 0.002);
    EXPECT_EQ(look(bytes).Remark, "");
  }
  for (const std::string& bytes :
       {Encoded(image, ".png"), jfif(0, 300, 300), Tiff({{image, 1, 300, 300, 1}})}) {
    EXPECT_EQ(look(bytes).PixelsPerMm, std::nullopt);
    EXPECT_THAT(look(bytes).Remark, HasSubstr("does not say its resolution"));
  }
  for (const double dpi : {1.0, 39.0, 100000.0}) {
    const ScanFacts facts = look(PngWithDpi(image, dpi, dpi));
    EXPECT_EQ(facts.PixelsPerMm, std::nullopt);
    EXPECT_THAT(facts.Remark,
                HasSubstr(std::to_string(static_cast<int>(dpi)) + " dpi, which no scanner has"));
    EXPECT_EQ(ScanImage::Open(Put(PngWithDpi(image, dpi, dpi)))->PixelsPerMm(), std::nullopt);
  }
}

TEST_F(ScanFile, MakesPixelsSquare) {
  const std::string path = Put(PngWithDpi(cv::Mat(20, 30, CV_8UC1, cv::Scalar(90)), 300, 150));
  const auto facts = LookAtScan(path);
  EXPECT_EQ(std::pair(facts->Width, facts->Height), std::pair(30, 40));
  EXPECT_NEAR(facts->PixelsPerMm.value_or(0), 300 / 25.4, 0.002);
  EXPECT_EQ(facts->Remark, "The scan has 300 dpi across and 150 dpi up; it is shown at 300 dpi both ways.");
  const auto image = ScanImage::Open(path);
  EXPECT_EQ(std::pair(image->Width(), image->Height()), std::pair(30, 40));
  // A few pixels on a metre are how a writer rounds.
  EXPECT_EQ(LookAtScan(Put(PngWithDpi(Gradient(30, 20), 300, 300.2)))->Height, 20);
}

// The tag counts from upright: mirrored, upside down, both, and those four with rows for columns.
cv::Mat Upright(const cv::Mat& stored, int orientation) {
  cv::Mat upright(orientation >= 5 ? cv::Size(stored.rows, stored.cols) : stored.size(), stored.type());
  for (int y = 0; y < upright.rows; ++y)
    for (int x = 0; x < upright.cols; ++x) {
      const bool fromRight = orientation == 2 || orientation == 3 || orientation == 7 || orientation == 8;
      const bool fromBottom = orientation == 3 || orientation == 4 || orientation == 6 || orientation == 7;
      int column = orientation >= 5 ? y : x, row = orientation >= 5 ? x : y;
      if (fromRight) column = stored.cols - 1 - column;
      if (fromBottom) row = stored.rows - 1 - row;
      upright.at<std::uint8_t>(y, x) = stored.at<std::uint8_t>(row, column);
    }
  return upright;
}

TEST_F(ScanFile, TurnsPagesUpright) {
  const cv::Mat stored = Gradient(7, 5);
  cv::Mat coarse(48, 80, CV_8UC1, cv::Scalar(255));  // JPEG keeps blocks
  coarse(cv::Rect(0, 0, 16, 16)) = 0;
  coarse(cv::Rect(16, 0, 16, 16)) = 120;
  for (int orientation = 1; orientation <= 8; ++orientation) {
    const std::string path = Put(Tiff({{stored, orientation, 300, 150}}, orientation % 2 == 0));
    const auto facts = LookAtScan(path);
    const auto image = ScanImage::Open(path);
    ASSERT_TRUE(facts && image) << orientation;
    cv::Mat upright = Upright(stored, orientation);
    EXPECT_EQ(cv::Size(facts->Width, facts->Height), cv::Size(image->Width(), image->Height()));
    EXPECT_EQ(cv::Size(facts->Width, facts->Height), orientation >= 5
                                                         ? cv::Size(upright.cols * 2, upright.rows)
                                                         : cv::Size(upright.cols, upright.rows * 2));
    const auto square = ScanImage::Open(Put(Tiff({{stored, orientation}}, orientation % 2 == 0)));
    ASSERT_TRUE(square);
    EXPECT_TRUE(Same(GreyOf(*square), upright)) << orientation;
    EXPECT_EQ(square->Sha256(), *Sha256OfFile(folder_ / "scan"));

    std::string exif = Tiff({{cv::Mat(1, 1, CV_8UC1), orientation}}, orientation % 2 == 0);
    exif = std::string("Exif\0\0", 6) + exif;
    std::string jpeg = Encoded(coarse, ".jpg", {cv::IMWRITE_JPEG_QUALITY, 100});
    jpeg.insert(2, "\xff\xe1" + Number(static_cast<std::uint32_t>(exif.size() + 2), 2, true) + exif);
    const auto photograph = ScanImage::Open(Put(jpeg));
    ASSERT_TRUE(photograph);
    EXPECT_EQ(LookAtScan(folder_ / "scan")->Width, photograph->Width());
    EXPECT_NEAR(photograph->PixelsPerMm().value_or(0), 300 / 25.4, 0.001);  // JFIF says none
    ASSERT_EQ(GreyOf(*photograph).size(), Upright(coarse, orientation).size());
    EXPECT_LT(cv::norm(GreyOf(*photograph), Upright(coarse, orientation), cv::NORM_INF), 3) << orientation;
  }
}

TEST_F(ScanFile, OpensEachPageOfATiff) {
  const cv::Mat one = Gradient(12, 9), two(6, 20, CV_8UC1, cv::Scalar(77));
  const std::string path = Put(Tiff({{one}, {two, 1, 600, 600}}));
  for (int page = 0; page < 2; ++page) {
    const auto image = ScanImage::Open(path, page);
    ASSERT_TRUE(image) << image.error();
    EXPECT_TRUE(Same(GreyOf(*image), page == 0 ? one : two));
    EXPECT_EQ(LookAtScan(path, page)->Pages, 2);
    EXPECT_NEAR(*image->PixelsPerMm(), (page == 0 ? 300 : 600) / 25.4, 0.001);
    EXPECT_EQ(image->Sha256(), *Sha256OfFile(path));
    EXPECT_EQ(image->Page(), page);
  }
  for (const int page : {-1, 2})
    ExpectRefused(ReadFile(path), "it has no page " + std::to_string(page + 1), page);
}

TEST_F(ScanFile, LaysAlphaOverWhite) {
  cv::Mat image(2, 2, CV_8UC4, cv::Scalar(10, 20, 30, 255));
  image.at<cv::Vec4b>(0, 0) = {0, 0, 0, 0};
  image.at<cv::Vec4b>(1, 1) = {0, 0, 0, 51};
  const cv::Mat shown = Shown(*ScanImage::Open(Put(Encoded(image, ".png"))));
  EXPECT_EQ(shown.at<cv::Vec4b>(0, 0), cv::Vec4b(255, 255, 255, 255));
  EXPECT_EQ(shown.at<cv::Vec4b>(0, 1), cv::Vec4b(10, 20, 30, 255));
  EXPECT_EQ(shown.at<cv::Vec4b>(1, 1), cv::Vec4b(204, 204, 204, 255));
}

TEST_F(ScanFile, OpensAPageOfAPdf) {
  const std::string pdf =
      "%PDF-1.4\n1 0 obj<</Type/Catalog/Pages 2 0 R>>endobj\n"
      "2 0 obj<</Type/Pages/Kids[3 0 R 5 0 R]/Count 2>>endobj\n"
      "3 0 obj<</Type/Page/Parent 2 0 R/MediaBox[0 0 72 36]/Contents 4 0 R>>endobj\n"
      "4 0 obj<</Length 26>>stream\n1 0 0 rg 0 0 36 36 re f   \nendstream endobj\n"
      "5 0 obj<</Type/Page/Parent 2 0 R/MediaBox[0 0 72 36]/Rotate 90>>endobj\n"
      "trailer<</Root 1 0 R>>\n";
  const std::string path = Put(pdf, "page.pdf");
  const auto facts = LookAtScan(path);
  ASSERT_TRUE(facts) << facts.error();
  EXPECT_EQ(facts->Format, "PDF");
  EXPECT_EQ(facts->Pages, 2);
  EXPECT_EQ(std::pair(facts->Width, facts->Height), std::pair(300, 150));
  EXPECT_DOUBLE_EQ(facts->PixelsPerMm.value_or(0), 300 / 25.4);
  const cv::Mat shown = Shown(*ScanImage::Open(path));
  EXPECT_EQ(shown.size(), cv::Size(300, 150));
  EXPECT_EQ(shown.at<cv::Vec4b>(75, 50), cv::Vec4b(0, 0, 255, 255));
  EXPECT_EQ(shown.at<cv::Vec4b>(75, 250), cv::Vec4b(255, 255, 255, 255));
  const auto turned = ScanImage::Open(path, 1);
  ASSERT_TRUE(turned) << turned.error();
  EXPECT_EQ(std::pair(turned->Width(), turned->Height()), std::pair(150, 300));
  EXPECT_EQ(LookAtScan(path, 1)->Width, 150);
  EXPECT_LT(turned->Bytes(), 150U * 300 * 2);  // grey stays grey
  ExpectRefused(pdf, "it has no page 3, only 2", 2);
  ExpectRefused("%PDF-1.4\nnothing follows", "broken PDF");
  std::string large = pdf;
  ExpectRefused(large.replace(large.find("0 0 72 36"), 9, "0 0 9000 9000"), "more than the 500 million");
}

TEST_F(ScanFile, RefusesWhatIsNoScan) {
  const std::string png = Encoded(Gradient(30, 20), ".png");
  ExpectRefused("", "the file is empty");
  ExpectRefused("A letter to the editor", "neither a PNG");
  ExpectRefused("MM, said the editor", "neither a PNG");
  ExpectRefused("GIF89a........", "GIF");
  ExpectRefused("RIFF\1\1\1\1WEBPVP8 ", "WebP");
  ExpectRefused(Encoded(Gradient(1, 1), ".png"), "single pixel");
  ExpectRefused(With(With(png, 16, 40000, 4, true), 20, 40000, 4, true), "40000 x 40000 pixels, more than");
  ExpectRefused(With(png, 16, 0, 4, true), "without any pixel");
  ExpectRefused(With(png, 16, 0x7fffffff, 4, true), "more than the 500 million");
  ExpectRefused(With(Encoded(Gradient(30, 20), ".bmp"), 18, 0x80000000U, 4, false), "without any pixel");
  const std::string tiff = Tiff({{Gradient(9, 9)}});
  ExpectRefused(With(tiff, 2, 43, 2, false), "BigTIFF");
  ExpectRefused(With(tiff, 4, 0, 4, false), "no page");
  ExpectRefused(With(tiff, 4, 0xfffffff0U, 4, false), "breaks off in the directory of page 1");
  const std::string two = Tiff({{Gradient(9, 9)}, {Gradient(5, 5)}});
  const std::size_t first = static_cast<unsigned char>(two[4]);
  ExpectRefused(With(two, two.size() - 4, static_cast<std::uint32_t>(first), 4, false), "round in a circle");
  ExpectRefused(With(tiff, tiff.size() - 4, 0x7ffffff, 4, false), "breaks off in the directory of page 2");

  for (const auto& [path, why] :
       {std::pair(folder_ / "vanished", "No such file"), {folder_.Path(), "it is no file"}}) {
    EXPECT_THAT(LookAtScan(path).error(), HasSubstr(why));
    EXPECT_THAT(ScanImage::Open(path).error(), HasSubstr(why));
    EXPECT_THAT(Sha256OfFile(path).error(), HasSubstr(why));
  }
}

TEST_F(ScanFile, RefusesWhatBreaksOff) {
  cv::Mat image(200, 300, CV_8UC3);
  cv::randu(image, 0, 256);
  for (const std::string ending : {".png", ".jpg", ".bmp", ".tif"}) {
    const std::string bytes = Encoded(image, ending);
    for (const std::size_t left :
         {bytes.size() - 1, bytes.size() - 2, bytes.size() * 2 / 3, bytes.size() / 2}) {
      // A TIFF's last byte may be one that nothing needs.
      if (ending == ".tif" && left + 2 >= bytes.size()) continue;
      const auto opened = ScanImage::Open(Put(bytes.substr(0, left)));
      EXPECT_FALSE(opened) << ending << " " << left;
    }
    // Any head that is cut is refused in words, however short.
    for (std::size_t left = 0; left < 40; ++left) EXPECT_FALSE(ScanImage::Open(Put(bytes.substr(0, left))));
  }
  const std::string tiff = Tiff({{Gradient(90, 90)}});
  ExpectBroken(With(tiff, 4, 0, 4, false), "no page");
  // The picture that a camera keeps in the head has an end of its own.
  std::string jpeg = Encoded(image, ".jpg");
  const std::string small = std::string("Exif\0\0", 6) + Encoded(Gradient(8, 8), ".jpg");
  jpeg.insert(2, "\xff\xe1" + Number(static_cast<std::uint32_t>(small.size() + 2), 2, true) + small);
  const auto whole = ScanImage::Open(Put(jpeg));
  EXPECT_TRUE(whole) << whole.error();
  ExpectBroken(jpeg.substr(0, jpeg.size() / 2), "breaks off");
  // Whole by its chunks, broken inside.
  std::string png = Encoded(image, ".png");
  for (std::size_t at = png.size() / 2; at < png.size() / 2 + 50; ++at) png[at] = '\0';
  ExpectBroken(png, "broken");
}

TEST_F(ScanFile, TakesNoMoreMemoryThanTheImageAndAThird) {
  for (const int channels : {1, 3}) {
    const cv::Mat image(1501, 2003, CV_8UC(channels), cv::Scalar::all(200));
    const auto opened = ScanImage::Open(Put(Encoded(image, ".png")));
    EXPECT_LT(static_cast<double>(opened->Bytes()),
              1.34 * static_cast<double>(image.total() * image.elemSize()));
  }
}

}  // namespace
}  // namespace hyetex
