#include "QRMUtils/XML/DOMInterface/QRMIDOM_DOMException.h"

QRMIDOM_DOMException::~QRMIDOM_DOMException() = default;
