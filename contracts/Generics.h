// Growable lists and a hash table with checked access, as the rest of the system expects:
// an index out of range raises EArgumentOutOfRangeException, a duplicate key EListError.
#pragma once

#include <cstddef>
#include <functional>
#include <initializer_list>
#include <unordered_map>
#include <utility>
#include <vector>

#include "contracts/SysUtils.h"

namespace orvane {

template <typename T>
class TList {
public:
    TList() = default;
    TList(std::initializer_list<T> items) : FItems(items) {}
    explicit TList(std::vector<T> items) : FItems(std::move(items)) {}
    TList(const TList&) = default;
    TList(TList&&) noexcept = default;
    TList& operator=(const TList&) = default;
    TList& operator=(TList&&) noexcept = default;
    virtual ~TList() = default;

    int Count() const noexcept { return static_cast<int>(FItems.size()); }
    bool IsEmpty() const noexcept { return FItems.empty(); }

    const T& GetItem(int index) const { return FItems[Checked(index)]; }
    T& GetItem(int index) { return FItems[Checked(index)]; }
    void SetItem(int index, T value) { FItems[Checked(index)] = std::move(value); }
    const T& operator[](int index) const { return GetItem(index); }
    T& operator[](int index) { return GetItem(index); }
    const T& First() const { return GetItem(0); }
    const T& Last() const { return GetItem(Count() - 1); }

    int Add(T value)
    {
        FItems.push_back(std::move(value));
        return Count() - 1;
    }
    void AddRange(const TList<T>& other) { AddRange(other.FItems); }
    void AddRange(const std::vector<T>& items) { FItems.insert(FItems.end(), items.begin(), items.end()); }
    void Insert(int index, T value)
    {
        if (index != Count()) Checked(index);
        FItems.insert(FItems.begin() + index, std::move(value));
    }
    void Delete(int index) { FItems.erase(FItems.begin() + static_cast<std::ptrdiff_t>(Checked(index))); }
    void Clear() noexcept { FItems.clear(); }

    const std::vector<T>& Items() const noexcept { return FItems; }
    auto begin() const noexcept { return FItems.begin(); }
    auto end() const noexcept { return FItems.end(); }
    auto begin() noexcept { return FItems.begin(); }
    auto end() noexcept { return FItems.end(); }

private:
    std::size_t Checked(int index) const
    {
        if (index < 0 || index >= Count()) throw EArgumentOutOfRangeException(SArgumentOutOfRange);
        return static_cast<std::size_t>(index);
    }

    std::vector<T> FItems;
};

// A list of objects; when it owns them (the default) it frees each one it loses.
template <typename T>
class TObjectList {
public:
    explicit TObjectList(bool ownsObjects = true) : FOwnsObjects(ownsObjects) {}
    TObjectList(const TObjectList&) = delete;
    TObjectList& operator=(const TObjectList&) = delete;
    virtual ~TObjectList() { Clear(); }

    bool OwnsObjects() const noexcept { return FOwnsObjects; }
    int Count() const noexcept { return FItems.Count(); }
    T* GetItem(int index) const { return FItems.GetItem(index); }
    T* operator[](int index) const { return GetItem(index); }
    T* First() const { return FItems.First(); }
    T* Last() const { return FItems.Last(); }
    int Add(T* item) { return FItems.Add(item); }
    void Delete(int index)
    {
        T* item = FItems.GetItem(index);
        FItems.Delete(index);
        if (FOwnsObjects) delete item;
    }
    // Removes an item from the list without freeing it; the caller owns it afterwards.
    T* Extract(int index)
    {
        T* item = FItems.GetItem(index);
        FItems.Delete(index);
        return item;
    }
    void Clear() noexcept
    {
        if (FOwnsObjects)
            for (T* item : FItems) delete item;
        FItems.Clear();
    }
    auto begin() const noexcept { return FItems.begin(); }
    auto end() const noexcept { return FItems.end(); }

private:
    TList<T*> FItems;
    bool FOwnsObjects;
};

// A hash table. Values are not owned; enumeration order is not defined.
template <typename K, typename V, typename Hash = std::hash<K>>
class TDictionary {
public:
    int Count() const noexcept { return static_cast<int>(FItems.size()); }
    void Add(const K& key, V value)
    {
        if (!FItems.emplace(key, std::move(value)).second) throw EListError("Duplicates not allowed");
    }
    void AddOrSetValue(const K& key, V value) { FItems.insert_or_assign(key, std::move(value)); }
    bool TryGetValue(const K& key, V& value) const
    {
        auto found = FItems.find(key);
        if (found == FItems.end()) return false;
        value = found->second;
        return true;
    }
    // The value of a present key; a missing key raises EListError.
    const V& GetItem(const K& key) const
    {
        auto found = FItems.find(key);
        if (found == FItems.end()) throw EListError("Item not found");
        return found->second;
    }
    bool ContainsKey(const K& key) const { return FItems.count(key) != 0; }
    void Remove(const K& key) { FItems.erase(key); }
    void Clear() noexcept { FItems.clear(); }
    auto begin() const noexcept { return FItems.begin(); }
    auto end() const noexcept { return FItems.end(); }

private:
    std::unordered_map<K, V, Hash> FItems;
};

}  // namespace orvane
