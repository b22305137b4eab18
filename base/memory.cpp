#include "base/memory.h"

#include <cstdlib>  // tells which C library this is
#ifdef __GLIBC__
#include <malloc.h>
#endif

void shareHeaps() {
#ifdef __GLIBC__
  constexpr int heaps = 2;  // one is waited for where threads and window work at once
  mallopt(M_ARENA_MAX, heaps);
#endif
}

void giveBackFreeMemory() {
#ifdef __GLIBC__
  malloc_trim(0);
#endif
}
