#include "Random.h"

#include <cmath>

namespace quillon::generate {

namespace {

uint64_t SplitMix(uint64_t& x) {
    uint64_t z = (x += 0x9E3779B97F4A7C15ull);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
}

uint64_t RotateLeft(uint64_t x, int k) {
    return (x << k) | (x >> (64 - k));
}

} // namespace

CRandom::CRandom(uint64_t seed) {
    for (uint64_t& word : m_state) {
        word = SplitMix(seed);
    }
}

CRandom CRandom::Derived(uint64_t seed, uint64_t part, uint64_t subPart) {
    uint64_t mix = seed;
    const uint64_t a = SplitMix(mix) ^ (part * 0xD1B54A32D192ED03ull);
    mix = a;
    return CRandom(SplitMix(mix) ^ (subPart * 0x8CB92BA72F3D8DD7ull));
}

uint64_t CRandom::Next() {
    const uint64_t result = RotateLeft(m_state[1] * 5, 7) * 9;
    const uint64_t t = m_state[1] << 17;
    m_state[2] ^= m_state[0];
    m_state[3] ^= m_state[1];
    m_state[1] ^= m_state[2];
    m_state[0] ^= m_state[3];
    m_state[2] ^= t;
    m_state[3] = RotateLeft(m_state[3], 45);
    return result;
}

double CRandom::Uniform() {
    return static_cast<double>(Next() >> 11) * 0x1.0p-53;
}

double CRandom::Uniform(double low, double high) {
    return low + (high - low) * Uniform();
}

double CRandom::QuickNormal() {
    const uint64_t bits = Next();
    const double sum = static_cast<double>((bits & 0xFFFF) + ((bits >> 16) & 0xFFFF) +
                                           ((bits >> 32) & 0xFFFF) + (bits >> 48));
    // Four uniforms on [0, 65535]: mean 2 x 65535, variance 4 x 65536^2 / 12.
    constexpr double kMean = 2.0 * 65535.0;
    constexpr double kDeviation = 65536.0 / 1.7320508075688772;
    return (sum - kMean) / kDeviation;
}

double CRandom::Normal() {
    if (m_hasSpareNormal) {
        m_hasSpareNormal = false;
        return m_spareNormal;
    }
    // Marsaglia's polar method: only +, *, log and sqrt, which are correctly rounded everywhere.
    double u = 0.0;
    double v = 0.0;
    double s = 0.0;
    do {
        u = Uniform(-1.0, 1.0);
        v = Uniform(-1.0, 1.0);
        s = u * u + v * v;
    } while (s >= 1.0 || s == 0.0);
    const double factor = std::sqrt(-2.0 * std::log(s) / s);
    m_spareNormal = v * factor;
    m_hasSpareNormal = true;
    return u * factor;
}

} // namespace quillon::generate
