// Finding the trace library and its entry points. Not installed.
#pragma once

/// The library, which stays loaded; null if it is not where it belongs.
void * LumTraceOpenLibrary();

/// An entry point of it by name; null if it has none of that name.
void * LumTraceFindEntry(void * iLibraryP, char const * iName);
