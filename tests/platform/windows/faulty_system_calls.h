#ifndef TESTS_PLATFORM_WINDOWS_FAULTY_SYSTEM_CALLS_H
#define TESTS_PLATFORM_WINDOWS_FAULTY_SYSTEM_CALLS_H

// The system calls through which the platform layer changes files, as the test program defines them itself:
// they do what the system does, except for what is asked for here.

enum class Fault {
    kFail,         // the call does nothing and reports EIO; a close still closes
    kDie,          // the process ends before the call
    kInterrupted,  // the call is interrupted by a signal, once
    kShort,        // a write takes one byte
};

// While it lives, the call of the given number, counted from 1, meets the fault.
class FaultInjection {
  public:
    FaultInjection(Fault fault, int call_number);
    ~FaultInjection();
    FaultInjection(const FaultInjection &) = delete;
    FaultInjection &operator=(const FaultInjection &) = delete;
    // False once the number is greater than that of the calls that were made.
    bool WasHit() const;
};

// While it lives, every folder counts as a file system of its own when something is renamed or linked.
class FoldersAreFileSystems {
  public:
    FoldersAreFileSystems();
    ~FoldersAreFileSystems();
    FoldersAreFileSystems(const FoldersAreFileSystems &) = delete;
    FoldersAreFileSystems &operator=(const FoldersAreFileSystems &) = delete;
};

// While it lives, the file system does not know a rename that must not replace.
class RenameFlagsUnknown {
  public:
    RenameFlagsUnknown();
    ~RenameFlagsUnknown();
    RenameFlagsUnknown(const RenameFlagsUnknown &) = delete;
    RenameFlagsUnknown &operator=(const RenameFlagsUnknown &) = delete;
};

#endif
