#include "memory/trial.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <new>
#include <typeinfo>

namespace memory {

namespace {

constexpr std::size_t kMostFaults = 20;
constexpr unsigned kMostSeconds = 120;
constexpr int kMostRepetitions = 16;
constexpr int kWarmUps = 10;

/// Text in memory that processes share.
template <std::size_t Size>
class SharedText {
public:
    void set(const std::string& text) {
        m_length = std::min(text.size(), Size);
        std::memcpy(m_text.data(), text.data(), m_length);
    }
    [[nodiscard]] std::string get() const { return {m_text.data(), m_length}; }

private:
    std::size_t m_length;
    std::array<char, Size> m_text;
};

/// What the processes that run the points tell the one that started them.
struct Record {
    std::uint64_t point;
    bool finished;
    std::uint64_t badAllocs;
    std::uint64_t ownFailures;
    std::uint64_t survived;
    std::uint64_t faultCount;
    std::array<SharedText<400>, kMostFaults> faults;
    SharedText<(1 << 20)> right;

    void fault(const std::string& text) {
        if (faultCount < kMostFaults)
            faults[faultCount].set("allocation " + std::to_string(point) + ": " + text);
        ++faultCount;
    }
};

Record& makeRecord() {
    void* const memory =
        mmap(nullptr, sizeof(Record), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED)
        std::abort();
    return *static_cast<Record*>(memory); // all zeros
}

/// Runs points in a process that may die of them.
class Worker {
public:
    Worker(const Trial& trial, Record& record) : m_trial(trial), m_record(record) {}

    void learnRightResult() {
        // The first runs make what stays for the process, such as the store of clock solutions.
        const int runs = m_trial.fresh ? 1 : kWarmUps;
        for (int i = 0; i < runs; ++i)
            m_record.right.set(m_trial.operation({}).value_or("none"));
    }

    void runPoints() {
        if (!m_trial.fresh)
            learnRightResult();
        do {
            m_record.point += m_record.point == 0 ? 1 : m_trial.step;
            runPoint();
        } while (!m_record.finished && !m_trial.fresh);
    }

private:
    void runPoint() {
        const std::int64_t before = liveAllocations();
        const std::uint64_t successes = m_record.survived;
        const bool reached = judgeAttempt();
        const std::int64_t leaked = leakedSince(before);
        const bool succeeded = !reached || m_record.survived > successes;
        const bool mayKeep = m_trial.fresh || m_trial.keeps == Trial::Keeps::PartsToo ||
                             (m_trial.keeps == Trial::Keeps::Results && succeeded);
        if (leaked > 0 && !mayKeep)
            m_record.fault("leaks " + std::to_string(leaked) + " blocks");
        if (reached)
            judgeNextRun();
        else
            m_record.finished = true;
    }

    /// The blocks that the attempt leaves behind, and leaves behind again whenever it is repeated:
    /// caches, which grow and shrink, don't count.
    std::int64_t leakedSince(std::int64_t before) {
        std::int64_t leaked = liveAllocations() - before;
        for (int i = 0; i < kMostRepetitions && leaked > 0 && !m_trial.fresh; ++i) {
            before = liveAllocations();
            repeatAttempt();
            leaked = std::min(leaked, liveAllocations() - before);
        }
        return leaked;
    }

    void repeatAttempt() {
        try {
            (void)m_trial.operation({m_record.point, m_trial.andAllLater, m_record.right.get()});
        } catch (...) { // judged before
        }
    }

    /// Whether there was an allocation of that number.
    bool judgeAttempt() {
        try {
            const std::optional<std::string> result =
                m_trial.operation({m_record.point, m_trial.andAllLater, m_record.right.get()});
            if (!result && hasFailed())
                ++m_record.ownFailures;
            else if (result.value_or("none") != m_record.right.get())
                m_record.fault("gives another result: " + *result);
            else if (hasFailed())
                ++m_record.survived;
        } catch (const std::bad_alloc&) {
            ++m_record.badAllocs;
        } catch (const std::exception& error) {
            m_record.fault(std::string("raises ") + typeid(error).name() + ": " + error.what());
        } catch (...) {
            m_record.fault("raises what is no standard exception");
        }
        return hasFailed();
    }

    void judgeNextRun() {
        try {
            if (m_trial.operation({0, false, m_record.right.get()}).value_or("none") !=
                m_record.right.get())
                m_record.fault("spoils the run after it");
        } catch (const std::exception& error) {
            m_record.fault(std::string("makes the run after it raise ") + error.what());
        } catch (...) {
            m_record.fault("makes the run after it raise what is no standard exception");
        }
    }

    const Trial& m_trial;
    Record& m_record;
};

/// Output of the operations is no concern of a reader of the tests' output.
void silence() {
    const int nowhere = open("/dev/null", O_WRONLY);
    dup2(nowhere, STDOUT_FILENO);
    dup2(nowhere, STDERR_FILENO);
}

/// Gives the status of `waitpid`.
template <class Work>
int inChild(Work work) {
    std::cout.flush();
    const pid_t child = fork();
    if (child == 0) {
        silence();
        alarm(kMostSeconds); // a run that hangs
        work();
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return status;
}

std::string deathText(int status) {
    return WIFSIGNALED(status)
               ? "ends the process by signal " + std::to_string(WTERMSIG(status))
               : "ends the process with status " + std::to_string(WEXITSTATUS(status));
}

void report(const Record& record) {
    std::cout << record.point - 1 << " allocations: " << record.badAllocs << " bad_alloc, "
              << record.ownFailures << " reported, " << record.survived << " did without, "
              << record.faultCount << " faults" << std::endl;
    for (std::size_t i = 0; i < std::min<std::size_t>(record.faultCount, kMostFaults); ++i)
        ADD_FAILURE() << record.faults[i].get();
    EXPECT_EQ(0U, record.faultCount);
}

} // namespace

void run(const Trial& trial) {
    Record& record = makeRecord();
    Worker worker(trial, record);
    ASSERT_EQ(0, inChild([&] { worker.learnRightResult(); }));
    ASSERT_NE("none", record.right.get());
    while (!record.finished) {
        const int status = inChild([&] { worker.runPoints(); });
        if (status != 0)
            record.fault(deathText(status));
    }
    report(record);
    munmap(&record, sizeof record);
}

void failEachAllocation(const Operation& operation) {
    run({.operation = operation});
}

} // namespace memory
