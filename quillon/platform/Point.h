#pragma once

namespace quillon {

// A point of two ints, as the framework has it.
struct CPoint {
    int x = 0;
    int y = 0;

    CPoint() = default;
    CPoint(int initX, int initY) : x(initX), y(initY) {}

    friend bool operator==(const CPoint& a, const CPoint& b) { return a.x == b.x && a.y == b.y; }
    friend bool operator!=(const CPoint& a, const CPoint& b) { return !(a == b); }
};

} // namespace quillon
