#include "clocking/search/SharedExecutor.h"

#include <algorithm>
#include <memory>
#include <thread>

#include <taskflow/taskflow.hpp>

namespace hbs_clocking {

void runOnSharedExecutor(const std::string& name, unsigned count,
                         const std::function<void(unsigned)>& task) {
    static auto executor =
        std::make_unique<tf::Executor>(std::max(1U, std::thread::hardware_concurrency()));
    // None is left where the last one's threads couldn't be made.
    if (!executor || (executor->num_workers() != count && executor->num_topologies() == 0)) {
        executor.reset(); // its threads end before the new ones start
        executor = std::make_unique<tf::Executor>(count);
    }
    tf::Taskflow graph(name);
    for (unsigned i = 0; i < count; ++i)
        graph.emplace([&task, i] { task(i); });
    executor->run(graph).get();
}

} // namespace hbs_clocking
