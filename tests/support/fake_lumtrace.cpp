// A trace library for lumtrace_loaded_test. It lacks one entry point, LumTraceStack.
extern "C" {

__attribute__((visibility("default"))) bool LumTraceIsActiveFunc(unsigned iFacility) {
  return iFacility == 0x2000f27;
}

__attribute__((visibility("default"))) void LumTraceFormat(unsigned, char const *, ...) {}

__attribute__((visibility("default"))) void LumTraceFormatQuiet(unsigned, char const *, ...) {}

__attribute__((visibility("default"))) void LumTraceFormatTimestamp(unsigned, char const *, ...) {}

__attribute__((visibility("default"))) void LumTracePuts(unsigned, char const *) {}

__attribute__((visibility("default"))) void LumTraceMem(unsigned, void const *, int) {}

}  // extern "C"
