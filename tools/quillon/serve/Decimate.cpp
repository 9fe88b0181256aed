#include "Decimate.h"

#include <algorithm>

namespace quillon::tool::serve {

XyPoints Decimate(const XyPoints& points, size_t width) {
    const size_t count = points.x.size();
    if (width == 0 || count <= 2 * width)
        return points;
    const double first = points.x.front();
    const double span = points.x.back() - first;
    XyPoints kept;
    kept.x.reserve(2 * width);
    kept.y.reserve(2 * width);
    auto keep = [&](size_t i) {
        kept.x.push_back(points.x[i]);
        kept.y.push_back(points.y[i]);
    };
    auto column = [&](size_t i) {
        if (!(span > 0))
            return size_t(0);
        const double share = (points.x[i] - first) / span;
        return std::min(width - 1, static_cast<size_t>(std::max(0.0, share) * width));
    };
    size_t start = 0;
    while (start < count) {
        const size_t current = column(start);
        size_t lowest = start;
        size_t highest = start;
        size_t end = start + 1;
        for (; end < count && column(end) == current; ++end) {
            if (points.y[end] < points.y[lowest])
                lowest = end;
            if (points.y[end] > points.y[highest])
                highest = end;
        }
        keep(std::min(lowest, highest));
        if (lowest != highest)
            keep(std::max(lowest, highest));
        start = end;
    }
    return kept;
}

} // namespace quillon::tool::serve
