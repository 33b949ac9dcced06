#include "bindings/core/Search.h"

#include <chrono>
#include <condition_variable>
#include <csignal>
#include <exception>
#include <mutex>
#include <new>
#include <pthread.h>
#include <thread>
#include <vector>

#include "bindings/core/ClassInfo.h"
#include "clocking/SearchInterruption.h"

namespace tq::bindings {

namespace {

using hbs_clocking::SearchInterrupted;
using hbs_clocking::SearchInterruption;

constexpr std::chrono::milliseconds kPatience{20};

/// The turn of the one search that may run. Leaked, as threads may outlive everything.
struct Turn {
    std::timed_mutex mutex;
    std::vector<Object*> claimed; ///< trees whose search runs or waits; under the registry's lock
};

Turn& turn() {
    static auto* const instance = new Turn;
    return *instance;
}

thread_local bool t_isSearching = false;

/// Marks a tree as being searched, so that nobody changes or deletes it.
class Claim {
public:
    explicit Claim(Object& root) : m_root(&root) {
        const auto held = Registry::get().lock();
        expectUsable(root);
        if (t_isSearching)
            throw ScriptError(Failure::Kind::Busy, "this thread waits for a search already");
        turn().claimed.push_back(m_root.get());
        m_root->part->isBusy = true;
        t_isSearching = true;
    }
    ~Claim() {
        const auto held = Registry::get().lock();
        std::erase(turn().claimed, m_root.get());
        m_root->part->isBusy = false;
        t_isSearching = false;
    }
    Claim(const Claim&) = delete;
    Claim& operator=(const Claim&) = delete;

private:
    ObjectRef m_root;
};

/// Runs the work on a thread that takes no signals: they are for the thread that waits.
class Worker {
public:
    explicit Worker(const std::function<void()>& work) {
        sigset_t all;
        sigset_t before;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before);
        try {
            m_thread = std::thread([this, &work] { run(work); });
        } catch (...) {
            pthread_sigmask(SIG_SETMASK, &before, nullptr);
            throw;
        }
        pthread_sigmask(SIG_SETMASK, &before, nullptr);
    }
    ~Worker() { m_thread.join(); }
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    [[nodiscard]] bool endsWithin(std::chrono::milliseconds time) {
        std::unique_lock lock(m_mutex);
        return m_hasEnded.wait_for(lock, time, [this] { return m_isDone; });
    }
    [[nodiscard]] const std::exception_ptr& error() const { return m_error; }

private:
    void run(const std::function<void()>& work) {
        try {
            work();
        } catch (...) {
            m_error = std::current_exception();
        }
        const std::lock_guard lock(m_mutex);
        m_isDone = true;
        m_hasEnded.notify_all();
    }

    std::mutex m_mutex;
    std::condition_variable m_hasEnded;
    bool m_isDone = false;
    std::exception_ptr m_error;
    std::thread m_thread;
};

/// True if the user had enough meanwhile.
bool waitFor(Worker& worker, Waiting& waiting) {
    bool isInterrupted = false;
    while (!worker.endsWithin(kPatience))
        if (waiting.isInterrupted()) {
            SearchInterruption::request();
            isInterrupted = true;
        }
    return isInterrupted;
}

} // namespace

Waiting::~Waiting() = default;

void runSearch(Object& root, Waiting& waiting, const std::function<void()>& work) {
    const Claim claim(root);
    const OthersRun others(waiting);
    std::unique_lock mine(turn().mutex, std::defer_lock);
    while (!mine.try_lock_for(kPatience))
        if (waiting.isInterrupted())
            throw SearchInterrupted();
    std::exception_ptr error;
    bool isInterrupted = false;
    {
        Worker worker(work);
        isInterrupted = waitFor(worker, waiting);
        error = worker.error();
    }
    SearchInterruption::withdraw();
    if (error)
        std::rethrow_exception(error);
    if (isInterrupted) // it was over before it noticed; the user's wish isn't lost
        throw SearchInterrupted();
}

void endSearches() noexcept {
    constexpr std::chrono::seconds most{5};
    SearchInterruption::request();
    const std::unique_lock ours(turn().mutex, most);
    SearchInterruption::withdraw();
}

void forgetSearch() noexcept {
    for (Object* root : turn().claimed)
        root->part->isBusy = false;
    turn().claimed.clear();
    new (&turn().mutex) std::timed_mutex;
    SearchInterruption::withdraw();
    t_isSearching = false;
}

} // namespace tq::bindings
