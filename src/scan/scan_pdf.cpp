#include "scan/scan_pdf.h"

#include <poppler/cpp/poppler-document.h>
#include <poppler/cpp/poppler-global.h>
#include <poppler/cpp/poppler-page-renderer.h>
#include <poppler/cpp/poppler-page.h>

#include <cmath>
#include <opencv2/imgproc.hpp>

namespace hyetex {
namespace {

constexpr double PdfDpi = 300, PointsPerInch = 72;

using Document = std::unique_ptr<poppler::document>;

// Poppler says on standard error what it mends in a file; an operator does not look there.
void KeepQuiet() {
  poppler::set_debug_error_function([](const std::string&, void*) {}, nullptr);
}

std::unique_ptr<poppler::page> PageOf(const Document& document, int page) {
  return std::unique_ptr<poppler::page>(document->create_page(page));
}

Result<ScanHead> HeadOf(const Document& document, int page) {
  if (!document) return Failure("it is a broken PDF");
  if (document->is_locked()) return Failure("the PDF is locked by a password");
  ScanHead head{.Format = "PDF", .Pages = document->pages(), .DpiAcross = PdfDpi, .DpiUp = PdfDpi};
  if (head.Pages < 1) return Failure("the PDF has no page");
  if (page < 0 || page >= head.Pages)
    return Failure("it has no page " + std::to_string(page + 1) +
                   (head.Pages == 1 ? ", only one" : ", only " + std::to_string(head.Pages)));
  const auto shown = PageOf(document, page);
  if (!shown) return Failure("page " + std::to_string(page + 1) + " of the PDF is broken");
  const poppler::rectf box = shown->page_rect(poppler::crop_box);
  // As Poppler rounds.
  const auto pixels = [](double points) {
    return std::int64_t{std::llround(points * PdfDpi / PointsPerInch)};
  };
  head.Width = pixels(box.width());
  head.Height = pixels(box.height());
  const auto turned = shown->orientation();
  if (turned == poppler::page::landscape || turned == poppler::page::seascape)
    std::swap(head.Width, head.Height);
  return head;
}

Document Load(std::string_view bytes) {
  KeepQuiet();
  return Document(poppler::document::load_from_raw_data(bytes.data(), static_cast<int>(bytes.size())));
}

bool IsGrey(const cv::Mat& colour) {
  for (int y = 0; y < colour.rows; ++y) {
    const std::uint8_t* row = colour.ptr(y);
    for (int x = 0; x < colour.cols; ++x, row += 3)
      if (row[0] != row[1] || row[1] != row[2]) return false;
  }
  return true;
}

}  // namespace

Result<ScanHead> ReadPdfHead(const std::string& path, int page) {
  KeepQuiet();
  return HeadOf(Document(poppler::document::load_from_file(path)), page);
}

Result<ScanHead> ReadPdfHead(std::string_view bytes, int page) { return HeadOf(Load(bytes), page); }

Result<cv::Mat> RenderPdfPage(std::string_view bytes, int page) {
  const Document document = Load(bytes);
  const auto shown = document ? PageOf(document, page) : nullptr;
  if (!shown) return Failure("page " + std::to_string(page + 1) + " of the PDF is broken");
  poppler::page_renderer renderer;
  renderer.set_image_format(poppler::image::format_bgr24);
  renderer.set_render_hint(poppler::page_renderer::antialiasing);
  renderer.set_render_hint(poppler::page_renderer::text_antialiasing);
  poppler::image image = renderer.render_page(shown.get(), PdfDpi, PdfDpi);
  if (!image.is_valid() || image.format() != poppler::image::format_bgr24)
    return Failure("page " + std::to_string(page + 1) + " of the PDF cannot be drawn");
  const cv::Mat colour(image.height(), image.width(), CV_8UC3, image.data(),
                       static_cast<std::size_t>(image.bytes_per_row()));
  if (!IsGrey(colour)) return colour.clone();
  cv::Mat grey;
  cv::extractChannel(colour, grey, 0);
  return grey;
}

}  // namespace hyetex
