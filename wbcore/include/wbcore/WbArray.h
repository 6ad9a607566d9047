#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "wbcore/WbExport.h"

// A growable contiguous array of values. Indices and sizes are 64-bit; indexing is not
// range-checked (as for a plain array), GetAt/SetAt are the same accesses spelled out.
template <class T>
class WBCORE_VISIBLE WbArrayTempl {
public:
  WbArrayTempl() = default;
  WbArrayTempl(std::initializer_list<T> values) : m_items(values) {}

  std::uint64_t GetSize() const { return m_items.size(); }
  unsigned char IsEmpty() const { return m_items.empty() ? 1 : 0; }
  // New elements are value-initialised (zero for numbers, the default point for points).
  void SetSize(std::uint64_t size) { m_items.resize(static_cast<std::size_t>(size)); }
  void Reserve(std::uint64_t capacity) { m_items.reserve(static_cast<std::size_t>(capacity)); }
  // Appends and returns the new element's index.
  std::uint64_t Add(const T& value) {
    m_items.push_back(value);
    return m_items.size() - 1;
  }
  std::uint64_t Append(const WbArrayTempl& other) {
    m_items.insert(m_items.end(), other.m_items.begin(), other.m_items.end());
    return m_items.size();
  }
  // Inserts before index i; an index at or past the end appends.
  void InsertAt(std::uint64_t i, const T& value) {
    if (i > m_items.size()) i = m_items.size();
    m_items.insert(m_items.begin() + static_cast<std::ptrdiff_t>(i), value);
  }
  // Removes count elements from i on; the part past the end is ignored.
  void RemoveAt(std::uint64_t i, std::uint64_t count = 1) {
    if (i >= m_items.size()) return;
    const std::uint64_t last = (count > m_items.size() - i) ? m_items.size() : i + count;
    m_items.erase(m_items.begin() + static_cast<std::ptrdiff_t>(i),
                  m_items.begin() + static_cast<std::ptrdiff_t>(last));
  }
  void RemoveAll() { m_items.clear(); }

  T& operator[](std::uint64_t i) { return m_items[static_cast<std::size_t>(i)]; }
  const T& operator[](std::uint64_t i) const { return m_items[static_cast<std::size_t>(i)]; }
  const T& GetAt(std::uint64_t i) const { return m_items[static_cast<std::size_t>(i)]; }
  void SetAt(std::uint64_t i, const T& value) { m_items[static_cast<std::size_t>(i)] = value; }
  T* GetData() { return m_items.data(); }
  const T* GetData() const { return m_items.data(); }

  T* begin() { return m_items.data(); }
  T* end() { return m_items.data() + m_items.size(); }
  const T* begin() const { return m_items.data(); }
  const T* end() const { return m_items.data() + m_items.size(); }

private:
  std::vector<T> m_items;
};

// An array of heap objects that it owns: Add takes ownership, RemoveAll and the destructor
// delete them. Copying copies the objects (deep copy).
template <class T>
class WBCORE_VISIBLE WbObjectArrayTempl {
public:
  WbObjectArrayTempl() = default;
  WbObjectArrayTempl(const WbObjectArrayTempl& other) { CopyFrom(other); }
  WbObjectArrayTempl(WbObjectArrayTempl&&) noexcept = default;
  WbObjectArrayTempl& operator=(const WbObjectArrayTempl& other) {
    if (this != &other) {
      RemoveAll();
      CopyFrom(other);
    }
    return *this;
  }
  WbObjectArrayTempl& operator=(WbObjectArrayTempl&&) noexcept = default;

  std::uint64_t GetSize() const { return m_items.size(); }
  unsigned char IsEmpty() const { return m_items.empty() ? 1 : 0; }
  // Takes ownership of object and returns its index. When the array cannot grow
  // (std::bad_alloc) the object is deleted, so that a failed Add leaks nothing.
  std::uint64_t Add(T* object) {
    std::unique_ptr<T> owned(object);
    m_items.push_back(std::move(owned));
    return m_items.size() - 1;
  }
  // Deletes the object at i and closes the gap.
  void RemoveAt(std::uint64_t i) {
    if (i < m_items.size()) m_items.erase(m_items.begin() + static_cast<std::ptrdiff_t>(i));
  }
  // Gives up ownership of the object at i without deleting it.
  T* DetachAt(std::uint64_t i) {
    T* object = m_items[static_cast<std::size_t>(i)].release();
    m_items.erase(m_items.begin() + static_cast<std::ptrdiff_t>(i));
    return object;
  }
  void RemoveAll() { m_items.clear(); }

  T* operator[](std::uint64_t i) const { return m_items[static_cast<std::size_t>(i)].get(); }
  T* GetAt(std::uint64_t i) const { return m_items[static_cast<std::size_t>(i)].get(); }

private:
  void CopyFrom(const WbObjectArrayTempl& other) {
    m_items.reserve(other.m_items.size());
    for (const auto& item : other.m_items) m_items.emplace_back(item ? new T(*item) : nullptr);
  }

  std::vector<std::unique_ptr<T>> m_items;
};
