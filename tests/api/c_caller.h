/* What c_caller.c does for the tests that call it. */
#ifndef QPX_TESTS_API_C_CALLER_H_
#define QPX_TESTS_API_C_CALLER_H_

#ifdef __cplusplus
extern "C" {
#endif

/* The negative of a pixel of 3 bytes, by an engine; returns the engine's code. */
int cNegativeOfPixel(const unsigned char* pixel, unsigned char* negative);

/* The curve through (0, 0) and (255, 255). */
int cTableOfRamp(unsigned char* table);

int cLengthOfText(const char* text);

#ifdef __cplusplus
}
#endif

#endif /* QPX_TESTS_API_C_CALLER_H_ */
