/* Portable strings: MS* on zero-terminated 8-bit strings, MW* on zero-terminated strings of 16-bit
 * units, and conversions between the two.
 *
 * All functions are reentrant and allocate nothing. The MSCs* functions are those of the C library,
 * with these promises on top: a null string or a negative count never crashes (each comment says
 * what comes back), comparisons answer exactly -1, 0 or 1, and numbers have the same width on every
 * target. Where no size is given the caller makes the destination large enough, as with the C
 * library. */
#ifndef QPX_STRINGS_H_
#define QPX_STRINGS_H_

#include <qpx/types.h>

/* Lets compilers that can do it check arguments against a printf format. */
#if defined(__GNUC__)
#define QPX_PRINTF_FORMAT(at, arguments) __attribute__((format(printf, at, arguments)))
#else
#define QPX_PRINTF_FORMAT(at, arguments)
#endif

QPX_BEGIN_DECLS

/* Decimal numbers, with leading white space and a sign; reading stops at the first other character.
 * 0 for no digits or null. Numbers out of range become the nearest end of the range. */
QPX_API int32_t MStoi(const char* text);
QPX_API int32_t MStol(const char* text);
QPX_API int64_t MStoi64(const char* text);

/* An unsigned number to a base of 2 to 36, or 0 for C's own prefixes. *end, unless `end` is null,
 * is set to the first character not used. Above 0xFFFFFFFF the result is 0xFFFFFFFF; a minus sign
 * negates modulo 2^32. 0, with nothing used, for null or another base. */
QPX_API uint32_t MSCsToUL(const char* text, char** end, int32_t base);

/* Bytes before the terminator; 0 for null. */
QPX_API int32_t MSCsLen(const char* text);

/* Address of the first `part` in `text`, and of the first and last `character`; null when there is
 * none and for a null string. An empty part is found at the start; a character of 0 is the
 * terminator. */
QPX_API char* MSCsStr(const char* text, const char* part);
QPX_API char* MSCsChr(const char* text, int32_t character);
QPX_API char* MSCsRChr(const char* text, int32_t character);

/* Append or copy `from` with its terminator and return `to`. MSCsNCpy writes exactly `count` bytes:
 * zeros behind a shorter string, and no terminator behind a longer one. A null string or a negative
 * count writes nothing and returns null. */
QPX_API char* MSCsCat(char* to, const char* from);
QPX_API char* MSCsCpy(char* to, const char* from);
QPX_API char* MSCsNCpy(char* to, const char* from, int32_t count);

/* Compare as unsigned bytes: -1, 0 or 1 for a before, equal to, behind b. The I forms ignore the
 * case of letters as the C library does, the N forms compare at most `count` bytes and find none
 * different for a count below 1. Null comes before every string and equals itself. */
QPX_API int32_t MSCsCmp(const char* a, const char* b);
QPX_API int32_t MSCsNCmp(const char* a, const char* b, int32_t count);
QPX_API int32_t MSCsICmp(const char* a, const char* b);
QPX_API int32_t MSCsNICmp(const char* a, const char* b, int32_t count);

/* Formats into `to` as sprintf does, without a limit: the caller makes room. Returns the bytes
 * written before the terminator, or -1 for a null argument or a failed format. */
QPX_API int32_t MSSprintf(char* to, const char* format, ...) QPX_PRINTF_FORMAT(2, 3);

/* Change the case of ASCII letters in place. Return 0, or 2 for null. */
QPX_API int32_t MSCsMakeLower(char* text);
QPX_API int32_t MSCsMakeUpper(char* text);
QPX_API int32_t MWCsMakeLower(uint16_t* text);
QPX_API int32_t MWCsMakeUpper(uint16_t* text);

/* 16-bit units before the terminator; 0 for null. */
QPX_API int32_t MWCsLen(const uint16_t* text);

/* Address of the first `part` in `text` (of `text` itself for an empty part); null when there is
 * none or for a null string. */
QPX_API uint16_t* MWCsStr(const uint16_t* text, const uint16_t* part);

/* Append or copy `from` with its terminator; return `to`, or null, with nothing written, for a null
 * string. */
QPX_API uint16_t* MWCsCat(uint16_t* to, const uint16_t* from);
QPX_API uint16_t* MWCsCpy(uint16_t* to, const uint16_t* from);

/* Decodes the UTF-8 sequence at *cursor, moves the cursor behind it and stores its length, 1 to 3
 * bytes, in *consumed (may be null). The first byte alone decides the length: bit 7 clear means 1,
 * bit 5 set means 3, anything else 2. Neither continuation bytes nor the terminator are checked, so
 * that many bytes must be readable; sequences of 4 bytes are not known. Returns the unit; 0, with 0
 * consumed, for a null cursor. */
QPX_API uint16_t getWideChar(const char** cursor, int32_t* consumed);

/* Decodes srcBytes bytes of UTF-8, by the rule of getWideChar, into at most dstUnits units; zeros
 * inside are decoded like any other byte, and bytes missing from the last sequence count as 0.
 * Returns the units written; no terminator is written. 0 for a null pointer or a count below 1. The
 * code page is ignored. */
QPX_API int32_t MMultiByteToWideChar(uint32_t codePage, const char* src, int32_t srcBytes,
                                     uint16_t* dst, int32_t dstUnits);

/* Encodes srcUnits units as UTF-8; a unit of 0 becomes the bytes C0 80, so that it survives inside
 * a zero-terminated string. Ends before the first unit that would not leave a byte for the
 * terminator, which is always written. Returns the bytes before the terminator; 0, with nothing
 * written, for a null pointer or a count below 1. The code page is ignored. */
QPX_API int32_t MWideCharToMultiByte(uint32_t codePage, const uint16_t* src, int32_t srcUnits,
                                     char* dst, int32_t dstBytes);

/* Widen bytes 0 to 255 to units, and narrow units to their low byte, up to and including the first
 * 0 in the result, `units` at the most; the last place of dst, dst[units - 1], is always set to 0.
 * Return the places written, counting that zero; 0 for a null pointer or a count below 1. Note that
 * narrowing ends at a unit such as 0x0100 too. */
QPX_API int32_t MCharToWChar(const char* src, uint16_t* dst, int32_t units);
QPX_API int32_t MWCharToChar(const uint16_t* src, char* dst, int32_t units);

/* Encodes a zero-terminated string as UTF-8, each unit by itself, and terminates it. Returns the
 * bytes before the terminator. With a null dst they are only counted, and `bytes` is ignored. 0
 * when text and terminator do not fit into `bytes` (dst then holds the part that did, without a
 * terminator) and for a null src. */
QPX_API int32_t MUnicodeToUTF8(const uint16_t* src, char* dst, int32_t bytes);

/* Decodes zero-terminated UTF-8 of up to 3 bytes a sequence and terminates the result. Returns the
 * units before the terminator. With a null dst they are only counted, and `units` is ignored. 0
 * when text and terminator do not fit into `units`, or for a null src; -1 at a byte that can not
 * lead a sequence and at a sequence cut short by the end. In these cases dst holds what was decoded
 * so far, without a terminator. Continuation bytes are not checked. */
QPX_API int32_t MUTF8ToUnicode(const char* src, uint16_t* dst, int32_t units);

QPX_END_DECLS

#endif /* QPX_STRINGS_H_ */
