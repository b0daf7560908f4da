#include "QRMCore/QRMThreadCriticalSection.h"

QRMThreadCriticalSection::QRMThreadCriticalSection() = default;

QRMThreadCriticalSection::~QRMThreadCriticalSection() = default;

void QRMThreadCriticalSection::enter()
{
    m_mutex.lock();
}

void QRMThreadCriticalSection::leave()
{
    m_mutex.unlock();
}

QRMThreadGuard::QRMThreadGuard(QRMThreadCriticalSection& section) : m_section(section)
{
    m_section.enter();
}

QRMThreadGuard::~QRMThreadGuard()
{
    m_section.leave();
}
