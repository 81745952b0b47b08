// SPDX-License-Identifier: MIT
// A hash table with separate chains, and the library's map over it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace Orvil {

namespace Hash {

/// h = h * 31 + c from the first character to the last, starting at 0, each character taken as a
/// signed 8-bit value, in 32 bits with wrap-around.
constexpr std::uint32_t hashString(std::string_view text) {
    std::uint32_t hash = 0;
    for (const char character : text) {
        hash = hash * 31U + static_cast<std::uint32_t>(static_cast<signed char>(character));
    }
    return hash;
}

/// The hash of a key: of a text as above, of a number itself.
struct KeyHash {
    constexpr std::uint32_t operator()(std::string_view text) const { return hashString(text); }
    constexpr std::uint32_t operator()(std::uint32_t number) const { return number; }
};

/// Keys are unique. Iteration goes through the buckets and has no order that means anything.
///
/// The string hash is easily made to collide, so a chain is not allowed to grow: keys beyond its
/// greatest length go to a sorted map that all buckets share, and a look-up there takes logarithmic
/// time. (A seeded hash would need no such map, but would iterate differently in each process.)
/// A found value stays where it is until its key is erased. Threads may share a table as they may a
/// standard container.
template <typename Key, typename Value, typename Hasher = KeyHash>
class HashTable {
public:
    /// What keys are looked up by: a view for texts, so that no text is made for it.
    using View =
        std::conditional_t<std::is_convertible_v<Key, std::string_view>, std::string_view, Key>;

    explicit HashTable(std::size_t bucketCount = 16) : buckets_(powerOfTwo(bucketCount)) {}

    [[nodiscard]] std::size_t size() const { return size_; }

    /// Null if the key is not there.
    [[nodiscard]] Value* find(const View& key) {
        return const_cast<Value*>(std::as_const(*this).find(key));
    }
    [[nodiscard]] const Value* find(const View& key) const {
        const std::uint32_t hash = Hasher()(key);
        const Bucket& bucket = buckets_[indexOf(hash)];
        for (const Node* node = bucket.first.get(); node != nullptr; node = node->next.get()) {
            if (node->hash == hash && node->key == key) {
                return &node->value;
            }
        }
        if (!bucket.overflows) {
            return nullptr;
        }
        const auto found = overflow_.find(key);
        return found == overflow_.end() ? nullptr : &found->second->value;
    }

    /// The value of the key, which is put in with `value` if it is not there yet.
    Value& insert(const View& key, Value value) {
        if (Value* present = find(key)) {
            return *present;
        }
        if (size_ >= buckets_.size()) {
            grow();
        }
        auto node = std::make_unique<Node>(Key(key), std::move(value), Hasher()(key));
        Value& stored = node->value;
        put(std::move(node));
        ++size_;
        return stored;
    }

    /// False if the key is not there.
    bool erase(const View& key) {
        const std::uint32_t hash = Hasher()(key);
        Bucket& bucket = buckets_[indexOf(hash)];
        for (auto* link = &bucket.first; *link; link = &(*link)->next) {
            if ((*link)->hash == hash && (*link)->key == key) {
                const std::unique_ptr<Node> erased = std::move(*link);
                *link = std::move(erased->next);
                --bucket.length;
                --size_;
                return true;
            }
        }
        const auto found = bucket.overflows ? overflow_.find(key) : overflow_.end();
        if (found == overflow_.end()) {
            return false;
        }
        overflow_.erase(found);
        --size_;
        return true;
    }

    /// Calls `visit(key, value)` for every entry; it must not change the table.
    template <typename Visit>
    void forEach(Visit visit) {
        visitAll(*this, visit);
    }
    template <typename Visit>
    void forEach(Visit visit) const {
        visitAll(*this, [&visit](const Key& key, const Value& value) { visit(key, value); });
    }

private:
    static constexpr unsigned greatestChain = 8;

    struct Node {
        Node(Key ownKey, Value ownValue, std::uint32_t ownHash)
            : key(std::move(ownKey)), value(std::move(ownValue)), hash(ownHash) {}
        Key key;
        Value value;
        std::uint32_t hash;
        std::unique_ptr<Node> next;
    };
    struct Bucket {
        std::unique_ptr<Node> first;
        unsigned length = 0;
        bool overflows = false; // some key of this bucket went to overflow_ once
    };

    static std::size_t powerOfTwo(std::size_t atLeast) {
        std::size_t count = 1;
        while (count < atLeast) {
            count *= 2;
        }
        return count;
    }

    std::size_t indexOf(std::uint32_t hash) const { return hash & (buckets_.size() - 1); }

    template <typename Table, typename Visit>
    static void visitAll(Table& table, Visit&& visit) {
        for (auto& bucket : table.buckets_) {
            for (Node* node = bucket.first.get(); node != nullptr; node = node->next.get()) {
                visit(std::as_const(node->key), node->value);
            }
        }
        for (auto& entry : table.overflow_) {
            visit(std::as_const(entry.second->key), entry.second->value);
        }
    }

    void put(std::unique_ptr<Node> node) {
        Bucket& bucket = buckets_[indexOf(node->hash)];
        if (bucket.length < greatestChain) {
            node->next = std::move(bucket.first);
            bucket.first = std::move(node);
            ++bucket.length;
            return;
        }
        // The map's keys look into the nodes, which never move.
        const View key = node->key;
        overflow_.emplace(key, std::move(node));
        bucket.overflows = true;
    }

    void grow() {
        auto old = std::exchange(buckets_, std::vector<Bucket>(buckets_.size() * 2));
        auto oldOverflow = std::exchange(overflow_, {});
        for (Bucket& bucket : old) {
            while (bucket.first) {
                auto node = std::move(bucket.first);
                bucket.first = std::move(node->next);
                put(std::move(node));
            }
        }
        for (auto& entry : oldOverflow) {
            put(std::move(entry.second));
        }
    }

    std::vector<Bucket> buckets_; // as many as a power of two
    std::map<View, std::unique_ptr<Node>> overflow_;
    std::size_t size_ = 0;
};

} // namespace Hash

template <typename Key, typename Value>
using hash_map = Hash::HashTable<Key, Value>; // NOLINT: named like the container that it stands for

} // namespace Orvil
