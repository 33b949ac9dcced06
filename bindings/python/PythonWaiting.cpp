#include "bindings/python/PythonWaiting.h"

#include <unistd.h>

#include <atomic>
#include <thread>

namespace tq::bindings::python {

namespace {

std::atomic<bool> g_isEnding = false;
/// The thread that ends the interpreter. It alone may still call, from finalizers, and keeps the
/// lock then: there is nobody left who could run meanwhile.
std::atomic<std::thread::id> g_endingThread;

bool isEndingThread() {
    return g_isEnding && g_endingThread.load() == std::this_thread::get_id();
}

/// Python ends a thread that asks for the lock of an ending interpreter in the middle of it, which
/// C++ code doesn't survive.
[[noreturn]] void sleepForever() {
    while (true)
        pause();
}

} // namespace

PythonWaiting::~PythonWaiting() {
    for (PyObject* part : m_error)
        Py_XDECREF(part);
}

void PythonWaiting::letOthersRun() {
    if (!isEndingThread())
        m_state = PyEval_SaveThread();
}

void PythonWaiting::stopOthers() {
    if (m_state == nullptr)
        return;
    if (g_isEnding)
        sleepForever();
    PyEval_RestoreThread(m_state);
}

bool PythonWaiting::isInterrupted() {
    if (m_state == nullptr)
        return false;
    if (g_isEnding || m_error[0] != nullptr)
        return true;
    PyEval_RestoreThread(m_state);
    const bool isRaised = PyErr_CheckSignals() != 0;
    if (isRaised)
        PyErr_Fetch(&m_error[0], &m_error[1], &m_error[2]);
    m_state = PyEval_SaveThread();
    return isRaised;
}

bool PythonWaiting::restoreError() {
    if (m_error[0] == nullptr)
        return false;
    PyErr_Restore(m_error[0], m_error[1], m_error[2]);
    m_error[0] = m_error[1] = m_error[2] = nullptr;
    return true;
}

void endWaiting() {
    g_endingThread = std::this_thread::get_id();
    g_isEnding = true;
    PyThreadState* const state = PyEval_SaveThread();
    endSearches();
    PyEval_RestoreThread(state);
}

bool beginWaiting() {
    return g_isEnding.exchange(false);
}

} // namespace tq::bindings::python
