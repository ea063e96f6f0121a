// Makes what the window shows, and keeps of it what the next frame can use.
#include "view/frame_maker.h"

#include <exception>
#include <utility>

#include "look/false_colour.h"
#include "look/panel.h"
#include "look/shrink.h"
#include "photo/output_files.h"
#include "view/weight_probe.h"

namespace zuqel::tools {
namespace {

// The parts of a request that the refocus map, and the frame, depend on.
FrameRequest MapPart(FrameRequest request) {
  request.f_number = 1;
  request.size = {};
  request.layer = Layer::kResult;
  if (GeneratorOf(request.maker) == nullptr) {
    request.maker = kFrameMaker;
    request.focus = {};
  }
  return request;
}

FrameRequest ResultPart(FrameRequest request) {
  request.layer = Layer::kResult;
  return request;
}

}  // namespace

const Generator* GeneratorOf(int maker) {
  if (maker < kFirstMapMaker || maker >= kCpuMaker) return nullptr;
  return &Generators()[static_cast<size_t>(maker - kFirstMapMaker)];
}

RenderOptions OptionsFor(const FrameRequest& request,
                         const DepthOptions& depth) {
  RenderOptions options;
  options.depth = depth;
  options.focus =
      std::to_string(request.focus.x) + "," + std::to_string(request.focus.y);
  options.f_number = request.f_number;
  if (const Generator* generator = GeneratorOf(request.maker)) {
    options.map_from = generator->name;
  }
  if (request.maker == kCpuMaker) options.renderer = Renderer::kCpu;
  return options;
}

FrameMaker::FrameMaker(ViewSource source, DepthOptions options)
    : view_(std::move(source)), options_(std::move(options)) {}

ShownFrame FrameMaker::Make(const FrameRequest& request) {
  ShownFrame shown;
  shown.request = request;
  try {
    ChooseMoment(request.moment);
    ChooseSize(request.size);
    shown.source = source_;
    shown.disparity = disparity_;
    Render(request);
    shown.result = result_;
    shown.frame_ms = frame_ms_;
    if (!is_focus_sharp_) {
      shown.note = "background in focus: the CPU renderer blurs it anyway";
    }
    AddLayer(shown);
  } catch (const std::exception& error) {
    shown.fault = error.what();
    session_.reset();
    result_for_.reset();
  }
  return shown;
}

void FrameMaker::Save(const FrameRequest& request, const std::string& path) {
  session_.reset();
  OutputFiles outputs;
  outputs.Announce(path);
  ChooseMoment(request.moment);
  RenderInput(OptionsFor(request, options_), view_.input, path, outputs);
}

void FrameMaker::ChooseMoment(int moment) {
  if (moment != moment_ && moment > 0) {
    view_.input = view_.at_moment(moment);
    moment_ = moment;
    source_size_.reset();
    map_for_.reset();
    result_for_.reset();
    disparity_ = nullptr;
  }
  if (disparity_ == nullptr && view_.input.depth) {
    disparity_ = std::make_shared<DisparityMap>(
        MakeDisparity(*view_.input.depth, options_).map);
  }
}

void FrameMaker::ChooseSize(Size size) {
  if (source_size_ == size) return;
  const Picture& picture = view_.input.picture;
  source_ = std::make_shared<Nv21Frame>(
      ToNv21(size == Size{} ? picture : Shrink(picture, size)));
  source_size_ = size;
}

void FrameMaker::ChooseMap(const FrameRequest& request) {
  if (map_for_ == MapPart(request)) return;
  map_for_.reset();
  const Generator* const generator = GeneratorOf(request.maker);
  if (generator != nullptr) session_.reset();
  map_ = MakeFrameMap(view_.input, options_, generator, request.focus);
  map_for_ = MapPart(request);
}

void FrameMaker::Render(const FrameRequest& request) {
  if (result_for_ == ResultPart(request)) return;
  result_for_.reset();
  ChooseMap(request);
  SessionSetup setup = SetupFor(SizeOf(*source_), *map_);
  if (request.maker == kCpuMaker) {
    setup.renderer = Renderer::kCpu;
    // Its masks of earlier frames stay in the picture; only a series wants
    // that.
    if (request.moment == 0) session_.reset();
  }
  if (!session_ || setup_ != setup) {
    session_.reset();
    session_.emplace(setup);
    setup_ = setup;
  }
  const Size map_size =
      map_->disparity ? SizeOf(*map_->disparity) : SizeOf(*map_->weights);
  const FocusPoint focus = FocusIn(SizeOf(*source_), request.focus,
                                   SizeOf(view_.input.picture), map_size);
  Rendered rendered;
  RenderFrame(*session_, *source_, *map_, {focus, request.f_number}, rendered);
  result_ = std::make_shared<Nv21Frame>(std::move(rendered.frame));
  frame_ms_ = rendered.times_ms.back();
  is_focus_sharp_ = rendered.is_focus_sharp;
  result_for_ = ResultPart(request);
}

void FrameMaker::AddLayer(ShownFrame& shown) {
  const FrameRequest& request = shown.request;
  if (request.layer == Layer::kResult) return;
  if (request.layer == Layer::kDisparity) {
    shown.note = "disparity: red is near, blue is far, black is unknown";
    shown.overlay = std::make_shared<Picture>(FalseColour(*disparity_));
    return;
  }
  if (request.maker == kCpuMaker) {
    shown.note = "the CPU renderer does not tell its weights";
    return;
  }
  std::optional<WeightMap> weights = map_->weights;
  if (weights) {
    shown.note = request.maker == kFrameMaker
                     ? "weights as given: what is blurred is blue"
                     : "weights of the map: what is blurred is blue";
  } else {
    session_.reset();
    weights = MeasureWeights(*map_, request.focus, SizeOf(view_.input.picture));
    shown.note = "weights measured in a frame: what is blurred is blue";
  }
  shown.overlay =
      std::make_shared<Picture>(TintBlurred(ToPicture(*source_), *weights));
}

}  // namespace zuqel::tools
