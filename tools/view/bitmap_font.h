// A font of dots, so that the window needs no font file.
#ifndef ZUQEL_TOOLS_VIEW_BITMAP_FONT_H_
#define ZUQEL_TOOLS_VIEW_BITMAP_FONT_H_

#include <string_view>
#include <vector>

#include "image.h"
#include "view/view_state.h"

namespace zuqel::tools {

// In dots; a gap of one follows each character.
constexpr int kGlyphColumns = 5, kGlyphRows = 8;
constexpr int kCharacterWidth = kGlyphColumns + 1;

// The dots of a line of text whose top left is `at`, each of `dot` x `dot`
// pixels. What is not ASCII becomes a question mark for each byte.
std::vector<ScreenRect> DotsOf(std::string_view text, FocusPoint at, int dot);

int TextWidth(std::string_view text, int dot);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_VIEW_BITMAP_FONT_H_
