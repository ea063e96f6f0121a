// Writes a series of frames as numbered pictures or as one video.
#include "series/sequence_writer.h"

#include <utility>

#include "coordinates.h"
#include "files/standard_streams.h"
#include "tool_error.h"

namespace zuqel::tools {

SequenceWriter::SequenceWriter(const SequenceTarget& target) : target_(target) {
  if (target.path.ends_with(".y4m") || IsStandardStream(target.path)) {
    outputs_.Announce(target.path);
    return;
  }
  if (target.frames_per_second) {
    throw InputError("--fps: is for a video");
  }
  pictures_.emplace("--output", target.path);
  for (int i = 0; i < target.numbers.count; ++i) {
    outputs_.Announce(pictures_->Name(target.numbers.first + i));
  }
}

void SequenceWriter::Add(const Nv21Frame& frame, const Y4mFormat& format) {
  if (pictures_) {
    AddPicture(frame, format);
  } else {
    if (!video_) BeginVideo(format, SizeOf(frame));
    video_->Add(frame);
  }
  ++added_;
}

void SequenceWriter::AddPicture(Nv21Frame frame, const Y4mFormat& format) {
  const std::string name = pictures_->Name(target_.numbers.first + added_);
  if (added_ >= target_.numbers.count) outputs_.Announce(name);
  if (format.range != "FULL") ExpandRange(frame);
  outputs_.Write(name, ToPicture(frame));
}

void SequenceWriter::BeginVideo(Y4mFormat format, Size size) {
  format.size = size;
  if (target_.frames_per_second) format.rate = {*target_.frames_per_second, 1};
  video_file_ = &outputs_.Begin(target_.path, ToText(format.size));
  video_.emplace(video_file_->file, format);
}

void SequenceWriter::Commit() {
  if (video_) video_file_->size += ", " + std::to_string(added_) + " frames";
  outputs_.Commit();
}

}  // namespace zuqel::tools
