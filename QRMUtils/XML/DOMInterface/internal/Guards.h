#ifndef QRMIDOM_INTERNAL_GUARDS_H
#define QRMIDOM_INTERNAL_GUARDS_H

#include <exception>
#include <new>

#include <xercesc/dom/DOMException.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>

#include "QRMCore/QRMThrowable.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_DOMException.h"

/// A guard's place in diagnostics: this source file and a number. Log readers match on the pair, so a number stays
/// with its guard when code moves and is never given to another one.
#define QRM_SITE(number) (QRMFileLocation{__FILE_NAME__, (number)})
/// The place of a guard that nobody matches on: the line it stands on.
#define QRM_SITE_HERE QRM_SITE(__LINE__)

// The spelling of the condition is the text of the error, so it is made a string here, before NULL is expanded.
#define QRM_ASSERT(condition) QRM_CHECK(condition, "QRM_ASSERT(" #condition ");", QRM_SITE_HERE)
#define QRM_ASSERT_AT(number, condition) QRM_CHECK(condition, "QRM_ASSERT(" #condition ");", QRM_SITE(number))
#define QRM_CHECK(condition, text, site)                                                                     \
    (static_cast<bool>(condition) ? static_cast<void>(0) : qrm::raiseAssert(text, site))

namespace qrm {

[[noreturn, gnu::cold]] void raiseAssert(const char* text, QRMFileLocation site);
[[noreturn, gnu::cold]] void raiseNullHandle(QRMFileLocation site);
[[noreturn, gnu::cold]] void raiseXercesOutOfMemory(QRMFileLocation site);
[[noreturn, gnu::cold]] void raiseAllocationFailed(QRMFileLocation site);
[[noreturn, gnu::cold]] void raiseStdException(const std::exception& error, QRMFileLocation site);
[[noreturn, gnu::cold]] void raiseDOMException(unsigned short code);

/// Guard 1: the wrapped pointer of a handle that has to hold one.
template <class Wrapped>
Wrapped* live(Wrapped* wrapped, QRMFileLocation site)
{
    if (wrapped == nullptr) {
        raiseNullHandle(site);
    }
    return wrapped;
}

/// Guard 2: what the call gives, with the two Xerces errors that callers know as ours turned into them. Everything
/// else passes.
template <class Call>
auto translated(QRMFileLocation site, Call&& call) -> decltype(call())
{
    try {
        return call();
    } catch (const xercesc::DOMException& error) {
        raiseDOMException(static_cast<unsigned short>(error.code));
    } catch (const xercesc::OutOfMemoryException&) {
        raiseXercesOutOfMemory(site);
    }
}

/// Guard 3: the object that the call makes, never null. Make it with `new (std::nothrow)`, so that running out of
/// memory leaves both entries, "QRM_THROW" and "QRM_RETHROW", in the back trace. The memory manager of Xerces knows
/// no null and throws; that counts as null.
template <class Make>
auto allocated(QRMFileLocation site, Make&& make) -> decltype(make())
{
    const auto makeOrNull = [&make]() -> decltype(make()) {
        try {
            return make();
        } catch (const xercesc::OutOfMemoryException&) {
            return nullptr;
        }
    };
    try {
        const auto made = makeOrNull();
        if (made == nullptr) {
            raiseAllocationFailed(site);
        }
        return made;
    } catch (QRMThrowable& error) {
        error.addBackTrace(site, nullptr, "QRM_RETHROW");
        throw;
    } catch (const std::bad_alloc&) {
        raiseAllocationFailed(site);
    } catch (const std::exception& error) {
        raiseStdException(error, site);
    }
}

/// A node argument for the places where Xerces would follow a null pointer; the null handle counts as not found.
template <class Node>
Node* found(Node* node)
{
    if (node == nullptr) {
        raiseDOMException(xercesc::DOMException::NOT_FOUND_ERR);
    }
    return node;
}

/// Guard 4: the call, with whatever it throws discarded.
template <class Call>
void silently(Call&& call) noexcept
{
    try {
        call();
    } catch (...) { // NOLINT(bugprone-empty-catch)
        // A destructor has nobody to tell.
    }
}

} // namespace qrm

#endif
