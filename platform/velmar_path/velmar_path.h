/* The host's container library: arrays of words, attribute containers and the log.
 *
 * The driver keeps the children, names and attributes of its nodes in these containers, because the host
 * reads them through this library. Every text is a NUL-terminated UTF-8 string. No operation takes a lock:
 * one container is used by one thread at a time.
 *
 * Unless an operation says otherwise its result is 0 on success and negative on failure, and a null handle is
 * a failure that changes nothing. */
#ifndef PLATFORM_VELMAR_PATH_VELMAR_PATH_H
#define PLATFORM_VELMAR_PATH_VELMAR_PATH_H

#include <stdint.h>

#define VELMAR_API __attribute__((visibility("default")))

#ifdef __cplusplus
extern "C" {
#endif

typedef struct VelmarArray VelmarArray;
typedef struct VelmarAttribute VelmarAttribute;

/* Writes a new, empty array, which the caller releases with FreeVelmarArray. */
VELMAR_API int32_t AllocVelmarArray(VelmarArray **array);
/* Appends the word as given; what it points to is neither copied nor owned. */
VELMAR_API int32_t AddVelmarArrayItem(VelmarArray *array, void *item);
/* The number of items; 0 for an empty array and for null. */
VELMAR_API int32_t GetVelmarArraySize(VelmarArray *array);
/* Writes the item at an index counted from 0. A failure leaves `item` untouched. */
VELMAR_API int32_t GetVelmarArrayItem(VelmarArray *array, int32_t index, void **item);
/* Removes an entry and closes the gap. The item itself is not released. */
VELMAR_API int32_t DeleteVelmarArrayItem(VelmarArray *array, int32_t index);
/* Releases the array alone; its items may be gone already. */
VELMAR_API int32_t FreeVelmarArray(VelmarArray *array);

/* Writes a new, empty container of keys and values, which the caller releases with FreeVelmarAttribute. */
VELMAR_API int32_t AllocVelmarAttribute(VelmarAttribute **attribute);
/* Appends copies of both texts. A key that is present stays, and both items are kept in order. */
VELMAR_API int32_t AddVelmarAttributeItem(VelmarAttribute *attribute, const char *key, const char *value);
/* Replaces the value of the first item with this key by a copy, or appends an item. */
VELMAR_API int32_t SetVelmarAttributeValue(VelmarAttribute *attribute, const char *key, const char *value);
/* Writes the value of the first item with this key. The text stays the container's and is valid until the
 * value is replaced or the container released. An absent key gives a negative result and leaves `value`
 * untouched. */
VELMAR_API int32_t FindVelmarAttributeValue(VelmarAttribute *attribute, const char *key, const char **value);
VELMAR_API int32_t FreeVelmarAttribute(VelmarAttribute *attribute);

/* Writes one line to the log. The format is that of printf, and "%I64d" stands for a signed 64-bit number. */
VELMAR_API int32_t WriteVelmarLog(const char *format, ...);

/* For hosts; the driver does not call these. */

/* The number of items; 0 for null. */
VELMAR_API int32_t GetVelmarAttributeSize(VelmarAttribute *attribute);
/* Writes key and value of the item at an index counted from 0, both owned by the container. */
VELMAR_API int32_t GetVelmarAttributeItem(VelmarAttribute *attribute, int32_t index, const char **key,
                                          const char **value);

typedef void (*VelmarLogHandler)(const char *line, void *context);
/* Sends all later lines to `handler`, which may be called on any thread that logs; null restores standard
 * error. */
VELMAR_API void SetVelmarLogHandler(VelmarLogHandler handler, void *context);

#ifdef __cplusplus
}
#endif

#endif
