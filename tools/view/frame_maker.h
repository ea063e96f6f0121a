// Makes what the window shows, with the library.
#ifndef ZUQEL_TOOLS_VIEW_FRAME_MAKER_H_
#define ZUQEL_TOOLS_VIEW_FRAME_MAKER_H_

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "image.h"
#include "photo/nv21.h"
#include "rendering/frame_job.h"
#include "rendering/photo_input.h"
#include "rendering/render_job.h"
#include "view/view_state.h"

namespace zuqel::tools {

// What is looked at: a photo, or a scene that also moves.
struct ViewSource {
  PhotoInput input;
  int moments = 0;
  std::function<PhotoInput(int moment)> at_moment;  // 1 to `moments`
};

// Whatever does not change from one frame to the next is shared by both.
struct ShownFrame {
  FrameRequest request;
  std::shared_ptr<const Nv21Frame> source, result;
  std::shared_ptr<const Picture> overlay;         // in place of the result
  std::shared_ptr<const DisparityMap> disparity;  // unless weights are given
  double frame_ms = 0;
  std::string note;   // about the layer or the result
  std::string fault;  // why there is no result
};

// The generator of a maker, null for the frame's own weights.
const Generator* GeneratorOf(int maker);

// The options of zuqel render that make this frame.
RenderOptions OptionsFor(const FrameRequest& request,
                         const DepthOptions& depth);

// All calls are on one thread, destruction included.
class FrameMaker {
 public:
  FrameMaker(ViewSource source, DepthOptions options);

  ShownFrame Make(const FrameRequest& request);

  // Writes the photo of its own size, as zuqel render does. Throws as that.
  void Save(const FrameRequest& request, const std::string& path);

 private:
  void ChooseMoment(int moment);
  void ChooseSize(Size size);
  void ChooseMap(const FrameRequest& request);
  void Render(const FrameRequest& request);
  void AddLayer(ShownFrame& shown);

  ViewSource view_;
  DepthOptions options_;
  int moment_ = 0;
  // Made from the above, and emptied when that changes.
  std::shared_ptr<const DisparityMap> disparity_;
  std::shared_ptr<const Nv21Frame> source_;
  std::optional<Size> source_size_;
  std::optional<FrameMap> map_;
  std::optional<FrameRequest> map_for_, result_for_;
  std::shared_ptr<const Nv21Frame> result_;
  double frame_ms_ = 0;
  bool is_focus_sharp_ = true;
  std::optional<SessionSetup> setup_;
  std::optional<BokehSession> session_;
};

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_VIEW_FRAME_MAKER_H_
