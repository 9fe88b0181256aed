#pragma once

#include <quillon/acquisition/PointPair.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <new>
#include <type_traits>
#include <utility>

namespace quillon {

// The points of a trace or a spectrum in one block of memory. Growth and the final trim go
// through realloc, which can move a large block's pages instead of copying them, so reading a
// long trace neither copies its points again and again nor keeps more room than one growth step
// beyond them; FreeExtra gives that room back once a list is read.
template <class Number>
class TPointArray {
public:
    using Point = TPointPair<Number>;
    static_assert(std::is_trivially_copyable_v<Point>);

    TPointArray() = default;
    TPointArray(const TPointArray& source) { CopyFrom(source); }
    TPointArray(TPointArray&& source) noexcept { Swap(source); }
    TPointArray& operator=(const TPointArray& source) {
        if (this != &source) {
            TPointArray copy(source);
            Swap(copy);
        }
        return *this;
    }
    TPointArray& operator=(TPointArray&& source) noexcept {
        TPointArray taken(std::move(source));
        Swap(taken);
        return *this;
    }
    ~TPointArray() { std::free(m_points); }

    int GetSize() const { return m_size; }
    const Point& operator[](int index) const { return m_points[index]; }
    Point& operator[](int index) { return m_points[index]; }
    const Point* begin() const { return m_points; }
    const Point* end() const { return m_points + m_size; }

    // Appends a point and returns its index; grows by half again when full.
    int Add(const Point& point) {
        if (m_size == m_capacity)
            Reallocate(m_capacity < INT_MAX - m_capacity / 2 - 16 ? m_capacity + m_capacity / 2 + 16
                                                                  : INT_MAX);
        m_points[m_size] = point;
        return m_size++;
    }
    // Resizes to count points (new ones are zero); a count of 0 or less releases the memory.
    void SetSize(int count) {
        if (count <= 0) {
            std::free(m_points);
            m_points = nullptr;
            m_size = m_capacity = 0;
            return;
        }
        if (count > m_capacity)
            Reallocate(count);
        for (int i = m_size; i < count; ++i)
            m_points[i] = Point();
        m_size = count;
    }
    // Empties the list but keeps its memory for reuse.
    void RemoveAll() { m_size = 0; }
    // Gives back the room beyond the points held.
    void FreeExtra() {
        if (m_capacity > m_size)
            m_size > 0 ? Reallocate(m_size) : SetSize(0);
    }

private:
    void Reallocate(int capacity) {
        if (capacity <= m_size && m_size == INT_MAX)
            throw std::bad_alloc(); // a list of more points than an index can count
        void* moved = std::realloc(m_points, static_cast<size_t>(capacity) * sizeof(Point));
        if (moved == nullptr)
            throw std::bad_alloc();
        m_points = static_cast<Point*>(moved);
        m_capacity = capacity;
    }
    void CopyFrom(const TPointArray& source) {
        if (source.m_size == 0)
            return;
        Reallocate(source.m_size);
        std::memcpy(static_cast<void*>(m_points), source.m_points,
                    static_cast<size_t>(source.m_size) * sizeof(Point));
        m_size = source.m_size;
    }
    void Swap(TPointArray& other) noexcept {
        std::swap(m_points, other.m_points);
        std::swap(m_size, other.m_size);
        std::swap(m_capacity, other.m_capacity);
    }

    Point* m_points = nullptr;
    int m_size = 0;
    int m_capacity = 0;
};

} // namespace quillon
