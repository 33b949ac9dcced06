#include "clocking/search/SharedExecutor.h"

#include <pthread.h>

#include <algorithm>
#include <memory>
#include <new>
#include <thread>

#include <taskflow/taskflow.hpp>

namespace hbs_clocking {

namespace {

struct Pool {
    Pool(unsigned workers, const Pool* before) : executor(workers), inherited(before) {}

    tf::Executor executor;
    /// The pool of the process that forked this one. Its workers don't exist here, so that
    /// destroying it would wait for them for ever; it stays reachable instead.
    const Pool* inherited;
};

// Initialised at load, not at first use: a fork may coincide with a first use by another thread,
// and the child would wait for ever for the guard of that initialisation.
constinit std::unique_ptr<Pool> currentPool;
constinit const Pool* inheritedPool = nullptr;
constinit bool watchesForks = false;

/// Runs in the child of every fork, before anything else of the child does.
void leaveInheritedPool() {
    if (currentPool)
        inheritedPool = currentPool.release();
}

void watchForks() {
    if (!watchesForks && pthread_atfork(nullptr, nullptr, leaveInheritedPool) != 0)
        throw std::bad_alloc(); // the only failure that it has
    watchesForks = true;
}

void makePool(unsigned workers) {
    currentPool.reset(); // its threads end before the new ones start
    currentPool = std::make_unique<Pool>(workers, inheritedPool);
}

} // namespace

void runOnSharedExecutor(const std::string& name, unsigned count,
                         const std::function<void(unsigned)>& task) {
    watchForks();
    if (!currentPool)
        makePool(std::max(1U, std::thread::hardware_concurrency()));
    if (currentPool->executor.num_workers() != count && currentPool->executor.num_topologies() == 0)
        makePool(count);
    tf::Taskflow graph(name);
    for (unsigned i = 0; i < count; ++i)
        graph.emplace([&task, i] { task(i); });
    currentPool->executor.run(graph).get();
}

} // namespace hbs_clocking
