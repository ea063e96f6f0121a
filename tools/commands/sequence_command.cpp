// zuqel sequence: renders a series of frames in one session.
#include <memory>
#include <string>

#include "commands/command.h"
#include "commands/shared_options.h"
#include "rendering/refocus_map.h"
#include "series/sequence_job.h"

namespace zuqel::tools {
namespace {

void AddSourceOptions(CommandLine app, SequenceOptions& options) {
  SequenceFiles& files = options.files;
  const Option images =
      app.AddOption("--images", files.images,
                    "The frames: a y4m video, 8-bit 4:2:0, or PNG or JPEG\n"
                    "files, where one %d or %04d stands for the number; of\n"
                    "even width and height")
          .TypeName("PATTERN");
  const Option disparities =
      app.AddOption("--disparities", files.disparities,
                    "Their disparities, 16-bit grey PNG: 0..1022, larger is\n"
                    "nearer, 1023 is unknown. Without a %d, one map for all")
          .TypeName("PATTERN")
          .Needs(images);
  app.AddOption("--weights", files.weights,
                "Instead of disparities, 8-bit grey PNG: 0 keeps a pixel\n"
                "sharp, 255 blurs it fully")
      .TypeName("PATTERN")
      .Needs(images)
      .Excludes(disparities);
  Option first =
      app.AddOption("--first", options.numbers.first,
                    "The first number, of files read and written; 0 by default")
          .Range(0, 1000000000);
  app.AddFlag("--demo", options.is_demo,
              "Instead of files, a built-in scene that an orange crosses")
      .Excludes(images)
      .Excludes(first);
  app.AddOption("--count", options.numbers.count,
                "Number of frames; by default all of a video, and " +
                    std::to_string(kDemoFrames) + "\nwith --demo")
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
  app.AddOption("--f-number", options->f_number,
                "1 (strongest blur, the default) to 10 (hardly any)")
      .TypeName("N");
  app.AddOption("--map-from", options->map_from,
                "Render from the refocus maps that this generator makes from\n"
                "the disparities; see zuqel refocus-map --help")
      .TypeName(GeneratorNames("|"))
      .Check(CheckGeneratorName);
  AddRendererOption(app, options->renderer);
  AddFileOption(app, "-o,--output", options->output,
                "A video if it ends with .y4m or is -, else a pattern for\n"
                "numbered PNG files")
      .Required();
  app.AddOption("--fps", options->frames_per_second,
                "Frames per second of the video; by default those of a video\n"
                "that is read, else 25")
      .Range(1, 1000);
  app.Footer(
      "Examples:\n"
      "  zuqel sequence --demo -o moving.y4m\n"
      "  zuqel sequence --images in_%04d.png --disparities depth_%04d.png \\\n"
      "    --first 1 --count 100 --focus 640,480 --focus-to 200,480 \\\n"
      "    -o out_%04d.png\n"
      "  ffmpeg -i in.mp4 -f yuv4mpegpipe -pix_fmt yuv420p - |\n"
      "    zuqel sequence --images - --disparities depth.png --focus 640,480 "
      "\\\n"
      "    -o - | ffmpeg -i - out.mp4");
  return {app, [options] { RenderSequence(*options); }};
}

}  // namespace zuqel::tools
