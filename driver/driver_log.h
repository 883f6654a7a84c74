#ifndef DRIVER_DRIVER_LOG_H
#define DRIVER_DRIVER_LOG_H

// Hands one line to the host's log, with "[iTunes] " in front and cut to 511 bytes in all. The format is that
// of printf; a "%" inside an argument is printed unchanged. Lines may come from several threads at once.
void WriteDriverLog(const char *format, ...) __attribute__((format(printf, 1, 2)));

#endif
