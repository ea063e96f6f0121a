// Where the frames of a sequence come from.
#include "series/sequence_source.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "coordinates.h"
#include "demo/scene.h"
#include "files/file_claims.h"
#include "photo/image_file.h"
#include "series/y4m_reader.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

// Files of a pattern, all of one size.
template <typename Item>
class NumberedFiles {
 public:
  NumberedFiles(const std::string& option, const std::string& pattern,
                const FrameNumbers& numbers, Item (*read)(const std::string&))
      : names_(option, pattern), next_(numbers.first), read_(read) {
    // Now rather than when each is read, after frames have been rendered.
    for (int i = 0; i < numbers.count; ++i) {
      ClaimInput(names_.Name(numbers.first + i));
    }
  }

  Item Next() {
    const std::string name = names_.Name(next_++);
    Item item = read_(name);
    if (size_ == Size{}) size_ = SizeOf(item);
    if (SizeOf(item) == size_) return item;
    throw InputError(name + ": is " + ToText(SizeOf(item)) +
                     "; the series began with " + ToText(size_));
  }

 private:
  FileSeries names_;
  int next_;
  Item (*read_)(const std::string&);
  Size size_;
};

template <typename MapType>
std::function<MapType()> OpenMaps(const std::string& option,
                                  const std::string& name,
                                  const FrameNumbers& numbers,
                                  MapType (*read)(const std::string&)) {
  if (!IsPattern(name)) return [map = read(name)] { return map; };
  return [files = NumberedFiles<MapType>(
              option, name, numbers, read)]() mutable { return files.Next(); };
}

std::function<FrameMap()> OpenMaps(const SequenceFiles& files,
                                   const FrameNumbers& numbers) {
  if (!files.weights.empty()) {
    return [next = OpenMaps("--weights", files.weights, numbers, ReadWeights)] {
      FrameMap map;
      map.weights = next();
      return map;
    };
  }
  return [next = OpenMaps("--disparities", files.disparities, numbers,
                          ReadDisparity)] {
    FrameMap map;
    map.disparity = next();
    return map;
  };
}

}  // namespace

bool IsPattern(const std::string& name) {
  return name.find('%') != std::string::npos;
}

SequenceSource OpenFiles(const SequenceFiles& files,
                         const FrameNumbers& numbers) {
  Y4mFormat format;
  std::function<std::optional<Nv21Frame>()> frames;
  if (IsPattern(files.images)) {
    frames = [pictures =
                  NumberedFiles<Picture>("--images", files.images, numbers,
                                         ReadFramePicture)]() mutable {
      return std::optional(ToNv21(pictures.Next()));
    };
  } else {
    const auto video = std::make_shared<Y4mReader>(files.images);
    format = video->format();
    frames = [video] { return video->Next(); };
  }
  const auto next =
      [frames = std::move(frames),
       maps = OpenMaps(files, numbers)]() -> std::optional<SourceFrame> {
    std::optional<Nv21Frame> frame = frames();
    if (!frame) return std::nullopt;
    return SourceFrame{*std::move(frame), maps(), {}};
  };
  return {format, next};
}

SequenceSource OpenDemo(int count) {
  const auto next = [steps = std::max(count - 1, 1), index = 0,
                     scene = MovingScene()]() mutable {
    Scene now =
        scene.At(static_cast<float>(index++) / static_cast<float>(steps));
    FrameMap map;
    map.disparity = std::move(now.disparity);
    return std::optional(
        SourceFrame{ToNv21(now.picture), std::move(map), now.near_focus});
  };
  return {{}, next};
}

}  // namespace zuqel::tools
