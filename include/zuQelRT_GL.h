/* Synthetic shallow depth of field (bokeh) for a camera with a stereo depth
 * chip.
 *
 * There is one session per process. Start it with zuQelRT_GLInitV1, render
 * frames with zuQelRT_GLStartV1 (from a blur-weight map) or
 * zuQelRT_GLStartV1HWDepth (from the chip's disparity map), end it with
 * zuQelRT_GLClose.
 *
 * Threads: initialisation, frames and close belong to one thread, the one on
 * which the session's OpenGL ES 2.0 context is current; they must not overlap.
 * zuQelRT_SetParameter may be called from any thread.
 *
 * Memory: the library keeps no pointer of the caller's after a call returns. It
 * reads and writes only the bytes that each function names; a position given by
 * the caller (focus point, focus rectangle) may lie anywhere.
 *
 * Every call returns a status, ZUQEL_SUCCESS or one of the codes below.
 */
#ifndef ZUQELRT_GL_H_
#define ZUQELRT_GL_H_

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#pragma GCC visibility push(default)

/* Status codes. */
#define ZUQEL_SUCCESS 0x0000u
#define ZUQEL_BUFFER_TOO_SMALL 0x2003u
#define ZUQEL_NULL_POINTER 0x2004u
#define ZUQEL_BAD_CAMERA_LAYOUT 0x200Cu
#define ZUQEL_PARAMETER_REFUSED 0x200Du
#define ZUQEL_INIT_REFUSED 0x200Eu
/* Calibration, returned by initialisation. */
#define ZUQEL_CALIB_BAD_LENGTH 0x6002u    /* length matches no container */
#define ZUQEL_CALIB_NOT_DECRYPTED 0x6004u /* no key, a wrong one, or damage */
/* Headers of encrypted kind-3 records. */
#define ZUQEL_CALIB_BAD_VERSION 0x6005u      /* below 2 */
#define ZUQEL_CALIB_BAD_COUNT 0x6006u        /* neither of the next two */
#define ZUQEL_CALIB_BAD_FIRST_COUNT 0x6007u  /* at byte 4: below 1 */
#define ZUQEL_CALIB_BAD_SECOND_COUNT 0x6008u /* at byte 244: below 1 */
/* The two blocks. */
#define ZUQEL_CALIB_NO_BLOCK 0x600Au   /* both are null */
#define ZUQEL_CALIB_NO_PAYLOAD 0x600Bu /* none in the second block */
#define ZUQEL_CALIB_NO_KEY 0x600Cu     /* none in the second block */

/* What a session is made for; copied by initialisation. Sizes are in pixels; a
 * negative size counts as 0. */
typedef struct GLInitInfo {
  int32_t PreviewWidth; /* the camera image of each frame call */
  int32_t PreviewHeight;
  int32_t DepthWidth; /* the disparity map */
  int32_t DepthHeight;
  int32_t WorkWidth; /* the weight map and the passes that make it */
  int32_t WorkHeight;
  int32_t OutputWidth;  /* the rendered output; follows the preview size when */
  int32_t OutputHeight; /* `offmode` is non-zero */
  int32_t PortraitMode; /* non-zero turns the output by a quarter */
  int32_t offmode;   /* non-zero: off screen. The library makes a context when
                        the thread has none, and writes each result back into
                        the caller's planes. 0: the caller's context is
                        current, and the result goes to its default
                        framebuffer as RGB. */
  int32_t srcformat; /* layout of the chroma plane, see zuQelRT_GLStartV1 */
  int32_t GraphicBufferFlag; /* non-zero: read results through graphic buffers,
                                where the device can */
} GLInitInfo;

/* Values for zuQelRT_SetParameter; each id reads its own word. The whole record
 * must be readable. */
typedef struct ParameterInfo {
  int32_t Reserved0;
  int32_t GsensorValue; /* id 0 */
  int32_t VcmValue;     /* id 1: lens position */
  int32_t Reserved3;
  int32_t FadeInEnable; /* id 2: non-zero is on */
  int32_t PortraitMode; /* id 3: non-zero is portrait */
} ParameterInfo;

/* Focus rectangle in image pixels; `right` and `bottom` lie outside of it. */
typedef struct FocusRect {
  int32_t x, y, right, bottom;
} FocusRect;

/* A picture drawn over every frame, in use when `pData`, `iWidth` and `iHeight`
 * are all non-zero. */
typedef struct DebugPicture {
  const uint8_t* pData; /* RGBA, rows of iWidth x 4 bytes, first row first */
  int32_t iWidth;       /* of the picture, in pixels */
  int32_t iHeight;
  int32_t iX; /* lower left corner of its region, in output pixels from the */
  int32_t iY; /* bottom left */
  int32_t iDrawWidth; /* of its region; the picture is stretched to it */
  int32_t iDrawHeight;
} DebugPicture;

/* Sets the arrangement of the camera module, 1 to 4 (1 at load). It counts from
 * the next initialisation on. ZUQEL_BAD_CAMERA_LAYOUT for any other value. */
uint32_t zuQelRT_CameraLayout_Set(int32_t layout);

/* Writes the arrangement to `layout`. ZUQEL_NULL_POINTER when it is null. */
uint32_t zuQelRT_CameraLayout_Get(uint32_t* layout);

/* Sets one value of the running session: id 0 the G-sensor, 1 the lens
 * position, 2 the fade-in effect, 3 portrait mode; any other id does nothing.
 * Returns ZUQEL_SUCCESS, but for id 0: 4 for a non-zero value and 1 for zero,
 * both of which mean success. ZUQEL_PARAMETER_REFUSED when no session runs,
 * ZUQEL_NULL_POINTER when `info` is null. */
uint32_t zuQelRT_SetParameter(int32_t id, const ParameterInfo* info);

/* Writes the version text, eight bytes with its zero, to `buffer`.
 * ZUQEL_BUFFER_TOO_SMALL when `size` is below 256 (tested first),
 * ZUQEL_NULL_POINTER when `buffer` is null. */
uint32_t zuQel_GLVersionInfo_Get(char* buffer, int32_t size);

/* Starts a session.
 *
 * `calibA` (`calibASize` bytes) is the camera module's calibration container,
 * `calibB` (`calibBSize` bytes) a second block with a key; either may be null,
 * not both. A container is recognised by its length alone. Encrypted ones are
 * opened with the key of the second block: 32 bytes as they are, or the first
 * 40 bytes of a longer block, wrapped (RFC 3394) with the default key built
 * into the library; the rest of such a block is the container when `calibA` is
 * null or empty. Without a second block a default key opens them.
 * With `offmode` 0 the caller's OpenGL ES 2.0 context must be current.
 *
 * ZUQEL_INIT_REFUSED when a session runs or memory does not suffice;
 * ZUQEL_NULL_POINTER when `info` is null; a calibration code as it stands.
 * After a refusal the session's mode is what it was. */
uint32_t zuQelRT_GLInitV1(const uint8_t* calibA, uint32_t calibASize,
                          const uint8_t* calibB, uint32_t calibBSize,
                          const GLInitInfo* info);

/* Starts a session like zuQelRT_GLInitV1, with programs taken from a cache that
 * an earlier start has filled, which is much faster than compiling them.
 *
 * `programBinaryCache`: 262144 bytes that the caller keeps between runs as they
 * are, or null. A cache that does not load (zeros, at the first start) is
 * filled anew during the call and counts from the next start on. A cache is
 * good for the driver that made it; whether it is the same driver is not
 * checked beyond one of its programs loading. */
uint32_t zuQelRT_GLInitV1_1(const uint8_t* calibA, uint32_t calibASize,
                            const uint8_t* calibB, uint32_t calibBSize,
                            const GLInitInfo* info,
                            uint8_t* programBinaryCache);

/* Ends the session and releases what it holds; harmless when none runs. */
uint32_t zuQelRT_GLClose(void);

/* Renders one frame from a blur-weight map.
 *
 * `a_pucInputImage`: luma, PreviewWidth x PreviewHeight bytes. With `offmode`
 * it receives the result. `a_pucInputCbCrImage`: chroma, PreviewWidth x
 * (PreviewHeight / 2) bytes; with `offmode` it receives the result. By
 * `srcformat`: 0: NV21, V then U for each 2x2 pixels; 2: two planes of half
 * width and height, V then U; 7: rows of PreviewWidth bytes, V then U at the
 * first two of four bytes for each 4x4 pixels; others: not read; the image
 * rendered is the session's packed frame. `weightMap`: WorkWidth x WorkHeight
 * bytes; 0 keeps a pixel sharp, 255 blurs it fully. Null keeps the map of the
 * frame before. `focusX`, `focusY`: focus point in image pixels. `bypass`:
 * non-zero renders no bokeh. With `offmode` the planes stay as they are.
 * `rect`: focus rectangle; taken when larger than 31 x 31 and inside the image.
 *   Its centre, else the focus point, is where the focus dot is drawn when the
 *   property "persist.zu.LVGLbokeh.FocusDot" was set at initialisation.
 * `fNumber`: clamped to 1 (strongest blur) .. 10 (hardly any).
 *
 * With `offmode` 0 the frame is converted to RGB inside a fixed viewport of
 * 1280 x 960, so that is the preview size it is meant for.
 *
 * ZUQEL_NULL_POINTER when a plane is null (not looked at in off-screen bypass).
 */
uint32_t zuQelRT_GLStartV1(uint8_t* a_pucInputImage,
                           uint8_t* a_pucInputCbCrImage,
                           const uint8_t* weightMap, uint32_t focusX,
                           uint32_t focusY, int32_t bypass, FocusRect rect,
                           float fNumber);

/* Renders one frame from the depth chip's disparity map: the range of the map
 * and the disparity under the focus point give the weights. The rest is as in
 * zuQelRT_GLStartV1, but `srcformat` 2 has no case of its own: its luma is
 * taken for all three channels.
 *
 * `depth`: DepthWidth x DepthHeight values, 10 bits, larger is nearer, 1023
 * marks a pixel without measurement (so do values above it). Such holes are
 * filled in place. Null keeps the map, range and focus disparity of the frame
 * before.
 *
 * The weight passes fill their targets only when WorkWidth x WorkHeight is
 * 320 x 240. */
uint32_t zuQelRT_GLStartV1HWDepth(uint8_t* a_pucInputImage,
                                  uint8_t* a_pucInputCbCrImage, uint16_t* depth,
                                  uint32_t focusX, uint32_t focusY,
                                  int32_t bypass, FocusRect rect,
                                  float fNumber);

/* Sets whether the debug pictures are drawn over each frame, and whether they
 * are blended with it by their alpha. Blending that was once on stays on for
 * the life of the context. */
uint32_t zuQelRT_GLShowDebugPicture(int32_t isShow, int32_t isBlending);

/* Loads the debug pictures: `table` has exactly ten entries. Pixels are copied
 * during the call; an entry not in use keeps its picture. Belongs on the
 * rendering thread, after initialisation. ZUQEL_NULL_POINTER when `table` is
 * null. */
uint32_t zuQelRT_GLSetDebugPicture(const DebugPicture* table);

/* Refocus maps: one byte a pixel, 0 where the scene stays sharp and 255 where
 * it is blurred most, as zuQelRT_GLStartV1 takes them. They are made of the
 * disparity or distance map and a focus point in pixels of that map, for the
 * sizes of the latest initialisation, between zuQelRT_GenRefocusMap_init and
 * zuQelRT_GenRefocusMap_Deinit, all on one thread. That may be another thread
 * than the session's. The two that work on the CPU need no context. */

/* Makes the OpenGL ES objects and buffers of the refocus maps. With `offmode` a
 * thread without a context is given one. After zuQelRT_GLInitV1_1 with a cache
 * that loads, the program of zuQelRT_GenRefocusMap_ZU4410_DispartyBase is not
 * made: its maps are then undefined. */
uint32_t zuQelRT_GenRefocusMap_init(void);

/* Releases them, and the context that was made. The display is shared: closing
 * the session and this, in either order, ends the other's context too on
 * drivers that do not count initialisations. Harmless when there is nothing. */
uint32_t zuQelRT_GenRefocusMap_Deinit(void);

/* Makes a map on the GPU, its clean-up on the CPU.
 *
 * `a_pucDest`: receives WorkWidth x WorkHeight bytes; zeros where there are no
 * OpenGL ES objects. `a_puwInputDepth`: DepthWidth x DepthHeight values, as in
 * zuQelRT_GLStartV1HWDepth; holes are filled in place. `x`, `y`: focus point.
 * `min`, `max`, `focus`: receive the range of the disparities, less 1 % of the
 * pixels at either end, and the most frequent disparity around the focus point
 * (0 where there is none); null ones are left out.
 *
 * ZUQEL_NULL_POINTER when a map is null; then nothing is written. */
uint32_t zuQelRT_GenRefocusMap(uint8_t* a_pucDest, uint16_t* a_puwInputDepth,
                               uint32_t x, int32_t y, uint32_t* min,
                               uint32_t* max, uint32_t* focus);

/* The same arguments; foreground or background is in focus as a whole, by the
 * disparity of the very pixel at the focus point, and regions narrower than 9
 * pixels stay sharp. The range is less 5 % at either end. The GPU takes a
 * disparity for 256 / 255 of its value. So with the background in focus, where
 * the ramp begins with a jump just in front of the focus, the focus point
 * itself comes out blurred; the two on the CPU keep it sharp. */
uint32_t zuQelRT_GenRefocusMap_ZU4410_DispartyBase(uint8_t* a_pucDest,
                                                   uint16_t* a_puwInputDepth,
                                                   uint32_t x, int32_t y,
                                                   uint32_t* min, uint32_t* max,
                                                   uint32_t* focus);

/* The same on the CPU, with a map of DepthWidth x DepthHeight bytes. This one
 * and the next write their decision to standard output. */
uint32_t zuQelRT_GenRefocusMap_ZU4410_DispartyBase_CPU(
    uint8_t* a_pucDest, uint16_t* a_puwInputDepth, uint32_t x, uint32_t y,
    uint32_t* min, uint32_t* max, uint32_t* focus);

/* The same on the CPU from distances: `distance` is DepthWidth x DepthHeight
 * values of 16 bits, larger is farther, 0 marks a pixel without measurement
 * (filled in place); `a_pucDest` receives as many bytes. Null maps give
 * ZUQEL_SUCCESS and change nothing. */
uint32_t zuQelRT_GenRefocusMap_Dist(uint8_t* a_pucDest, uint16_t* distance,
                                    uint32_t x, int32_t y);

/* Renders one frame on the CPU, in place, without any context.
 *
 * `yPlane`: luma, PreviewWidth x PreviewHeight bytes. `vuPlane`: chroma,
 * PreviewWidth x (PreviewHeight / 2) bytes, V then U for each 2x2 pixels. Both
 * receive the result. `disparity`: DepthWidth x DepthHeight values, as in
 * zuQelRT_GLStartV1HWDepth but that only the low 10 bits count; they are cut to
 * those, and holes are filled, in place. `a_dReX`, `a_dReY`: focus point in
 * image pixels.
 *
 * The mask is smoothed over the last three calls since initialisation, so a
 * change of focus takes some calls to settle. With the background in focus it
 * is blurred all the same, while things in front may stay sharp: keep to
 * zuQelRT_GLStartV1HWDepth for that. Writes its decision to standard output.
 * Belongs between initialisation and close, not beside them.
 *
 * Returns ZUQEL_SUCCESS. Null planes change nothing. */
uint32_t zuQelRT_Bokeh_ZU4410_DisparityBase_Expansion_CPU(uint8_t* yPlane,
                                                          uint8_t* vuPlane,
                                                          uint16_t* disparity,
                                                          int32_t a_dReX,
                                                          uint32_t a_dReY);

#pragma GCC visibility pop

#ifdef __cplusplus
}
#endif

#endif /* ZUQELRT_GL_H_ */
