// The options that name a depth map and say how to understand it.
#include "commands/depth_options.h"

#include <optional>
#include <string>

#include "commands/shared_options.h"
#include "photo/number_text.h"

namespace zuqel::tools {
namespace {

// Nothing if the text is not a scale.
std::optional<DisparityScale> ParseScale(const std::string& text) {
  if (text == "auto") return DisparityScale{DisparityScale::kSpan};
  if (text == "none") return DisparityScale{DisparityScale::kFactor};
  const std::optional<double> factor = ParseNumber(text);
  if (!factor || *factor <= 0) return std::nullopt;
  return DisparityScale{DisparityScale::kFactor, *factor};
}

std::string CheckScale(const std::string& text) {
  return ParseScale(text) ? "" : text + " is not none, auto or above 0";
}

void AddFileOptions(CommandLine app, DepthOptions& options) {
  AddFileOption(app, "--disparity", options.disparity,
                "Grey PNG, JPEG or PFM of any size, larger is nearer. 16-bit\n"
                "of at most 1023 is taken as it is, 1023 is unknown; all\n"
                "else is scaled to span 1..1000");
  Option depth = AddFileOption(
      app, "--depth,--distance", options.depth,
      "The same, larger is farther. 16-bit and PFM are lengths in\n"
      "any unit, 0 is unknown; 8-bit is relative");
  Option near = app.AddOption("--near", options.near,
                              "With --far, the length that 0 of an 8-bit\n"
                              "--depth stands for")
                    .TypeName("LENGTH")
                    .Needs(depth);
  Option far = app.AddOption("--far", options.far,
                             "The length that 255 of it stands for")
                   .TypeName("LENGTH")
                   .Needs(near);
  near.Needs(far);
  app.AddOption("--unknown", options.unknown,
                "Another value of the map that marks no measurement;\n"
                "infinity and NaN always do")
      .TypeName("VALUE");
}

}  // namespace

void AddDepthOptions(CommandLine app, DepthOptions& options) {
  AddFileOptions(app, options);
  app.AddFlag("--invert", options.is_turned_round,
              "Turn the map round: its largest value becomes its smallest");
  app.AddOption(
         "--scale",
         [&options](const std::string& text) {
           options.scale = ParseScale(text).value_or(DisparityScale{});
         },
         "How disparities, or the inverse of lengths, are scaled: none,\n"
         "auto (to span 1..1000) or a factor; cut to 0..1022")
      .TypeName("none|auto|FACTOR")
      .Check(CheckScale);
  app.AddFlag("--stretch", options.may_stretch,
              "Take a map whose proportions are not those of the picture");
}

}  // namespace zuqel::tools
