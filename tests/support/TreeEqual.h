#ifndef QRM_TESTS_TREEEQUAL_H
#define QRM_TESTS_TREEEQUAL_H

#include <string>

#include "QRMUtils/XML/DOMInterface/QRMIDOM_Attr.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_NamedNodeMap.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_Node.h"

/// Where two subtrees first differ, told in words; empty where they are equal. Compares type, name, value, namespace,
/// specified attributes and children, node for node.
inline std::string firstDifference(const QRMIDOM_Node& a, const QRMIDOM_Node& b)
{
    const std::string path = "/" + a.getNodeName().toUtf8();
    const auto differ = [&](const char* what, const I18NString& x, const I18NString& y) {
        return path + ": " + what + " \"" + x.toUtf8() + "\" and \"" + y.toUtf8() + "\"";
    };
    if (a.getNodeType() != b.getNodeType()) {
        return path + ": node types differ";
    }
    if (a.getNodeName() != b.getNodeName()) {
        return differ("names", a.getNodeName(), b.getNodeName());
    }
    if (a.getNodeValue() != b.getNodeValue()) {
        return differ("values", a.getNodeValue(), b.getNodeValue());
    }
    if (a.getNamespaceURI() != b.getNamespaceURI()) {
        return differ("namespaces", a.getNamespaceURI(), b.getNamespaceURI());
    }
    const QRMIDOM_NamedNodeMap attributes = a.getAttributes();
    const QRMIDOM_NamedNodeMap others = b.getAttributes();
    if (a.getNodeType() == 1) {
        unsigned long specified = 0;
        for (unsigned long i = 0; i < attributes.getLength(); ++i) {
            const QRMIDOM_Attr attribute = attributes.item(i);
            if (!attribute.getSpecified()) {
                continue;
            }
            ++specified;
            const QRMIDOM_Node other = others.getNamedItem(attribute.getName());
            if (other.isNull()) {
                return path + ": attribute " + attribute.getName().toUtf8() + " is missing";
            }
            if (attribute.getValue() != other.getNodeValue()) {
                return differ("attribute values", attribute.getValue(), other.getNodeValue());
            }
        }
        unsigned long otherSpecified = 0;
        for (unsigned long i = 0; i < others.getLength(); ++i) {
            otherSpecified += QRMIDOM_Attr(others.item(i)).getSpecified() ? 1 : 0;
        }
        if (specified != otherSpecified) {
            return path + ": different numbers of attributes";
        }
    }
    QRMIDOM_Node child = a.getFirstChild();
    QRMIDOM_Node other = b.getFirstChild();
    for (; !child.isNull() && !other.isNull();
         child = child.getNextSibling(), other = other.getNextSibling()) {
        const std::string difference = firstDifference(child, other);
        if (!difference.empty()) {
            return path + difference;
        }
    }
    return child.isNull() == other.isNull() ? "" : path + ": different numbers of children";
}

#endif
