#pragma once

#include <quillon/acquisition/PeakData.h>
#include <quillon/document/Samples.h>

#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace quillon::testing {

using Points = std::vector<std::pair<double, double>>;

// The (mass or time, intensity) points of a trace or spectrum, in order.
template <class Data>
Points PointsOf(const Data& data) {
    Points points;
    CPeakData point;
    for (int i = 0; data.GetPeak(i, point); ++i)
        points.emplace_back(point.GetMass(), point.GetIntensity());
    return points;
}

// The items of an array, in order; texts as std::string.
template <class Array>
auto VectorOf(const Array& items) {
    using Item = std::decay_t<decltype(*items.begin())>;
    if constexpr (std::is_same_v<Item, CString>) {
        std::vector<std::string> texts;
        for (const CString& text : items)
            texts.emplace_back(text.str());
        return texts;
    } else {
        return std::vector<Item>(items.begin(), items.end());
    }
}

// The text a getter of the form "void GetName(CString&) const" hands out.
template <class Object>
CString TextOf(const Object& object, void (std::type_identity_t<Object>::*getter)(CString&) const) {
    CString text;
    (object.*getter)(text);
    return text;
}

// The numbers of the collection's samples, in the order it holds them.
inline std::vector<int> SampleNumbers(CSamples& samples) {
    std::vector<int> numbers;
    for (int i = 0; i < samples.GetSamplesCount(); ++i)
        numbers.push_back(samples.GetSample(i)->GetNumber());
    return numbers;
}

} // namespace quillon::testing
