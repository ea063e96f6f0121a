// Draws what the window shows, with SDL.
#include "view/painter.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "view/bitmap_font.h"
#include "view/view_text.h"

namespace zuqel::tools {
namespace {

constexpr int kText = 235, kDark = 24, kAround = 40;

// Of the font at 96 dots per inch.
constexpr int kPlainDot = 2;
constexpr int kLineInDots = kGlyphRows + 4;

SDL_Rect ToSdl(const ScreenRect& rect) {
  return {rect.x, rect.y, rect.width, rect.height};
}

// How much finer than usual the screen is: by its own word, or because the
// window has more pixels than units.
float Fineness(SDL_Window* window, int pixels) {
  int units = 0;
  SDL_GetWindowSize(window, &units, nullptr);
  float dpi = 96;
  SDL_GetDisplayDPI(std::max(SDL_GetWindowDisplayIndex(window), 0), &dpi,
                    nullptr, nullptr);
  const float by_units =
      units > 0 ? static_cast<float>(pixels) / static_cast<float>(units) : 1.0F;
  return std::clamp(std::max(by_units, dpi / 96), 1.0F, 4.0F);
}

}  // namespace

bool Texture::Provide(SDL_Renderer* renderer, std::shared_ptr<const void> image,
                      const Kind& kind) {
  if (image == image_ && kind == kind_) return false;
  if (image == nullptr || kind != kind_) texture_.reset();
  image_ = std::move(image);
  kind_ = kind;
  if (image_ == nullptr) return false;
  if (texture_) return true;
  texture_ = RequireSdl(
      SDL_CreateTexture(renderer, kind.format, SDL_TEXTUREACCESS_STREAMING,
                        kind.size.width, kind.size.height),
      "room on the screen for the picture");
  // Set later, before a redraw alone, it would leave SDL's OpenGL renderer with
  // the chroma in the place of the luma.
  SDL_SetTextureScaleMode(texture_.get(), kind.mode);
  return true;
}

void Texture::Take(SDL_Renderer* renderer,
                   const std::shared_ptr<const Nv21Frame>& frame,
                   SDL_ScaleMode mode) {
  const Size size = frame ? SizeOf(*frame) : Size{};
  if (!Provide(renderer, frame, {SDL_PIXELFORMAT_NV21, size, mode})) return;
  SDL_UpdateNVTexture(texture_.get(), nullptr, frame->luma.data(), frame->width,
                      frame->chroma.data(), frame->width);
}

void Texture::Take(SDL_Renderer* renderer,
                   const std::shared_ptr<const Picture>& picture,
                   SDL_ScaleMode mode) {
  const Size size = picture ? SizeOf(*picture) : Size{};
  if (!Provide(renderer, picture, {SDL_PIXELFORMAT_RGB24, size, mode})) return;
  SDL_UpdateTexture(texture_.get(), nullptr, picture->rgb.data(),
                    3 * picture->width);
}

Painter::Painter(SDL_Window* window)
    : window_(window),
      renderer_(RequireSdl(SDL_CreateRenderer(window, -1, 0),
                           "way to draw in the window")) {
  SDL_SetRenderDrawBlendMode(renderer_.get(), SDL_BLENDMODE_BLEND);
}

Areas Painter::Divide() const {
  int width = 0, height = 0;
  SDL_GetRendererOutputSize(renderer_.get(), &width, &height);
  Areas areas;
  areas.dot =
      static_cast<int>(std::lround(kPlainDot * Fineness(window_, width)));
  areas.line = kLineInDots * areas.dot;
  areas.picture = {std::max(width, 1), std::max(height - areas.line, 1)};
  return areas;
}

void Painter::Draw(const ViewState& state, const ShownFrame* shown,
                   const std::string& report) {
  const Areas areas = Divide();
  SDL_SetRenderDrawColor(renderer_.get(), kAround, kAround, kAround, 255);
  SDL_RenderClear(renderer_.get());
  if (shown != nullptr) DrawPicture(state, *shown);
  if (!state.shows_original) DrawFocus(state, areas.dot);
  const int columns =
      (areas.picture.width - 4 * areas.dot) / TextWidth(" ", areas.dot);
  DrawLine(StatusLine(state, shown, columns), areas);
  DrawNotice(NoticeLine(state, shown, report), areas);
  if (state.shows_help) DrawHelp(state, areas);
  SDL_RenderPresent(renderer_.get());
}

void Painter::DrawPicture(const ViewState& state, const ShownFrame& shown) {
  const SDL_ScaleMode mode =
      state.is_one_to_one ? SDL_ScaleModeNearest : SDL_ScaleModeLinear;
  source_.Take(renderer_.get(), shown.source, mode);
  result_.Take(renderer_.get(), shown.result, mode);
  overlay_.Take(renderer_.get(), shown.overlay, mode);
  SDL_Texture* texture = source_.get();
  // What the library adds to an odd picture is not shown.
  SDL_Rect part = {0, 0, 0, 0};
  if (!state.shows_original) {
    if (result_.get() != nullptr) texture = result_.get();
    if (overlay_.get() != nullptr) texture = overlay_.get();
  }
  if (texture == nullptr) return;
  SDL_QueryTexture(texture, nullptr, nullptr, &part.w, &part.h);
  if (shown.request.size == Size{} && texture != overlay_.get()) {
    part.w = std::min(part.w, state.photo.width);
    part.h = std::min(part.h, state.photo.height);
  }
  const SDL_Rect place = ToSdl(PictureRect(state));
  SDL_RenderCopy(renderer_.get(), texture, &part, &place);
}

// A white frame edged in black, which shows on any colour, around the point.
void Painter::DrawFocus(const ViewState& state, int dot) const {
  const ScreenRect rect = PictureRect(state);
  const auto place = [](int at, int pixels, int start, int length) {
    return start + static_cast<int>((2 * int64_t{at} + 1) * length /
                                    (2 * int64_t{pixels}));
  };
  const FocusPoint at = {
      place(state.focus.x, state.photo.width, rect.x, rect.width),
      place(state.focus.y, state.photo.height, rect.y, rect.height)};
  const auto draw = [&](int reach, int line, int tone) {
    const int side = 2 * reach;
    Fill({at.x - reach, at.y - reach, side, line}, tone);
    Fill({at.x - reach, at.y + reach - line, side, line}, tone);
    Fill({at.x - reach, at.y - reach, line, side}, tone);
    Fill({at.x + reach - line, at.y - reach, line, side}, tone);
  };
  const int thin = std::max(dot / 2, 1);
  draw(8 * dot, 3 * thin, 0);
  draw(8 * dot - thin, thin, 255);
}

void Painter::DrawLine(const std::string& line, const Areas& areas) const {
  const int top = areas.picture.height, width = areas.picture.width;
  Fill({0, top, width, areas.line}, kDark);
  int dot = areas.dot;
  while (dot > 1 && TextWidth(line, dot) + 4 * dot > width) --dot;
  const int space = (areas.line - kGlyphRows * dot) / 2;
  DrawText(line, {2 * areas.dot, top + space}, dot);
}

void Painter::DrawNotice(const std::string& notice, const Areas& areas) const {
  if (notice.empty()) return;
  const int width = areas.picture.width;
  int dot = areas.dot;
  while (dot > 1 && TextWidth(notice, dot) + 8 * dot > width) --dot;
  const int height = kLineInDots * dot, top = areas.picture.height - height;
  Fill({0, top, TextWidth(notice, dot) + 4 * areas.dot, height}, 0, 170);
  DrawText(notice, {2 * areas.dot, top + 2 * dot}, dot);
}

void Painter::DrawHelp(const ViewState& state, const Areas& areas) const {
  const std::vector<std::string> lines = HelpLines(state);
  const auto count = static_cast<int>(lines.size());
  int widest = 0;
  for (const std::string& line : lines) {
    widest = std::max(widest, TextWidth(line, 1));
  }
  // In dots, with a margin.
  const int wide = widest + 12, high = count * kLineInDots + 8;
  int dot = areas.dot;
  while (dot > 1 && (wide * dot > areas.picture.width ||
                     high * dot > areas.picture.height)) {
    --dot;
  }
  const FocusPoint corner = {
      std::max((areas.picture.width - wide * dot) / 2, 0),
      std::max((areas.picture.height - high * dot) / 2, 0)};
  Fill({corner.x, corner.y, wide * dot, high * dot}, 0, 200);
  FocusPoint at = {corner.x + 6 * dot, corner.y + 6 * dot};
  for (const std::string& line : lines) {
    DrawText(line, at, dot);
    at.y += kLineInDots * dot;
  }
}

void Painter::DrawText(const std::string& text, FocusPoint at, int dot) const {
  std::vector<SDL_Rect> rects;
  for (const ScreenRect& rect : DotsOf(text, at, dot)) {
    rects.push_back(ToSdl(rect));
  }
  SDL_SetRenderDrawColor(renderer_.get(), kText, kText, kText, 255);
  SDL_RenderFillRects(renderer_.get(), rects.data(),
                      static_cast<int>(rects.size()));
}

void Painter::Fill(const ScreenRect& rect, int tone, int opacity) const {
  const auto shade = static_cast<Uint8>(tone);
  SDL_SetRenderDrawColor(renderer_.get(), shade, shade, shade,
                         static_cast<Uint8>(opacity));
  const SDL_Rect area = ToSdl(rect);
  SDL_RenderFillRect(renderer_.get(), &area);
}

}  // namespace zuqel::tools
