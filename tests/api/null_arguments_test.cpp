// Null where an address is wanted: every exported function answers its code and does nothing.
#include <gtest/gtest.h>
#include <qpx/qpx.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

#include "api/convert_null_calls.h"
#include "support/picture.h"

namespace qpx::testing {
namespace {

// Calls one function with nulls; true when it answered as documented.
struct NullCall {
  const char* name;
  bool (*holds)();
};

#define QPX_NULL_CALL(name, ...)           \
  {                                        \
#name, [] { return name __VA_ARGS__; } \
  }
#define QPX_NULL_VOID_CALL(name, ...) \
  {                                   \
#name, [] {                       \
      name __VA_ARGS__;               \
      return true;                    \
    }   \
  }

constexpr NullCall kImageCalls[] = {
    QPX_NULL_CALL(mbf_GetPixInfo, (QPX_FORMAT_BGR24, nullptr) == 2),
    QPX_NULL_CALL(mbf_GetPixFormat, (nullptr) == 2),
    QPX_NULL_CALL(mbf_GetRGBPixelInfo, (nullptr) == 2),
    QPX_NULL_CALL(mbf_GetYUVPixelInfo, (nullptr) == 2),
    QPX_NULL_CALL(mbf_GetMatrix, (nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(MBitmapAlloc, (nullptr) == 2),
    QPX_NULL_CALL(MBitmapAllocEx, (nullptr, nullptr) == 2),
    QPX_NULL_CALL(MBitmapAlloc2, (nullptr) == 2),
    QPX_NULL_CALL(UTILS_MdBitmapAlloc, (nullptr) == 2),
    QPX_NULL_CALL(MBitmapFree, (nullptr) == 2),
    QPX_NULL_CALL(MBitmapFree2, (nullptr) == 2),
    QPX_NULL_CALL(MBitmapSetAlpha, (nullptr, 1) == 2),
    QPX_NULL_CALL(BuildQEMOOFFSCREEN, (nullptr, nullptr) == 2),
    QPX_NULL_VOID_CALL(UTIL_MBitmapFree, (nullptr)),
    QPX_NULL_VOID_CALL(MSwapRect, (nullptr)),
    QPX_NULL_VOID_CALL(RectCopy, (nullptr, nullptr)),
    QPX_NULL_VOID_CALL(FlipUpDownRect, (nullptr, nullptr)),
    QPX_NULL_VOID_CALL(MFlipLeftRightRect, (nullptr, nullptr)),
};

constexpr NullCall kImageConversionCalls[] = {
    QPX_NULL_CALL(mcvColorCvt, (nullptr, nullptr, 0) == -1),
    QPX_NULL_CALL(mcvColorBGR888toBGR565u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorBGR888toRGB565u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorBGR888toARGB8888u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorRGB888toBGR565u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorRGB888toRGB565u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorRGB888toARGB8888u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorRGBA8888toBGR888u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorRGB888toBGR888u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorRGB888toBGR888u8_2, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorBGR888toYUYVu8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorBGR888toYVYUu8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorBGR888toUYVYu8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorBGR888toVYUYu8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorBGR888toI420u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorBGR888toI422Hu8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorBGR888toNV12u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorBGR888toNV21u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorRGB888toYUYVu8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorRGB888toYVYUu8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorRGB888toUYVYu8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorRGB888toVYUYu8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorRGB888toI420u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorRGB888toI422Hu8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorRGB888toYV24u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorRGB888toNV12u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorRGB888toNV21u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorBGRA8888toI420u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorBGRA8888toNV12u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorBGRA8888toNV21u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorRGBA8888toYUYVu8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorRGBA8888toI420u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorRGBA8888toNV12u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorRGBA8888toNV21u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorBGRA8888toLPI422Hu8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorRGBA8888toLPI422Hu8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorYUYVtoBGR888u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorYUYVtoRGB888u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorI420toBGR888u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorI420toRGB888u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorYV12toBGR888u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorYV12toRGB888u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorNV21toRGB888u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorYUYVtoRGBA8888u8, (nullptr, nullptr, 0) == -1),
    QPX_NULL_CALL(mcvColorI420toBGRA8888u8, (nullptr, nullptr, 0) == -1),
    QPX_NULL_CALL(mcvColorI420toRGBA8888u8, (nullptr, nullptr, 0) == -1),
    QPX_NULL_CALL(mcvColorNV12toBGRA8888u8, (nullptr, nullptr, 0) == -1),
    QPX_NULL_CALL(mcvColorNV12toRGBA8888u8, (nullptr, nullptr, 0) == -1),
    QPX_NULL_CALL(mcvColorNV21toBGRA8888u8, (nullptr, nullptr, 0) == -1),
    QPX_NULL_CALL(mcvColorLPI422HtoBGRA8888u8, (nullptr, nullptr, 0) == -1),
    QPX_NULL_CALL(mcvColorLPI422HtoRGBA8888u8, (nullptr, nullptr, 0) == -1),
    QPX_NULL_CALL(mcvColorNV21toBGR888u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorNV21toRGBA8888u8, (nullptr, nullptr, 0) == -1),
    QPX_NULL_CALL(mcvColorNV21ToRGBA8888u8_ARMv7a, (nullptr, nullptr, 0) == -1),
    QPX_NULL_CALL(mcvColorI420toYUYVu8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorI422VtoYUYVu8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorI422HtoYUYVu8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorI444toYUYVu8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorNV12toYUYVu8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorNV21toYUYVu8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorYUYVtoI420u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorYUYVtoI420u8_2, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorYUYVtoNV12u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorYUYVtoNV12u8_v2, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorYUYVtoNV21u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorYUYVtoNV21u8_v2, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorI422VtoI420u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorI422HtoI420u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorI444toI420u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorNV12toI420u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorNV21toI420u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorI422VtoNV12u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorI422HtoNV12u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorI444toNV12u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorYUVtoNV21u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorI420toNV21u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorI422VtoNV21u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorI422HtoNV21u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorI444toNV21u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorNV12toNV21u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorYV12toNV21u8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorYV12toNV21u8_2, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorI422VtoLPI422Hu8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorI422HtoLPI422Hu8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorI444toLPI422Hu8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorNV21toYUVu8, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorNV21toNV41, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorNV21toNV41_2, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorNV41toNV21, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorNV41toNV21_2, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorBGR888toHSL888u8, (nullptr, nullptr, 3, 3, 9, 9) == -1),
    QPX_NULL_CALL(mcvColorBGR565toHSL888u8, (nullptr, nullptr, 3, 3, 9, 9) == -1),
    QPX_NULL_CALL(mcvColorRGB565toHSL888u8, (nullptr, nullptr, 3, 3, 9, 9) == -1),
    QPX_NULL_CALL(mcvColorI420toHSL888u8, (nullptr, nullptr, 3, 3, 9, 9) == -1),
};

constexpr NullCall kParallelCalls[] = {
    QPX_NULL_CALL(mcvParallelUninit, (nullptr) == -1),
    QPX_NULL_CALL(mcvParallelEngineCores, (nullptr) == 0),
    QPX_NULL_CALL(mcvAddTask, (nullptr, nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvWaitTask, (nullptr, 0) == -1),
    QPX_NULL_VOID_CALL(mcvTryFireCpu, (nullptr)),
    QPX_NULL_VOID_CALL(mcvTryRestoreCpu, (nullptr)),
    QPX_NULL_VOID_CALL(mcvMemFree, (nullptr, nullptr)),
    QPX_NULL_CALL(mcvColorCvtFunc, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorCvtProcess_MultiThreads, (nullptr, nullptr, nullptr, nullptr) == -1),
    QPX_NULL_CALL(mcvColorCvtUnInit_MultiThreads, (nullptr, nullptr) == -1),
};

constexpr NullCall kRotationCalls[] = {
    QPX_NULL_CALL(QPX_GetRotateDstSize, (nullptr, 10, nullptr, nullptr) == 2),
    QPX_NULL_CALL(QPX_RotateImage, (nullptr, 10, 0, nullptr) == 2),
    QPX_NULL_CALL(QPXRotateCalcDstSize, (nullptr, 10, nullptr, nullptr) == 2),
    QPX_NULL_CALL(QPXRotateCalcInternalRect, (nullptr, nullptr, 10, nullptr) == 2),
    QPX_NULL_CALL(QPXRotateCreate, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(QPXRotateCalcRect, (nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(QPXRotateProcess, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(QPXRotateDestroy, (nullptr) == 2),
    QPX_NULL_CALL(QPX_Straighten, (nullptr, nullptr, 0.1, 1) == 2),
};

uint8_t unownedTable[768];

constexpr NullCall kAdjustCalls[] = {
    QPX_NULL_CALL(Levels_RGB, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(Curve_RGB, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(newBrightnessContrast_RGB, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(exposure_RGB, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(HighlightBrightDarkShadow_RGB, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(SeparateTone_RGB, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(ChannelMixer_RGB, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(ColorBalance_RGB, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(ColorTemperature_RGB, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(Saturation_RGB, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(Saturation_NV21, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(HSLColor_RGB, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(NaturalSaturation_RGB, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(HSBAdjust_RGB, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(NewNaturalSaturation_RGB, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(GaussBlur_RGB, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(SharpenUSM_RGB, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(Definition_RGB, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(SelectiveColor_RGB, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(SelectiveColorFilter1995_RGB, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(SelectiveColorAbsolute_RGB, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(RemoveEdge_RGB, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(ComplexionOptimizing_RGB, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(ComplexionOptimizing_NV21, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(ComplexionOptimizing_YUYV, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(SkinTone_RGB, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(_SkinWhitenByMask_YUV420_VUVU, (nullptr, nullptr, 0, nullptr, 256) == 2),
    QPX_NULL_CALL(_SkinWhitenByMask_YUV420_VUVU_neon, (nullptr, nullptr, 0, nullptr, 256) == 2),
    QPX_NULL_CALL(_SkinWhitenByMask_YUV420_VUVU_ARMv7, (nullptr, nullptr, 0, nullptr, 256) == 2),
    QPX_NULL_CALL(UpdateBoxSums24, (8, 0, 8, nullptr, nullptr, 0, 3) == 2),
    QPX_NULL_CALL(UpdateBoxSums32, (8, 0, 8, nullptr, nullptr, 0, 3) == 2),
};

constexpr NullCall kEngineCalls[] = {
    QPX_NULL_CALL(QPXCreate, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(QPXCreateIn, (nullptr, nullptr, nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(QPXCreateMerge, (nullptr, nullptr, nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(QPXDestroy, (nullptr) == 0),
    QPX_NULL_CALL(QPXDestroyIn, (nullptr) == 0),
    QPX_NULL_CALL(QPXDestroyMerge, (nullptr) == 0),
    QPX_NULL_CALL(QPXFreeMemory, (nullptr) == 0),
    QPX_NULL_CALL(QPXProcess, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(QPXMerge, (nullptr, nullptr, nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(QPXProcessIn, (nullptr, nullptr, nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(QPXMultProcessIn, (nullptr, nullptr, nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(QPXCalcRect, (nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(QPXCalcRectReset, (nullptr) == 2),
    QPX_NULL_CALL(QPXGetMaxOutLine, (nullptr, 1, nullptr) == 2),
    QPX_NULL_CALL(QPXGetProPerty, (nullptr, 0x9200, 0, nullptr, 4) == 2),
    QPX_NULL_CALL(QPXSetProPerty, (nullptr, 0x9200, 1, nullptr) == 2),
    QPX_NULL_CALL(PixmorphGetVersionInfo, (nullptr, nullptr, nullptr, nullptr, 16) == 0),
    QPX_NULL_CALL(QPXMergeable, (QPX_FORMAT_BGR24, nullptr) == 0),
    QPX_NULL_CALL(QPXEffectProcess_C, (nullptr, nullptr, nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(QPXEffectProcess_C_Optimized,
                  (nullptr, nullptr, nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(QPXEffectProcess_C_Slow,
                  (nullptr, nullptr, nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(QPX_GetEffectInfo, (0, nullptr) == 2),
    QPX_NULL_CALL(BuildSplineCurve, (nullptr, nullptr, 2, nullptr) == 2),
    QPX_NULL_CALL(ComposeStageLut, (nullptr, unownedTable, 5, 256) == 2),
    QPX_NULL_VOID_CALL(QPX_SetLogSink, (nullptr, nullptr)),
};

constexpr NullCall kStreamCalls[] = {
    QPX_NULL_CALL(MStreamOpenFromFileS, (nullptr, 1) == nullptr),
    QPX_NULL_CALL(MStreamOpenFromFileW, (nullptr, 1) == nullptr),
    QPX_NULL_CALL(MStreamOpenFromMemoryBlock, (nullptr, -1) == nullptr),
    QPX_NULL_CALL(MStreamClose, (nullptr) == 0),
    QPX_NULL_CALL(MStreamRead, (nullptr, nullptr, 1) == 0),
    QPX_NULL_CALL(MStreamWrite, (nullptr, nullptr, 1) == 0),
    QPX_NULL_CALL(MStreamFlush, (nullptr) == -1),
    QPX_NULL_CALL(MStreamSeek, (nullptr, 0, 0) == 1),
    QPX_NULL_CALL(MStreamTell, (nullptr) == -1),
    QPX_NULL_CALL(MStreamGetSize, (nullptr) == -1),
    QPX_NULL_CALL(MStreamSetSize, (nullptr, 0) == -1),
    QPX_NULL_CALL(MStreamCopy, (nullptr, nullptr, 1) == 0),
    QPX_NULL_CALL(MStreamFileGetSizeS, (nullptr) == -1),
    QPX_NULL_CALL(MStreamFileGetSize64S, (nullptr) == -1),
    QPX_NULL_CALL(MStreamFileGetSize64W, (nullptr) == -1),
    QPX_NULL_CALL(MStreamFileExistsS, (nullptr) == 0),
    QPX_NULL_CALL(MStreamFileExistsW, (nullptr) == 0),
    QPX_NULL_CALL(MStreamFileCreateS, (nullptr) == nullptr),
    QPX_NULL_CALL(MStreamFileCreateW, (nullptr) == nullptr),
    QPX_NULL_CALL(MStreamFileRenameS, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(MStreamFileMoveS, (nullptr, nullptr) == -1),
    QPX_NULL_CALL(MStreamFileDeleteS, (nullptr) == -1),
    QPX_NULL_CALL(MStreamFileCopyS, (nullptr, nullptr, 1) == 0),
    QPX_NULL_CALL(MStreamOpenFromFile64S, (nullptr, 1) == nullptr),
    QPX_NULL_CALL(MStreamOpenFromFile64W, (nullptr, 1) == nullptr),
    QPX_NULL_CALL(MStreamClose64, (nullptr) == 0),
    QPX_NULL_CALL(MStreamRead64, (nullptr, nullptr, 1) == 0),
    QPX_NULL_CALL(MStreamWrite64, (nullptr, nullptr, 1) == 0),
    QPX_NULL_CALL(MStreamSeek64, (nullptr, 0, 0) == -1),
    QPX_NULL_CALL(MStreamTell64, (nullptr) == -1),
    QPX_NULL_CALL(MStreamGetSize64, (nullptr) == -1),
    QPX_NULL_CALL(STRMEMClose, (nullptr) == 0),
    QPX_NULL_CALL(STRMEMRead, (nullptr, nullptr, 1) == 0),
    QPX_NULL_CALL(STRMEMWrite, (nullptr, nullptr, 1) == 0),
    QPX_NULL_CALL(STRMEMSeek, (nullptr, 0, 0) == 1),
    QPX_NULL_CALL(STRMEMGetSize, (nullptr) == -1),
    QPX_NULL_CALL(STRMEMTell, (nullptr) == -1),
};

constexpr NullCall kStringCalls[] = {
    QPX_NULL_CALL(MStoi, (nullptr) == 0),
    QPX_NULL_CALL(MStol, (nullptr) == 0),
    QPX_NULL_CALL(MStoi64, (nullptr) == 0),
    QPX_NULL_CALL(MSCsToUL, (nullptr, nullptr, 10) == 0),
    QPX_NULL_CALL(MSCsLen, (nullptr) == 0),
    QPX_NULL_CALL(MSCsStr, (nullptr, nullptr) == nullptr),
    QPX_NULL_CALL(MSCsChr, (nullptr, 'q') == nullptr),
    QPX_NULL_CALL(MSCsRChr, (nullptr, 'q') == nullptr),
    QPX_NULL_CALL(MSCsCat, (nullptr, nullptr) == nullptr),
    QPX_NULL_CALL(MSCsCpy, (nullptr, nullptr) == nullptr),
    QPX_NULL_CALL(MSCsNCpy, (nullptr, nullptr, 1) == nullptr),
    QPX_NULL_CALL(MSCsCmp, (nullptr, "q") == -1),
    QPX_NULL_CALL(MSCsNCmp, (nullptr, "q", 1) == -1),
    QPX_NULL_CALL(MSCsICmp, (nullptr, "q") == -1),
    QPX_NULL_CALL(MSCsNICmp, (nullptr, "q", 1) == -1),
    QPX_NULL_CALL(MSSprintf, (nullptr, "q") == -1),
    QPX_NULL_CALL(MSCsMakeLower, (nullptr) == 2),
    QPX_NULL_CALL(MSCsMakeUpper, (nullptr) == 2),
    QPX_NULL_CALL(MWCsMakeLower, (nullptr) == 2),
    QPX_NULL_CALL(MWCsMakeUpper, (nullptr) == 2),
    QPX_NULL_CALL(MWCsLen, (nullptr) == 0),
    QPX_NULL_CALL(MWCsStr, (nullptr, nullptr) == nullptr),
    QPX_NULL_CALL(MWCsCat, (nullptr, nullptr) == nullptr),
    QPX_NULL_CALL(MWCsCpy, (nullptr, nullptr) == nullptr),
    QPX_NULL_CALL(getWideChar, (nullptr, nullptr) == 0),
    QPX_NULL_CALL(MMultiByteToWideChar, (0, nullptr, 1, nullptr, 1) == 0),
    QPX_NULL_CALL(MWideCharToMultiByte, (0, nullptr, 1, nullptr, 1) == 0),
    QPX_NULL_CALL(MCharToWChar, (nullptr, nullptr, 1) == 0),
    QPX_NULL_CALL(MWCharToChar, (nullptr, nullptr, 1) == 0),
    QPX_NULL_CALL(MUnicodeToUTF8, (nullptr, nullptr, 1) == 0),
    QPX_NULL_CALL(MUTF8ToUnicode, (nullptr, nullptr, 1) == 0),
};

constexpr NullCall kToolkitCalls[] = {
    QPX_NULL_CALL(bilinearCorners, (nullptr, nullptr, 1, 2, 3, 4, 0.5, 0.5) == 0),
    QPX_NULL_VOID_CALL(ApplyBlackAndWhiteWithTint,
                       (1, 1, 1, 1, 1, 1, nullptr, nullptr, nullptr, 9, 8, 7)),
    QPX_NULL_VOID_CALL(ApplyLumaTint, (nullptr, nullptr, nullptr, 9, 8, 7)),
    QPX_NULL_CALL(ApplyIntensityOfFilteredImage, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(Feather, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(DarkCornerOptimized, (nullptr, nullptr, nullptr, nullptr) == 2),
};

constexpr int32_t kBadPngArgument = 34194;

constexpr NullCall kPngCalls[] = {
    QPX_NULL_CALL(QPX_DecodePNG, (nullptr, 0, nullptr) == -1),
    QPX_NULL_CALL(QPX_png_create, (nullptr, nullptr) == kBadPngArgument),
    QPX_NULL_CALL(QPX_png_destroy, (nullptr) == kBadPngArgument),
    QPX_NULL_CALL(QPX_png_get_property, (nullptr, 1, nullptr) == kBadPngArgument),
    QPX_NULL_CALL(QPX_png_decode, (nullptr, nullptr) == kBadPngArgument),
    QPX_NULL_CALL(PNG_DecodeInit, (nullptr, nullptr) == 2),
    QPX_NULL_CALL(PNG_DecodeUninit, (nullptr) == 2),
    QPX_NULL_CALL(PNG_DecodeGetPngInfo, (nullptr, nullptr) == 2),
    QPX_NULL_CALL(PNG_DecodeGetInfoHeader, (nullptr, nullptr) == 2),
    QPX_NULL_CALL(PNG_DecodeGetColorTab, (nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(PNG_DecodeSetRGBInvert, (nullptr) == 2),
    QPX_NULL_CALL(PNG_DecodeSetDimension, (nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(PNG_DecodeScanLines, (nullptr, nullptr, 1, nullptr, nullptr) == 2),
    QPX_NULL_CALL(PNG_GetInfoFromFile, (nullptr, nullptr, nullptr, nullptr) == 2),
};

// Kernels, which all take a stage, a rectangle and two sets of row tables.
constexpr NullCall kLookKernelCalls[] = {
    QPX_NULL_CALL(Sepia_RGB24, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(Sepia_NV21, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(Sepia_I420, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(SingleColor_RGB24, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(SingleColor_RGB565, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(SingleColor_NV21, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(SingleColor_I420, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(Polaroid_RGB24, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(Polaroid_RGB565, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(Polaroid_NV21, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(Polaroid_I420, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(Nostalgic_RGB24, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(Nostalgic_NV21, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(Nostalgic_I420, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(Vintage_RGB, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(Vintage_RGB24, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(Vintage_NV21, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(Vintage_I420, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(DeepQuite_RGB24, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(DeepQuite_NV21, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(DeepQuite_I420, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(ColdBlue_RGB24, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(ColdBlue_NV21, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(ColdBlue_I420, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(Gothic_RGB24, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(Gothic_NV21, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(Gothic_I420, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(Purple_rgb24, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(Purple_NV21, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(Purple_I420, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(VintageBlackWhite_rgb24, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(VintageBlackWhite_NV21, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(VintageBlackWhite_I420, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(ColorGradient_RGB24, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(ColorGradient_NV21, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(ColorGradient_I420, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(Sunny_RGB24, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(Sunny_NV21, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(Sunny_I420, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(CurveBrightness_RGB24, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(CurveBrightness_NV21, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(ReversalFilm_RGB, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(BLACKWHITE2_RGB24, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(BLACKWHITE2_NV21, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(BLACKWHITE2_YUYV, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(FINEFOOD_RGB24, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(FINEFOOD_NV21, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(FINEFOOD_YUYV, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(FleetingTime_RGB, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(FleetingTime_NV21, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(FleetingTime_YUYV, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(NewReversal_RGB, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(NewReversal_NV21, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(NewReversal_YUYV, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(WarmLomo_RGB, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(WarmLomo_NV21, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(WarmLomo_YUYV, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(ColdLomo_RGB, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(ColdLomo_NV21, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(ColdLomo_YUYV, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(SoftPink_RGB, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(SoftPink_NV21, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(SoftPink_YUYV, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(RIXI_RGB, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(RIXI_NV21, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(RIXI_YUYV, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(RE_NEWREVERSAL_RGB24, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(RE_NEWREVERSAL_NV21, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(RE_FleetingTime_RGB24, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(RE_FleetingTime_NV21, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(RE_WarmLomo_RGB24, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(RE_WarmLomo_NV21, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(RE_SoftPink_RGB24, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(RE_SoftPink_NV21, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(RE_RIXI_RGB24, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(RE_RIXI_NV21, (nullptr, nullptr, nullptr, nullptr) == 2),
};

constexpr NullCall kEtcCalls[] = {
    QPX_NULL_CALL(TEXPK_Compress_ETC, (nullptr, nullptr, 0) == 2),
    QPX_NULL_CALL(TEXPK_Uncompress_ETC, (nullptr, nullptr) == 2),
    QPX_NULL_CALL(TEXPK_Crop_ETC, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(TEXPK_Merge_ETC, (nullptr, nullptr, nullptr, nullptr, nullptr, 0.5f) == 2),
    QPX_NULL_CALL(TEXPKcompressBlockDiffAveragePerceptual,
                  (nullptr, 4, 4, 0, 0, nullptr, nullptr) == 2),
    QPX_NULL_CALL(TEXPKcompressBlockDiffFlipAveragePerceptual,
                  (nullptr, 4, 4, 0, 0, nullptr, nullptr) == 2),
    QPX_NULL_CALL(TEXPKcompressBlockDiffFlipCombinedPerceptual,
                  (nullptr, 4, 4, 0, 0, nullptr, nullptr) == 2),
    QPX_NULL_CALL(TEXPKcompressBlockDiffFlipSlowPerceptual,
                  (nullptr, 4, 4, 0, 0, nullptr, nullptr) == 2),
    QPX_NULL_CALL(TEXPKdecompressBlockDiffFlip, (0, 0, nullptr, 4, 4, 0, 0) == 2),
    QPX_NULL_CALL(TEXPKcalcBlockPerceptualErrorRGB, (nullptr, nullptr, 4, 4, 0, 0) == -1),
    QPX_NULL_CALL(TEXPKcomputeAverageColor2x4noQuantFloat, (nullptr, 4, 4, 0, 0, nullptr) == 2),
    QPX_NULL_CALL(TEXPKcomputeAverageColor4x2noQuantFloat, (nullptr, 4, 4, 0, 0, nullptr) == 2),
    QPX_NULL_CALL(TEXPKquantize555ColorCombinedPerceptual, (nullptr, nullptr) == 2),
    QPX_NULL_CALL(TEXPKquantize444ColorCombinedPerceptual, (nullptr, nullptr) == 2),
    QPX_NULL_CALL(TEXPKcompressBlockWithTable2x4percep,
                  (nullptr, 4, 4, 0, 0, nullptr, 0, nullptr) == -1),
    QPX_NULL_CALL(TEXPKcompressBlockWithTable4x2percep,
                  (nullptr, 4, 4, 0, 0, nullptr, 0, nullptr) == -1),
    QPX_NULL_CALL(TEXPKtryalltables_3bittable2x4percep,
                  (nullptr, 4, 4, 0, 0, nullptr, nullptr, nullptr) == -1),
    QPX_NULL_CALL(TEXPKtryalltables_3bittable4x2percep,
                  (nullptr, 4, 4, 0, 0, nullptr, nullptr, nullptr) == -1),
    QPX_NULL_CALL(TEXPKABlock, (0, 0, 0, 0, nullptr, nullptr, 512, 512) == 2),
    QPX_NULL_CALL(read_big_endian_4byte_word, (nullptr) == 0),
};

constexpr NullCall kPlatformCalls[] = {
    QPX_NULL_CALL(MThreadCreate, (nullptr, nullptr) == 0),
    QPX_NULL_CALL(MMutexDestroy, (nullptr) == 0),
    QPX_NULL_CALL(MMutexLock, (nullptr) == 2),
    QPX_NULL_CALL(MMutexUnlock, (nullptr) == 2),
    QPX_NULL_CALL(MEventDestroy, (nullptr) == 2),
    QPX_NULL_CALL(MEventSignal, (nullptr) == 2),
    QPX_NULL_CALL(MEventReset, (nullptr) == 2),
    QPX_NULL_CALL(MEventWait, (nullptr, 0) == 2),
    QPX_NULL_CALL(HEAPCK_MemAlloc, (nullptr, -1, nullptr, 0, nullptr) == nullptr),
    QPX_NULL_VOID_CALL(HEAPCK_MemFree, (nullptr, nullptr)),
    QPX_NULL_VOID_CALL(HEAPCK_MemConclusion, (nullptr)),
};

constexpr NullCall kPostProcessCalls[] = {
    QPX_NULL_CALL(ANY_ANY_Bilinear_No_Table,
                  (nullptr, nullptr, nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(ANY_ANY_C_SLOW, (nullptr, nullptr, nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(MPPCreate, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(MPPAlign, (nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(MPProcess, (nullptr, nullptr, nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(MPProcessEx,
                  (nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(MPPDestroy, (nullptr) == 0),
    QPX_NULL_CALL(PostProcessGetVersionInfo, () == 0),
};

constexpr NullCall kCutoutCalls[] = {
    QPX_NULL_CALL(KmeansSegColor, (nullptr, 1, 1, nullptr) == 2),
    QPX_NULL_CALL(QPX_ContourTracing, (nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(STRKM_Create, (nullptr, nullptr) == 2),
    QPX_NULL_CALL(STRKM_AddLine, (nullptr, 0, nullptr, 1) == 2),
    QPX_NULL_CALL(STRKM_ResetLine, (nullptr) == 2),
    QPX_NULL_CALL(STRKM_Process, (nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(STRKM_Destroy, (nullptr) == 0),
};

constexpr NullCall kSegmentCalls[] = {
    QPX_NULL_CALL(MaxFlowInt_Create, (nullptr, 1, 1) == 2),
    QPX_NULL_CALL(MaxFlowInt_Initialize, (nullptr) == 2),
    QPX_NULL_CALL(MaxFlowInt_Destroy, (nullptr) == 0),
    QPX_NULL_CALL(MaxFlowInt_AddNode, (nullptr) == 2),
    QPX_NULL_CALL(MaxFlowInt_AddTWeights, (nullptr, 0, nullptr) == 2),
    QPX_NULL_CALL(MaxFlowInt_AddEdge, (nullptr, 0, 1, 1, 1) == 2),
    QPX_NULL_CALL(MaxFlowInt_GetMaxFlow, (nullptr) == 2),
    QPX_NULL_CALL(MaxFlowInt_GetMaxFlowFast, (nullptr) == 2),
    QPX_NULL_CALL(MaxFlowInt_GetNodeType, (nullptr, 0) == 2),
    QPX_NULL_CALL(MaxFlowInt_GetTrcap, (nullptr, 0) == 2),
    QPX_NULL_CALL(MaxFlowInt_SetTrcap, (nullptr, 0, nullptr) == 2),
    QPX_NULL_CALL(MaxFlowInt_ModifyNode, (nullptr, 0, 1) == 2),
    QPX_NULL_CALL(MaxFlowInt_MarkNode, (nullptr, 0) == 2),
    QPX_NULL_CALL(Watershed_PreSegmentation, (nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(Watershed_GetRegionColor, (nullptr, nullptr, 1, nullptr) == 2),
    QPX_NULL_CALL(Watershed_GetRegionAdjacentEdge, (nullptr, 1, 1, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(Watershed_GetSegmentationBmp, (nullptr, nullptr, 1, nullptr) == 2),
};

constexpr NullCall kSmearCalls[] = {
    QPX_NULL_CALL(QPX_MotionBlur, (nullptr, nullptr, 0, 1, nullptr) == 2),
    QPX_NULL_CALL(ReTouch, (nullptr, nullptr, nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(QPX_WaterFall_Create, (nullptr, nullptr, nullptr) == 2),
    QPX_NULL_CALL(QPX_WaterFall_Process, (nullptr, nullptr, 0, nullptr, nullptr) == 2),
    QPX_NULL_CALL(QPX_WaterFall_ProcessAsync, (nullptr, nullptr, 0, nullptr) == 2),
    QPX_NULL_CALL(QPX_WaterFall_Dostep, (nullptr, 0, nullptr, nullptr) == 2),
    QPX_NULL_CALL(QPX_WaterFall_Destroy, (nullptr) == 2),
    QPX_NULL_CALL(QPX_WaterFall_SetProp, (nullptr, 1, nullptr, 4) == 2),
    QPX_NULL_CALL(QPX_WaterFall_GetProp, (nullptr, 1, nullptr, 4) == 2),
    QPX_NULL_CALL(QPX_Waterfall, (nullptr, nullptr, nullptr, 1, 1, nullptr) == 2),
};

#undef QPX_NULL_CALL
#undef QPX_NULL_VOID_CALL

// Exports that take no address.
constexpr const char* kWithoutPointers[] = {"ApplyBlackAndWhite",
                                            "ApplyBlackAndWhiteForChalkBoard",
                                            "MergeWithAlpha",
                                            "Multiply",
                                            "Screen",
                                            "VintageBlend",
                                            "alphaPixel",
                                            "darken",
                                            "lighten",
                                            "linearReducePixel",
                                            "multiplyPixel",
                                            "normalPixel",
                                            "overlayPixel",
                                            "overlayPixel4",
                                            "overlayPixelWithOpaqueness",
                                            "screenPixel",
                                            "screenPixel4",
                                            "softPixel",
                                            "softPixel4",
                                            "KESSTREAM_GetVersion",
                                            "MEventCreate",
                                            "MGetCurTimeStamp",
                                            "MGetMaskPos",
                                            "MGetMaskSize",
                                            "MMutexCreate",
                                            "MThreadDestory",
                                            "MThreadExit",
                                            "MThreadResume",
                                            "MThreadSetPriority",
                                            "MThreadSleep",
                                            "MThreadSuspend",
                                            "PUZUMPE_DebugWin32",
                                            "QPXIsSameInOutArea",
                                            "QPXIsSupEffMerge",
                                            "QPXIsSupport",
                                            "QPX_GetEffectCount",
                                            "QPX_IfSupportMultiThread",
                                            "QPX_UsePlainForms",
                                            "UTIL_GetPixelBytesEX",
                                            "UTIL_MBitmapCreate",
                                            "convert8To4",
                                            "convert8To5",
                                            "divideBy255",
                                            "mbf_GetMaskPos",
                                            "mbf_GetMaskSize",
                                            "mcvColorCvtInit_MultiThreads",
                                            "mcvMemAlloc",
                                            "mcvParallelInit"};

constexpr std::span<const NullCall> kAllCalls[] = {
    kAdjustCalls,      kImageCalls,      kEngineCalls, kRotationCalls,
    kSmearCalls,       kStreamCalls,     kStringCalls, kToolkitCalls,
    kPngCalls,         kLookKernelCalls, kEtcCalls,    kPlatformCalls,
    kPostProcessCalls, kSegmentCalls,    kCutoutCalls, kImageConversionCalls,
    kParallelCalls};

TEST(NullArguments, AreAnsweredByEveryFunction) {
  for (const auto& calls : kAllCalls) {
    for (const NullCall& call : calls) EXPECT_TRUE(call.holds()) << call.name;
  }
  for (const ConvertNullCall& call : convertNullCalls()) EXPECT_TRUE(call.holds()) << call.name;
}

TEST(NullArguments, OfEveryExportAreTried) {
  std::set<std::string> tried(std::begin(kWithoutPointers), std::end(kWithoutPointers));
  for (const auto& calls : kAllCalls) {
    for (const NullCall& call : calls) tried.insert(call.name);
  }
  for (const ConvertNullCall& call : convertNullCalls()) tried.insert(call.name);
  std::ifstream file(QPX_EXPORTS_FILE);
  const std::set<std::string> exported{std::istream_iterator<std::string>(file),
                                       std::istream_iterator<std::string>()};
  EXPECT_EQ(exported, tried);
}

// An engine with everything right but for one argument at a time.
class OneNull : public ::testing::Test {
 protected:
  OneNull() : in_(QPX_FORMAT_I420, 6, 4, Placement::guarded), out_(in_), before_(in_) {
    image_ = in_.bitmap();
    const QPXEffectList list = {&item_, 1, 0};
    EXPECT_EQ(QPX_OK, QPXCreate(&image_, &image_, &list, &engine_));
    inPlanes_ = in_.planesAt(0, 0);
    outPlanes_ = out_.planesAt(0, 0);
  }
  ~OneNull() override {
    EXPECT_FALSE(out_.firstWriteOutside(before_, {}));
    QPXDestroy(engine_);
  }

  Picture in_, out_, before_;
  MBitmap image_;
  QPXEffectItem item_ = {0x1800, nullptr, 0};
  QPXEngine* engine_ = nullptr;
  QPXPlaneSet inPlanes_, outPlanes_;
  MRect rect_ = {0, 0, 6, 4};
  QPXBandRect band_ = {0, 0, 6, 4, 0, 0, 0, 0};
};

TEST_F(OneNull, IsRefusedByCreate) {
  const QPXEffectList list = {&item_, 1, 0};
  const QPXEffectList noItems = {nullptr, 1, 0};
  QPXEngine* const stale = engine_;
  QPXEngine* made = stale;
  EXPECT_EQ(2, QPXCreate(nullptr, &image_, &list, &made));
  EXPECT_EQ(nullptr, made);
  made = stale;
  EXPECT_EQ(2, QPXCreate(&image_, nullptr, &list, &made));
  EXPECT_EQ(nullptr, made);
  made = stale;
  EXPECT_EQ(2, QPXCreate(&image_, &image_, nullptr, &made));
  EXPECT_EQ(nullptr, made);
  EXPECT_EQ(2, QPXCreate(&image_, &image_, &noItems, &made));
  EXPECT_EQ(2, QPXCreate(&image_, &image_, &list, nullptr));
}

TEST_F(OneNull, IsRefusedByProcess) {
  EXPECT_EQ(2, QPXProcess(nullptr, &outPlanes_, &inPlanes_, &rect_));
  EXPECT_EQ(2, QPXProcess(engine_, nullptr, &inPlanes_, &rect_));
  EXPECT_EQ(2, QPXProcess(engine_, &outPlanes_, nullptr, &rect_));
  EXPECT_EQ(2, QPXProcess(engine_, &outPlanes_, &inPlanes_, nullptr));
  for (int p = 0; p < 3; ++p) {
    QPXPlaneSet hole = inPlanes_;
    hole.plane[p] = nullptr;
    EXPECT_EQ(2, QPXProcess(engine_, &outPlanes_, &hole, &rect_)) << "input plane " << p;
    hole = outPlanes_;
    hole.plane[p] = nullptr;
    EXPECT_EQ(2, QPXProcess(engine_, &hole, &inPlanes_, &rect_)) << "output plane " << p;
  }
}

TEST_F(OneNull, IsRefusedByMerge) {
  EXPECT_EQ(2, QPXMerge(nullptr, &outPlanes_, &inPlanes_, nullptr, nullptr, &band_));
  EXPECT_EQ(2, QPXMerge(engine_, nullptr, &inPlanes_, nullptr, nullptr, &band_));
  EXPECT_EQ(2, QPXMerge(engine_, &outPlanes_, nullptr, nullptr, nullptr, &band_));
  EXPECT_EQ(2, QPXMerge(engine_, &outPlanes_, &inPlanes_, nullptr, nullptr, nullptr));
  EXPECT_EQ(2, QPXProcessIn(engine_, nullptr, &image_, nullptr, nullptr, &band_));
  EXPECT_EQ(2, QPXProcessIn(engine_, &image_, nullptr, nullptr, nullptr, &band_));
  EXPECT_EQ(2, QPXProcessIn(engine_, &image_, &image_, nullptr, nullptr, nullptr));
}

TEST_F(OneNull, SecondInputOrMaskIsRefusedWhereTheEngineHasOne) {
  const QPXEffectItem blend = {0x1100, nullptr, 0};
  const QPXEffectList list = {&blend, 1, 0};
  const MBitmap mask = {QPX_FORMAT_GREY8, 6, 4, {6, 0, 0}, {}};
  QPXEngine* made = nullptr;
  ASSERT_EQ(QPX_OK, QPXCreateIn(&image_, &image_, &image_, &mask, &list, &made));
  EXPECT_EQ(2, QPXMerge(made, &outPlanes_, &inPlanes_, nullptr, &inPlanes_, &band_));
  EXPECT_EQ(2, QPXMerge(made, &outPlanes_, &inPlanes_, &inPlanes_, nullptr, &band_));
  EXPECT_EQ(2, QPXProcess(made, &outPlanes_, &inPlanes_, &rect_));
  EXPECT_EQ(QPX_OK, QPXDestroy(made));
}

TEST_F(OneNull, IsRefusedByTheQueries) {
  int32_t value = -7;
  MRect other = {1, 2, 3, 4};
  EXPECT_EQ(2, QPXCalcRect(engine_, nullptr, &rect_));
  EXPECT_EQ(2, QPXCalcRect(engine_, &other, nullptr));
  EXPECT_EQ(2, QPXGetMaxOutLine(engine_, 1, nullptr));
  EXPECT_EQ(2, QPXGetProPerty(engine_, 0x9200, 0, nullptr, 4));
  EXPECT_EQ(2, QPXSetProPerty(engine_, 0x9200, 1, nullptr));
  EXPECT_EQ(2, QPXGetProPerty(nullptr, 0x9200, 0, &value, 4));
  EXPECT_EQ(-7, value);
  EXPECT_EQ(1, other.left);
}

// There is no head behind the handle of an empty list.
TEST_F(OneNull, EngineOfAnEmptyListCanOnlyBeDestroyed) {
  const QPXEffectList none = {nullptr, 0, 0};
  QPXEngine* made = nullptr;
  int32_t value = 0;
  MRect all = rect_;
  ASSERT_EQ(QPX_OK, QPXCreate(&image_, &image_, &none, &made));
  EXPECT_EQ(2, QPXProcess(made, &outPlanes_, &inPlanes_, &rect_));
  EXPECT_EQ(2, QPXMerge(made, &outPlanes_, &inPlanes_, nullptr, nullptr, &band_));
  EXPECT_EQ(2, QPXCalcRect(made, &all, &rect_));
  EXPECT_EQ(2, QPXCalcRectReset(made));
  EXPECT_EQ(2, QPXGetMaxOutLine(made, 1, &value));
  EXPECT_EQ(2, QPXGetProPerty(made, 0x9200, 0, &value, 4));
  EXPECT_EQ(0, QPXFreeMemory(made));
  EXPECT_EQ(0, QPXDestroy(made));
}

}  // namespace
}  // namespace qpx::testing
