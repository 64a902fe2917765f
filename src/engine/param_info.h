// How the rows of the catalogue describe the fields of their parameter records.
#pragma once

#include <qpx/effects.h>

#include <cstddef>
#include <cstdint>

namespace qpx {

constexpr QPXParamInfo intParam(const char* name, const char* summary, const char* unit,
                                size_t offset, double minimum, double maximum, double initial) {
  return {name,    summary, unit,   QPX_PARAM_INT32, static_cast<int32_t>(offset),
          minimum, maximum, initial};
}

constexpr QPXParamInfo byteParam(const char* name, const char* summary, const char* unit,
                                 size_t offset, double maximum, double initial) {
  return {name, summary, unit, QPX_PARAM_UINT8, static_cast<int32_t>(offset), 0, maximum, initial};
}

constexpr QPXParamInfo floatParam(const char* name, const char* summary, const char* unit,
                                  size_t offset, double minimum, double maximum, double initial) {
  return {name,    summary, unit,   QPX_PARAM_FLOAT, static_cast<int32_t>(offset),
          minimum, maximum, initial};
}

constexpr QPXParamInfo doubleParam(const char* name, const char* summary, const char* unit,
                                   size_t offset, double minimum, double maximum, double initial) {
  return {name,    summary, unit,   QPX_PARAM_DOUBLE, static_cast<int32_t>(offset),
          minimum, maximum, initial};
}

constexpr QPXParamInfo flagParam(const char* name, const char* summary, size_t offset,
                                 bool initial) {
  return {
      name, summary, "", QPX_PARAM_FLAG, static_cast<int32_t>(offset), 0, 1, initial ? 1.0 : 0.0};
}

}  // namespace qpx
