#pragma once

#include <cstdio>
#include <cstdlib>

// A broken invariant aborts, so libFuzzer keeps the input that broke it.
inline void fuzzCheck(bool condition, const char* what)
{
    if (!condition) {
        std::fprintf(stderr, "invariant broken: %s\n", what);
        std::abort();
    }
}
