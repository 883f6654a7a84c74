#include <gtest/gtest.h>

#include <atomic>

#include "platform/windows/windows_api.h"

namespace {

struct Work {
    HANDLE go = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    std::atomic<DWORD> thread_id = 0;
    int result = 0;  // unguarded: the wait for the thread orders it
    ~Work() { CloseHandle(go); }

    static DWORD WINAPI Run(LPVOID argument) {
        auto *const work = static_cast<Work *>(argument);
        WaitForSingleObject(work->go, INFINITE);
        work->result = 7;
        work->thread_id = GetCurrentThreadId();
        return 0;
    }
};

TEST(Threads, AWaitTellsWhenAThreadIsOver) {
    Work work;
    DWORD id = 0;
    HANDLE thread = CreateThread(nullptr, 0, Work::Run, &work, 0, &id);
    ASSERT_NE(thread, nullptr);
    EXPECT_NE(id, GetCurrentThreadId());
    EXPECT_EQ(WaitForSingleObject(thread, 10), WAIT_TIMEOUT);
    const auto wait = [](LPVOID handle) -> DWORD { return WaitForSingleObject(handle, INFINITE); };
    HANDLE other_waiter = CreateThread(nullptr, 0, wait, thread, 0, nullptr);
    EXPECT_EQ(SetEvent(work.go), TRUE);
    EXPECT_EQ(WaitForSingleObject(thread, INFINITE), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(thread, 0), WAIT_OBJECT_0);
    EXPECT_EQ(work.result, 7);
    EXPECT_EQ(work.thread_id, id);
    EXPECT_EQ(WaitForSingleObject(other_waiter, INFINITE), WAIT_OBJECT_0);
    EXPECT_TRUE(CloseHandle(other_waiter) && CloseHandle(thread));
}

TEST(Threads, RunOnWhenTheirHandleIsClosed) {
    static Work work;
    EXPECT_EQ(CloseHandle(CreateThread(nullptr, 0, Work::Run, &work, 0, nullptr)), TRUE);
    SetEvent(work.go);
    for (int i = 0; i < 5000 && work.thread_id == 0; ++i)
        Sleep(1);
    EXPECT_NE(work.thread_id, 0U);
}

TEST(Events, ManualAndAutomaticReset) {
    for (const BOOL is_manual : {TRUE, FALSE}) {
        HANDLE event = CreateEventW(nullptr, is_manual, TRUE, nullptr);
        EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_OBJECT_0);
        EXPECT_EQ(WaitForSingleObject(event, 0), is_manual ? WAIT_OBJECT_0 : WAIT_TIMEOUT);
        EXPECT_TRUE(SetEvent(event) && WaitForSingleObject(event, INFINITE) == WAIT_OBJECT_0);
        EXPECT_TRUE(ResetEvent(event) && WaitForSingleObject(event, 1) == WAIT_TIMEOUT);
        CloseHandle(event);
    }
}

TEST(Handles, WrongOnesAreRefused) {
    const auto nothing = [](LPVOID) -> DWORD { return 0; };
    HANDLE thread = CreateThread(nullptr, 0, nothing, nullptr, 0, nullptr);
    EXPECT_EQ(SetEvent(thread), FALSE);
    CloseHandle(thread);
    for (HANDLE handle : {HANDLE{nullptr}, INVALID_HANDLE_VALUE}) {
        EXPECT_EQ(WaitForSingleObject(handle, 0), WAIT_FAILED);
        EXPECT_FALSE(SetEvent(handle) || ResetEvent(handle) || CloseHandle(handle));
        EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    }
    EXPECT_EQ(CreateThread(nullptr, 0, nullptr, nullptr, 0, nullptr), nullptr);
}

}  // namespace
