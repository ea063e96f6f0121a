// Renders a series of frames in one session.
#include "series/sequence_job.h"

#include <utility>

#include "coordinates.h"
#include "rendering/frame_job.h"
#include "rendering/frame_progress.h"
#include "rendering/notes.h"
#include "rendering/refocus_map.h"
#include "series/sequence_writer.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

// Checks that need no file.
void CheckSequenceOptions(const SequenceOptions& options) {
  const SequenceFiles& files = options.files;
  RenderOptions alike;
  alike.weights = files.weights;
  alike.map_from = options.map_from;
  alike.renderer = options.renderer;
  alike.f_number = options.f_number;
  CheckRenderOptions(alike);
  const bool has_count = options.numbers.count > 0;
  if (options.is_demo) return;
  if (files.images.empty()) {
    throw InputError("give one of --images and --demo");
  }
  if (files.disparities.empty() && files.weights.empty()) {
    throw InputError("--images needs --disparities or --weights");
  }
  if (IsPattern(files.images) && !has_count) {
    throw InputError("--images needs --count, unless it is a video");
  }
  if (options.focus.empty()) throw InputError("--images needs --focus");
  if (!options.focus_to.empty() && !has_count) {
    throw InputError("--focus-to needs --count");
  }
}

// Moves from one point to another over the frames; without one, takes the
// source's own.
class FocusPath {
 public:
  FocusPath(const SequenceOptions& options, Size frame)
      : steps_(options.numbers.count - 1) {
    if (options.focus.empty()) return;
    from_ = ParseFocusPoint("--focus", options.focus, "picture", frame);
    if (options.focus_to.empty()) return;
    to_ = ParseFocusPoint("--focus-to", options.focus_to, "picture", frame);
  }

  [[nodiscard]] FocusPoint At(int index, FocusPoint own) const {
    if (!from_) return own;
    if (!to_ || steps_ == 0) return *from_;
    return {from_->x + (to_->x - from_->x) * index / steps_,
            from_->y + (to_->y - from_->y) * index / steps_};
  }

 private:
  int steps_;
  std::optional<FocusPoint> from_, to_;
};

const Generator* GeneratorOf(const SequenceOptions& options) {
  return options.map_from.empty() ? nullptr : GeneratorNamed(options.map_from);
}

SessionSetup SetupOf(const SequenceOptions& options, const SourceFrame& first) {
  SessionSetup setup = SetupFor(SizeOf(first.frame), first.map);
  if (GeneratorOf(options) != nullptr) setup.work = setup.depth;
  setup.renderer = options.renderer;
  return setup;
}

// The session for frames like the first, and the generator in it, if any.
class FrameRenderer {
 public:
  FrameRenderer(const SequenceOptions& options, const SourceFrame& first)
      : session_(SetupOf(options, first)), generator_(GeneratorOf(options)) {
    if (generator_ != nullptr) maps_.emplace(*generator_);
  }

  // Renders in place. Returns true if the focus is sharp.
  bool Render(SourceFrame& source, const Focus& focus) const {
    std::optional<DisparityMap>& disparity = source.map.disparity;
    std::optional<WeightMap>& weights = source.map.weights;
    if (maps_) {
      weights =
          maps_
              ->Make(DepthFor(*generator_, *disparity),
                     {focus.point, SizeOf(source.frame)}, SizeOf(*disparity))
              .weights;
    }
    if (!weights) return session_.Render(source.frame, *disparity, focus);
    session_.Render(source.frame, *weights, focus);
    return true;
  }

 private:
  BokehSession session_;
  const Generator* generator_;
  std::optional<MapMaker> maps_;
};

struct RenderedCounts {
  int frames = 0, blurred = 0;  // of these, the focus was blurred
};

RenderedCounts RenderFrames(const SequenceOptions& options,
                            const SequenceSource& source,
                            SequenceWriter& writer) {
  const int count = options.numbers.count;
  std::optional<SourceFrame> next = source.next();
  if (!next) throw InputError(options.files.images + ": has no frames");
  const FocusPath path(options, SizeOf(next->frame));
  const FrameRenderer renderer(options, *next);
  const ProgressBar bar(count);
  RenderedCounts done;
  while (next) {
    const FocusPoint point = path.At(done.frames, next->focus);
    if (!renderer.Render(*next, {point, options.f_number})) ++done.blurred;
    writer.Add(next->frame, source.format);
    bar.Show(++done.frames);
    if (done.frames == count) return done;
    next = source.next();
  }
  if (count == 0) return done;
  throw InputError(options.files.images + ": has " +
                   std::to_string(done.frames) + " frames; --count is " +
                   std::to_string(count));
}

}  // namespace

void RenderSequence(SequenceOptions options) {
  CheckSequenceOptions(options);
  FrameNumbers& numbers = options.numbers;
  if (options.is_demo && numbers.count == 0) numbers.count = kDemoFrames;
  SequenceWriter writer({options.output, numbers, options.frames_per_second});
  const SequenceSource source = options.is_demo
                                    ? OpenDemo(numbers.count)
                                    : OpenFiles(options.files, numbers);
  const RenderedCounts done = RenderFrames(options, source, writer);
  writer.Commit();
  ReportBlurredFocus(done.blurred, done.frames);
}

}  // namespace zuqel::tools
