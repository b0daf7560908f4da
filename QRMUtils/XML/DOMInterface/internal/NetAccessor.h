#ifndef QRMIDOM_INTERNAL_NETACCESSOR_H
#define QRMIDOM_INTERNAL_NETACCESSOR_H

namespace qrm {

/// Has Xerces read http, https and ftp URLs through the library's own accessor, in place of the one that Xerces brings.
/// That fails when more than 16 KiB arrive at once, takes error pages for documents and broken transfers for complete
/// ones, and waits for ever. To be called when Xerces is up; its end takes the accessor away.
void installNetAccessor();

// How long a transfer may take to connect, and how long it may then wait for the next byte, in milliseconds; 0 is no
// limit. They hold for transfers that begin after this.

void setConnectTimeout(int milliseconds);
void setStallTimeout(int milliseconds);

} // namespace qrm

#endif
