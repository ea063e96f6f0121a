// Raw files of the images of a frame, for tuning on a device.
#ifndef ZUQEL_GL_FRAME_DUMP_H_
#define ZUQEL_GL_FRAME_DUMP_H_

#include <cstddef>
#include <cstdint>

namespace zuqel {

// What names the files of one frame.
struct DumpName {
  uint32_t sequence_number = 0;
  int32_t focus_x = 0;
  int32_t focus_y = 0;
};

struct DumpImage {
  const void* pixels = nullptr;
  size_t byte_count = 0;
  int32_t width = 0;
  int32_t height = 0;
  const char* tag = nullptr;
};

// Whether the property "persist.zu.VLGLbokeh.readfile" asks for dumps now.
bool DumpsAreOn();

// Writes the image to the directory text of the property
// "persist.zu.LVGLbokeh.fileDir", which ends with "/", where dumps are on. A
// null image and a file that cannot be opened, such as a link, are logged.
void DumpFrame(const DumpImage& image, const DumpName& name);

}  // namespace zuqel

#endif  // ZUQEL_GL_FRAME_DUMP_H_
