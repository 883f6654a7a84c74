#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>

#include "platform/windows/last_error.h"

namespace {

// A flag to wait for; taking an auto-reset one clears it again for the other waiters.
class Signal {
  public:
    Signal(bool manual_reset, bool set) : manual_reset_(manual_reset), set_(set) {}

    // Wakes under the lock: the one who is woken may end the signal at once.
    void Set() {
        const std::lock_guard lock(mutex_);
        set_ = true;
        changed_.notify_all();
    }

    void Reset() {
        const std::lock_guard lock(mutex_);
        set_ = false;
    }

    // False if the time ran out.
    bool Wait(DWORD milliseconds) {
        std::unique_lock lock(mutex_);
        const auto is_set = [this] { return set_; };
        if (milliseconds == INFINITE) {
            changed_.wait(lock, is_set);
        } else if (!changed_.wait_for(lock, std::chrono::milliseconds(milliseconds), is_set)) {
            return false;
        }
        if (!manual_reset_) set_ = false;
        return true;
    }

  private:
    const bool manual_reset_;
    std::mutex mutex_;
    std::condition_variable changed_;
    bool set_;
};

// What a HANDLE points to, other than that of a search.
class Waitable {
  public:
    Waitable() = default;
    virtual ~Waitable() = default;
    Waitable(const Waitable &) = delete;
    Waitable &operator=(const Waitable &) = delete;
    virtual bool Wait(DWORD milliseconds) = 0;
};

class Event : public Waitable {
  public:
    Event(bool manual_reset, bool set) : signal(manual_reset, set) {}
    bool Wait(DWORD milliseconds) override { return signal.Wait(milliseconds); }

    Signal signal;
};

class Thread : public Waitable {
  public:
    Thread(LPTHREAD_START_ROUTINE routine, LPVOID argument)
        : progress_(std::make_shared<Progress>()), thread_(Run, routine, argument, progress_) {}
    // The thread goes on for itself when its handle is closed.
    ~Thread() override {
        if (thread_.joinable()) thread_.detach();
    }

    // The end of the routine alone is not enough: a module may be unloaded after the wait, so the last
    // instruction of the thread has to be over as well.
    bool Wait(DWORD milliseconds) override {
        if (!progress_->finished.Wait(milliseconds)) return false;
        const std::lock_guard lock(join_mutex_);
        if (thread_.joinable()) thread_.join();
        return true;
    }

    DWORD WaitForId() {
        progress_->started.Wait(INFINITE);
        return progress_->id;
    }

  private:
    // Shared with the running thread, which may outlive its handle.
    struct Progress {
        Signal started{true, false};
        Signal finished{true, false};
        DWORD id = 0;  // written before `started`
    };

    static void Run(LPTHREAD_START_ROUTINE routine, LPVOID argument,
                    const std::shared_ptr<Progress> &progress) {
        progress->id = GetCurrentThreadId();
        progress->started.Set();
        routine(argument);
        progress->finished.Set();
    }

    std::shared_ptr<Progress> progress_;
    std::mutex join_mutex_;
    std::thread thread_;
};

bool IsHandle(HANDLE handle) {
    return handle != nullptr && handle != INVALID_HANDLE_VALUE;
}

Event *AsEvent(HANDLE handle) {
    return IsHandle(handle) ? dynamic_cast<Event *>(static_cast<Waitable *>(handle)) : nullptr;
}

HANDLE HandleOf(std::unique_ptr<Waitable> object) {
    return object.release();
}

}  // namespace

HANDLE CreateThread(LPSECURITY_ATTRIBUTES attributes, size_t, LPTHREAD_START_ROUTINE routine, LPVOID argument,
                    DWORD flags, LPDWORD thread_id) {
    if (attributes != nullptr || routine == nullptr || flags != 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    try {
        auto thread = std::make_unique<Thread>(routine, argument);
        if (thread_id != nullptr) *thread_id = thread->WaitForId();
        return HandleOf(std::move(thread));
    } catch (const std::system_error &) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
}

DWORD GetCurrentThreadId() {
    return static_cast<DWORD>(gettid());
}

HANDLE CreateEventW(LPSECURITY_ATTRIBUTES attributes, BOOL manual_reset, BOOL initial_state, LPCWSTR name) {
    if (attributes != nullptr || name != nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    return HandleOf(std::make_unique<Event>(manual_reset != FALSE, initial_state != FALSE));
}

BOOL SetEvent(HANDLE event) {
    Event *const object = AsEvent(event);
    if (object == nullptr) return FailWith(ERROR_INVALID_HANDLE);
    object->signal.Set();
    return TRUE;
}

BOOL ResetEvent(HANDLE event) {
    Event *const object = AsEvent(event);
    if (object == nullptr) return FailWith(ERROR_INVALID_HANDLE);
    object->signal.Reset();
    return TRUE;
}

DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds) {
    if (!IsHandle(handle)) {
        SetLastError(ERROR_INVALID_HANDLE);
        return WAIT_FAILED;
    }
    return static_cast<Waitable *>(handle)->Wait(milliseconds) ? WAIT_OBJECT_0 : WAIT_TIMEOUT;
}

BOOL CloseHandle(HANDLE handle) {
    if (!IsHandle(handle)) return FailWith(ERROR_INVALID_HANDLE);
    delete static_cast<Waitable *>(handle);
    return TRUE;
}
