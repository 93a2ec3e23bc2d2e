// Memory that ends at will: the allocation of a chosen number fails, in a program linked with failing_memory.cpp.
#pragma once

enum class Failing { kOnce, kFromThenOn };

// Lets the allocation number `at` from now on fail (0: the next one), and with kFromThenOn all behind it: malloc,
// strdup, getline, opendir, realpath of the library, and every operator new of the program.
void fail_allocation(int at, Failing failing);

// Ends that. True when an allocation failed.
bool end_failing();
