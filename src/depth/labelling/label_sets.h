// Sets of labels of one component.
#ifndef ZUQEL_DEPTH_LABELLING_LABEL_SETS_H_
#define ZUQEL_DEPTH_LABELLING_LABEL_SETS_H_

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>

namespace zuqel {

// Union-find in which every link points to a smaller label, so that a root is
// the smallest label of its set.
class LabelSets {
 public:
  explicit LabelSets(std::span<uint32_t> parents) : parents_(parents) {}

  void Add(uint32_t label) { parents_[label] = label; }

  // Each step links one of two chains to the other at a smaller label.
  void Unite(uint32_t a, uint32_t b) {
    uint32_t parent_a = parents_[a];
    uint32_t parent_b = parents_[b];
    while (parent_a != parent_b) {
      if (parent_a < parent_b) {
        std::swap(a, b);
        std::swap(parent_a, parent_b);
      }
      parents_[a] = parent_b;
      if (a == parent_a) return;
      a = parent_a;
      parent_a = parents_[a];
    }
  }

  // Points each of the first `count` labels to its root. Links point downward,
  // so one pass in rising order does.
  void Flatten(size_t count) {
    for (size_t i = 0; i < count; ++i) parents_[i] = parents_[parents_[i]];
  }

  [[nodiscard]] uint32_t operator[](size_t label) const {
    return parents_[label];
  }

 private:
  std::span<uint32_t> parents_;
};

}  // namespace zuqel

#endif  // ZUQEL_DEPTH_LABELLING_LABEL_SETS_H_
