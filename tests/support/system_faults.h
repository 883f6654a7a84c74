#ifndef TESTS_SUPPORT_SYSTEM_FAULTS_H
#define TESTS_SUPPORT_SYSTEM_FAULTS_H

#include <cerrno>

// The calls into the system about files, and those for memory, as a test program that is linked with this
// defines them itself: they do what the system does, except for what is asked for here. Files of FILE streams
// are read and written through these calls too. Only calls of the thread that asked are counted.

enum class FaultKind {
    kError,       // the call does nothing and reports an error; a close still closes
    kShort,       // a read or write takes one byte
    kDeath,       // the process ends before the call
    kAllocation,  // not the calls about files, but operator new is counted, and throws
};

struct Fault {
    FaultKind kind = FaultKind::kError;
    int error = EIO;
    bool lasting = false;  // all calls behind it meet the fault too
};

// While it lives, the call of the given number, counted from 1, meets the fault. An interruption is only met
// by calls that can wait. None for the number 0.
class FaultInjection {
  public:
    FaultInjection(const Fault &fault, int call_number);
    ~FaultInjection();
    FaultInjection(const FaultInjection &) = delete;
    FaultInjection &operator=(const FaultInjection &) = delete;
    // False once the number is greater than that of the calls that were made.
    bool WasHit() const;
};

class ScopedFlag {
  public:
    explicit ScopedFlag(bool &flag) : flag_(flag) { flag_ = true; }
    ~ScopedFlag() { flag_ = false; }
    ScopedFlag(const ScopedFlag &) = delete;
    ScopedFlag &operator=(const ScopedFlag &) = delete;

  private:
    bool &flag_;
};

// While it lives, every folder counts as a file system of its own when something is renamed or linked.
struct FoldersAreFileSystems : ScopedFlag {
    FoldersAreFileSystems();
};

// While it lives, the file system does not know a rename that must not replace.
struct RenameFlagsUnknown : ScopedFlag {
    RenameFlagsUnknown();
};

#endif
