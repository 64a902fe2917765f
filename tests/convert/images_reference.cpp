#include "convert/images_reference.h"

#include <algorithm>

namespace qpx::testing {
namespace {

uint8_t byte(int value) { return static_cast<uint8_t>(value < 0 ? 0 : value > 255 ? 255 : value); }

// Shifts that round down, without leaning on what a compiler makes of negative numbers.
int down(int value, int bits) {
  const int divisor = 1 << bits;
  int quotient = value / divisor;
  if (value % divisor != 0 && value < 0) --quotient;
  return quotient;
}

struct Rgb {
  int r, g, b;
};

struct Yuv {
  int y, u, v;
};

bool isRgb(int32_t format) { return format < MCV_YUV; }

Rgb readRgb(const McvPicture& p, int x, int y) {
  const uint8_t* row = p.row(0, y);
  switch (p.image()->format) {
    case MCV_BGR888:
      return {row[3 * x + 2], row[3 * x + 1], row[3 * x]};
    case MCV_RGB888:
      return {row[3 * x], row[3 * x + 1], row[3 * x + 2]};
    case MCV_BGRA8888:
      return {row[4 * x + 2], row[4 * x + 1], row[4 * x]};
    default:
      return {row[4 * x], row[4 * x + 1], row[4 * x + 2]};
  }
}

void writeRgb(McvPicture& p, int x, int y, uint8_t r, uint8_t g, uint8_t b, uint8_t alpha) {
  uint8_t* const row = p.row(0, y);
  const auto put = [&](int at, uint8_t v0, uint8_t v1, uint8_t v2) {
    row[at] = v0;
    row[at + 1] = v1;
    row[at + 2] = v2;
  };
  const auto word = [&](int value) {
    row[2 * x] = static_cast<uint8_t>(value % 256);
    row[2 * x + 1] = static_cast<uint8_t>(value / 256);
  };
  switch (p.image()->format) {
    case MCV_RGB565:
      return word(r / 8 * 2048 + g / 4 * 32 + b / 8);
    case MCV_BGR565:
      return word(b / 8 * 2048 + g / 4 * 32 + r / 8);
    case MCV_BGR888:
      return put(3 * x, b, g, r);
    case MCV_RGB888:
      return put(3 * x, r, g, b);
    case MCV_BGRA8888:
      row[4 * x + 3] = alpha;
      return put(4 * x, b, g, r);
    case MCV_RGBA8888:
      row[4 * x + 3] = alpha;
      return put(4 * x, r, g, b);
    case MCV_ARGB8888:
      row[4 * x] = 0xFF;
      return put(4 * x + 1, r, g, b);
    default:
      return;
  }
}

// The samples that belong to a pixel.
struct Places {
  uint8_t *y, *u, *v;
};

Places placesOf(const McvPicture& p, int x, int y) {
  uint8_t* const luma = p.row(0, y);
  const int pair = x / 2 * 4, odd = x % 2 * 2;
  const auto planes = [&](int u, int v, int cx, int cy) {
    return Places{luma + x, p.row(u, cy) + cx, p.row(v, cy) + cx};
  };
  switch (p.image()->format) {
    case MCV_YUV:
      return {luma + 3 * x, luma + 3 * x + 1, luma + 3 * x + 2};
    case MCV_YUYV:
      return {luma + pair + odd, luma + pair + 1, luma + pair + 3};
    case MCV_YVYU:
      return {luma + pair + odd, luma + pair + 3, luma + pair + 1};
    case MCV_UYVY:
      return {luma + pair + odd + 1, luma + pair, luma + pair + 2};
    case MCV_VYUY:
      return {luma + pair + odd + 1, luma + pair + 2, luma + pair};
    case MCV_I420:
      return planes(1, 2, x / 2, y / 2);
    case MCV_I422V:
      return planes(1, 2, x, y / 2);
    case MCV_I422H:
      return planes(1, 2, x / 2, y);
    case MCV_I444:
      return planes(1, 2, x, y);
    case MCV_YV12:
      return planes(2, 1, x / 2, y / 2);
    case MCV_YV24:
      return planes(2, 1, x, y);
    case MCV_NV12:
      return {luma + x, p.row(1, y / 2) + x / 2 * 2, p.row(1, y / 2) + x / 2 * 2 + 1};
    case MCV_NV21:
      return {luma + x, p.row(1, y / 2) + x / 2 * 2 + 1, p.row(1, y / 2) + x / 2 * 2};
    default:  // LPI422H
      return {luma + x, p.row(1, y) + x / 2 * 2, p.row(1, y) + x / 2 * 2 + 1};
  }
}

Yuv readYuv(const McvPicture& p, int x, int y) {
  const Places at = placesOf(p, x, y);
  return {*at.y, *at.u, *at.v};
}

Yuv toYuv(const Rgb& c, MemberMath math) {
  if (math == MemberMath::fine) {
    const int s = 0x2646 * c.r + 0x4B23 * c.g + 0xE98 * c.b, t = s / 256;
    return {std::min(s / 32768, 255), byte(down((c.b * 128 - t) * 0x483C, 22) + 128),
            byte(down((c.r * 128 - t) * 0x5B4C, 22) + 128)};
  }
  const int y = (19 * c.r + 38 * c.g + 7 * c.b) / 64;
  switch (math) {
    case MemberMath::shifted:
      return {y, byte(down(c.b - y, 1) + 128), byte(down((c.r - y) * 7, 3) + 128)};
    case MemberMath::fifths:
      return {y, byte(down((c.b - y) * 18, 5) + 128), byte(down((c.r - y) * 23, 5) + 128)};
    default:
      return {y, byte(down((c.b - y) * 9, 4) + 128), byte(down((c.r - y) * 91, 7) + 128)};
  }
}

void convertToRgb(const Yuv& c, MemberMath math, McvPicture& dst, int x, int y, uint8_t alpha) {
  const int u = c.u - 128, v = c.v - 128;
  if (math == MemberMath::rounded) {
    writeRgb(dst, x, y, byte(down(32 * c.y + 45 * v + 16, 5)),
             byte(down(32 * c.y - 11 * u - 23 * v + 16, 5)), byte(down(32 * c.y + 57 * u + 16, 5)),
             alpha);
    return;
  }
  const int r = c.y + down(45 * v, 5), b = c.y + down(57 * u, 5);
  const int g = c.y - (down(23 * v, 5) + down(11 * u, 5));
  if (math == MemberMath::crossed) {
    const int first = b < 0 ? 0 : r > 255 ? 255 : r;
    const int third = r < 0 ? 0 : b > 255 ? 255 : b;
    writeRgb(dst, x, y, static_cast<uint8_t>(first & 255), byte(g),
             static_cast<uint8_t>(third & 255), alpha);
    return;
  }
  writeRgb(dst, x, y, byte(r), byte(g), byte(b), alpha);
}

bool sharesColumns(int32_t format) {
  return !isRgb(format) && format != MCV_YUV && format != MCV_I444 && format != MCV_YV24 &&
         format != MCV_I422V;
}

bool sharesRows(int32_t format) {
  return format == MCV_I420 || format == MCV_I422V || format == MCV_YV12 || format == MCV_NV12 ||
         format == MCV_NV21;
}

void copyLuma(const McvPicture& src, McvPicture& dst) {
  for (int y = 0; y < dst.height(); ++y) {
    for (int x = 0; x < dst.image()->pitch[0]; ++x) dst.row(0, y)[x] = src.row(0, y)[x];
  }
}

void toNv41(const McvPicture& src, McvPicture& dst) {
  copyLuma(src, dst);
  for (int j = 0; j < dst.height() / 4; ++j) {
    for (int i = 0; i < dst.width() / 4; ++i) {
      for (int c = 0; c < 2; ++c) {
        const auto at = [&](int dx, int dy) { return src.row(1, 2 * j + dy)[4 * i + 2 * dx + c]; };
        dst.row(1, j)[2 * i + c] = byte((at(0, 0) + at(1, 0) + at(0, 1) + at(1, 1) + 2) / 4);
      }
    }
  }
}

void fromNv41(const McvPicture& src, McvPicture& dst) {
  copyLuma(src, dst);
  const int columns = src.width() / 4, rows = src.height() / 4;
  if (columns == 0 || rows == 0) return;
  for (int j = 0; j < dst.height() / 2; ++j) {
    for (int i = 0; i < dst.width() / 2; ++i) {
      for (int c = 0; c < 2; ++c) {
        const auto at = [&](int column, int row) -> int {
          return src.row(1, std::min(row, rows - 1))[2 * std::min(column, columns - 1) + c];
        };
        const int x = i / 2, y = j / 2;
        int value = at(x, y);
        if (i % 2 == 1 && j % 2 == 0) value = (at(x, y) + at(x + 1, y) + 1) / 2;
        if (i % 2 == 0 && j % 2 == 1) value = (at(x, y) + at(x, y + 1) + 1) / 2;
        if (i % 2 == 1 && j % 2 == 1) {
          value = (at(x, y) + at(x + 1, y) + at(x, y + 1) + at(x + 1, y + 1) + 2) / 4;
        }
        dst.row(1, j)[2 * i + c] = byte(value);
      }
    }
  }
}

}  // namespace

void referenceConvert(const Member& member, const McvPicture& src, McvPicture& dst, uint8_t alpha) {
  if (member.dst == MCV_NV41) return toNv41(src, dst);
  if (member.src == MCV_NV41) return fromNv41(src, dst);
  const bool twoColumns = sharesColumns(member.src) || sharesColumns(member.dst);
  const bool twoRows = sharesRows(member.src) || sharesRows(member.dst);
  const int width = twoColumns ? dst.width() / 2 * 2 : dst.width();
  const int height = twoRows ? dst.height() / 2 * 2 : dst.height();
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      if (isRgb(member.dst)) {
        if (isRgb(member.src)) {
          const Rgb c = readRgb(src, x, y);
          writeRgb(dst, x, y, byte(c.r), byte(c.g), byte(c.b), alpha);
        } else {
          convertToRgb(readYuv(src, x, y), member.math, dst, x, y, alpha);
        }
        continue;
      }
      const Yuv c = isRgb(member.src) ? toYuv(readRgb(src, x, y), member.math) : readYuv(src, x, y);
      const Places at = placesOf(dst, x, y);
      *at.y = byte(c.y);
      // Of the pixels that share a sample it is the first one's.
      if (sharesColumns(member.dst) && x % 2 == 1) continue;
      if (sharesRows(member.dst) && y % 2 == 1) continue;
      *at.u = byte(c.u);
      *at.v = byte(c.v);
    }
  }
}

Hsl referenceHsl(int r, int g, int b) {
  const int most = std::max(r, std::max(g, b)), least = std::min(r, std::min(g, b));
  const int sum = most + least, l = (sum + 1) / 2;
  if (most == least) return {170, 0, byte(l)};
  const auto recip = [](int64_t i) -> int64_t { return i < 2 ? 65535 : 65536 / i; };
  const int delta = most - least;
  char largest = 0;
  if (g < r) {
    largest = r < b ? 'b' : 'r';
  } else {
    largest = g < b ? 'b' : 'g';
  }
  const int base = largest == 'r' ? 0 : largest == 'g' ? 85 : 170;
  const int d = largest == 'r' ? b - g : largest == 'g' ? r - b : g - r;
  const int h = base - down(static_cast<int>(recip(delta) * (delta / 2 + d * 42)), 16);
  const int t = l > 127 ? 510 - sum : sum;
  const int64_t s = recip(t) * (delta * 255 + t / 2) / 65536;
  return {byte(h), byte(static_cast<int>(std::min<int64_t>(s, 255))), byte(l)};
}

}  // namespace qpx::testing
