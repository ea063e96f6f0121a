// zuqel sequence: renders a series of frames in one session.
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "commands/command.h"
#include "commands/shared_options.h"
#include "coordinates.h"
#include "demo/scene.h"
#include "files/file_claims.h"
#include "photo/image_file.h"
#include "photo/nv21.h"
#include "rendering/bokeh_session.h"
#include "rendering/frame_progress.h"
#include "rendering/notes.h"
#include "series/file_series.h"
#include "series/sequence_writer.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

constexpr int kDemoFrames = 50;

struct SequenceOptions {
  std::string images, disparities, focus, focus_to;
  SequenceTarget target;  // its numbers are those of the inputs too
  bool is_demo = false;
  Renderer renderer = Renderer::kCpu;
};

struct SourceFrame {
  Picture picture;
  DisparityMap disparity;
  FocusPoint focus;  // unless one is given
};

// Called for indices 0, 1, 2 and so on.
using FrameSource = std::function<SourceFrame(int index)>;

// The first of a kind sets the size of the others.
void CheckSameSize(const std::string& name, Size size, Size& expected) {
  if (expected == Size{}) expected = size;
  if (size == expected) return;
  throw InputError(name + ": is " + ToText(size) + "; the series began with " +
                   ToText(expected));
}

FrameSource FilesOf(const SequenceOptions& options) {
  if (options.images.empty()) {
    throw InputError("give one of --images and --demo");
  }
  if (options.target.count == 0) throw InputError("--images needs --count");
  if (options.focus.empty()) throw InputError("--images needs --focus");
  const FileSeries images("--images", options.images);
  const FileSeries disparities("--disparities", options.disparities);
  // Now rather than when each is read, after frames have been rendered.
  for (int i = 0; i < options.target.count; ++i) {
    ClaimInput(images.Name(options.target.first + i));
    ClaimInput(disparities.Name(options.target.first + i));
  }
  return [=, first = options.target.first, picture_size = Size{},
          map_size = Size{}](int index) mutable {
    const std::string image = images.Name(first + index);
    const std::string disparity = disparities.Name(first + index);
    SourceFrame frame = {ReadFramePicture(image), ReadDisparity(disparity), {}};
    CheckSameSize(image, SizeOf(frame.picture), picture_size);
    CheckSameSize(disparity, SizeOf(frame.disparity), map_size);
    return frame;
  };
}

FrameSource DemoOf(int count) {
  return [count, scene = MovingScene()](int index) {
    const float part =
        count < 2 ? 0.0F
                  : static_cast<float>(index) / static_cast<float>(count - 1);
    Scene now = scene.At(part);
    return SourceFrame{std::move(now.picture), std::move(now.disparity),
                       now.near_focus};
  };
}

// Moves from one point to another over the frames; without one, takes the
// source's own.
class FocusPath {
 public:
  FocusPath(const SequenceOptions& options, Size frame)
      : steps_(options.target.count - 1) {
    if (options.focus.empty()) return;
    from_ = ParseFocusPoint("--focus", options.focus, "picture", frame);
    to_ =
        options.focus_to.empty()
            ? *from_
            : ParseFocusPoint("--focus-to", options.focus_to, "picture", frame);
  }

  [[nodiscard]] FocusPoint At(int index, FocusPoint own) const {
    if (!from_) return own;
    if (steps_ == 0) return *from_;
    return {from_->x + (to_.x - from_->x) * index / steps_,
            from_->y + (to_.y - from_->y) * index / steps_};
  }

 private:
  int steps_;
  std::optional<FocusPoint> from_;
  FocusPoint to_;
};

// Returns the number of frames whose focus was blurred.
int RenderFrames(const SequenceOptions& options, const FrameSource& source,
                 SequenceWriter& writer) {
  const int count = options.target.count;
  SourceFrame next = source(0);
  const FocusPath path(options, SizeOf(next.picture));
  const BokehSession session({.picture = SizeOf(next.picture),
                              .depth = SizeOf(next.disparity),
                              .renderer = options.renderer});
  const ProgressBar bar(count);
  int blurred = 0;
  for (int i = 0; i < count; ++i) {
    if (i > 0) next = source(i);
    Nv21Frame frame = ToNv21(next.picture);
    const Focus focus = {path.At(i, next.focus)};
    if (!session.Render(frame, next.disparity, focus)) ++blurred;
    writer.Add(frame);
    bar.Show(i + 1);
  }
  return blurred;
}

void Run(SequenceOptions options) {
  int& count = options.target.count;
  if (options.is_demo && count == 0) count = kDemoFrames;
  SequenceWriter writer(options.target);
  const FrameSource source = options.is_demo ? DemoOf(count) : FilesOf(options);
  const int blurred = RenderFrames(options, source, writer);
  writer.Commit();
  ReportBlurredFocus(blurred, count);
}

void AddSourceOptions(CommandLine app, SequenceOptions& options) {
  Option images =
      app.AddOption("--images", options.images,
                    "The pictures, PNG or JPEG, of even width and height; one\n"
                    "%d or %04d stands for the number")
          .TypeName("PATTERN");
  Option disparities =
      app.AddOption("--disparities", options.disparities,
                    "Their disparities, 16-bit grey PNG: 0..1022, larger is\n"
                    "nearer, 1023 is unknown")
          .TypeName("PATTERN");
  images.Needs(disparities);
  disparities.Needs(images);
  Option first =
      app.AddOption("--first", options.target.first,
                    "The first number, of files read and written; 0 by default")
          .TypeName("N")
          .Range(0, 1000000000);
  app.AddFlag("--demo", options.is_demo,
              "Instead of files, a built-in scene that an orange crosses")
      .Excludes(images)
      .Excludes(first);
  app.AddOption("--count", options.target.count,
                "Number of frames; with --demo " + std::to_string(kDemoFrames) +
                    " by default")
      .TypeName("N")
      .Range(1, 100000);
}

}  // namespace

Command AddSequenceCommand(CommandLine program) {
  CommandLine app = program.AddCommand(
      "sequence", "Render a series of frames as the camera would");
  auto options = std::make_shared<SequenceOptions>();
  AddSourceOptions(app, *options);
  Option focus =
      app.AddOption("--focus", options->focus,
                    "The point in focus, in picture pixels; with --demo the\n"
                    "orange by default")
          .TypeName("X,Y");
  app.AddOption("--focus-to", options->focus_to,
                "Where the focus moves to over the frames")
      .TypeName("X,Y")
      .Needs(focus);
  AddRendererOption(app, options->renderer);
  AddFileOption(app, "-o,--output", options->target.path,
                "A video if it ends with .y4m, else a pattern for numbered\n"
                "PNG files")
      .Required();
  app.AddOption("--fps", options->target.frames_per_second,
                "Frames per second of the video; 25 by default")
      .TypeName("N")
      .Range(1, 1000);
  app.Footer(
      "Examples:\n"
      "  zuqel sequence --demo -o moving.y4m\n"
      "  zuqel sequence --images in_%04d.png --disparities depth_%04d.png \\\n"
      "    --first 1 --count 100 --focus 640,480 --focus-to 200,480 \\\n"
      "    -o out_%04d.png");
  return {app, [options] { Run(*options); }};
}

}  // namespace zuqel::tools
