// Provisional labels of the runs of a mask.
#ifndef ZUQEL_DEPTH_LABELLING_RUN_LABELLING_H_
#define ZUQEL_DEPTH_LABELLING_RUN_LABELLING_H_

#include <cstddef>
#include <cstdint>

#include "depth/labelling/label_sets.h"
#include "depth/labelling/mask_bits.h"

namespace zuqel {

// Gives each run the label of its first pixel, in raster order. What touches
// row 0 or column 0 has label 0.
class RunLabelling {
 public:
  // `run_labels` has one entry before those of the runs; `unsaturated` has room
  // for a row of bits. Labels from `label_limit` on saturate to the last one
  // below it; a run with both kinds of labels is split by another start.
  RunLabelling(const MaskBits& bits, LabelSets& sets, uint32_t* run_labels,
               uint64_t* unsaturated, size_t label_limit)
      : bits_(bits),
        sets_(sets),
        run_labels_(run_labels),
        unsaturated_(unsaturated),
        label_limit_(label_limit) {
    sets_.Add(0);
    run_labels_[0] = 0;
  }

  void LabelRuns(int32_t height);

  // One more than the largest label given.
  [[nodiscard]] size_t next_label() const { return next_label_; }

 private:
  // True if the next row may get labels at or above the limit.
  [[nodiscard]] bool LabelsCanSaturate() const;

  // Pixel by pixel, a label at or above the limit is passed on up to the first
  // pixel of the run that lies below one with a smaller label. Another run
  // starts there; the pixels before it saturate to the last label.
  void SplitSaturated(int32_t y);

  void LabelRow(int32_t y);

  // A run's first pixel decides its label: that of the run above it, among
  // those that follow `above`, or a new one.
  void AssignLabels(uint64_t starts, uint64_t up, uint64_t up_starts,
                    const uint32_t* above);

  MaskBits bits_;
  LabelSets& sets_;
  uint32_t* run_labels_;
  uint64_t* unsaturated_;
  size_t label_limit_;
  bool has_saturated_ = false;
  uint32_t next_label_ = 1;
  size_t last_run_ = 0;
  size_t last_run_above_ = 0;
};

}  // namespace zuqel

#endif  // ZUQEL_DEPTH_LABELLING_RUN_LABELLING_H_
