// The threads whose entries a report holds.
#pragma once

#include "qmt/general/containers.h"
#include "qmt/general/string.h"

namespace QMT {

// Numbers the threads from 1 in the order in which they come, and notes their names. The caller lets one
// thread at a time in.
class ReportThreads {
public:
    // The calling thread's number. Allocates when it comes first.
    unsigned int NumberOfThisThread() { return thisThread.round == round ? thisThread.number : Add(); }

    // The name of each thread when it came, empty for none; number 1 stands first.
    NonSortableVArray<String> const& Names() const { return names; }

    // Forgets all threads and begins again with 1.
    void Clear();

private:
    struct Known {
        unsigned int round;
        unsigned int number;
    };

    unsigned int Add();

    // Found without a call: there are few such variables, so that room for them is always left.
    [[gnu::tls_model("initial-exec")]] static thread_local constinit Known thisThread;

    unsigned int round = 1;
    NonSortableVArray<String> names;
};

} // namespace QMT
