// SPDX-License-Identifier: MIT
#include "Tests/Support/allocations.h"

#include <cstdlib>
#include <new>

namespace support {

long allocations = 0;
long first_failure = unlimited;
long live = 0;

} // namespace support

namespace {

void *allocate(std::size_t size) {
    if (support::allocations++ < support::first_failure)
        if (void *const place = std::malloc(size)) {
            ++support::live;
            return place;
        }
    throw std::bad_alloc();
}

void release(void *place) {
    support::live -= place != nullptr ? 1 : 0;
    std::free(place);
}

} // namespace

// The library's allocations come here too: a program's own operators take precedence.
void *operator new(std::size_t size) {
    return allocate(size);
}
void *operator new[](std::size_t size) {
    return allocate(size);
}
// The temporary buffers of the standard algorithms come from these.
void *operator new(std::size_t size, const std::nothrow_t &) noexcept {
    try {
        return allocate(size);
    } catch (const std::bad_alloc &) {
        return nullptr;
    }
}
void *operator new[](std::size_t size, const std::nothrow_t &) noexcept {
    return operator new(size, std::nothrow);
}
void operator delete(void *place) noexcept {
    release(place);
}
void operator delete[](void *place) noexcept {
    release(place);
}
void operator delete(void *place, std::size_t) noexcept {
    release(place);
}
void operator delete[](void *place, std::size_t) noexcept {
    release(place);
}
