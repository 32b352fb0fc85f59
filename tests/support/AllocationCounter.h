#pragma once

#include <cstddef>

/// Counts what the calling thread allocates while it lives, by whatever way: `new`, `malloc`, aligned blocks.
/// One a thread at a time.
class AllocationCounter {
public:
    AllocationCounter();
    ~AllocationCounter();
    AllocationCounter(const AllocationCounter &) = delete;
    AllocationCounter &operator=(const AllocationCounter &) = delete;

    /// False under the sanitizers, which have an allocator of their own: then nothing is counted.
    static bool works();
    std::size_t count() const;
    /// Bytes of the largest single block.
    std::size_t largest() const;
};
