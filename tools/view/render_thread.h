// Makes frames while the window goes on.
#ifndef ZUQEL_TOOLS_VIEW_RENDER_THREAD_H_
#define ZUQEL_TOOLS_VIEW_RENDER_THREAD_H_

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "view/frame_maker.h"
#include "view/view_state.h"

namespace zuqel::tools {

// All of the library's calls are on this one thread. The members are called on
// another.
class RenderThread {
 public:
  // `on_news` is called on the thread of this object whenever there is more to
  // take.
  RenderThread(ViewSource source, const DepthOptions& options,
               std::function<void()> on_news);
  // Waits for what is being made and for all that is to be saved.
  ~RenderThread();
  RenderThread(const RenderThread&) = delete;
  RenderThread& operator=(const RenderThread&) = delete;

  // The next to be made, instead of one that waits.
  void Ask(const FrameRequest& request);
  // Writes it beside `photo` under a free name.
  void Save(const FrameRequest& request, const std::string& photo);

  // The latest; null if it has been taken.
  std::shared_ptr<const ShownFrame> TakeFrame();
  // What became of a save; empty if there is nothing to tell.
  std::string TakeReport();

 private:
  struct SaveTask {
    FrameRequest request;
    std::string photo;
  };

  void Work(ViewSource source, const DepthOptions& options);

  const std::function<void()> on_news_;
  std::mutex mutex_;
  std::condition_variable has_work_;
  std::optional<FrameRequest> wanted_;
  std::deque<SaveTask> saves_;
  std::shared_ptr<const ShownFrame> frame_;
  std::string report_;
  bool is_ending_ = false;
  std::thread thread_;
};

// A name for a result that nothing has yet: photo_bokeh.jpg for photo.heic,
// then photo_bokeh_2.jpg and so on.
std::string FreeResultName(const std::string& photo);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_VIEW_RENDER_THREAD_H_
