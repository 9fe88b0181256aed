#pragma once

#include <cstdint>

namespace quillon::generate {

// A small deterministic random number generator (xoshiro256**, seeded through splitmix64). Unlike
// the standard distributions, its sequences are the same with every compiler and library, so a
// seed always gives the same report bytes.
class CRandom {
public:
    explicit CRandom(uint64_t seed);

    // A generator for a named part of the output (a sample, a trace), independent of how much the
    // parent generator has been used.
    static CRandom Derived(uint64_t seed, uint64_t part, uint64_t subPart = 0);

    uint64_t Next();
    // Uniform in [0, 1).
    double Uniform();
    // Uniform in [low, high).
    double Uniform(double low, double high);
    // Standard normal (mean 0, deviation 1).
    double Normal();
    // Mean 0, deviation 1, bell-shaped and bounded to +-3.46: the sum of four uniforms from one
    // draw. Much cheaper than Normal; for noise on millions of points.
    double QuickNormal();
    // True with the given probability.
    bool Chance(double probability) { return Uniform() < probability; }

private:
    uint64_t m_state[4];
    bool m_hasSpareNormal = false;
    double m_spareNormal = 0.0;
};

// The parts of a batch that draw from a generator of their own (CRandom::Derived), in one list so
// that no two share a sequence.
enum RandomPart : uint64_t {
    kBatchYields = 1,
    kSampleVariation = 2,
    kTraceNoise = 100, // plus the sample's index
    kSpectra = 200,
    kBulk = 300,
};

} // namespace quillon::generate
