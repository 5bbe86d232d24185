#include "LiveHeap.h"

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <new>

// The global allocation functions of this one test program, so that it can count. Each block carries its size in a
// header that keeps the alignment of the rest.

namespace {

constexpr std::size_t header = alignof(std::max_align_t);
std::atomic<std::size_t> live{0};

/// Null when there is no memory.
void* tryAllocate(std::size_t size) noexcept
{
    void* const block = std::malloc(size + header);
    if (block == nullptr) return nullptr;
    *static_cast<std::size_t*>(block) = size;
    live += size;
    return static_cast<char*>(block) + header;
}

void* allocate(std::size_t size)
{
    void* const memory = tryAllocate(size);
    if (memory == nullptr) throw std::bad_alloc{};
    return memory;
}

void release(void* memory)
{
    if (memory == nullptr) return;
    void* const block = static_cast<char*>(memory) - header;
    live -= *static_cast<std::size_t*>(block);
    std::free(block);
}

} // namespace

std::size_t liveHeapBytes()
{
    return live;
}

void* operator new(std::size_t size)
{
    return allocate(size);
}
void* operator new[](std::size_t size)
{
    return allocate(size);
}
void operator delete(void* memory) noexcept
{
    release(memory);
}
void operator delete[](void* memory) noexcept
{
    release(memory);
}
void operator delete(void* memory, std::size_t) noexcept
{
    release(memory);
}
void operator delete[](void* memory, std::size_t) noexcept
{
    release(memory);
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return tryAllocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept
{
    return tryAllocate(size);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept
{
    release(memory);
}
void operator delete[](void* memory, const std::nothrow_t&) noexcept
{
    release(memory);
}
