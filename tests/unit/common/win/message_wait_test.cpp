#include "common/win/message_wait.h"

#include "common/win/unique_handle.h"

#include <gtest/gtest.h>

#include <thread>

namespace av {
namespace {

UniqueHandle makeEvent(bool signalled) { return UniqueHandle(CreateEventW(nullptr, TRUE, signalled, nullptr)); }

/// A message-only window that hands its messages to a function.
class TestWindow {
 public:
  using Handler = LRESULT (*)(TestWindow&, UINT, WPARAM);

  explicit TestWindow(Handler handler, HANDLE event) : m_handler(handler), m_event(event) {
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = &TestWindow::windowProc;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = L"MessageWaitTest";
    RegisterClassW(&windowClass);
    m_window =
        CreateWindowExW(0, L"MessageWaitTest", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, windowClass.hInstance, this);
  }
  ~TestWindow() { DestroyWindow(m_window); }
  TestWindow(const TestWindow&) = delete;
  TestWindow& operator=(const TestWindow&) = delete;

  HWND window() const { return m_window; }
  HANDLE event() const { return m_event; }
  int messages = 0;

 private:
  static LRESULT CALLBACK windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCREATE)
      SetWindowLongPtrW(window, GWLP_USERDATA,
                        reinterpret_cast<LONG_PTR>(reinterpret_cast<CREATESTRUCTW*>(lParam)->lpCreateParams));
    auto* const self = reinterpret_cast<TestWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (self != nullptr && message >= WM_APP) return self->m_handler(*self, message, wParam);
    return DefWindowProcW(window, message, wParam, lParam);
  }

  Handler m_handler;
  HANDLE m_event;
  HWND m_window = nullptr;
};

LRESULT countAndSignal(TestWindow& window, UINT, WPARAM last) {
  ++window.messages;
  if (last) SetEvent(window.event());
  return 42;
}

TEST(MessageWait, EndsAtOnceWhenTheHandleIsSignalledAlready) {
  const UniqueHandle event = makeEvent(true);
  EXPECT_EQ(WaitResult::signalled, waitDispatchingMessages(event.get()));
}

TEST(MessageWait, GivesUpAfterItsTimeLimit) {
  const UniqueHandle event = makeEvent(false);
  const DWORD start = GetTickCount();
  EXPECT_EQ(WaitResult::timedOut, waitDispatchingMessages(event.get(), 60));
  EXPECT_GE(GetTickCount() - start, 60u - 16u);  // one step of a coarse tick count
}

TEST(MessageWait, SaysThatSomethingCannotBeWaitedFor) {
  const UniqueHandle event = makeEvent(false);
  // A handle without the right to wait. (A closed one's number may already stand for something else.)
  HANDLE setOnly = nullptr;
  ASSERT_TRUE(
      DuplicateHandle(GetCurrentProcess(), event.get(), GetCurrentProcess(), &setOnly, EVENT_MODIFY_STATE, FALSE, 0));
  const UniqueHandle owner(setOnly);
  EXPECT_EQ(WaitResult::failed, waitDispatchingMessages(setOnly));
}

TEST(MessageWait, DispatchesPostedMessages) {
  const UniqueHandle event = makeEvent(false);
  TestWindow window(countAndSignal, event.get());
  PostMessageW(window.window(), WM_APP, FALSE, 0);
  PostMessageW(window.window(), WM_APP, TRUE, 0);
  EXPECT_EQ(WaitResult::signalled, waitDispatchingMessages(event.get(), 30000));
  EXPECT_EQ(2, window.messages);
}

TEST(MessageWait, LetsMessagesInThatAnotherThreadSends) {
  const UniqueHandle event = makeEvent(false);
  TestWindow window(countAndSignal, event.get());
  LRESULT first = 0, second = 0;
  std::thread sender([&] {
    first = SendMessageW(window.window(), WM_APP, FALSE, 0);
    second = SendMessageW(window.window(), WM_APP, FALSE, 0);
    SetEvent(event.get());
  });
  EXPECT_EQ(WaitResult::signalled, waitDispatchingMessages(event.get(), 30000));
  sender.join();
  EXPECT_EQ(42, first);
  EXPECT_EQ(42, second);
  EXPECT_EQ(2, window.messages);
}

TEST(MessageWait, SeesMessagesThatSomebodyPeekedAtBefore) {
  const UniqueHandle event = makeEvent(false);
  TestWindow window(countAndSignal, event.get());
  PostMessageW(window.window(), WM_APP, TRUE, 0);
  MSG message;
  ASSERT_TRUE(PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE));
  EXPECT_EQ(WaitResult::signalled, waitDispatchingMessages(event.get(), 30000));
}

TEST(MessageWait, EndsThoughAWindowPostsToItselfWithoutEnd) {
  const UniqueHandle event = makeEvent(false);
  TestWindow window(
      [](TestWindow& self, UINT, WPARAM) -> LRESULT {
        PostMessageW(self.window(), WM_APP, 0, 0);
        if (++self.messages == 100) SetEvent(self.event());
        return 0;
      },
      event.get());
  PostMessageW(window.window(), WM_APP, 0, 0);
  EXPECT_EQ(WaitResult::signalled, waitDispatchingMessages(event.get(), 30000));
  EXPECT_EQ(100, window.messages);
}

TEST(MessageWait, KeepsItsTimeLimitUnderAStreamOfMessages) {
  const UniqueHandle event = makeEvent(false);
  TestWindow window(
      [](TestWindow& self, UINT, WPARAM) -> LRESULT {
        PostMessageW(self.window(), WM_APP, 0, 0);
        return 0;
      },
      event.get());
  PostMessageW(window.window(), WM_APP, 0, 0);
  EXPECT_EQ(WaitResult::timedOut, waitDispatchingMessages(event.get(), 60));
}

TEST(MessageWait, KeepsAQuitRequestForTheMessageLoop) {
  const UniqueHandle event = makeEvent(false);
  TestWindow window(countAndSignal, event.get());
  PostQuitMessage(17);
  PostMessageW(window.window(), WM_APP, FALSE, 0);
  EXPECT_EQ(WaitResult::timedOut, waitDispatchingMessages(event.get(), 60));
  EXPECT_EQ(1, window.messages);
  MSG message;
  ASSERT_TRUE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
  EXPECT_EQ(static_cast<UINT>(WM_QUIT), message.message);
  EXPECT_EQ(17u, message.wParam);
  EXPECT_FALSE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
}

TEST(MessageWait, KeepsAQuitRequestThroughSeveralWaitsInTurn) {
  const UniqueHandle first = makeEvent(false), second = makeEvent(false), third = makeEvent(true);
  PostQuitMessage(3);
  EXPECT_EQ(WaitResult::timedOut, waitDispatchingMessages(first.get(), 20));
  EXPECT_EQ(WaitResult::timedOut, waitDispatchingMessages(second.get(), 20));
  EXPECT_EQ(WaitResult::signalled, waitDispatchingMessages(third.get(), 20));
  MSG message;
  ASSERT_TRUE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
  EXPECT_EQ(static_cast<UINT>(WM_QUIT), message.message);
  EXPECT_EQ(3u, message.wParam);
}

}  // namespace
}  // namespace av
