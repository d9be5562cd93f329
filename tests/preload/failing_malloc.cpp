// Preloaded into the program, this library makes allocations fail.
//
// FAIL_FROM=n, FAIL_TO=m: the n-th to the m-th allocation of the process fail (from 1).
// COUNT_FILE=name: the number of allocations is written there at the end.

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>

extern "C" {
void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);
void* __libc_memalign(std::size_t, std::size_t);
}

namespace {

long count = 0;
long first = 0;
long last = 0;
bool armed = false;

long NumberOf(const char* variable)
{
  const char* text = std::getenv(variable);
  return text ? std::atol(text) : 0;
}

// The loader of programs allocates before; only what comes later is counted.
[[gnu::constructor]] void Arm()
{
  first = NumberOf("FAIL_FROM");
  last = NumberOf("FAIL_TO");
  armed = true;
}

[[gnu::destructor]] void WriteCount()
{
  const char* name = std::getenv("COUNT_FILE");
  if (!name)
    return;
  armed = false;
  char text[32];
  const int length = std::snprintf(text, sizeof text, "%ld\n", count);
  const int file = open(name, O_WRONLY | O_CREAT | O_TRUNC, 0600);
  if (file < 0 || write(file, text, static_cast<std::size_t>(length)) != length)
    _exit(125);
  close(file);
}

bool Fails()
{
  if (!armed)
    return false;
  ++count;
  if (count < first || count > last)
    return false;
  errno = ENOMEM;
  return true;
}

}  // namespace

extern "C" {

void* malloc(std::size_t size) noexcept
{
  return Fails() ? nullptr : __libc_malloc(size);
}

void* calloc(std::size_t number, std::size_t size) noexcept
{
  return Fails() ? nullptr : __libc_calloc(number, size);
}

void* realloc(void* block, std::size_t size) noexcept
{
  return Fails() ? nullptr : __libc_realloc(block, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept
{
  return Fails() ? nullptr : __libc_memalign(alignment, size);
}

}  // extern "C"
