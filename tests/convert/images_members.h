// Every conversion of whole images by name.
#pragma once

#include <qpx/image_convert.h>

#include <span>

namespace qpx::testing {

// What a member computes with, where it is not what most do.
enum class MemberMath { usual, rounded, fine, shifted, fifths, crossed };

struct Member {
  const char* name;
  int32_t src, dst;
  MemberMath math;
  bool dispatched;  // mcvColorCvt reaches it
  int32_t (*plain)(const McvImage*, const McvImage*);
  int32_t (*withAlpha)(const McvImage*, const McvImage*, uint8_t);

  int32_t operator()(const McvImage* from, const McvImage* to, uint8_t alpha) const {
    return plain != nullptr ? plain(from, to) : withAlpha(from, to, alpha);
  }
};

std::span<const Member> members();

}  // namespace qpx::testing
