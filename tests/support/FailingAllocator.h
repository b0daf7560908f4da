#ifndef QRM_TESTS_FAILINGALLOCATOR_H
#define QRM_TESTS_FAILINGALLOCATOR_H

/// The operator new of the whole test program, libraries included, counted and made to fail. A program that links
/// FailingAllocator.cpp has it.
namespace failing_allocator {

/// How often memory was asked for since the last call of this.
long countAllocations();

/// Lets the n-th allocation of this thread from now on, from 1, fail, and that one only, for the length of a scope.
class FailNth
{
public:
    explicit FailNth(long n);
    ~FailNth();
    /// Whether that many were made.
    bool hasFailed() const;
};

} // namespace failing_allocator

#endif
