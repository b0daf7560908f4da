#ifndef QRMTHREADCRITICALSECTION_H
#define QRMTHREADCRITICALSECTION_H

#include <mutex>

#include "QRMCore/QRMCore_Api.h"

/// A lock that one thread holds at a time. The thread that holds it may enter again and leaves as often.
class QRMCORE_API QRMThreadCriticalSection
{
public:
    QRMThreadCriticalSection();
    QRMThreadCriticalSection(const QRMThreadCriticalSection&) = delete;
    QRMThreadCriticalSection& operator=(const QRMThreadCriticalSection&) = delete;
    ~QRMThreadCriticalSection();

    /// Waits until no other thread holds the lock, and takes it.
    void enter();

    /// Gives the lock back; only the thread that holds it may.
    void leave();

private:
    std::recursive_mutex m_mutex;
};

/// Holds a critical section for the length of a scope. The section has to outlive it.
class QRMCORE_API QRMThreadGuard
{
public:
    /// Enters the section, which has to outlive the guard; waits while another thread is in it.
    explicit QRMThreadGuard(QRMThreadCriticalSection& section);
    QRMThreadGuard(const QRMThreadGuard&) = delete;
    QRMThreadGuard& operator=(const QRMThreadGuard&) = delete;
    ~QRMThreadGuard();

private:
    QRMThreadCriticalSection& m_section;
};

#endif
