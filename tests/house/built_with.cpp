// Says what the tests of this build tree were really compiled with.
#include <cstdio>

int main() {
#if defined(__clang__)
  char const * const compiler = "clang++ " __clang_version__;
#else
  char const * const compiler = "g++ " __VERSION__;
#endif
#if defined(__OPTIMIZE__)
  bool const optimized = true;
#else
  bool const optimized = false;
#endif
  std::printf("%s, C++ %ld, %s\n", compiler, static_cast<long>(__cplusplus),
              optimized ? "optimized" : "not optimized");
}
