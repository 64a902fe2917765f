// Version and properties of an engine.
#include <algorithm>
#include <cstring>

#include "engine/engine_handle.h"

using namespace qpx;

namespace {

constexpr uint32_t kKnownProperty = 0x9200;
constexpr int32_t kClearedTextBytes = 9;
constexpr char kRevisionText[16] = "SVN:00000";

void storeIfWanted(int32_t* place, int32_t value) {
  if (place != nullptr) *place = value;
}

}  // namespace

int32_t QPXGetProPerty(QPXEngine* handle, uint32_t propertyId, int32_t reserved, int32_t* valueOut,
                       int32_t valueSize) {
  const Stage* head = headOf(handle);
  if (head == nullptr) return QPX_BAD_PARAM;
  if (propertyId != kKnownProperty || reserved != 0) return QPX_UNSUPPORTED;
  if (valueSize != static_cast<int32_t>(sizeof *valueOut) || valueOut == nullptr) {
    return QPX_BAD_PARAM;
  }
  *valueOut = head->propertyLimit;
  return QPX_OK;
}

int32_t QPXSetProPerty(QPXEngine* handle, uint32_t propertyId, int32_t one, const int32_t* value) {
  Stage* head = headOf(handle);
  if (head == nullptr) return QPX_BAD_PARAM;
  if (propertyId != kKnownProperty || one != 1) return QPX_UNSUPPORTED;
  if (value == nullptr) return QPX_BAD_PARAM;
  head->propertyValue = std::clamp(*value, 0, std::max(head->propertyLimit, 0));
  return QPX_OK;
}

int32_t PixmorphGetVersionInfo(int32_t* major, int32_t* minor, int32_t* build, char* textOut,
                               int32_t textSize) {
  storeIfWanted(major, 1);
  storeIfWanted(minor, 0);
  storeIfWanted(build, 8);
  if (textOut == nullptr || textSize < kClearedTextBytes) return QPX_OK;
  // The whole tag goes out whatever textSize says, which is why callers give room for it.
  std::memcpy(textOut, kRevisionText, sizeof kRevisionText);
  return QPX_OK;
}
