// A list of a context that only grows: appended at its tail, freed in a loop.
#pragma once

#include "runtime/trace.hpp"

#include <iterator>
#include <new>
#include <utility>

namespace za {

// A block of the heap with one object in it.
template <class T, class... Arguments>
T *make_in_heap(Arguments &&...arguments) {
    void *block = ZAPR_Malloc(__FILE_NAME__, __LINE__, sizeof(T));
    return block == nullptr ? nullptr : new (block) T{std::forward<Arguments>(arguments)...};
}

template <class T>
void destroy_in_heap(T *object) {
    if (object != nullptr) {
        object->~T();
        ZAPR_Free(object);
    }
}

template <class T>
class List {
    struct Node {
        T value;
        Node *next = nullptr;
    };

  public:
    List() = default;
    List(List &&other) noexcept { swap(other); }
    List &operator=(List &&other) noexcept {
        swap(other);
        return *this;
    }
    List(const List &) = delete;
    List &operator=(const List &) = delete;
    ~List() {
        while (first_ != nullptr) {
            destroy_in_heap(std::exchange(first_, first_->next));
        }
    }

    void swap(List &other) noexcept {
        std::swap(first_, other.first_);
        std::swap(last_, other.last_);
        std::swap(size_, other.size_);
    }

    // The failure line is the caller's to name the family.
    Status append(const TraceSource &trace, T &&value) {
        Node *node = make_in_heap<Node>(std::move(value));
        if (node == nullptr) {
            return trace.fail(Status::memory);
        }
        (last_ == nullptr ? first_ : last_->next) = node;
        last_ = node;
        ++size_;
        return Status::ok;
    }

    // Takes over all items of another list, behind its own.
    void splice(List &&other) noexcept {
        if (other.first_ == nullptr) {
            return;
        }
        (last_ == nullptr ? first_ : last_->next) = other.first_;
        last_ = other.last_;
        size_ += other.size_;
        other.first_ = nullptr;
        other.last_ = nullptr;
        other.size_ = 0;
    }

    class Iterator {
      public:
        explicit Iterator(const Node *node) : node_(node) {}
        const T &operator*() const { return node_->value; }
        const T *operator->() const { return &node_->value; }
        Iterator &operator++() {
            node_ = node_->next;
            return *this;
        }
        bool operator==(const Iterator &other) const = default;

      private:
        const Node *node_;
    };

    Iterator begin() const { return Iterator(first_); }
    Iterator end() const { return Iterator(nullptr); }
    // The item with this number, counted from 1, or NULL.
    const T *item(size_t number) const {
        if (number == 0) {
            return nullptr;
        }
        const Node *node = first_;
        for (size_t i = 1; i < number && node != nullptr; ++i) {
            node = node->next;
        }
        return node == nullptr ? nullptr : &node->value;
    }

    T *item(size_t number) { return const_cast<T *>(std::as_const(*this).item(number)); }

    bool empty() const { return first_ == nullptr; }
    size_t size() const { return size_; }
    const T &front() const { return first_->value; }
    const T &back() const { return last_->value; }
    T &back() { return last_->value; }

  private:
    Node *first_ = nullptr;
    Node *last_ = nullptr;
    size_t size_ = 0;
};

}  // namespace za
