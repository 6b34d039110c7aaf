#include "scan/scan_image.h"

#include <future>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include "core/files.h"
#include "scan/scan_heads.h"
#include "scan/scan_pdf.h"
#include "scan/scan_pyramid.h"
#include "scan/sha256.h"

namespace hyetex {
namespace {

tl::unexpected<std::string> Refused(const std::string& path, const std::string& why) {
  return Failure("Cannot take " + path + " as a scan: " + why);
}

// Alpha over white.
cv::Mat OnWhite(const cv::Mat& image) {
  cv::Mat opaque(image.size(), CV_8UC3);
  for (int y = 0; y < image.rows; ++y) {
    const std::uint8_t* from = image.ptr(y);
    std::uint8_t* to = opaque.ptr(y);
    for (int x = 0; x < image.cols; ++x, from += 4)
      for (int channel = 0; channel < 3; ++channel, ++to)
        *to = static_cast<std::uint8_t>((from[channel] * from[3] + 255 * (255 - from[3]) + 127) / 255);
  }
  return opaque;
}

// How the tag "Orientation" wants stored rows and columns turned.
void TurnUpright(cv::Mat& image, int orientation) {
  if (orientation >= 5) {
    cv::Mat turned;
    cv::transpose(image, turned);
    image = turned;
    orientation = orientation == 5 ? 1 : orientation == 6 ? 2 : orientation == 7 ? 3 : 4;
  }
  if (orientation == 2) cv::flip(image, image, 1);
  if (orientation == 3) cv::flip(image, image, -1);
  if (orientation == 4) cv::flip(image, image, 0);
}

// The decoder knows only the first page of a TIFF and turns it in its own way: the page that is wanted is
// made the first, and upright.
void PointAtPage(std::string& bytes, const ScanHead& head) {
  const auto put = [&](std::size_t at, std::uint32_t number, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
      bytes[at + i] = static_cast<char>(number >> 8 * (head.BigEndian ? count - 1 - i : i));
  };
  put(4, head.Directory, 4);
  if (head.OrientationAt != 0) put(head.OrientationAt, 1, 2);
}

Result<cv::Mat> Decode(std::string& bytes, const ScanHead& head, int page) {
  if (head.Format == "PDF") return RenderPdfPage(bytes, page);
  const cv::Mat stored(1, static_cast<int>(bytes.size()), CV_8UC1, bytes.data());
  // Grey stays grey, 16 bits become 8.
  const int flags = head.Alpha ? cv::IMREAD_UNCHANGED : cv::IMREAD_ANYCOLOR | cv::IMREAD_IGNORE_ORIENTATION;
  cv::Mat image = cv::imdecode(stored, flags);
  if (image.empty() || image.cols != head.Width || image.rows != head.Height)
    return Failure("the " + head.Format + " picture is broken, or of a kind that is not read");
  if (image.depth() == CV_16U) image.convertTo(image, CV_8U, 1.0 / 257);
  if (image.channels() == 4) image = OnWhite(image);
  if (image.depth() != CV_8U || (image.channels() != 1 && image.channels() != 3))
    return Failure("its pixels are of a kind that is not read");
  return image;
}

Result<ScanHead> HeadOf(std::string_view bytes, int page) {
  auto head = ReadScanHead(BytesInMemory(bytes), page);
  if (head && head->Format == "PDF") return ReadPdfHead(bytes, page);
  return head;
}

}  // namespace

struct ScanImage::Data {
  std::string Path, Sha256;
  int Page = 0;
  std::optional<double> PixelsPerMm;
  ScanPyramid Pyramid;
};

ScanImage::ScanImage(std::unique_ptr<Data> data) : data_(std::move(data)) {}
ScanImage::ScanImage(ScanImage&&) noexcept = default;
ScanImage& ScanImage::operator=(ScanImage&&) noexcept = default;
ScanImage::~ScanImage() = default;

const std::string& ScanImage::Path() const { return data_->Path; }
int ScanImage::Page() const { return data_->Page; }
const std::string& ScanImage::Sha256() const { return data_->Sha256; }
int ScanImage::Width() const { return data_->Pyramid.Width(); }
int ScanImage::Height() const { return data_->Pyramid.Height(); }
std::optional<double> ScanImage::PixelsPerMm() const { return data_->PixelsPerMm; }
std::size_t ScanImage::Bytes() const { return data_->Pyramid.Bytes(); }

void ScanImage::Render(const ScanWindow& window, const ScanLook& look, std::uint32_t around,
                       std::span<std::uint32_t> pixels, int width, int height) const {
  data_->Pyramid.Render(window, look, around, pixels, width, height);
}

Result<ScanFacts> LookAtScan(const std::string& path, int page) {
  const auto bytes = BytesOfFile(path);
  if (!bytes) return Failure(bytes.error());
  if ((*bytes)->Size() > MostScanBytes) return Refused(path, "the file is longer than 2 GB");
  auto head = ReadScanHead(**bytes, page);
  if (head && head->Format == "PDF") head = ReadPdfHead(path, page);
  if (!head) return Refused(path, head.error());
  auto facts = FactsOf(*head);
  if (!facts) return Refused(path, facts.error());
  return facts;
}

Result<ScanImage> ScanImage::Open(const std::string& path, int page) {
  auto bytes = ReadWholeFile(path, MostScanBytes);
  if (!bytes) return Failure(bytes.error());
  const auto head = HeadOf(*bytes, page);
  if (!head) return Refused(path, head.error());
  const auto facts = FactsOf(*head);
  if (!facts) return Refused(path, facts.error());
  if (!IsWhole(BytesInMemory(*bytes), *head)) return Refused(path, "the file breaks off before its end");

  // Summed up beside the decoding, which takes longer.
  std::future<std::string> sum = std::async(std::launch::async, [&] { return Sha256OfBytes(*bytes); });
  auto data = std::make_unique<Data>();
  try {
    const bool first = BytesInMemory(*bytes).Number(4, 4, head->BigEndian) == head->Directory;
    if (head->Format == "TIFF" && (!first || head->Orientation != 1)) {
      sum.wait();
      PointAtPage(*bytes, *head);
    }
    auto image = Decode(*bytes, *head, page);
    data->Sha256 = sum.get();
    if (!image) return Refused(path, image.error());
    std::string().swap(*bytes);
    TurnUpright(*image, head->Orientation);
    if (image->cols != facts->Width || image->rows != facts->Height) {
      cv::Mat square;
      cv::resize(*image, square, cv::Size(facts->Width, facts->Height), 0, 0, cv::INTER_LINEAR);
      *image = square;
    }
    data->Pyramid = ScanPyramid(std::move(*image));
  } catch (const std::exception& error) {
    return Refused(path, error.what());
  }
  data->Path = path;
  data->Page = page;
  data->PixelsPerMm = facts->PixelsPerMm;
  return ScanImage(std::move(data));
}

}  // namespace hyetex
