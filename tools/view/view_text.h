// What the window says.
#ifndef ZUQEL_TOOLS_VIEW_VIEW_TEXT_H_
#define ZUQEL_TOOLS_VIEW_VIEW_TEXT_H_

#include <string>
#include <vector>

#include "view/frame_maker.h"
#include "view/view_state.h"

namespace zuqel::tools {

// Focus point and its disparity, f-number, maker of the picture, and how long a
// frame takes, of what is asked for; `shown`, which may be null, gives
// disparity and time. Where that has more than `columns`, less is said.
std::string StatusLine(const ViewState& state, const ShownFrame* shown,
                       int columns);

// What there is to tell besides, if anything: why a key did nothing, a fault, a
// report, or a note about what is shown.
std::string NoticeLine(const ViewState& state, const ShownFrame* shown,
                       const std::string& report);

// The keys, a line each.
std::vector<std::string> HelpLines(const ViewState& state);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_VIEW_VIEW_TEXT_H_
