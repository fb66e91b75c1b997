// vn::Thread: the calling thread's identity as the platform sees it: whether it is the main
// thread, its private dictionary, and its call stack.
//
// The main thread is the one that loaded the library (in a program, the thread that runs
// main()); a host that loads the library elsewhere names its main thread with markMainThread().
#pragma once

#include <string>
#include <vector>

#include "vn/platform/Value.h"

namespace vn {

class Thread {
  public:
    static bool isMainThread();
    // Declares the calling thread to be the main thread.
    static void markMainThread();

    // The calling thread's own dictionary. It lives as long as the thread and is never seen
    // by another thread, so it needs no lock.
    static Value::Dictionary& threadDictionary();

    // The calling thread's stack, innermost frame first, one demangled text per frame
    // ("<index> <image> <function> + <offset>"). This function's own frame is not included.
    // Functions of an executable are named only when it exports its symbols (-rdynamic).
    static std::vector<std::string> callStackSymbols();
};

}  // namespace vn
