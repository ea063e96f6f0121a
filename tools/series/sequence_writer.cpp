// Writes a series of frames as numbered pictures or as one video.
#include "series/sequence_writer.h"

#include "coordinates.h"
#include "tool_error.h"

namespace zuqel::tools {

SequenceWriter::SequenceWriter(const SequenceTarget& target) : target_(target) {
  if (target.path.ends_with(".y4m")) {
    outputs_.Announce(target.path);
    return;
  }
  if (target.frames_per_second) {
    throw InputError("--fps: works with a .y4m file only");
  }
  pictures_.emplace("--output", target.path);
  for (int i = 0; i < target.count; ++i) {
    outputs_.Announce(pictures_->Name(target.first + i));
  }
}

void SequenceWriter::Add(const Nv21Frame& frame) {
  if (pictures_) {
    outputs_.Write(pictures_->Name(target_.first + added_), ToPicture(frame));
  } else {
    AddToVideo(frame);
  }
  ++added_;
}

void SequenceWriter::AddToVideo(const Nv21Frame& frame) {
  constexpr int kDefaultRate = 25;
  if (!video_) {
    const std::string size = ToText(SizeOf(frame)) + ", " +
                             std::to_string(target_.count) + " frames";
    video_.emplace(outputs_.Begin(target_.path, size).file, SizeOf(frame),
                   target_.frames_per_second.value_or(kDefaultRate));
  }
  video_->Add(frame);
}

void SequenceWriter::Commit() {
  outputs_.Commit();
}

}  // namespace zuqel::tools
