#include "exif.h"

#include <cstddef>
#include <optional>

namespace qpx::tool {

namespace {

constexpr uint16_t kTagOrientation = 0x0112;
constexpr uint16_t kTagExifDirectory = 0x8769;
constexpr uint16_t kTagPixelWidth = 0xA002;
constexpr uint16_t kTagPixelHeight = 0xA003;
constexpr uint16_t kTypeShort = 3;
constexpr uint16_t kTypeLong = 4;
constexpr size_t kEntrySize = 12;

// Reads numbers of a TIFF structure in its own byte order. Offsets come from the file, so every
// access is checked.
class TiffReader {
 public:
  explicit TiffReader(std::span<const uint8_t> data) : data_(data) {
    if (data.size() < 8) return;
    const bool intel = data[0] == 'I' && data[1] == 'I';
    const bool motorola = data[0] == 'M' && data[1] == 'M';
    bigEndian_ = motorola;
    valid_ = (intel || motorola) && number(2, 2) == 42;
  }

  bool valid() const { return valid_; }
  bool bigEndian() const { return bigEndian_; }

  bool holds(size_t offset, size_t bytes) const {
    return offset <= data_.size() && bytes <= data_.size() - offset;
  }

  // 0 for what lies outside.
  uint32_t number(size_t offset, size_t bytes) const {
    if (!holds(offset, bytes)) return 0;
    uint32_t value = 0;
    for (size_t i = 0; i < bytes; ++i) {
      value = value << 8 | data_[offset + (bigEndian_ ? i : bytes - 1 - i)];
    }
    return value;
  }

  // Where the entry of a tag starts in the directory at `directory`.
  std::optional<size_t> find(size_t directory, uint16_t tag) const {
    const size_t count = number(directory, 2);
    for (size_t i = 0; i < count; ++i) {
      const size_t entry = directory + 2 + i * kEntrySize;
      if (!holds(entry, kEntrySize)) return std::nullopt;
      if (number(entry, 2) == tag) return entry;
    }
    return std::nullopt;
  }

  size_t firstDirectory() const { return number(4, 4); }

 private:
  std::span<const uint8_t> data_;
  bool bigEndian_ = false;
  bool valid_ = false;
};

void store(std::span<uint8_t> data, const TiffReader& reader, size_t offset, size_t bytes,
           uint32_t value) {
  if (!reader.holds(offset, bytes)) return;
  for (size_t i = 0; i < bytes; ++i) {
    const size_t place = offset + (reader.bigEndian() ? bytes - 1 - i : i);
    data[place] = static_cast<uint8_t>(value >> (8 * i));
  }
}

// Replaces the value of an entry with one number of 16 or 32 bits; entries of any other type stay.
void storeNumber(std::span<uint8_t> data, const TiffReader& reader, std::optional<size_t> entry,
                 uint32_t value) {
  if (!entry || reader.number(*entry + 4, 4) != 1) return;
  const uint32_t type = reader.number(*entry + 2, 2);
  if (type == kTypeShort && value <= 0xFFFF) store(data, reader, *entry + 8, 2, value);
  if (type == kTypeLong) store(data, reader, *entry + 8, 4, value);
}

}  // namespace

int exifOrientation(std::span<const uint8_t> tiff) {
  const TiffReader reader(tiff);
  if (!reader.valid()) return 1;
  const std::optional<size_t> entry = reader.find(reader.firstDirectory(), kTagOrientation);
  if (!entry) return 1;
  // The standard says 16 bits; some writers store 32.
  const uint32_t type = reader.number(*entry + 2, 2);
  if (type != kTypeShort && type != kTypeLong) return 1;
  const uint32_t value = reader.number(*entry + 8, type == kTypeShort ? 2 : 4);
  return value >= 1 && value <= 8 ? static_cast<int>(value) : 1;
}

void describeUpright(std::span<uint8_t> tiff, int32_t width, int32_t height) {
  const TiffReader reader(tiff);
  if (!reader.valid()) return;
  const size_t directory = reader.firstDirectory();
  storeNumber(tiff, reader, reader.find(directory, kTagOrientation), 1);
  if (const std::optional<size_t> entry = reader.find(directory, kTagExifDirectory)) {
    const size_t details = reader.number(*entry + 8, 4);
    storeNumber(tiff, reader, reader.find(details, kTagPixelWidth), static_cast<uint32_t>(width));
    storeNumber(tiff, reader, reader.find(details, kTagPixelHeight), static_cast<uint32_t>(height));
  }
  // The thumbnail hangs on the second directory, which the first one points to behind its entries.
  const size_t next = directory + 2 + reader.number(directory, 2) * kEntrySize;
  store(tiff, reader, next, 4, 0);
}

}  // namespace qpx::tool
