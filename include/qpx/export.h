/* Marks for what the library exports. Every other symbol of it is hidden. */
#ifndef QPX_EXPORT_H_
#define QPX_EXPORT_H_

#if defined(__GNUC__)
#define QPX_API __attribute__((visibility("default")))
#else
#define QPX_API
#endif

#ifdef __cplusplus
#define QPX_BEGIN_DECLS extern "C" {
#define QPX_END_DECLS }
#else
#define QPX_BEGIN_DECLS
#define QPX_END_DECLS
#endif

#endif /* QPX_EXPORT_H_ */
