// Numbers for generated trees, the same everywhere.
#pragma once

#include <array>
#include <random>

namespace trees {

/// Distributions differ between standard libraries, so only the engine's bare numbers are used.
class Dice {
public:
    explicit Dice(unsigned seed) : m_engine(seed) {}
    unsigned below(unsigned count) { return static_cast<unsigned>(m_engine() % count); }
    bool oneIn(unsigned count) { return below(count) == 0; }
    float between(float low, float high) {
        return low + (high - low) * static_cast<float>(below(1U << 20U)) / 1048576.0F;
    }
    template <std::size_t N>
    float pick(const std::array<float, N>& values) {
        return values[below(N)];
    }

private:
    std::mt19937 m_engine;
};

} // namespace trees
