// Loads programs from a cache and builds caches.
#include "gl/program_cache.h"

#include <GLES2/gl2ext.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "base/log.h"
#include "gl/extensions.h"

namespace zuqel {
namespace {

// The cache does not say which format its binaries have; it is always this one.
constexpr GLenum kBinaryFormat = GL_SGX_PROGRAM_BINARY_IMG;

bool IsInside(const BinaryInfo::Entry& entry) {
  return entry.offset >= 0 && entry.length >= 0 &&
         int64_t{entry.offset} + entry.length <=
             static_cast<int64_t>(kProgramCacheBytes);
}

// A driver takes any other format for an error of the caller's, who would find
// it with glGetError.
bool TakesBinaryFormat() {
  GLint count = 0;
  glGetIntegerv(GL_NUM_PROGRAM_BINARY_FORMATS_OES, &count);
  std::array<GLint, 64> formats = {};
  if (count < 1 || static_cast<size_t>(count) > formats.size()) return false;
  glGetIntegerv(GL_PROGRAM_BINARY_FORMATS_OES, formats.data());
  return std::find(std::begin(formats), std::end(formats),
                   GLint{kBinaryFormat}) != std::end(formats);
}

void LogLinkStatus(GLint status) {
  ZUQEL_LOG("*VX* %d", status);
  switch (status) {
    case GL_INVALID_ENUM:
      ZUQEL_LOG("*VX* GL_INVALID_ENUM .");
      break;
    case GL_INVALID_VALUE:
      ZUQEL_LOG("*VX* GL_INVALID_VALUE .");
      break;
    case GL_INVALID_OPERATION:
      ZUQEL_LOG("*VX* GL_INVALID_OPERATION .");
      break;
    case GL_FALSE:
      ZUQEL_LOG("*VX* GL_FALSE .");
      break;
    case GL_TRUE:
      ZUQEL_LOG("*VX* GL_TRUE .");
      break;
    default:
      break;
  }
}

// Writes a linked program's binary to `destination` and returns its length, or
// nothing when it does not fit. A driver may keep no binaries: the length is 0
// then, and there is nothing to write.
std::optional<GLint> WriteBinary(const Program& program,
                                 std::span<uint8_t> destination) {
  GLint length = 0;
  glGetProgramiv(program.get(), GL_PROGRAM_BINARY_LENGTH_OES, &length);
  if (length == 0) return 0;
  const auto get_binary = GetExtensions().GetProgramBinary;
  if (get_binary == nullptr || length < 0 ||
      static_cast<size_t>(length) > destination.size()) {
    return std::nullopt;
  }
  GLenum format = 0;  // known already
  GLsizei written = 0;
  get_binary(program.get(), length, &written, &format, destination.data());
  return written == length ? std::optional(length) : std::nullopt;
}

}  // namespace

GLint LoadProgramBinary(ProgramCacheBytes cache, const BinaryInfo::Entry& entry,
                        Program& program) {
  program = Program(glCreateProgram());
  const auto program_binary = GetExtensions().ProgramBinary;
  const bool is_set = entry.length != 0 && IsInside(entry);
  if (program_binary != nullptr && is_set && TakesBinaryFormat()) {
    program_binary(program.get(), kBinaryFormat, cache.data() + entry.offset,
                   entry.length);
  }
  const GLint status = LinkStatus(program);
  LogLinkStatus(status);
  return status;
}

void BuildProgramCache(std::span<const CacheStep> steps,
                       AttributeNames attributes,
                       std::span<uint8_t, kProgramCacheBytes> cache) {
  BinaryInfo info;
  auto offset = static_cast<int32_t>(sizeof(BinaryInfo));
  for (const CacheStep& step : steps) {
    const Program program = BuildProgram(*step.source, attributes);
    const auto length =
        LinkStatus(program) == GL_TRUE
            ? WriteBinary(program, cache.subspan(static_cast<size_t>(offset)))
            : std::nullopt;
    if (!length) {
      ZUQEL_LOG("FAIL.");
      continue;
    }
    ZUQEL_LOG("binaryLength = %d", *length);
    info.entries[step.entry] = {offset, *length};
    offset += *length;
    ZUQEL_LOG("dst_offset = %d", offset);
  }
  info.isValid = 1;
  std::memcpy(cache.data(), &info, sizeof(info));
}

}  // namespace zuqel
