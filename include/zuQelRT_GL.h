/** @file
 * The C interface. */
/**
 * @mainpage Bokeh for phones with a stereo depth chip
 *
 * Synthetic shallow depth of field (bokeh) for a camera with a stereo depth
 * chip. zuQelRT_GL.h documents every call.
 *
 * There is one session per process. Start it with zuQelRT_GLInitV1, render
 * frames with zuQelRT_GLStartV1 (from a map of blur weights) or
 * zuQelRT_GLStartV1HWDepth (from the chip's disparity map), and end it with
 * zuQelRT_GLClose.
 *
 * Threads: initialisation, frames, debug pictures and close belong to one
 * thread, the one on which the session's OpenGL ES 2.0 context is current; they
 * must not overlap. zuQelRT_SetParameter may be called from any thread at any
 * time. Refocus maps may be made on a second thread, and frames on the CPU on a
 * third, while others render; calls of one kind must not overlap each other,
 * initialisation or close. A build with assertions ends the process where calls
 * overlap that must not. A frame or debug-picture call made elsewhere (no
 * session, another context, none) draws nothing and leaves planes and textures
 * as they are.
 *
 * Memory: the library keeps no pointer of the caller's after a call returns. It
 * reads and writes only the bytes that each function names; a position given by
 * the caller (focus point, focus rectangle) may lie anywhere. A call that runs
 * out of memory leaves the caller's planes and maps as they were; only
 * initialisation says so, the others return what they return otherwise.
 *
 * Every call returns a status, ZUQEL_SUCCESS or one of the codes in
 * zuQelRT_GL.h. Nothing throws.
 *
 * zuQelRT_generators.h lists the refocus-map generators as a table.
 */
#ifndef ZUQELRT_GL_H_
#define ZUQELRT_GL_H_

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#pragma GCC visibility push(default)

/** @name Status codes
 * @{ */
#define ZUQEL_SUCCESS 0x0000u           /**< done */
#define ZUQEL_BUFFER_TOO_SMALL 0x2003u  /**< a size given is too small */
#define ZUQEL_NULL_POINTER 0x2004u      /**< an argument is null */
#define ZUQEL_BAD_CAMERA_LAYOUT 0x200Cu /**< no such camera arrangement */
#define ZUQEL_PARAMETER_REFUSED 0x200Du /**< no session runs */
#define ZUQEL_INIT_REFUSED 0x200Eu      /**< a session runs, or no memory */
/** @} */

/** @name Status codes of the calibration, returned by initialisation
 * BAD_VERSION and the counts concern the headers of encrypted kind-3 records.
 * @{ */
#define ZUQEL_CALIB_BAD_LENGTH 0x6002u       /**< length matches no container */
#define ZUQEL_CALIB_NOT_DECRYPTED 0x6004u    /**< no or wrong key, or damage */
#define ZUQEL_CALIB_BAD_VERSION 0x6005u      /**< version below 2 */
#define ZUQEL_CALIB_BAD_COUNT 0x6006u        /**< neither of the next two */
#define ZUQEL_CALIB_BAD_FIRST_COUNT 0x6007u  /**< at byte 4: below 1 */
#define ZUQEL_CALIB_BAD_SECOND_COUNT 0x6008u /**< at byte 244: below 1 */
#define ZUQEL_CALIB_NO_BLOCK 0x600Au         /**< both blocks are null */
#define ZUQEL_CALIB_NO_PAYLOAD 0x600Bu       /**< no container after the key */
#define ZUQEL_CALIB_NO_KEY 0x600Cu           /**< no key in the second block */
/** @} */

/** @name Layouts of the chroma plane
 * PreviewWidth x (PreviewHeight / 2) bytes, for GLInitInfo::srcformat. With any
 * other value the frame handed in is not read, and the session's own packed
 * frame is rendered.
 * @{ */
#define ZUQEL_SRCFORMAT_NV21 0 /**< V, U for each 2x2 pixels */
/** A V plane, then a U plane, of half size. */
#define ZUQEL_SRCFORMAT_PLANAR 2
/** Rows of PreviewWidth bytes; V, U and 2 unused bytes for each 4x4 pixels. */
#define ZUQEL_SRCFORMAT_CHROMA_4X4 7
/** @} */

/** @name Parameters
 * The `id` of zuQelRT_SetParameter, and where each finds its value.
 * @{ */
#define ZUQEL_PARAMETER_GSENSOR 0  /**< ParameterInfo::GsensorValue */
#define ZUQEL_PARAMETER_VCM 1      /**< ParameterInfo::VcmValue */
#define ZUQEL_PARAMETER_FADE_IN 2  /**< ParameterInfo::FadeInEnable */
#define ZUQEL_PARAMETER_PORTRAIT 3 /**< ParameterInfo::PortraitMode */
/** @} */

/** @name Results of a parameter
 * Of zuQelRT_SetParameter for ZUQEL_PARAMETER_GSENSOR. Both mean success.
 * @{ */
#define ZUQEL_GSENSOR_ZERO 1u    /**< the value is 0 */
#define ZUQEL_GSENSOR_NONZERO 4u /**< the value is not 0 */
/** @} */

/** @name Sizes and limits
 * @{ */
/** Arrangements of the camera module are numbered from 1 to this. */
#define ZUQEL_CAMERA_LAYOUTS 4
#define ZUQEL_INVALID_DISPARITY 1023    /**< no measurement at this pixel */
#define ZUQEL_VERSION_BUFFER_SIZE 256   /**< for zuQel_GLVersionInfo_Get */
#define ZUQEL_PROGRAM_CACHE_SIZE 262144 /**< for zuQelRT_GLInitV1_1 */
#define ZUQEL_DEBUG_PICTURES 10 /**< entries of zuQelRT_GLSetDebugPicture */
/** @} */

/** What a session is made for; copied by initialisation. Sizes are in pixels;
 * a negative size counts as 0. */
typedef struct GLInitInfo {
  int32_t PreviewWidth;  /**< width of each frame's image */
  int32_t PreviewHeight; /**< height of it */
  int32_t DepthWidth;    /**< width of the disparity map */
  int32_t DepthHeight;   /**< height of it */
  int32_t WorkWidth;     /**< width of the weight map and its passes */
  int32_t WorkHeight;    /**< height of them */
  int32_t OutputWidth;   /**< width of the output; the preview's off screen */
  int32_t OutputHeight;  /**< height of it */
  int32_t PortraitMode;  /**< non-zero turns the output by a quarter */
  /** Non-zero: off screen. The library makes a context when the thread has
   * none, and writes each result back into the caller's planes. 0: the caller's
   * context is current, and the result goes to its default framebuffer as RGB.
   */
  int32_t offmode;
  int32_t srcformat; /**< chroma layout: a ZUQEL_SRCFORMAT_ value */
  /** Non-zero: read results through graphic buffers, where the device can. */
  int32_t GraphicBufferFlag;
} GLInitInfo;

/** Values for zuQelRT_SetParameter; each id reads its own word. The whole
 * record must be readable. */
typedef struct ParameterInfo {
  int32_t Reserved0;    /**< not read */
  int32_t GsensorValue; /**< ZUQEL_PARAMETER_GSENSOR */
  int32_t VcmValue;     /**< ZUQEL_PARAMETER_VCM: lens position */
  int32_t Reserved3;    /**< not read */
  int32_t FadeInEnable; /**< ZUQEL_PARAMETER_FADE_IN: non-zero is on */
  int32_t PortraitMode; /**< ZUQEL_PARAMETER_PORTRAIT: non-zero is portrait */
} ParameterInfo;

/** Focus rectangle in image pixels. */
typedef struct FocusRect {
  int32_t x;      /**< first column */
  int32_t y;      /**< first row */
  int32_t right;  /**< column after the last */
  int32_t bottom; /**< row after the last */
} FocusRect;

/** A picture drawn over every frame, in use when `pData`, `iWidth` and
 * `iHeight` are all non-zero. */
typedef struct DebugPicture {
  const uint8_t* pData; /**< RGBA, rows of iWidth x 4 bytes, first row first */
  int32_t iWidth;       /**< width of the picture, in pixels */
  int32_t iHeight;      /**< height of it */
  int32_t iX;           /**< left of its region, in output pixels */
  int32_t iY;           /**< bottom of it, from the bottom of the output */
  int32_t iDrawWidth;   /**< width that the picture is stretched to */
  int32_t iDrawHeight;  /**< height of the same */
} DebugPicture;

/** Sets the arrangement of the camera module for the next initialisation.
 *
 * @param layout 1 to ZUQEL_CAMERA_LAYOUTS; 1 at load.
 * @return ZUQEL_SUCCESS, or ZUQEL_BAD_CAMERA_LAYOUT for any other value. */
uint32_t zuQelRT_CameraLayout_Set(int32_t layout);

/** Gives the arrangement of the camera module.
 *
 * @param layout receives it.
 * @return ZUQEL_SUCCESS, or ZUQEL_NULL_POINTER when `layout` is null. */
uint32_t zuQelRT_CameraLayout_Get(uint32_t* layout);

/** Sets one value of the running session.
 *
 * @param id a ZUQEL_PARAMETER_ value; any other does nothing.
 * @param info the record with the value.
 * @return ZUQEL_SUCCESS, or for ZUQEL_PARAMETER_GSENSOR one of the two
 * ZUQEL_GSENSOR_ values. ZUQEL_PARAMETER_REFUSED when no session runs,
 * ZUQEL_NULL_POINTER when `info` is null. */
uint32_t zuQelRT_SetParameter(int32_t id, const ParameterInfo* info);

/** Gives the version of the library.
 *
 * @param buffer receives a text of eight bytes with its terminating zero.
 * @param size of `buffer`, at least ZUQEL_VERSION_BUFFER_SIZE.
 * @return ZUQEL_SUCCESS, ZUQEL_BUFFER_TOO_SMALL when `size` is too small
 * (tested first), or ZUQEL_NULL_POINTER when `buffer` is null. */
uint32_t zuQel_GLVersionInfo_Get(char* buffer, int32_t size);

/** Starts a session.
 *
 * A calibration container is recognised by its length alone. Encrypted ones are
 * opened with the key of the second block:
 * - 32 bytes are the key itself.
 * - Of a longer block, the first 40 bytes are the key, wrapped (RFC 3394) with
 *   the default key built into the library; the rest is the container when
 *   `calibA` is null or empty.
 * - Without a second block a default key opens them.
 *
 * With `offmode` 0 the caller's OpenGL ES 2.0 context must be current.
 *
 * @param calibA the camera module's calibration container, or null.
 * @param calibASize its bytes.
 * @param calibB a second block with a key, or null; not both may be null.
 * @param calibBSize its bytes.
 * @param info what the session is made for.
 * @return ZUQEL_SUCCESS, ZUQEL_INIT_REFUSED when a session runs or memory does
 * not suffice, ZUQEL_NULL_POINTER when `info` is null, or a calibration code. A
 * refused call starts nothing and leaves a running session alone. */
uint32_t zuQelRT_GLInitV1(const uint8_t* calibA, uint32_t calibASize,
                          const uint8_t* calibB, uint32_t calibBSize,
                          const GLInitInfo* info);

/** Starts a session like zuQelRT_GLInitV1, with programs taken from a cache
 * that an earlier start has filled, which is much faster than compiling them.
 *
 * A cache that does not load (zeros, at the first start) is filled during the
 * call, for the next start. A cache serves only the driver that made it; that
 * is checked only by loading one of its programs. Drop it with every update of
 * library or driver: its programs carry the shaders of the library that made
 * them, and nothing in it says which.
 *
 * @param calibA,calibASize,calibB,calibBSize,info as in zuQelRT_GLInitV1.
 * @param programBinaryCache ZUQEL_PROGRAM_CACHE_SIZE bytes that the caller
 * keeps between runs as they are, or null.
 * @return as zuQelRT_GLInitV1. */
uint32_t zuQelRT_GLInitV1_1(const uint8_t* calibA, uint32_t calibASize,
                            const uint8_t* calibB, uint32_t calibBSize,
                            const GLInitInfo* info,
                            uint8_t* programBinaryCache);

/** Ends the session and releases what it holds; harmless when none runs.
 *
 * @return ZUQEL_SUCCESS. */
uint32_t zuQelRT_GLClose(void);

/** Renders one frame from a map of blur weights.
 *
 * With `offmode` 0 the frame is converted to RGB inside a fixed viewport of
 * 1280 x 960, so that is the preview size it is meant for.
 *
 * @param a_pucInputImage luma, PreviewWidth x PreviewHeight bytes.
 * @param a_pucInputCbCrImage chroma, PreviewWidth x (PreviewHeight / 2) bytes
 * in the layout of `srcformat`. With `offmode` both planes receive the result.
 * @param weightMap WorkWidth x WorkHeight bytes; 0 keeps a pixel sharp, 255
 * blurs it fully. Null keeps the map of the last frame.
 * @param focusX,focusY focus point in image pixels.
 * @param bypass non-zero renders no bokeh; with `offmode` the planes stay as
 * they are.
 * @param rect focus rectangle; used when larger than 31 x 31 and inside the
 * image. Its centre, or else the focus point, is where the focus dot is drawn
 * if the property "persist.zu.LVGLbokeh.FocusDot" was set at initialisation.
 * @param fNumber clamped to 1 (strongest blur) .. 10 (hardly any).
 * @return ZUQEL_SUCCESS, or ZUQEL_NULL_POINTER when a plane is null (not looked
 * at in off-screen bypass). */
uint32_t zuQelRT_GLStartV1(uint8_t* a_pucInputImage,
                           uint8_t* a_pucInputCbCrImage,
                           const uint8_t* weightMap, uint32_t focusX,
                           uint32_t focusY, int32_t bypass, FocusRect rect,
                           float fNumber);

/** Renders one frame from the depth chip's disparity map: the range of the map
 * and the disparity under the focus point give the weights.
 *
 * ZUQEL_SRCFORMAT_PLANAR is not supported: its luma is used for all three
 * channels. The weight passes fill their targets only when WorkWidth x
 * WorkHeight is 320 x 240.
 *
 * @param depth DepthWidth x DepthHeight values of 10 bits, larger is nearer;
 * ZUQEL_INVALID_DISPARITY and above mark a pixel without a measurement. Such
 * holes are filled in place. Null keeps the map, range and focus disparity of
 * the last frame.
 * @param a_pucInputImage,a_pucInputCbCrImage,focusX,focusY,bypass,rect,fNumber
 * as in zuQelRT_GLStartV1.
 * @return as zuQelRT_GLStartV1. */
uint32_t zuQelRT_GLStartV1HWDepth(uint8_t* a_pucInputImage,
                                  uint8_t* a_pucInputCbCrImage, uint16_t* depth,
                                  uint32_t focusX, uint32_t focusY,
                                  int32_t bypass, FocusRect rect,
                                  float fNumber);

/** Sets whether the debug pictures are drawn over each frame. Once enabled,
 * blending stays enabled for the life of the context.
 *
 * @param isShow non-zero draws them.
 * @param isBlending non-zero blends them with the frame by their alpha.
 * @return ZUQEL_SUCCESS. */
uint32_t zuQelRT_GLShowDebugPicture(int32_t isShow, int32_t isBlending);

/** Loads the debug pictures.
 *
 * @param table exactly ZUQEL_DEBUG_PICTURES entries. Pixels are copied during
 * the call; an entry not in use keeps its picture.
 * @return ZUQEL_SUCCESS, or ZUQEL_NULL_POINTER when `table` is null. */
uint32_t zuQelRT_GLSetDebugPicture(const DebugPicture* table);

/** @name Refocus maps
 * One byte a pixel, from 0 where the scene stays sharp to 255 where it is
 * blurred most, as zuQelRT_GLStartV1 takes them.
 *
 * They are made from a disparity or distance map and a focus point in pixels of
 * that map, between zuQelRT_GenRefocusMap_init and
 * zuQelRT_GenRefocusMap_Deinit, on one thread, not necessarily the session's.
 * The two that work on the CPU need no context. Sizes are those of the latest
 * initialisation, even one that was refused for its calibration or for lack of
 * memory.
 * @{ */

/** Makes the OpenGL ES objects and buffers of the refocus maps. With `offmode`
 * a thread without a context is given one. After zuQelRT_GLInitV1_1 with a
 * cache that loads, the program of zuQelRT_GenRefocusMap_ZU4410_DispartyBase is
 * not made: its maps are then undefined.
 *
 * @return ZUQEL_SUCCESS. */
uint32_t zuQelRT_GenRefocusMap_init(void);

/** Releases what zuQelRT_GenRefocusMap_init made, its context too. The display
 * is shared: closing the session and this, in either order, ends the other's
 * context too on drivers that do not count initialisations. Harmless when there
 * is nothing to release.
 *
 * @return ZUQEL_SUCCESS. */
uint32_t zuQelRT_GenRefocusMap_Deinit(void);

/** Makes a map on the GPU, its clean-up on the CPU.
 *
 * @param a_pucDest receives WorkWidth x WorkHeight bytes; zeros where there are
 * no OpenGL ES objects.
 * @param a_puwInputDepth DepthWidth x DepthHeight values, as in
 * zuQelRT_GLStartV1HWDepth; holes are filled in place.
 * @param x,y focus point.
 * @param min,max receive the range of the disparities, without 1 % of the
 * pixels at either end; null ones are not written.
 * @param focus receives the most frequent disparity around the focus point, 0
 * where there is none; not written when null.
 * @return ZUQEL_SUCCESS, or ZUQEL_NULL_POINTER when a map is null; then nothing
 * is written. */
uint32_t zuQelRT_GenRefocusMap(uint8_t* a_pucDest, uint16_t* a_puwInputDepth,
                               uint32_t x, int32_t y, uint32_t* min,
                               uint32_t* max, uint32_t* focus);

/** Makes a map on the GPU with the foreground or the background in focus as a
 * whole, whichever the pixel at the focus point belongs to. The range is
 * without 5 % at either end. Regions narrower than 9 pixels stay sharp.
 *
 * The GPU takes a disparity for 256 / 255 of its value. So with the background
 * in focus, where the ramp begins with a jump just in front of the focus, the
 * focus point itself is blurred; the two on the CPU keep it sharp.
 *
 * @param a_pucDest,a_puwInputDepth,x,y,min,max,focus as in
 * zuQelRT_GenRefocusMap.
 * @return as zuQelRT_GenRefocusMap. */
uint32_t zuQelRT_GenRefocusMap_ZU4410_DispartyBase(uint8_t* a_pucDest,
                                                   uint16_t* a_puwInputDepth,
                                                   uint32_t x, int32_t y,
                                                   uint32_t* min, uint32_t* max,
                                                   uint32_t* focus);

/** Makes the map of zuQelRT_GenRefocusMap_ZU4410_DispartyBase on the CPU, at
 * the size of the depth map. Writes its decision to standard output.
 *
 * @param a_pucDest receives DepthWidth x DepthHeight bytes.
 * @param a_puwInputDepth,x,y,min,max,focus as in zuQelRT_GenRefocusMap.
 * @return as zuQelRT_GenRefocusMap. */
uint32_t zuQelRT_GenRefocusMap_ZU4410_DispartyBase_CPU(
    uint8_t* a_pucDest, uint16_t* a_puwInputDepth, uint32_t x, uint32_t y,
    uint32_t* min, uint32_t* max, uint32_t* focus);

/** Makes such a map on the CPU from distances. Writes its decision to standard
 * output.
 *
 * @param a_pucDest receives DepthWidth x DepthHeight bytes.
 * @param distance DepthWidth x DepthHeight values of 16 bits, larger is
 * farther; 0 marks a pixel without a measurement, which is filled in place.
 * @param x,y focus point.
 * @return ZUQEL_SUCCESS. Null maps change nothing. */
uint32_t zuQelRT_GenRefocusMap_Dist(uint8_t* a_pucDest, uint16_t* distance,
                                    uint32_t x, int32_t y);

/** @} */

/** Renders one frame on the CPU, in place, without any context.
 *
 * The mask is smoothed over the last three calls since initialisation, so a
 * change of focus takes some calls to settle.
 *
 * It is made for a focus in the foreground. Otherwise:
 * - With the background in focus, the background is blurred all the same, and
 *   things in front may stay sharp; use zuQelRT_GLStartV1HWDepth for that.
 * - A focus point in the outermost row or column of the disparity map blurs the
 *   whole frame, and so does a map without any difference in depth.
 *
 * Writes its decision to standard output. Call it between initialisation and
 * close, never at the same time as either.
 *
 * @param yPlane luma, PreviewWidth x PreviewHeight bytes.
 * @param vuPlane chroma, PreviewWidth x (PreviewHeight / 2) bytes, V then U for
 * each 2x2 pixels.
 * @param disparity DepthWidth x DepthHeight values, as in
 * zuQelRT_GLStartV1HWDepth, but only the low 10 bits count. They are cut to
 * those, and holes are filled, in place.
 * @param a_dReX,a_dReY focus point in image pixels.
 * @return ZUQEL_SUCCESS. Null planes or a null map change nothing. */
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
