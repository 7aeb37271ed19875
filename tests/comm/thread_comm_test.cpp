#include "comm/thread_comm.h"

#include <gtest/gtest.h>

#include <chrono>
#include <stdexcept>
#include <thread>

#include "app/log.h"
#include "comm/serial_error.h"

namespace velantis {
namespace {

TEST(ThreadComm, FailuresEndTheCommandAndAreLoggedWithTheirKind) {
  struct TCase {
    std::function<bool(TProgress&)> command;
    bool succeeds;
    TLogKind kind;
    std::string text;
  };
  const TCase cases[] = {
      {[](TProgress&) { return true; }, true, TLogKind::Debug, ""},
      {[](TProgress&) { return false; }, false, TLogKind::Debug, ""},
      {[](TProgress&) -> bool { throw TXErrorRScom(kSerialPortClosed, "/dev/ttyUSB0"); }, false,
       TLogKind::CommError, "TXErrorRScom error: Error, puerto cerrado! /dev/ttyUSB0"},
      {[](TProgress&) -> bool { throw std::runtime_error("bad packet"); }, false, TLogKind::Error,
       "Error Exception en TThreadComm::Run () bad packet"},
      {[](TProgress&) -> bool { throw 7; }, false, TLogKind::Error, "Error indeterminado 2 (...) "},
  };
  TThreadComm thread;
  for (const TCase& c : cases) {
    TLog::Instance().ClearEntries();
    ASSERT_TRUE(thread.Start(std::string(kCommandAutodetect), c.command));
    EXPECT_EQ(thread.Wait(), c.succeeds);
    EXPECT_EQ(thread.ErrorText(), c.text);
    const std::vector<TLogEntry> entries = TLog::Instance().Entries();
    if (c.text.empty()) {
      EXPECT_TRUE(entries.empty());
    } else {
      ASSERT_EQ(entries.size(), 1u);
      EXPECT_EQ(entries[0].kind, c.kind);
      EXPECT_EQ(entries[0].text, c.text);
    }
  }
}

TEST(ThreadComm, OneCommandAtATimeAndCancelIsSeenBetweenSteps) {
  TThreadComm thread;
  std::atomic<bool> started{false};
  ASSERT_TRUE(thread.Start(std::string(kCommandTestMovingMap), [&](TProgress& progress) {
    started = true;
    progress.SetTotal(1000000);
    while (progress.Step()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return !progress.Cancelled();
  }));
  while (!started) std::this_thread::yield();
  EXPECT_TRUE(thread.Running());
  EXPECT_FALSE(thread.Start("another", [](TProgress&) { return true; }));
  thread.Cancel();
  EXPECT_FALSE(thread.Wait());
  EXPECT_FALSE(thread.Running());
  EXPECT_LT(thread.Progress().Steps(), 1000000);
  // The next command starts afresh, not cancelled.
  ASSERT_TRUE(thread.Start("again", [](TProgress& progress) { return progress.Step(); }));
  EXPECT_TRUE(thread.Wait());
}

}  // namespace
}  // namespace velantis
