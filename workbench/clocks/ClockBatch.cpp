#include "workbench/clocks/ClockBatch.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <filesystem>
#include <mutex>
#include <ostream>
#include <thread>

#include "HPAParamMgr.h"
#include "clocking/SearchInterruption.h"
#include "workbench/clocks/ClockOutcomeJson.h"
#include "workbench/clocks/ClockRun.h"
#include "workbench/files/InputError.h"
#include "workbench/text/CellText.h"
#include "workbench/text/Table.h"
#include "workbench/text/Text.h"

namespace tq {

namespace {

using Line = ClockBatch::Line;
using Clock = std::chrono::steady_clock;
using hbs_clocking::SearchInterruption;

constexpr std::chrono::milliseconds kBarPeriod{100};
constexpr int kBarWidth = 30;

std::atomic<bool> g_isInterrupted = false;

/// No report of a tree without a solution is made: it would take longer than the search.
[[nodiscard]] ClockOutcome solve(const ClockTree& tree, hbs_clocking::HBSClockingAlgo& solver) {
    solver.setSharesSolutions(false);
    return solver.runSolution() ? outcomeOf(makeClockReport(tree, solver)) : ClockOutcome();
}

/// What the threads of a batch share.
class Batch {
public:
    explicit Batch(const std::vector<std::string>& paths) : m_paths(paths), m_lines(paths.size()) {
        m_isDone.resize(paths.size());
    }

    void run(unsigned threads, std::ostream* progress) {
        std::vector<std::thread> pool;
        m_running = threads;
        for (unsigned i = 0; i < threads; ++i)
            pool.emplace_back([this] { work(); });
        wait(progress);
        for (std::thread& thread : pool)
            thread.join();
        if (m_failure)
            std::rethrow_exception(m_failure);
    }

    [[nodiscard]] ClockBatch result() {
        ClockBatch batch;
        batch.asked = m_paths.size();
        batch.isInterrupted = g_isInterrupted;
        for (std::size_t i = 0; i < m_lines.size(); ++i) {
            if (m_isDone[i] == 0)
                continue;
            batch.failed += m_lines[i].error.empty() ? 0U : 1U;
            batch.unsolved += m_lines[i].error.empty() && !m_lines[i].found ? 1U : 0U;
            batch.lines.push_back(std::move(m_lines[i]));
        }
        const auto rank = [](const Line& line) {
            return !line.error.empty() ? 0 : line.found ? 2 : 1;
        };
        std::stable_sort(batch.lines.begin(), batch.lines.end(), [&](const Line& a, const Line& b) {
            return rank(a) != rank(b) ? rank(a) < rank(b) : a.sumPpm > b.sumPpm;
        });
        return batch;
    }

private:
    void work() {
        try {
            for (std::size_t i = m_next++; i < m_paths.size() && !g_isInterrupted; i = m_next++) {
                solveFile(i);
                m_isDone[i] = 1;
                ++m_done;
            }
        } catch (const hbs_clocking::SearchInterrupted&) {
            // The tree that was being solved has no line.
        } catch (...) {
            const std::lock_guard lock(m_mutex);
            m_failure = std::current_exception();
            g_isInterrupted = true;
        }
        const std::lock_guard lock(m_mutex);
        if (--m_running == 0)
            m_ended.notify_all();
    }

    void solveFile(std::size_t index) {
        Line& line = m_lines[index];
        line.path = m_paths[index];
        try {
            const JsonFile file = JsonFile::read(line.path);
            const ClockTree tree = readClockTree(file);
            const auto solver = buildClockSolver(tree);
            if (!solver->validateConfig()) {
                std::string fault;
                for (const std::string& said : m_texts.takeLines())
                    fault += (fault.empty() ? "" : "; ") + said;
                file.fail(file.require(file.root(), "domains").offset, fault);
            }
            static_cast<ClockOutcome&>(line) = solve(tree, *solver);
            static_cast<void>(m_texts.takeLines());
        } catch (const InputError& error) {
            line.error = error.what();
        }
    }

    void wait(std::ostream* progress) {
        const Clock::time_point start = Clock::now();
        std::unique_lock lock(m_mutex);
        while (!m_ended.wait_for(lock, kBarPeriod, [this] { return m_running == 0; }))
            if (progress != nullptr)
                draw(*progress, std::chrono::duration<double>(Clock::now() - start).count());
        if (progress != nullptr)
            *progress << "\r\x1b[K" << std::flush;
    }

    void draw(std::ostream& out, double seconds) const {
        const auto done = static_cast<double>(m_done);
        const double part = done / static_cast<double>(m_paths.size());
        const auto filled = static_cast<std::size_t>(part * kBarWidth);
        const double speed = done / seconds;
        std::string text = "\r[" + std::string(filled, '#') +
                           std::string(static_cast<std::size_t>(kBarWidth) - filled, '.') + "] " +
                           std::to_string(m_done) + " of " + std::to_string(m_paths.size()) + ", " +
                           fixedText(speed, 1) + " a second";
        if (speed > 0.0)
            text += ", " + fixedText((static_cast<double>(m_paths.size()) - done) / speed, 0) +
                    " s left";
        out << text << "\x1b[K" << std::flush;
    }

    const std::vector<std::string>& m_paths;
    std::vector<Line> m_lines;
    std::vector<unsigned char> m_isDone; ///< each byte is written by the thread of its tree
    std::atomic<std::size_t> m_next = 0;
    std::atomic<std::size_t> m_done = 0;
    LibraryTexts m_texts;
    std::mutex m_mutex;
    std::condition_variable m_ended;
    unsigned m_running = 0;
    std::exception_ptr m_failure;
};

/// An interruption is over when the batch is that it ended.
struct InterruptionEnd {
    InterruptionEnd() = default;
    ~InterruptionEnd() {
        g_isInterrupted = false;
        SearchInterruption::withdraw();
    }
    InterruptionEnd(const InterruptionEnd&) = delete;
    InterruptionEnd& operator=(const InterruptionEnd&) = delete;
};

[[nodiscard]] std::string resultText(const Line& line) {
    return line.error.empty() ? "no solution" : "can't be used";
}

} // namespace

bool isFolder(const std::string& path) {
    std::error_code error;
    return std::filesystem::is_directory(path, error);
}

std::vector<std::string> findTrees(const std::vector<std::string>& paths) {
    std::vector<std::string> files;
    for (const std::string& path : paths) {
        if (!isFolder(path)) {
            files.push_back(path);
            continue;
        }
        std::vector<std::string> found;
        std::error_code error;
        for (std::filesystem::directory_iterator entry(path, error), end; !error && entry != end;
             entry.increment(error))
            if (entry->path().extension() == ".json" && !isFolder(entry->path().string()))
                found.push_back(entry->path().string());
        if (error)
            throw fileError(path, "can't be read: " + error.message());
        if (found.empty())
            throw fileError(path, "has no file that ends in .json");
        std::sort(found.begin(), found.end());
        files.insert(files.end(), found.begin(), found.end());
    }
    return files;
}

ClockBatch runClockBatch(const std::vector<std::string>& paths, std::ostream* progress,
                         unsigned threads) {
    HPAParamMgr::getParamMgr()->setValue("general.maxThreads", "1");
    const InterruptionEnd end;
    if (threads == 0)
        threads = std::max(1U, std::thread::hardware_concurrency());
    threads = static_cast<unsigned>(std::clamp<std::size_t>(paths.size(), 1, threads));
    Batch batch(paths);
    batch.run(threads, progress);
    return batch.result();
}

void interruptClockBatch() noexcept {
    g_isInterrupted = true;
    SearchInterruption::request();
}

void printClockBatch(const ClockBatch& batch, std::ostream& out) {
    constexpr auto right = Table::Align::Right;
    Table table({{"Tree"}, {"Sum ppm", right}, {"Worst ppm", right}, {"Worst peripheral"}});
    for (const Line& line : batch.lines)
        if (line.found)
            table.addRow(
                {line.path, fixedText(line.sumPpm, 1), fixedText(line.worstPpm, 1), line.worst});
        else
            table.addRow({line.path, resultText(line), "", line.error});
    table.print(out);
    const std::size_t solved = batch.lines.size() - batch.failed - batch.unsolved;
    out << '\n'
        << batch.asked << " trees: " << solved << " solved, " << batch.unsolved
        << " without a solution, " << batch.failed << " that can't be used";
    if (batch.isInterrupted)
        out << ", " << batch.asked - batch.lines.size() << " left when it was interrupted";
    out << ".\n";
}

void printClockBatchJson(const ClockBatch& batch, std::ostream& out) {
    JsonWriter json;
    json.beginObject();
    json.member("asked", batch.asked);
    json.member("interrupted", batch.isInterrupted);
    json.beginArray("trees");
    for (const Line& line : batch.lines) {
        json.beginObject();
        json.member("file", line.path);
        if (!line.error.empty())
            json.member("error", line.error);
        writeOutcome(line, json);
        json.endObject();
    }
    json.endArray();
    json.endObject();
    out << json.text();
}

std::string clockBatchCsv(const ClockBatch& batch) {
    std::string text = "tree,result,sum_ppm,worst_ppm,worst,error\r\n";
    for (const Line& line : batch.lines)
        text += csvCell(line.path) + "," + (line.found ? "solved" : csvCell(resultText(line))) +
                "," + (line.found ? fixedText(line.sumPpm, 1) : "") + "," +
                (line.found ? fixedText(line.worstPpm, 1) : "") + "," + csvCell(line.worst) + "," +
                csvCell(line.error) + "\r\n";
    return text;
}

} // namespace tq
