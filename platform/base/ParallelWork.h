#pragma once

#include <cstddef>
#include <functional>

namespace vorla {

/// Does `count` pieces of work, in about their order, on the calling thread and on up to
/// `helpers` threads of the global queue, and returns when all are done. The caller never waits for
/// a thread to become free: pieces that no helper has begun it does itself, so the call is safe
/// from a task of the global queue, and from several threads at once.
///
/// `work` gets the number of the worker (0 is the caller, at most `helpers`), each of which runs
/// one piece at a time, and the number of the piece. It must not throw.
void workInParallel(size_t count, unsigned helpers,
                    const std::function<void(unsigned worker, size_t piece)>& work);

}  // namespace vorla
