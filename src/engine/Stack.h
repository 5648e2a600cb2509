// SPDX-License-Identifier: GPL-3.0-or-later
// stack: a growing array of untyped pointers. It does not own what they point at.
#pragma once

#include <cstddef>

namespace tomelet::engine {

struct stack
{
    size_t size;     ///< number of elements
    size_t capacity; ///< number of elements that fit
    void **element;  ///< the array, owned; element[0] is the oldest
};

/// A new stack; a capacity below 1 gives 64.
[[nodiscard]] stack *stack_new(int capacity);
void stack_free(stack *s);
void stack_push(stack *s, void *element);
/// Takes the newest element off; null when there is none.
void *stack_pop(stack *s);
/// The newest element; null when there is none.
[[nodiscard]] void *stack_peek(const stack *s);
/// The element at an index from the oldest on; null at or past the size.
[[nodiscard]] void *stack_peek_index(const stack *s, size_t index);

} // namespace tomelet::engine
