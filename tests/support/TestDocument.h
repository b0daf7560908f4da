#ifndef QRM_TESTS_TESTDOCUMENT_H
#define QRM_TESTS_TESTDOCUMENT_H

#include <cstring>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "QRMUtils/XML/DOMInterface/QRMIDOM_Attr.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_CDATASection.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_Comment.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_DOMImplementation.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_Document.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_DocumentFragment.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_DocumentType.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_Element.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_Entity.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_EntityReference.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_Helper.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_NamedNodeMap.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_NodeList.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_Notation.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_Parser.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_ProcessingInstruction.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_Text.h"

/// The document that the text is.
inline QRMIDOM_Document documentOf(const std::string& xml)
{
    QRMIDOM_Parser parser;
    QRMIDOM_Document document;
    EXPECT_EQ(parser.parse(xml.data(), static_cast<int>(xml.size()), document), 1) << parser.errorString();
    return document;
}

/// The node as the library writes it.
inline std::string written(const QRMIDOM_Node& node, const char* encoding = "UTF-8")
{
    std::ostringstream stream;
    QRMIDOM_Helper::write(node, stream, encoding);
    return stream.str();
}

/// A document without anything in it.
inline QRMIDOM_Document emptyDocument()
{
    return QRMIDOM_DOMImplementation::getInstance().createDocument();
}

/// The shares taken in the handle's document.
inline unsigned int sharesOf(const QRMIDOM_Node& node)
{
    return node.getRefCountedNodeImpl()->getCount();
}

template <class Call>
unsigned short domCodeOf(Call&& call)
{
    try {
        call();
    } catch (const QRMIDOM_DOMException& error) {
        return error.getCode();
    }
    return 0;
}

template <class Call>
std::string assertionOf(Call&& call)
{
    try {
        call();
    } catch (const QRMAssertError& error) {
        EXPECT_EQ(error.getCode(), 0);
        EXPECT_EQ(error.getBackTrace().size(), 1u);
        EXPECT_EQ(error.getBackTrace().at(0).context, "");
        EXPECT_EQ(error.getBackTrace().at(0).macroName, "QRM_THROW");
        return error.getText();
    }
    return "no assertion failed";
}

constexpr const char* kNullHandle = "QRM_ASSERT(m_nodeImpl != NULL);";
constexpr const char* kNotNull = "QRM_ASSERT(nodePrt == NULL);";
constexpr const char* kNotNullPtr = "QRM_ASSERT(nullPtr == NULL);";

#endif
