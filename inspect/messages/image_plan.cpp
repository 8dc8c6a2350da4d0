#include "inspect/messages/image_plan.hpp"

#include <cstring>

namespace inspect {

ImagePlan::ImagePlan(const mesh::wire::Schema& schema)
    : template_(mesh::wire::fixedLength(schema)), recordSize_(schema.size) {
  const auto put = [&](uint32_t at, auto value) {
    mesh::host::store(template_.data() + at, value);
  };
  mesh::wire::visitTemplate(schema, 0, put);
  const auto add = [&](const mesh::wire::Leaf& leaf) {
    if (!leaves_.empty()) {
      mesh::wire::Leaf& last = leaves_.back();
      if (last.image + last.size == leaf.image && last.record + last.size == leaf.record) {
        last.size += leaf.size;
        return;
      }
    }
    leaves_.push_back(leaf);
  };
  mesh::wire::visitLeaves(schema, 0, 0, add);
}

void ImagePlan::write(uint8_t* image, const uint8_t* record) const {
  std::memcpy(image, template_.data(), template_.size());
  for (const mesh::wire::Leaf& leaf : leaves_) {
    std::memcpy(image + leaf.image, record + leaf.record, leaf.size);
  }
}

bool ImagePlan::read(uint8_t* record, std::span<const uint8_t> image) const {
  if (image.size() != template_.size()) {
    return false;
  }
  const auto isTemplate = [&](size_t from, size_t to) {
    return std::memcmp(image.data() + from, template_.data() + from, to - from) == 0;
  };
  size_t end = 0;
  for (const mesh::wire::Leaf& leaf : leaves_) {
    if (!isTemplate(end, leaf.image)) {
      return false;
    }
    end = leaf.image + leaf.size;
  }
  if (!isTemplate(end, image.size())) {
    return false;
  }
  std::memset(record, 0, recordSize_);
  for (const mesh::wire::Leaf& leaf : leaves_) {
    std::memcpy(record + leaf.record, image.data() + leaf.image, leaf.size);
  }
  return true;
}

}  // namespace inspect
