/* The exports of the iTunes driver: the one header that a host includes besides velmar_path.h.
 *
 * A host loads the module, calls InitializeDriverPath once for the library of the current user, walks the
 * tree with OpenDriverPath, reads media and thumbnails with OpenDriverStream, and ends with
 * UninitializeDriverPath. It must not run two exports on one LibraryDriver at the same time. docs/hosts.md
 * has the whole contract and an example. */
#ifndef DRIVER_ITUNES_DRIVER_H
#define DRIVER_ITUNES_DRIVER_H

#include <stdint.h>

#include "platform/velmar_path/velmar_path.h"

#define DRIVER_API __attribute__((visibility("default")))

#ifdef __cplusplus
extern "C" {
#endif

typedef struct LibraryDriver LibraryDriver;
typedef struct DriverPath DriverPath;
typedef struct DriverStream DriverStream;

/* What the start-up callback receives; all zero, valid during the call only. */
typedef struct {
    uint32_t words[4];
} DriverStartupRecord;
/* Called once, on a thread of the driver, 500 ms or more after a successful start. The result is not read. */
typedef int32_t (*DriverStartupCallback)(const DriverStartupRecord *record, void *context);

/* A node as the host sees it. The containers are the node's own, valid as long as the node. */
typedef struct {
    const char *open_path; /* the text of the first open, or null; valid until the last close */
    int32_t kind;
    int32_t category;
    int32_t subcategory;
    uint32_t reserved4;
    VelmarArray *names; /* items are `const char *`, one for each child */
    VelmarAttribute *attributes;
    uintptr_t reserved7;
} DriverPathInfo;

/* Eight 32-bit words on every platform; valid during the progress call only. */
typedef struct {
    int32_t copy_state; /* 0 starting, 1 copying, 2 finished, 3 failed */
    uint32_t copy_tag;
    uint32_t reserved2, reserved3;
    int64_t bytes_copied;
    int32_t copy_error; /* 0 none, 2 no source, 3 target not opened, 5 source ended early, 6 target full */
    uint32_t reserved7;
} CopyProgress;
/* -1 and 2 stop the copy; any other result lets it go on. */
typedef int32_t (*CopyProgressCallback)(const CopyProgress *progress, void *context);
/* Fills `buffer` with up to `count` bytes and gives the number of bytes delivered. */
typedef int32_t (*CopyReadFunction)(void *source_handle, void *buffer, int32_t count);

typedef struct {
    DriverPathInfo source; /* only `attributes` is read, and only for source_type 0 */
    int32_t source_type;   /* 0 a host stream, 1 a local file, 2 a block of memory */
    void *source_handle;
    const char *source_path;
    CopyReadFunction read_function;
    uint32_t reserved12, reserved13;
    int64_t source_size; /* bytes; 0 means that the attribute st_size gives it (source_type 0) */
    uint32_t reserved16;
    uint32_t copy_tag; /* handed through to CopyProgress */
} CopySourceInfo;

/* Finds and loads the library of the current user; blocks until the whole tree stands. 0 on success; -1
 * without `driver`; -999 when no library can be opened; another negative number when the load fails. `driver`
 * is written on success only. `callback` may be null. */
DRIVER_API int32_t InitializeDriverPath(DriverStartupCallback callback, void *context, uintptr_t reserved,
                                        LibraryDriver **driver);
/* Releases everything, handles of paths included; a start-up callback that is still to come is dropped.
 * Streams stay usable until they are closed. 0, or 1 for null. */
DRIVER_API int32_t UninitializeDriverPath(LibraryDriver *driver);

/* Walks a "/"-separated text over the names of the tree; null and "" name the root. 0 on success; -2 when
 * nothing has that name, and then null is written; -1 for a null driver or out argument. Each success is paid
 * back with CloseDriverPath. `device_index` is not looked at. */
DRIVER_API int32_t OpenDriverPath(LibraryDriver *driver, int32_t device_index, const char *path_text,
                                  DriverPath **path);
/* 0, or -1 for null. */
DRIVER_API int32_t CloseDriverPath(DriverPath *path);
/* 0, or -1 for a null argument. */
DRIVER_API int32_t GetDriverPathInfo(DriverPath *path, DriverPathInfo *info);

/* Begins a batch of copies; `chunk_size` is the number of bytes between two progress calls. 0, or -1 for
 * null. */
DRIVER_API int32_t StartPathCopy(LibraryDriver *driver, uintptr_t word, CopyProgressCallback callback,
                                 void *context, int32_t chunk_size);
/* Copies one file into iTunes; the result of the last progress call, 0 without one, or -1. */
DRIVER_API int32_t CopyDriverPath(LibraryDriver *driver, int32_t device_index, const char *path_text,
                                  const CopySourceInfo *source);
/* Ends a batch and brings the tree up to date; blocks for a second or more. 0, or -1 for null. */
DRIVER_API int32_t FinishPathCopy(LibraryDriver *driver, uintptr_t word);

/* Opens the file behind a path for reading. 0 on success; -1 for bad arguments, no such path or no such file;
 * -2 when a folder could not be packed. `device_index` must be 0. */
DRIVER_API int32_t OpenDriverStream(LibraryDriver *driver, int32_t device_index, const char *path_text,
                                    DriverStream **stream);
/* 0, or 1 for null. */
DRIVER_API int32_t CloseDriverStream(DriverStream *stream);
/* The number of bytes read, 0 at the end; 1 for a null stream. */
DRIVER_API int32_t ReadDriverStream(DriverStream *stream, void *buffer, int32_t count);
/* The number of bytes written, which is 0, as all streams are for reading; 1 for a null stream. */
DRIVER_API int32_t WriteDriverStream(DriverStream *stream, const void *buffer, int32_t count);
/* Moves the position; `origin` is 0 from the start, 1 from the current position, 2 from the end. 0; -1 for a
 * target outside a thumbnail's bytes, which leaves the position alone; 1 for a null stream. */
DRIVER_API int32_t SeekDriverStream(DriverStream *stream, int64_t offset, int32_t origin);

#ifdef __cplusplus
}
#endif

#endif
