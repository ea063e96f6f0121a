/**
 * @file
 * The refocus-map generators as a table, for programs that offer a choice.
 */
#ifndef ZUQELRT_GENERATORS_H_
#define ZUQELRT_GENERATORS_H_

/** Expands to ROW(id, name, call, y_type, input, map_size, summary) for each
 * generator.
 *
 * - id: identifier of the generator
 * - name: as people write it
 * - call: the exported function, declared in zuQelRT_GL.h
 * - y_type: type of its argument `y`
 * - input: DISPARITY or DISTANCE, what the 16-bit map holds. On disparity a
 * call also reports minimum, maximum and focus
 * - map_size: WORK or DEPTH, the size of the map that it makes, WorkWidth x
 *   WorkHeight or DepthWidth x DepthHeight
 * - summary: what it does, for a list of generators
 *
 * @param ROW a macro of these seven arguments. */
#define ZUQEL_REFOCUS_GENERATORS(ROW)                                      \
  ROW(Gpu, "gpu", zuQelRT_GenRefocusMap, int32_t, DISPARITY, WORK,         \
      "weights by the distance from the focus, on the GPU")                \
  ROW(DisparityBase, "disparity-base",                                     \
      zuQelRT_GenRefocusMap_ZU4410_DispartyBase, int32_t, DISPARITY, WORK, \
      "all of the foreground or background is sharp, on the GPU")          \
  ROW(DisparityBaseCpu, "disparity-base-cpu",                              \
      zuQelRT_GenRefocusMap_ZU4410_DispartyBase_CPU, uint32_t, DISPARITY,  \
      DEPTH, "the same on the CPU")                                        \
  ROW(Distance, "distance", zuQelRT_GenRefocusMap_Dist, int32_t, DISTANCE, \
      DEPTH, "the same on the CPU, from distances")

#endif /* ZUQELRT_GENERATORS_H_ */
