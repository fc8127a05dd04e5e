#pragma once

namespace velmo::markdown {

// The process's heap policy for parse trees. A full parse of a large note (opening it, or an
// edit the reparse cannot confine) builds and frees tens of megabytes of nodes; glibc would
// hand freed blocks that large back to the system at once, and every parse would then pay the
// page faults of mapping them afresh. Called once, first thing in main, by the program and by
// the benchmarks, which measure what the program does.
class ParseHeap {
public:
    static void keepWarm();
};

}
