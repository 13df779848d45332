#pragma once

#include <pthread.h>

#if defined(__clang__)
#define ZARNET_THREAD_ANNOTATION(x) __attribute__((x))
#else
#define ZARNET_THREAD_ANNOTATION(x)
#endif

/// Marks a field that may be touched only while the given mutex is held.
#define GUARDED_BY(x) ZARNET_THREAD_ANNOTATION(guarded_by(x))
/// Marks an operation that its caller must enter with the given mutex held.
#define REQUIRES(...) ZARNET_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
/// Marks an operation that takes the given mutex itself, so that its caller must not hold it.
#define EXCLUDES(...) ZARNET_THREAD_ANNOTATION(locks_excluded(__VA_ARGS__))

namespace zarnet {

/// A mutual-exclusion lock that Clang's thread-safety analysis understands. A thread that holds it inherits
/// the priority of the most urgent thread that waits for it, so that a real-time thread is never kept waiting
/// behind unrelated work. Not recursive.
class ZARNET_THREAD_ANNOTATION(capability("mutex")) Mutex {
 public:
  Mutex() {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_setprotocol(&attributes, PTHREAD_PRIO_INHERIT);
    pthread_mutex_init(&handle, &attributes);
    pthread_mutexattr_destroy(&attributes);
  }
  ~Mutex() { pthread_mutex_destroy(&handle); }
  Mutex(const Mutex&) = delete;
  Mutex& operator=(const Mutex&) = delete;

  void lock() ZARNET_THREAD_ANNOTATION(acquire_capability()) { pthread_mutex_lock(&handle); }
  void unlock() ZARNET_THREAD_ANNOTATION(release_capability()) { pthread_mutex_unlock(&handle); }

 private:
  pthread_mutex_t handle;
};

/// Holds a mutex for the length of a scope.
class ZARNET_THREAD_ANNOTATION(scoped_lockable) MutexLock {
 public:
  explicit MutexLock(Mutex& held) ZARNET_THREAD_ANNOTATION(acquire_capability(held)) : mutex(held) {
    mutex.lock();
  }
  ~MutexLock() ZARNET_THREAD_ANNOTATION(release_capability()) { mutex.unlock(); }
  MutexLock(const MutexLock&) = delete;
  MutexLock& operator=(const MutexLock&) = delete;

 private:
  Mutex& mutex;
};

}  // namespace zarnet
