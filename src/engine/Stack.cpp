// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/Stack.h"

#include <cstdlib>

namespace tomelet::engine {

stack *stack_new(int capacity)
{
    const size_t wanted = capacity < 1 ? 64 : static_cast<size_t>(capacity);
    return new stack{0, wanted, static_cast<void **>(std::malloc(wanted * sizeof(void *)))};
}

void stack_free(stack *s)
{
    if (!s) return;
    std::free(s->element);
    delete s;
}

void stack_push(stack *s, void *element)
{
    if (s->size == s->capacity) {
        s->capacity *= 2;
        s->element = static_cast<void **>(std::realloc(s->element, s->capacity * sizeof(void *)));
    }
    s->element[s->size++] = element;
}

void *stack_pop(stack *s)
{
    return s->size == 0 ? nullptr : s->element[--s->size];
}

void *stack_peek(const stack *s)
{
    return s->size == 0 ? nullptr : s->element[s->size - 1];
}

void *stack_peek_index(const stack *s, size_t index)
{
    return index < s->size ? s->element[index] : nullptr;
}

} // namespace tomelet::engine
