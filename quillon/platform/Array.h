#pragma once

#include <quillon/platform/String.h>
#include <quillon/platform/Types.h>

#include <utility>
#include <vector>

namespace quillon {

// A growable array held by value, with the framework's array interface. Indices are ints; element
// access does not check bounds (callers check against GetSize, as with the framework's array).
// Growth is amortised constant; RemoveAll keeps the capacity for reuse, SetSize(0) releases it.
template <class T>
class CArray {
public:
    CArray() = default;
    virtual ~CArray() = default;
    CArray(const CArray&) = default;
    CArray(CArray&&) noexcept = default;
    CArray& operator=(const CArray&) = default;
    CArray& operator=(CArray&&) noexcept = default;

    int GetSize() const { return static_cast<int>(m_items.size()); }
    int GetUpperBound() const { return GetSize() - 1; }
    bool IsEmpty() const { return m_items.empty(); }

    // Resizes to newSize; new elements are value-initialised. Size 0 releases the buffer. The
    // grow-by step of the framework is accepted and ignored: growth is geometric.
    void SetSize(int newSize, int growBy = -1) {
        (void)growBy;
        if (newSize <= 0)
            std::vector<T>().swap(m_items);
        else
            m_items.resize(static_cast<size_t>(newSize));
    }
    // Reserves room for at least count elements without changing the size.
    void Reserve(int count) {
        if (count > 0)
            m_items.reserve(static_cast<size_t>(count));
    }

    // Appends one element and returns its index.
    int Add(const T& item) {
        m_items.push_back(item);
        return GetUpperBound();
    }
    int Add(T&& item) {
        m_items.push_back(std::move(item));
        return GetUpperBound();
    }
    // Appends the elements of another array; returns the index of the first appended one.
    int Append(const CArray& other) {
        const int first = GetSize();
        m_items.insert(m_items.end(), other.m_items.begin(), other.m_items.end());
        return first;
    }
    void Copy(const CArray& other) {
        if (this != &other)
            m_items = other.m_items;
    }

    const T& GetAt(int index) const { return m_items[static_cast<size_t>(index)]; }
    T& GetAt(int index) { return m_items[static_cast<size_t>(index)]; }
    void SetAt(int index, const T& item) { m_items[static_cast<size_t>(index)] = item; }
    void SetAt(int index, T&& item) { m_items[static_cast<size_t>(index)] = std::move(item); }
    T& ElementAt(int index) { return m_items[static_cast<size_t>(index)]; }
    const T& operator[](int index) const { return m_items[static_cast<size_t>(index)]; }
    T& operator[](int index) { return m_items[static_cast<size_t>(index)]; }

    // Inserts count copies of item before index; an index at or beyond the end first extends the
    // array with default elements up to index.
    void InsertAt(int index, const T& item, int count = 1) {
        if (count <= 0 || index < 0)
            return;
        if (index > GetSize())
            SetSize(index);
        m_items.insert(m_items.begin() + index, static_cast<size_t>(count), item);
    }
    void InsertAt(int index, T&& item) {
        if (index < 0)
            return;
        if (index > GetSize())
            SetSize(index);
        m_items.insert(m_items.begin() + index, std::move(item));
    }
    // Inserts all elements of another array before index.
    void InsertAt(int index, const CArray* other) {
        if (other == nullptr || index < 0)
            return;
        if (index > GetSize())
            SetSize(index);
        m_items.insert(m_items.begin() + index, other->m_items.begin(), other->m_items.end());
    }
    // Removes count elements from index on; a range reaching past the end is cut at the end.
    void RemoveAt(int index, int count = 1) {
        if (index < 0 || count <= 0 || index >= GetSize())
            return;
        const int last = index + count > GetSize() ? GetSize() : index + count;
        m_items.erase(m_items.begin() + index, m_items.begin() + last);
    }
    void RemoveAll() { m_items.clear(); }

    T* GetData() { return m_items.empty() ? nullptr : m_items.data(); }
    const T* GetData() const { return m_items.empty() ? nullptr : m_items.data(); }

    auto begin() { return m_items.begin(); }
    auto end() { return m_items.end(); }
    auto begin() const { return m_items.begin(); }
    auto end() const { return m_items.end(); }

private:
    std::vector<T> m_items;
};

using CStringArray = CArray<CString>;
using CUIntArray = CArray<UINT>;

} // namespace quillon
