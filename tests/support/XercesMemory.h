#ifndef QRM_TESTS_XERCESMEMORY_H
#define QRM_TESTS_XERCESMEMORY_H

#include <new>

#include <xercesc/framework/MemoryManager.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/PlatformUtils.hpp>

/// Stands in for Xerces' memory manager for the length of a scope and fails on demand. What it handed out may outlive
/// the scope.
class XercesMemory
{
public:
    XercesMemory() : m_former(xercesc::XMLPlatformUtils::fgMemoryManager)
    {
        manager().untilFailure = 0;
        xercesc::XMLPlatformUtils::fgMemoryManager = &manager();
    }
    XercesMemory(const XercesMemory&) = delete;
    XercesMemory& operator=(const XercesMemory&) = delete;
    ~XercesMemory()
    {
        manager().untilFailure = 0;
        xercesc::XMLPlatformUtils::fgMemoryManager = m_former;
    }

    /// Lets the n-th allocation from now on, from 1, and all later ones fail; 0 none.
    void failFrom(long n)
    {
        manager().untilFailure = n;
        manager().failed = false;
    }

    bool hasFailed() const { return manager().failed; }

private:
    struct Manager : xercesc::MemoryManager
    {
        long untilFailure = 0;
        bool failed = false;

        MemoryManager* getExceptionMemoryManager() override { return this; }
        void* allocate(XMLSize_t bytes) override
        {
            if (untilFailure > 1) {
                --untilFailure;
            } else if (untilFailure == 1) {
                failed = true;
                throw xercesc::OutOfMemoryException();
            }
            return ::operator new(bytes);
        }
        void deallocate(void* memory) override { ::operator delete(memory); }
    };

    static Manager& manager()
    {
        static Manager instance;
        return instance;
    }

    xercesc::MemoryManager* m_former;
};

#endif
