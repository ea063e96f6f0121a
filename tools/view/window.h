// The window of zuqel view.
#ifndef ZUQEL_TOOLS_VIEW_WINDOW_H_
#define ZUQEL_TOOLS_VIEW_WINDOW_H_

#include <memory>
#include <string>

#include "view/frame_maker.h"
#include "view/view_state.h"

namespace zuqel::tools {

// A display to open a window on.
class Display {
 public:
  // InputError if there is none.
  Display();
  ~Display();
  Display(const Display&) = delete;
  Display& operator=(const Display&) = delete;
};

// Shows `source`, beginning with `state`, until the user ends it. Results are
// saved beside the file `photo`, which need not exist. Throws WorkError if
// there can be no window.
void RunWindow(const Display& display, ViewSource source,
               const DepthOptions& options, ViewState state,
               const std::string& photo);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_VIEW_WINDOW_H_
