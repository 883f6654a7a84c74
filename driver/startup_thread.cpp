#include "driver/startup_thread.h"

#include <mutex>

#include "driver/driver_log.h"
#include "platform/windows/windows_api.h"

namespace {

constexpr DWORD kDelayMilliseconds = 500;

}  // namespace

struct StartupThread::State {
    const DriverStartupCallback callback;
    void *const context;
    const bool library_open;
    const HANDLE stop = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    std::mutex mutex;  // guards the two below: the thread may end the object before its start has returned
    HANDLE thread = nullptr;
    DWORD thread_id = 0;

    State(DriverStartupCallback host_callback, void *host_context, bool open)
        : callback(host_callback), context(host_context), library_open(open) {}
    ~State() {
        if (stop != nullptr) CloseHandle(stop);
    }
    State(const State &) = delete;
    State &operator=(const State &) = delete;

    void Run() const {
        if (WaitForSingleObject(stop, kDelayMilliseconds) != WAIT_TIMEOUT) return;
        if (!library_open) {
            WriteDriverLog("iTunes Library XML file is not created.");
            return;
        }
        const DriverStartupRecord record = {};
        if (callback != nullptr) callback(&record, context);
    }

    static DWORD WINAPI Main(void *parameter) {
        const std::unique_ptr<std::shared_ptr<State>> state(static_cast<std::shared_ptr<State> *>(parameter));
        (*state)->Run();
        return 0;
    }
};

StartupThread::StartupThread(DriverStartupCallback callback, void *context, bool library_open)
    : state_(std::make_shared<State>(callback, context, library_open)) {}

void StartupThread::Start() {
    if (state_->stop == nullptr) return;
    auto handed_over = std::make_unique<std::shared_ptr<State>>(state_);
    const std::lock_guard lock(state_->mutex);
    state_->thread = CreateThread(nullptr, 0, &State::Main, handed_over.get(), 0, &state_->thread_id);
    if (state_->thread != nullptr) static_cast<void>(handed_over.release());
}

StartupThread::~StartupThread() {
    std::unique_lock lock(state_->mutex);
    const HANDLE thread = state_->thread;
    const bool called_from_thread = state_->thread_id == GetCurrentThreadId();
    lock.unlock();
    if (thread == nullptr) return;
    SetEvent(state_->stop);
    if (!called_from_thread) WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
}
