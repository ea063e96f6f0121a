// Options that several commands have.
#include "commands/shared_options.h"

#include <string>

namespace zuqel::tools {

Option AddFileOption(CommandLine app, const std::string& names,
                     std::string& path, const std::string& help) {
  return app.AddOption(names, path, help).TypeName("FILE");
}

void AddRendererOption(CommandLine app, Renderer& renderer) {
  const std::string fallback = renderer == Renderer::kGpu ? "gpu" : "cpu";
  app.AddOption(
         "--renderer",
         [&renderer](const std::string& name) {
           renderer = name == "gpu" ? Renderer::kGpu : Renderer::kCpu;
         },
         "gpu or cpu (" + fallback +
             " by default). The CPU renderer takes a\n"
             "disparity, has a fixed strength of blur and smooths its mask\n"
             "over the frames; it blurs the background even when in focus")
      .OneOf({"gpu", "cpu"});
}

void AddQualityOption(CommandLine app, int& quality) {
  app.AddOption("--quality", quality,
                "Of JPEG outputs, 1 to 100 (" + std::to_string(quality) +
                    " by default)")
      .Range(1, 100);
}

}  // namespace zuqel::tools
