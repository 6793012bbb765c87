// A map from statement text to what the connection keeps for it (its translation, a prepared
// statement), holding at most a fixed number of entries: inserting beyond the bound drops the
// least recently used entry and hands it back, so the owner can release what it holds.
// Looked up with string_view, without building a string. Not thread-safe; internal to the
// database layer.
#pragma once

#include <cstddef>
#include <functional>
#include <list>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace kivmovfrec::sql {

template <typename Value>
class BoundedCache {
 public:
  explicit BoundedCache(size_t capacity) : capacity_(capacity == 0 ? 1 : capacity) {}
  BoundedCache(const BoundedCache&) = delete;
  BoundedCache& operator=(const BoundedCache&) = delete;

  size_t size() const { return index_.size(); }
  size_t capacity() const { return capacity_; }

  // The entry for `key`, now the most recently used; nullptr when there is none. The pointer
  // stays valid until the entry is taken or dropped.
  Value* Find(std::string_view key) {
    const auto it = index_.find(key);
    if (it == index_.end()) return nullptr;
    entries_.splice(entries_.begin(), entries_, it->second);
    return &it->second->second;
  }

  // Adds `value` under `key` as the most recently used entry. An entry already under `key` is
  // replaced and handed back; otherwise, when the cache was full, the least recently used one.
  std::optional<std::pair<std::string, Value>> Insert(std::string key, Value value) {
    std::optional<std::pair<std::string, Value>> out = Take(key);
    if (!out && index_.size() >= capacity_) out = TakeOldest();
    entries_.emplace_front(std::move(key), std::move(value));
    try {
      index_.emplace(entries_.front().first, entries_.begin());
    } catch (...) {
      entries_.pop_front();
      throw;
    }
    return out;
  }

  // Removes the entry for `key` and hands it back.
  std::optional<std::pair<std::string, Value>> Take(std::string_view key) {
    const auto it = index_.find(key);
    if (it == index_.end()) return std::nullopt;
    return Remove(it);
  }

  // Removes the least recently used entry and hands it back; nothing when the cache is empty.
  std::optional<std::pair<std::string, Value>> TakeOldest() {
    if (entries_.empty()) return std::nullopt;
    return Remove(index_.find(std::string_view(entries_.back().first)));
  }

 private:
  using Entries = std::list<std::pair<std::string, Value>>;
  struct Hash {
    using is_transparent = void;
    size_t operator()(std::string_view s) const { return std::hash<std::string_view>{}(s); }
  };
  // Keys view the strings of `entries_`, whose nodes never move.
  using Index =
      std::unordered_map<std::string_view, typename Entries::iterator, Hash, std::equal_to<>>;

  std::pair<std::string, Value> Remove(typename Index::iterator it) {
    const auto node = it->second;
    index_.erase(it);
    std::pair<std::string, Value> out = std::move(*node);
    entries_.erase(node);
    return out;
  }

  size_t capacity_;
  Entries entries_;  // most recently used first
  Index index_;
};

}  // namespace kivmovfrec::sql
