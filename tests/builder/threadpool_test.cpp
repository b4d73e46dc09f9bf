#include "builder/threadpool.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <stdexcept>
#include <thread>
#include <vector>

namespace ombrix {
namespace {

struct Task {
  std::function<void()> body;
  void operator()() { body(); }
};

TEST(ThreadPool, IsIdleWhenConstructedAndJoinsUnused) {
  for (std::size_t nbThreads : {0, 1, 2, 16}) {
    ThreadPool<Task> pool(nbThreads);
    pool.waitAll();
  }
}

TEST(ThreadPool, RunsEveryTaskOnce) {
  std::atomic<int> nbRuns = 0;
  Task task{[&] { ++nbRuns; }};
  ThreadPool<Task> pool(3);
  for (int i = 0; i < 1000; ++i) pool.enqueue(&task);
  pool.waitAll();
  EXPECT_EQ(nbRuns, 1000);
}

TEST(ThreadPool, WaitAllWaitsForTheRunningTasksToo) {
  std::atomic<bool> ended = false;
  Task slow{[&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    ended = true;
  }};
  ThreadPool<Task> pool(2);
  pool.enqueue(&slow);
  pool.waitAll();
  EXPECT_TRUE(ended);
}

TEST(ThreadPool, HandsPlainDataOverInBothDirections) {
  std::vector<int> cells(4, 0);
  std::vector<Task> tasks;
  for (std::size_t i = 0; i < cells.size(); ++i) tasks.push_back({[&cells, i] { ++cells[i]; }});
  ThreadPool<Task> pool(4);
  for (int round = 0; round < 2000; ++round) {
    for (Task& task : tasks) pool.enqueue(&task);
    pool.waitAll();
    for (int& cell : cells) EXPECT_EQ(cell, round + 1);
  }
}

TEST(ThreadPool, WakesAThreadForEveryTaskAlsoWhenTheirLookOutIsOver) {
  using Clock = std::chrono::steady_clock;
  constexpr auto kLongerThanALookOut = std::chrono::milliseconds(20);
  constexpr int kNbThreads = 2;
  std::atomic<int> nbStarted = 0;
  std::atomic<int> nbAlone = 0;
  Task meeting{[&] {
    ++nbStarted;
    const auto end = Clock::now() + std::chrono::seconds(10);
    while (nbStarted < kNbThreads && Clock::now() < end) std::this_thread::yield();
    if (nbStarted < kNbThreads) ++nbAlone;
  }};
  {
    ThreadPool<Task> pool(kNbThreads);
    for (int batch = 0; batch < 3; ++batch) {
      std::this_thread::sleep_for(kLongerThanALookOut);
      nbStarted = 0;
      for (int i = 0; i < kNbThreads; ++i) pool.enqueue(&meeting);
      pool.waitAll();
      EXPECT_EQ(nbStarted, kNbThreads);
    }
    std::this_thread::sleep_for(kLongerThanALookOut);
  }
  EXPECT_EQ(nbAlone, 0);
}

TEST(ThreadPool, TakesTheLastTaskFirst) {
  std::atomic<bool> mayGo = false;
  std::vector<int> order;
  Task blocker{[&] {
    while (!mayGo) std::this_thread::yield();
  }};
  std::vector<Task> tasks;
  for (int i = 0; i < 4; ++i) tasks.push_back({[&order, i] { order.push_back(i); }});
  ThreadPool<Task> pool(1);
  pool.enqueue(&blocker);
  // The single thread must have taken the blocker before the others are queued behind it.
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  for (Task& task : tasks) pool.enqueue(&task);
  mayGo = true;
  pool.waitAll();
  EXPECT_EQ(order, (std::vector<int>{3, 2, 1, 0}));
}

TEST(ThreadPool, AThreadTakesTheTaskItRanBeforeFirst) {
  std::atomic<bool> mayGo = false;
  std::vector<int> order;
  Task own{[&] {
    while (!mayGo) std::this_thread::yield();
    order.push_back(-1);
  }};
  std::vector<Task> others;
  for (int i = 0; i < 2; ++i) others.push_back({[&order, i] { order.push_back(i); }});
  ThreadPool<Task> pool(1);
  pool.enqueue(&own);
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  pool.enqueue(&own);
  for (Task& task : others) pool.enqueue(&task);
  mayGo = true;
  pool.waitAll();
  EXPECT_EQ(order, (std::vector<int>{-1, -1, 1, 0}));
}

TEST(ThreadPool, KeepsWhatATaskThrowsForTheControllingThread) {
  Task failing{[] { fail(kComputation, OMBRIX_HERE("NodeDiv::eval"), "Division by zero"); }};
  Task working{[] {}};
  ThreadPool<Task> pool(2);
  pool.enqueue(&failing);
  pool.enqueue(&working);
  pool.waitAll();
  try {
    pool.throwTaskError();
    FAIL() << "nothing was thrown";
  } catch (const OXException& e) {
    EXPECT_EQ(e.getCode(), kComputation);
    EXPECT_EQ(e.getExplanation(), "Division by zero");
    EXPECT_EQ(e.getFunctionName(), "ombrix::NodeDiv::eval");
  }
  EXPECT_NO_THROW(pool.throwTaskError()) << "an exception is thrown once";
}

TEST(ThreadPool, GoesOnAfterATaskThatThrew) {
  std::atomic<int> nbRuns = 0;
  Task failing{[] { throw std::runtime_error("broken"); }};
  Task counting{[&] { ++nbRuns; }};
  ThreadPool<Task> pool(1);
  pool.enqueue(&failing);
  pool.waitAll();
  EXPECT_THROW(pool.throwTaskError(), std::runtime_error);
  pool.enqueue(&counting);
  pool.waitAll();
  EXPECT_EQ(nbRuns, 1);
}

TEST(ThreadPool, DropsTasksThatWereNotTakenWhenItIsDestroyed) {
  std::atomic<int> nbRuns = 0;
  std::atomic<bool> mayGo = false;
  Task blocker{[&] {
    ++nbRuns;
    while (!mayGo) std::this_thread::yield();
  }};
  std::thread releaser;
  {
    ThreadPool<Task> pool(1);
    pool.enqueue(&blocker);
    while (nbRuns == 0) std::this_thread::yield();
    pool.enqueue(&blocker);
    releaser = std::thread([&] {
      std::this_thread::sleep_for(std::chrono::milliseconds(30));
      mayGo = true;
    });
  }
  releaser.join();
  EXPECT_EQ(nbRuns, 1);
}

// A child process limits its own address space, so that the stacks of so many threads do not fit.
int startMoreThreadsThanFit() {
  const rlimit limit{std::size_t{1} << 30, std::size_t{1} << 30};
  if (setrlimit(RLIMIT_AS, &limit) != 0) return 1;
  try {
    ThreadPool<Task> pool(1024);
  } catch (const OXException& e) {
    const bool told = e.getExplanation().rfind("Cannot start search thread ", 0) == 0;
    return e.getCode() == kInternal && told ? 0 : 2;
  }
  return 3;
}

TEST(ThreadPoolDeathTest, RefusedThreadsAreAFailureThatEndsNothing) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "a sanitizer's own memory does not fit under the limit";
#endif
  EXPECT_EXIT(std::exit(startMoreThreadsThanFit()), testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace ombrix
