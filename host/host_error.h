#ifndef HOST_HOST_ERROR_H
#define HOST_HOST_ERROR_H

#include <stdexcept>
#include <string>

namespace velmarhost {

// What the program ends with; told in the help text, so the numbers never change.
enum class ExitCode {
    kOk = 0,
    kIncomplete = 1,  // some of it could not be done
    kUsage = 2,
    kLibrary = 3,  // the library could not be opened
    kNoPath = 4,
    kDriver = 5,  // the driver module could not be loaded
};

// An error that ends the program. The text says what to do next and may hold names from a library: it is
// escaped where it is printed.
class HostError : public std::runtime_error {
  public:
    HostError(ExitCode code, const std::string &text) : std::runtime_error(text), code_(code) {}
    ExitCode code() const { return code_; }

  private:
    ExitCode code_;
};

// The reader of standard output has gone. Not an error: the program ends without a word.
class OutputClosed : public std::exception {};

// A signal came, and what it asked to stop has been brought to an end: the program ends by it.
class Interrupted : public std::exception {
  public:
    explicit Interrupted(int signal) : signal_(signal) {}
    int signal() const { return signal_; }

  private:
    int signal_;
};

}  // namespace velmarhost

#endif
