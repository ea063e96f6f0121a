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
  // `run_labels` has one entry before those of the runs; `unfolded` has room
  // for a row of bits. Labels from `label_limit` on fold into the last one
  // below it: where a run has both kinds, it is split by a start.
  RunLabelling(const MaskBits& bits, LabelSets& sets, uint32_t* run_labels,
               uint64_t* unfolded, size_t label_limit)
      : bits_(bits),
        sets_(sets),
        run_labels_(run_labels),
        unfolded_(unfolded),
        label_limit_(label_limit) {
    sets_.Add(0);
    run_labels_[0] = 0;
  }

  void LabelRuns(int32_t height);

  // One more than the largest label given.
  [[nodiscard]] size_t next_label() const { return next_label_; }

 private:
  // Whether the next row may be given labels at or above the limit.
  [[nodiscard]] bool MayFold() const;

  // Pixel by pixel, a label at or above the limit is handed on, up to the first
  // pixel of the run below one with a smaller label. A run starts there, too:
  // what lies before it folds into the last label.
  void SplitFolded(int32_t y);

  void LabelRow(int32_t y);

  // A run's first pixel decides which label it is given: that of the run above,
  // of those after `above`, or a new one.
  void GiveLabels(uint64_t starts, uint64_t up, uint64_t up_starts,
                  const uint32_t* above);

  MaskBits bits_;
  LabelSets& sets_;
  uint32_t* run_labels_;
  uint64_t* unfolded_;
  size_t label_limit_;
  bool has_folded_ = false;
  uint32_t next_label_ = 1;
  size_t last_run_ = 0;
  size_t last_run_above_ = 0;
};

}  // namespace zuqel

#endif  // ZUQEL_DEPTH_LABELLING_RUN_LABELLING_H_
