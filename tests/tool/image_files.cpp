#include "image_files.h"

#include <png.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <stdexcept>

#include <jpeglib.h>

namespace qpx::test {

namespace {

constexpr std::string_view kExifPrefix("Exif\0\0", 6);

// libjpeg comes with Debian's tables for unwinding; a test may throw through it.
void throwJpeg(j_common_ptr) { throw std::runtime_error("jpeg"); }
void ignoreJpeg(j_common_ptr, int) {}
void throwPng(png_structp, png_const_charp message) { throw std::runtime_error(message); }
void ignorePng(png_structp, png_const_charp) {}

jpeg_error_mgr* errorsOf(jpeg_error_mgr& errors) {
  jpeg_std_error(&errors);
  errors.error_exit = throwJpeg;
  errors.emit_message = ignoreJpeg;
  return &errors;
}

const uint8_t* bytesOf(const std::string& text) {
  return reinterpret_cast<const uint8_t*>(text.data());
}

std::string textOf(const uint8_t* bytes, size_t count) {
  return {reinterpret_cast<const char*>(bytes), count};
}

void appendPng(png_structp png, png_bytep bytes, size_t count) {
  static_cast<std::string*>(png_get_io_ptr(png))->append(textOf(bytes, count));
}

void takePng(png_structp png, png_bytep to, size_t count) {
  auto* rest = static_cast<std::string_view*>(png_get_io_ptr(png));
  if (count > rest->size()) png_error(png, "end");
  std::memcpy(to, rest->data(), count);
  rest->remove_prefix(count);
}

Image readJpeg(const std::string& file) {
  jpeg_decompress_struct jpeg{};
  jpeg_error_mgr errors{};
  jpeg.err = errorsOf(errors);
  jpeg_create_decompress(&jpeg);
  jpeg_mem_src(&jpeg, bytesOf(file), file.size());
  jpeg_save_markers(&jpeg, JPEG_APP0 + 1, 0xFFFF);
  jpeg_save_markers(&jpeg, JPEG_APP0 + 2, 0xFFFF);
  jpeg_read_header(&jpeg, TRUE);
  jpeg.out_color_space = JCS_RGB;
  jpeg_start_decompress(&jpeg);
  Image image;
  image.width = static_cast<int>(jpeg.output_width);
  image.height = static_cast<int>(jpeg.output_height);
  image.channels = 3;
  image.samples.resize(size_t{jpeg.output_width} * jpeg.output_height * 3);
  for (JSAMPROW row = image.samples.data(); jpeg.output_scanline < jpeg.output_height;
       row += size_t{jpeg.output_width} * 3) {
    jpeg_read_scanlines(&jpeg, &row, 1);
  }
  for (auto marker = jpeg.marker_list; marker; marker = marker->next) {
    const std::string data = textOf(marker->data, marker->data_length);
    if (data.starts_with(kExifPrefix)) image.exif = data.substr(kExifPrefix.size());
  }
  JOCTET* icc = nullptr;
  unsigned count = 0;
  if (jpeg_read_icc_profile(&jpeg, &icc, &count)) image.icc = textOf(icc, count);
  std::free(icc);
  jpeg_finish_decompress(&jpeg);
  jpeg_destroy_decompress(&jpeg);
  return image;
}

Image readPng(const std::string& file) {
  png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, throwPng, ignorePng);
  png_infop info = png_create_info_struct(png);
  std::string_view rest = file;
  png_set_read_fn(png, &rest, takePng);
  png_read_info(png, info);
  Image image;
  image.width = static_cast<int>(png_get_image_width(png, info));
  image.height = static_cast<int>(png_get_image_height(png, info));
  image.channels = png_get_channels(png, info);
  const size_t pitch = png_get_rowbytes(png, info);
  image.samples.resize(pitch * static_cast<size_t>(image.height));
  for (int y = 0; y < image.height; ++y) {
    png_read_row(png, image.samples.data() + pitch * static_cast<size_t>(y), nullptr);
  }
  png_read_end(png, info);
  png_bytep bytes = nullptr;
  png_uint_32 count = 0;
  png_charp name = nullptr;
  int method = 0;
  if (png_get_eXIf_1(png, info, &count, &bytes)) image.exif = textOf(bytes, count);
  if (png_get_iCCP(png, info, &name, &method, &bytes, &count)) image.icc = textOf(bytes, count);
  png_destroy_read_struct(&png, &info, nullptr);
  return image;
}

void setPalette(png_structp png, png_infop info, bool keyed) {
  std::array<png_color, 256> palette{};
  std::array<png_byte, 256> alpha{};
  for (int i = 0; i < 256; ++i) {
    const auto value = static_cast<png_byte>(i);
    palette[static_cast<size_t>(i)] = {value, static_cast<png_byte>(255 - i),
                                       static_cast<png_byte>(i / 2)};
    alpha[static_cast<size_t>(i)] = value;
  }
  png_set_PLTE(png, info, palette.data(), 256);
  if (keyed) png_set_tRNS(png, info, alpha.data(), 256, nullptr);
}

}  // namespace

Image makeImage(int width, int height, int channels,
                const std::function<int(int, int, int)>& sample) {
  Image image{width, height, channels, {}, {}, {}};
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      for (int c = 0; c < channels; ++c) {
        image.samples.push_back(static_cast<uint8_t>(sample(x, y, c)));
      }
    }
  }
  return image;
}

Image randomImage(int width, int height, int channels, uint32_t seed) {
  std::mt19937 random(seed);
  return makeImage(width, height, channels,
                   [&](int, int, int) { return static_cast<int>(random() >> 24); });
}

std::string jpegFile(const Image& image, const JpegOptions& options) {
  jpeg_compress_struct jpeg{};
  jpeg_error_mgr errors{};
  jpeg.err = errorsOf(errors);
  jpeg_create_compress(&jpeg);
  unsigned char* buffer = nullptr;
  unsigned long size = 0;
  jpeg_mem_dest(&jpeg, &buffer, &size);
  jpeg.image_width = static_cast<JDIMENSION>(image.width);
  jpeg.image_height = static_cast<JDIMENSION>(image.height);
  jpeg.input_components = image.channels;
  jpeg.in_color_space =
      image.channels == 1 ? JCS_GRAYSCALE : (image.channels == 4 ? JCS_CMYK : JCS_RGB);
  jpeg_set_defaults(&jpeg);
  if (image.channels == 4) {
    jpeg_set_colorspace(&jpeg, options.adobe ? JCS_YCCK : JCS_CMYK);
    jpeg.write_Adobe_marker = options.adobe ? TRUE : FALSE;
  }
  jpeg_set_quality(&jpeg, options.quality, TRUE);
  jpeg.comp_info[0].h_samp_factor = jpeg.comp_info[0].v_samp_factor = 1;
  if (image.channels == 4) jpeg.comp_info[3].h_samp_factor = jpeg.comp_info[3].v_samp_factor = 1;
  if (options.progressive) jpeg_simple_progression(&jpeg);
  jpeg_start_compress(&jpeg, TRUE);
  if (!image.exif.empty()) {
    const std::string segment = std::string(kExifPrefix) + image.exif;
    jpeg_write_marker(&jpeg, JPEG_APP0 + 1, bytesOf(segment),
                      static_cast<unsigned>(segment.size()));
  }
  if (!image.icc.empty()) {
    jpeg_write_icc_profile(&jpeg, bytesOf(image.icc), static_cast<unsigned>(image.icc.size()));
  }
  for (int y = 0; y < image.height; ++y) {
    JSAMPROW row = const_cast<JSAMPROW>(image.at(0, y));
    jpeg_write_scanlines(&jpeg, &row, 1);
  }
  jpeg_finish_compress(&jpeg);
  jpeg_destroy_compress(&jpeg);
  const std::string file = textOf(buffer, size);
  std::free(buffer);
  return file;
}

std::string pngFile(const Image& image, const PngOptions& options) {
  constexpr std::array kTypes = {0, PNG_COLOR_TYPE_GRAY, PNG_COLOR_TYPE_GRAY_ALPHA,
                                 PNG_COLOR_TYPE_RGB, PNG_COLOR_TYPE_RGB_ALPHA};
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, throwPng, ignorePng);
  png_infop info = png_create_info_struct(png);
  std::string file;
  png_set_write_fn(png, &file, appendPng, [](png_structp) {});
  png_set_IHDR(
      png, info, static_cast<png_uint_32>(image.width), static_cast<png_uint_32>(image.height),
      options.depth,
      options.palette ? PNG_COLOR_TYPE_PALETTE : kTypes[static_cast<size_t>(image.channels)],
      options.interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
      PNG_FILTER_TYPE_DEFAULT);
  if (options.palette) setPalette(png, info, options.keyed);
  if (!image.icc.empty()) {
    png_set_iCCP(png, info, "test", 0, bytesOf(image.icc),
                 static_cast<png_uint_32>(image.icc.size()));
  }
  if (!image.exif.empty()) {
    png_set_eXIf_1(png, info, static_cast<png_uint_32>(image.exif.size()),
                   const_cast<png_bytep>(bytesOf(image.exif)));
  }
  png_write_info(png, info);
  const size_t step = options.depth == 16 ? 2 : 1;
  const auto samples = static_cast<size_t>(image.width * image.channels);
  std::vector<uint8_t> bytes(samples * step * static_cast<size_t>(image.height), 0xFF);
  for (size_t i = 0; i < image.samples.size(); ++i) bytes[i * step] = image.samples[i];
  std::vector<png_bytep> rows;
  for (int y = 0; y < image.height; ++y) {
    rows.push_back(bytes.data() + samples * step * static_cast<size_t>(y));
  }
  png_write_image(png, rows.data());
  png_write_end(png, info);
  png_destroy_write_struct(&png, &info);
  return file;
}

Image readImage(const std::string& file) {
  try {
    if (file.starts_with("\xFF\xD8")) return readJpeg(file);
    if (file.starts_with("\x89PNG")) return readPng(file);
  } catch (const std::runtime_error&) {
  }
  return {};
}

std::pair<int, int> lumaSampling(const std::string& file) {
  jpeg_decompress_struct jpeg{};
  jpeg_error_mgr errors{};
  jpeg.err = errorsOf(errors);
  jpeg_create_decompress(&jpeg);
  jpeg_mem_src(&jpeg, bytesOf(file), file.size());
  jpeg_read_header(&jpeg, TRUE);
  const std::pair<int, int> factors = {jpeg.comp_info[0].h_samp_factor,
                                       jpeg.comp_info[0].v_samp_factor};
  jpeg_destroy_decompress(&jpeg);
  return factors;
}

std::string exifWithOrientation(int orientation, bool thumbnail) {
  std::string tiff("II*\0\x08\0\0\0", 8);
  tiff += std::string("\x01\0\x12\x01\x03\0\x01\0\0\0", 10);
  tiff += static_cast<char>(orientation);
  tiff += std::string("\0\0\0", 3);
  if (!thumbnail) return tiff + std::string(4, '\0');
  // The second directory starts right behind the pointer to it, and is empty.
  return tiff + std::string("\x1A\0\0\0", 4) + std::string("\0\0\0\0\0\0", 6);
}

std::string rgbProfile(size_t bytes) {
  // libpng takes a profile that compresses to very little for a broken one.
  std::mt19937 random(1);
  std::string icc(132, '\0');
  while (icc.size() < bytes) icc += static_cast<char>(random() >> 24);
  for (size_t i = 0; i < 4; ++i) icc[i] = static_cast<char>(bytes >> (24 - 8 * i));
  icc.replace(8, 4, std::string("\x02\x10\0\0", 4));
  icc.replace(12, 12, "mntrRGB XYZ ");
  icc.replace(36, 4, "acsp");
  // D50 as the illuminant, which readers check.
  icc.replace(68, 12, std::string("\0\0\xF6\xD6\0\x01\0\0\0\0\xD3\x2D", 12));
  return icc;  // 132 bytes of header with a count of no tags
}

}  // namespace qpx::test
