// Fixed images of a schema that is known at run time, written and read many times.
#pragma once

#include <span>
#include <vector>

#include "wire/fixed_image.hpp"

namespace inspect {

class ImagePlan {
 public:
  explicit ImagePlan(const mesh::wire::Schema& schema);

  [[nodiscard]] size_t length() const { return template_.size(); }

  // `image` has room for length() bytes.
  void write(uint8_t* image, const uint8_t* record) const;

  // Fills the record from an image that differs from the template in nothing but fields. Leaves the
  // record alone and returns false for anything else, which receivers may take all the same.
  [[nodiscard]] bool read(uint8_t* record, std::span<const uint8_t> image) const;

 private:
  std::vector<uint8_t> template_;
  // Fields that are neighbours in the image and in the record are one.
  std::vector<mesh::wire::Leaf> leaves_;
  size_t recordSize_;
};

}  // namespace inspect
