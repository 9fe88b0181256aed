#include "ParentMolfile.h"

#include <cmath>
#include <cstdio>

namespace quillon::generate {

namespace {

struct Atom {
    const char* symbol;
    double x;
    double y;
};

struct Bond {
    int first; // 1-based atom numbers
    int second;
    int order;
};

// Hexagon geometry for a bond length of 1.5: half a bond vertically, the hexagon's half width.
constexpr double kHalf = 0.75;
constexpr double kWidth = 1.299038; // 1.5 * cos(30 degrees)

std::string Line(const char* format, auto... values) {
    char buffer[128];
    std::snprintf(buffer, sizeof buffer, format, values...);
    return buffer;
}

} // namespace

std::vector<std::string> ParentMolfileLines(const std::string& name) {
    // The central ring holds S (top) and N (bottom); the two benzene rings share its side edges;
    // chlorine sits on the right ring at the position meta to the ring nitrogen's carbon.
    const Atom atoms[] = {
        {"S", 0.0, 2 * kHalf},          // 1
        {"C", kWidth, kHalf},           // 2  right ring, next to S
        {"C", kWidth, -kHalf},          // 3  right ring, next to N
        {"N", 0.0, -2 * kHalf},         // 4
        {"C", -kWidth, -kHalf},         // 5  left ring, next to N
        {"C", -kWidth, kHalf},          // 6  left ring, next to S
        {"C", 2 * kWidth, 2 * kHalf},   // 7
        {"C", 3 * kWidth, kHalf},       // 8
        {"C", 3 * kWidth, -kHalf},      // 9  carries Cl
        {"C", 2 * kWidth, -2 * kHalf},  // 10
        {"C", -2 * kWidth, 2 * kHalf},  // 11
        {"C", -3 * kWidth, kHalf},      // 12
        {"C", -3 * kWidth, -kHalf},     // 13
        {"C", -2 * kWidth, -2 * kHalf}, // 14
        {"Cl", 4 * kWidth, -2 * kHalf}, // 15
        {"C", 0.0, -4 * kHalf},         // 16 side chain
        {"C", kWidth, -5 * kHalf},      // 17
        {"C", kWidth, -7 * kHalf},      // 18
        {"N", 0.0, -8 * kHalf},         // 19 dimethylamino nitrogen
        {"C", 0.0, -10 * kHalf},        // 20
        {"C", -kWidth, -7 * kHalf},     // 21
    };
    const Bond bonds[] = {
        {1, 2, 1},   {2, 3, 2},   {3, 4, 1},   {4, 5, 1},   {5, 6, 2},   {6, 1, 1},
        {2, 7, 1},   {7, 8, 2},   {8, 9, 1},   {9, 10, 2},  {10, 3, 1},  {6, 11, 1},
        {11, 12, 2}, {12, 13, 1}, {13, 14, 2}, {14, 5, 1},  {9, 15, 1},  {4, 16, 1},
        {16, 17, 1}, {17, 18, 1}, {18, 19, 1}, {19, 20, 1}, {19, 21, 1},
    };
    const int atomCount = static_cast<int>(std::size(atoms));
    const int bondCount = static_cast<int>(std::size(bonds));

    std::vector<std::string> lines;
    lines.push_back(name);
    // Header line: initials (2), program (8), date and time MMDDYYHHmm (10), dimensions (2).
    lines.push_back("  QUILLON 03122609142D");
    lines.push_back("Parent structure drawn by the report generator");
    lines.push_back(Line("%3d%3d  0  0  0  0  0  0  0  0999 V2000", atomCount, bondCount));
    for (const Atom& atom : atoms) {
        lines.push_back(Line("%10.4f%10.4f%10.4f %-3s 0  0  0  0  0  0  0  0  0  0  0  0", atom.x,
                             atom.y, 0.0, atom.symbol));
    }
    for (const Bond& bond : bonds) {
        lines.push_back(Line("%3d%3d%3d  0  0  0  0", bond.first, bond.second, bond.order));
    }
    lines.push_back("M  END");
    return lines;
}

} // namespace quillon::generate
