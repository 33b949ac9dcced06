// Forward iterators that are handed to callers as objects of their own.
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

/// One pass over a sequence:
///
///     std::unique_ptr<HSTFwdIter<HBSClockingAlgo*>> it(mgr->getClockingAlgos());
///     while (it->isValid())
///         use(it->next());
///
/// The caller owns the iterator and deletes it.
template <class T>
class HSTFwdIter {
public:
    /// The current element; steps on to the next one. The valid flag is false once the last
    /// element has been given. A call on an invalid iterator gives a value-initialised `T`.
    virtual T next() = 0;
    virtual ~HSTFwdIter() = default;

    HSTFwdIter(const HSTFwdIter&) = delete;
    HSTFwdIter& operator=(const HSTFwdIter&) = delete;

    /// False when the elements are used up.
    [[nodiscard]] bool isValid() const { return m_valid; }

protected:
    HSTFwdIter() = default;

    bool m_valid = false;
};

/// Iterates over a copy of a vector, so that the original may change meanwhile.
template <class T>
class HSTFwdSTLIter final : public HSTFwdIter<T> {
public:
    /// Goes through copies of the elements in their order.
    explicit HSTFwdSTLIter(std::vector<T> elements) : m_elements(std::move(elements)) {
        this->m_valid = !m_elements.empty();
    }

    T next() override {
        if (!this->m_valid)
            return T{};
        T element = std::move(m_elements[m_position++]);
        this->m_valid = m_position < m_elements.size();
        return element;
    }

private:
    std::vector<T> m_elements;
    std::size_t m_position = 0;
};
