#ifndef OMBRIX_BUILDER_THREADPOOL_H
#define OMBRIX_BUILDER_THREADPOOL_H

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <mutex>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "common/failure.h"

namespace ombrix {

/// A fixed set of threads that run tasks of one type, handed over by pointer and called with no
/// argument. One controlling thread enqueues a batch and waits for all of it; whatever it wrote
/// before enqueue is seen by the tasks, and whatever they wrote is seen after waitAll.
///
/// Tasks are taken last in, first out, but a thread that finds the task it ran before takes that
/// one: the data of a task stay in the caches of one processor. What a task throws does not end the
/// process: the last such exception is kept until the controlling thread asks for it. The
/// destructor ends and joins all threads; a task that was not yet taken is dropped.
///
/// Batches follow one another within microseconds, every ten milliseconds or so. A thread that has
/// nothing to do therefore looks out for the next batch a little while before it sleeps: threads
/// that are woken together start on one processor, and it takes the system some milliseconds to
/// part them.
template <typename T>
class ThreadPool {
public:
  /// Starts the threads and returns when all of them are idle. Code 6 when the system refuses a
  /// thread; those that were started are joined first.
  explicit ThreadPool(std::size_t size);
  ~ThreadPool();
  ThreadPool(const ThreadPool&) = delete;
  ThreadPool& operator=(const ThreadPool&) = delete;

  void enqueue(T* task);
  /// Returns when no task is left and every thread is idle.
  void waitAll();
  /// Throws what a task has thrown since the last call, if any did.
  void throwTaskError();

private:
  void startThreads();
  void waitIdle(std::unique_lock<std::mutex>& lock);
  void stopThreads();
  void work();
  /// The next task of a thread, or null when it must end.
  T* takeTask(const T* previous);
  void awaitWork(std::unique_lock<std::mutex>& lock);
  bool hasWork() const { return stopping || !tasks.empty(); }
  bool isIdle() const { return nbIdle == nbThreads && tasks.empty(); }
  void runTask(T& task);

  std::condition_variable workAvailable;
  std::condition_variable workerIdle;
  std::mutex mutex;
  std::vector<T*> tasks;
  std::vector<std::thread> threads;
  const std::size_t nbThreads;
  bool stopping = false;
  std::atomic<bool> workSeen = false;  ///< hasWork(), for a look without the mutex
  std::size_t nbIdle = 0;
  std::exception_ptr taskError;
};

template <typename T>
ThreadPool<T>::ThreadPool(std::size_t size) : nbThreads(size) {
  try {
    startThreads();
  } catch (...) {
    stopThreads();
    throw;
  }
  std::unique_lock lock(mutex);
  waitIdle(lock);
}

template <typename T>
ThreadPool<T>::~ThreadPool() {
  stopThreads();
}

template <typename T>
void ThreadPool<T>::startThreads() {
  threads.reserve(nbThreads);
  // A batch of a task for each thread is enqueued without allocating.
  tasks.reserve(nbThreads);
  for (std::size_t i = 0; i < nbThreads; ++i) {
    try {
      threads.emplace_back([this] { work(); });
    } catch (const std::system_error& error) {
      fail(kInternal, OMBRIX_HERE("ThreadPool::ThreadPool"),
           "Cannot start search thread " + std::to_string(i + 1) + " of " +
               std::to_string(nbThreads) + ": " + error.what());
    }
  }
}

template <typename T>
void ThreadPool<T>::stopThreads() {
  {
    std::lock_guard lock(mutex);
    stopping = true;
    workSeen.store(true, std::memory_order_relaxed);
    workAvailable.notify_all();
  }
  for (std::thread& thread : threads) {
    try {
      thread.join();
    } catch (const std::system_error&) {
      // A thread that cannot be joined has ended: there is nothing left to wait for.
    }
  }
}

template <typename T>
void ThreadPool<T>::enqueue(T* task) {
  std::lock_guard lock(mutex);
  tasks.push_back(task);
  workSeen.store(true, std::memory_order_relaxed);
  if (nbIdle > 0) workAvailable.notify_one();
}

template <typename T>
void ThreadPool<T>::waitAll() {
  std::unique_lock lock(mutex);
  waitIdle(lock);
}

template <typename T>
void ThreadPool<T>::waitIdle(std::unique_lock<std::mutex>& lock) {
  workerIdle.wait(lock, [this] { return isIdle(); });
}

template <typename T>
void ThreadPool<T>::throwTaskError() {
  std::exception_ptr error;
  {
    std::lock_guard lock(mutex);
    error = std::exchange(taskError, nullptr);
  }
  if (error) std::rethrow_exception(std::move(error));
}

template <typename T>
void ThreadPool<T>::work() {
  const T* previous = nullptr;
  while (T* task = takeTask(previous)) {
    runTask(*task);
    previous = task;
  }
}

template <typename T>
T* ThreadPool<T>::takeTask(const T* previous) {
  std::unique_lock lock(mutex);
  ++nbIdle;
  while (!hasWork()) awaitWork(lock);
  if (stopping) {
    workerIdle.notify_one();
    return nullptr;
  }
  --nbIdle;
  auto own = std::find(tasks.begin(), tasks.end(), previous);
  if (own == tasks.end()) --own;
  T* task = *own;
  tasks.erase(own);
  workSeen.store(hasWork(), std::memory_order_relaxed);
  return task;
}

/// Returns when there may be work.
template <typename T>
void ThreadPool<T>::awaitWork(std::unique_lock<std::mutex>& lock) {
  using Clock = std::chrono::steady_clock;
  constexpr auto kLookOut = std::chrono::milliseconds(5);
  if (isIdle()) workerIdle.notify_one();
  lock.unlock();
  // With more threads than processors, a look-out takes time from threads that still work.
  const bool mayLookOut = nbThreads <= std::thread::hardware_concurrency();
  const Clock::time_point end = Clock::now() + (mayLookOut ? kLookOut : Clock::duration::zero());
  while (!workSeen.load(std::memory_order_relaxed) && Clock::now() < end) {
    std::this_thread::yield();
  }
  lock.lock();
  workAvailable.wait(lock, [this] { return hasWork(); });
}

template <typename T>
void ThreadPool<T>::runTask(T& task) {
  std::exception_ptr error;
  try {
    task();
  } catch (...) {
    error = std::current_exception();
  }
  if (!error) return;
  std::lock_guard lock(mutex);
  taskError = std::move(error);
}

}  // namespace ombrix

#endif
