#pragma once

// Thinning a trace or a spectrum for a plot of a given pixel width without visible change: the
// x range is cut into one column a pixel, and each column keeps its lowest and its highest point
// in their order along x (one point when they are the same), so that every peak top and every
// valley a pixel can show survives.
//
//     x: 0 1 2 3 4 5 6 7, y: 5 1 9 2 2 8 0 3, width 2 (columns 0-3 and 4-7)
//     -> (1,1) (2,9)  (5,8) (6,0)

#include <cstddef>
#include <vector>

namespace quillon::tool::serve {

struct XyPoints {
    std::vector<double> x;
    std::vector<double> y;
};

// The points of points (x ascending) kept for a plot width pixels wide (width >= 1); all of them
// when there are no more than two a column.
XyPoints Decimate(const XyPoints& points, size_t width);

} // namespace quillon::tool::serve
