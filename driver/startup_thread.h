#ifndef DRIVER_STARTUP_THREAD_H
#define DRIVER_STARTUP_THREAD_H

#include <memory>

#include "driver/itunes_driver.h"

// Calls the host back once, half a second after the start. The object's end stops a call that is still to
// come and waits for one that is running, unless it is that call which ends the object.
class StartupThread {
  public:
    // `library_open` tells whether there is a library to report.
    StartupThread(DriverStartupCallback callback, void *context, bool library_open);
    ~StartupThread();
    // A thread that cannot be started makes no call.
    void Start();
    StartupThread(const StartupThread &) = delete;
    StartupThread &operator=(const StartupThread &) = delete;

  private:
    struct State;
    std::shared_ptr<State> state_;  // shared with the thread, which can outlive the object
};

#endif
