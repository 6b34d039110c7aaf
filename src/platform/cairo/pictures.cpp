#include "platform/cairo/pictures.h"

#include <cairo/cairo-pdf.h>
#include <cairo/cairo-svg.h>
#include <cairo/cairo.h>

#include <cmath>
#include <memory>

#include "core/text.h"

namespace hyetex {
namespace {

constexpr double PointsPerInch = 72, MostPixels = 20000;

struct Free {
  void operator()(cairo_t* context) const { cairo_destroy(context); }
  void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};

class CairoSurface : public Surface {
 public:
  CairoSurface(cairo_t* context, const Rect& area) : context_(context), area_(area) {
    cairo_set_line_join(context_, CAIRO_LINE_JOIN_ROUND);
    // Letters keep their shapes and their distances at every scale.
    cairo_font_options_t* options = cairo_font_options_create();
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
    cairo_set_font_options(context_, options);
    cairo_font_options_destroy(options);
  }

  Rect Area() const override { return area_; }
  void Clear() override { FillRect(area_, {255, 255, 255}, 1); }

  // The thinnest line is as thin as a laser printer makes it.
  void Line(double x1, double y1, double x2, double y2, Rgb colour, int width) override {
    const SurfacePoint ends[] = {{x1, y1}, {x2, y2}};
    Polyline(ends, {colour, 0.4 * (1 + 2 * width)});
  }
  void Circle(double x, double y, double radius, Rgb colour) override {
    Pen({colour, 0.4});
    cairo_new_path(context_);
    cairo_arc(context_, x, y, radius, 0, 2 * std::acos(-1));
    cairo_stroke(context_);
  }

  void Polyline(std::span<const SurfacePoint> points, const Stroke& stroke) override {
    if (points.size() < 2) return;
    Pen(stroke);
    Path(points);
    cairo_stroke(context_);
  }
  void FillRect(const Rect& rect, Rgb colour, double opacity) override {
    Colour(colour, opacity);
    cairo_rectangle(context_, rect.Left, rect.Top, rect.Width, rect.Height);
    cairo_fill(context_);
  }
  void FillShape(std::span<const SurfacePoint> corners, Rgb colour) override {
    Colour(colour, 1);
    Path(corners);
    cairo_fill(context_);
  }

  void Text(double x, double y, std::string_view text, const TextStyle& style) override {
    const double width = style.Place == TextPlace::Begins ? 0 : Measure(text, style.Font).Width;
    Colour(style.Colour, 1);
    Choose(style.Font);
    cairo_save(context_);
    cairo_translate(context_, x, y);
    if (style.Upwards) cairo_rotate(context_, -std::acos(-1) / 2);
    cairo_move_to(context_, style.Place == TextPlace::Ends ? -width : -width / 2, 0);
    cairo_show_text(context_, ShownText(text).c_str());
    cairo_restore(context_);
  }
  TextSize Measure(std::string_view text, const Font& font) const override {
    Choose(font);
    cairo_text_extents_t extents;
    cairo_text_extents(context_, ShownText(text).c_str(), &extents);
    cairo_font_extents_t heights;
    cairo_font_extents(context_, &heights);
    return {extents.x_advance, heights.ascent, heights.descent};
  }

  void Clip(const Rect& area) override {
    cairo_save(context_);
    cairo_rectangle(context_, area.Left, area.Top, area.Width, area.Height);
    cairo_clip(context_);
  }
  void Unclip() override { cairo_restore(context_); }

 private:
  void Colour(Rgb colour, double opacity) {
    cairo_set_source_rgba(context_, colour.Red / 255.0, colour.Green / 255.0, colour.Blue / 255.0, opacity);
  }
  void Pen(const Stroke& stroke) {
    Colour(stroke.Colour, 1);
    cairo_set_line_width(context_, stroke.Width);
    const double dashes[] = {4 * stroke.Width, 2 * stroke.Width};
    cairo_set_dash(context_, dashes, stroke.Dashed ? 2 : 0, 0);
  }
  void Path(std::span<const SurfacePoint> points) {
    cairo_new_path(context_);
    for (const SurfacePoint& point : points) cairo_line_to(context_, point.X, point.Y);
  }
  void Choose(const Font& font) const {
    cairo_select_font_face(context_, "Arial", CAIRO_FONT_SLANT_NORMAL,
                           font.Bold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(context_, font.Size);
  }

  cairo_t* context_;
  Rect area_;
};

cairo_status_t Append(void* bytes, const unsigned char* data, unsigned length) {
  static_cast<std::string*>(bytes)->append(reinterpret_cast<const char*>(data), length);
  return CAIRO_STATUS_SUCCESS;
}

Result<std::string> Make(PictureFormat format, PageSize page, double margin, double pixelsPerInch, int count,
                         const std::function<void(Surface&, int)>& draw) {
  const double scale = format == PictureFormat::Png ? pixelsPerInch / PointsPerInch : 1;
  const double width = page.Width * scale, height = page.Height * scale;
  const double most = format == PictureFormat::Png ? MostPixels : LongestPage;
  if (!(width >= 1 && height >= 1 && width <= most && height <= most))
    return Failure("A picture of this size cannot be made");

  std::string bytes;
  cairo_surface_t* made = nullptr;
  switch (format) {
    case PictureFormat::Png:
      made = cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(std::lround(width)),
                                        static_cast<int>(std::lround(height)));
      break;
    case PictureFormat::Pdf:
      made = cairo_pdf_surface_create_for_stream(Append, &bytes, width, height);
      break;
    case PictureFormat::Svg:
      made = cairo_svg_surface_create_for_stream(Append, &bytes, width, height);
      break;
  }
  const std::unique_ptr<cairo_surface_t, Free> surface(made);
  {
    const std::unique_ptr<cairo_t, Free> context(cairo_create(surface.get()));
    cairo_scale(context.get(), scale, scale);
    const Rect whole{0, 0, page.Width, page.Height};
    for (int number = 0; number < count; ++number) {
      CairoSurface(context.get(), whole).Clear();
      CairoSurface drawn(context.get(), {margin, margin, page.Width - 2 * margin, page.Height - 2 * margin});
      draw(drawn, number);
      cairo_show_page(context.get());
    }
    if (const cairo_status_t status = cairo_status(context.get()); status != CAIRO_STATUS_SUCCESS)
      return Failure(std::string("The picture cannot be drawn: ") + cairo_status_to_string(status));
  }
  if (format == PictureFormat::Png) cairo_surface_write_to_png_stream(surface.get(), Append, &bytes);
  cairo_surface_finish(surface.get());
  if (const cairo_status_t status = cairo_surface_status(surface.get()); status != CAIRO_STATUS_SUCCESS)
    return Failure(std::string("The picture cannot be made: ") + cairo_status_to_string(status));
  return bytes;
}

}  // namespace

Result<std::string> MakePicture(PictureFormat format, PageSize page, double margin, double pixelsPerInch,
                                const std::function<void(Surface&)>& draw) {
  return Make(format, page, margin, pixelsPerInch, 1, [&](Surface& surface, int) { draw(surface); });
}

Result<std::string> MakePages(PageSize page, double margin, int count,
                              const std::function<void(Surface&, int)>& draw) {
  return Make(PictureFormat::Pdf, page, margin, PointsPerInch, count, draw);
}

}  // namespace hyetex
