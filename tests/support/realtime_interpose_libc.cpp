// Definitions in the program win over those of the C library: each function here notes its call and
// passes it on. The heap goes on through glibc's own names, since looking a function up may
// allocate.
#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <typeinfo>

#include <cxxabi.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <malloc.h>
#include <poll.h>
#include <pthread.h>
#include <sched.h>
#include <semaphore.h>
#include <sys/mman.h>
#include <unistd.h>

#include "support/realtime_interpose.h"

bool RealtimeInterposeCanSee(RealtimeViolation) {
  return true;
}

namespace {

// The function behind one of ours, looked up at its first call. Gives an R; the arguments of a call
// have to be of the function's own types.
template <class R>
class Behind {
public:
  constexpr explicit Behind(char const * iName, char const * iVersion = nullptr)
      : mName(iName), mVersion(iVersion), mFunctionP(nullptr) {}

  template <class... TArgs>
  R operator()(RealtimeViolation iKind, TArgs... iArgs) {
    RealtimeScope::Note(iKind, mName);
    return reinterpret_cast<R (*)(TArgs...)>(Find())(iArgs...);
  }

private:
  void * Find() {
    void * foundP = mFunctionP.load(std::memory_order_relaxed);
    // A name of several versions gives an outdated one unless asked for by version.
    if (!foundP && mVersion) foundP = dlvsym(RTLD_NEXT, mName, mVersion);
    if (!foundP) foundP = dlsym(RTLD_NEXT, mName);
    mFunctionP.store(foundP, std::memory_order_relaxed);
    return foundP;
  }

  char const * mName;
  char const * mVersion;
  std::atomic<void *> mFunctionP;
};

using enum RealtimeViolation;

constexpr char kConditionVersion[] = "GLIBC_2.3.2";

}  // namespace

extern "C" {

void * __libc_malloc(size_t);
void __libc_free(void *);
void * __libc_calloc(size_t, size_t);
void * __libc_realloc(void *, size_t);
void * __libc_memalign(size_t, size_t);

void * malloc(size_t iSize) {
  RealtimeScope::Note(kHeap, "malloc");
  return __libc_malloc(iSize);
}

void free(void * iP) {
  RealtimeScope::Note(kHeap, "free");
  __libc_free(iP);
}

void * calloc(size_t iNum, size_t iSize) {
  RealtimeScope::Note(kHeap, "calloc");
  return __libc_calloc(iNum, iSize);
}

void * realloc(void * iP, size_t iSize) {
  RealtimeScope::Note(kHeap, "realloc");
  return __libc_realloc(iP, iSize);
}

void * memalign(size_t iAlignment, size_t iSize) {
  RealtimeScope::Note(kHeap, "memalign");
  return __libc_memalign(iAlignment, iSize);
}

void * aligned_alloc(size_t iAlignment, size_t iSize) {
  RealtimeScope::Note(kHeap, "aligned_alloc");
  return __libc_memalign(iAlignment, iSize);
}

int posix_memalign(void ** oP, size_t iAlignment, size_t iSize) {
  RealtimeScope::Note(kHeap, "posix_memalign");
  *oP = __libc_memalign(iAlignment, iSize);
  return *oP ? 0 : 12;
}

int pthread_mutex_lock(pthread_mutex_t * ioP) noexcept {
  static constinit Behind<int> sBehind("pthread_mutex_lock");
  return sBehind(kLock, ioP);
}

int pthread_rwlock_rdlock(pthread_rwlock_t * ioP) noexcept {
  static constinit Behind<int> sBehind("pthread_rwlock_rdlock");
  return sBehind(kLock, ioP);
}

int pthread_rwlock_wrlock(pthread_rwlock_t * ioP) noexcept {
  static constinit Behind<int> sBehind("pthread_rwlock_wrlock");
  return sBehind(kLock, ioP);
}

int pthread_spin_lock(pthread_spinlock_t * ioP) noexcept {
  static constinit Behind<int> sBehind("pthread_spin_lock");
  return sBehind(kLock, ioP);
}

int sem_wait(sem_t * ioP) {
  static constinit Behind<int> sBehind("sem_wait");
  return sBehind(kLock, ioP);
}

int pthread_cond_wait(pthread_cond_t * ioP, pthread_mutex_t * ioMutexP) {
  static constinit Behind<int> sBehind("pthread_cond_wait", kConditionVersion);
  return sBehind(kWait, ioP, ioMutexP);
}

int pthread_cond_timedwait(pthread_cond_t * ioP, pthread_mutex_t * ioMutexP, timespec const * iP) {
  static constinit Behind<int> sBehind("pthread_cond_timedwait", kConditionVersion);
  return sBehind(kWait, ioP, ioMutexP, iP);
}

int pthread_cond_clockwait(pthread_cond_t * ioP, pthread_mutex_t * ioMutexP, clockid_t iClock,
                           timespec const * iP) {
  static constinit Behind<int> sBehind("pthread_cond_clockwait");
  return sBehind(kWait, ioP, ioMutexP, iClock, iP);
}

int pthread_join(pthread_t iThread, void ** oP) {
  static constinit Behind<int> sBehind("pthread_join");
  return sBehind(kWait, iThread, oP);
}

int nanosleep(timespec const * iP, timespec * oP) {
  static constinit Behind<int> sBehind("nanosleep");
  return sBehind(kWait, iP, oP);
}

int clock_nanosleep(clockid_t iClock, int iFlags, timespec const * iP, timespec * oP) {
  static constinit Behind<int> sBehind("clock_nanosleep");
  return sBehind(kWait, iClock, iFlags, iP, oP);
}

int usleep(useconds_t iMicroseconds) {
  static constinit Behind<int> sBehind("usleep");
  return sBehind(kWait, iMicroseconds);
}

int sched_yield() noexcept {
  static constinit Behind<int> sBehind("sched_yield");
  return sBehind(kWait);
}

int poll(pollfd * ioP, nfds_t iNum, int iTimeout) {
  static constinit Behind<int> sBehind("poll");
  return sBehind(kWait, ioP, iNum, iTimeout);
}

// Atomic waiting comes through here. No system call takes more than six arguments.
long syscall(long iNumber, ...) noexcept {
  static constinit Behind<long> sBehind("syscall");
  std::va_list list;
  va_start(list, iNumber);
  long arguments[6];
  for (long & argument : arguments)
    argument = va_arg(list, long);
  va_end(list);
  return sBehind(kWait, iNumber, arguments[0], arguments[1], arguments[2], arguments[3],
                 arguments[4], arguments[5]);
}

ssize_t read(int iFile, void * oP, size_t iSize) {
  static constinit Behind<ssize_t> sBehind("read");
  return sBehind(kSystem, iFile, oP, iSize);
}

ssize_t write(int iFile, void const * iP, size_t iSize) {
  static constinit Behind<ssize_t> sBehind("write");
  return sBehind(kSystem, iFile, iP, iSize);
}

int open(char const * iPath, int iFlags, ...) {
  static constinit Behind<int> sBehind("open");
  std::va_list list;
  va_start(list, iFlags);
  int const mode = (iFlags & (O_CREAT | O_TMPFILE)) ? va_arg(list, int) : 0;
  va_end(list);
  return sBehind(kSystem, iPath, iFlags, mode);
}

int close(int iFile) {
  static constinit Behind<int> sBehind("close");
  return sBehind(kSystem, iFile);
}

void * mmap(void * iP, size_t iSize, int iProtection, int iFlags, int iFile,
            off_t iOffset) noexcept {
  static constinit Behind<void *> sBehind("mmap");
  return sBehind(kSystem, iP, iSize, iProtection, iFlags, iFile, iOffset);
}

int munmap(void * iP, size_t iSize) noexcept {
  static constinit Behind<int> sBehind("munmap");
  return sBehind(kSystem, iP, iSize);
}

int getentropy(void * oP, size_t iSize) {
  static constinit Behind<int> sBehind("getentropy");
  return sBehind(kSystem, oP, iSize);
}

FILE * fopen(char const * iPath, char const * iMode) {
  static constinit Behind<FILE *> sBehind("fopen");
  return sBehind(kSystem, iPath, iMode);
}

int fclose(FILE * ioP) {
  static constinit Behind<int> sBehind("fclose");
  return sBehind(kSystem, ioP);
}

int fflush(FILE * ioP) {
  static constinit Behind<int> sBehind("fflush");
  return sBehind(kSystem, ioP);
}

size_t fread(void * oP, size_t iSize, size_t iNum, FILE * ioP) {
  static constinit Behind<size_t> sBehind("fread");
  return sBehind(kSystem, oP, iSize, iNum, ioP);
}

size_t fwrite(void const * iP, size_t iSize, size_t iNum, FILE * ioP) {
  static constinit Behind<size_t> sBehind("fwrite");
  return sBehind(kSystem, iP, iSize, iNum, ioP);
}

int fputs(char const * iText, FILE * ioP) {
  static constinit Behind<int> sBehind("fputs");
  return sBehind(kSystem, iText, ioP);
}

int puts(char const * iText) {
  static constinit Behind<int> sBehind("puts");
  return sBehind(kSystem, iText);
}

int vfprintf(FILE * ioP, char const * iFormat, std::va_list iArguments) {
  static constinit Behind<int> sBehind("vfprintf");
  return sBehind(kSystem, ioP, iFormat, iArguments);
}

int fprintf(FILE * ioP, char const * iFormat, ...) {
  std::va_list list;
  va_start(list, iFormat);
  int const result = vfprintf(ioP, iFormat, list);
  va_end(list);
  return result;
}

int printf(char const * iFormat, ...) {
  std::va_list list;
  va_start(list, iFormat);
  int const result = vfprintf(stdout, iFormat, list);
  va_end(list);
  return result;
}

}  // extern "C"

namespace __cxxabiv1 {

extern "C" void __cxa_throw(void * iObjectP, std::type_info * iTypeP, void (*iDestructor)(void *)) {
  static constinit Behind<void> sBehind("__cxa_throw");
  sBehind(kThrow, iObjectP, iTypeP, iDestructor);
  __builtin_unreachable();
}

}  // namespace __cxxabiv1
