#include "QRMUtils/XML/DOMInterface/QRMIDOM_Helper.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <fstream>
#include <limits>
#include <ostream>
#include <streambuf>
#include <string_view>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif
#include <cxxabi.h>

#include "QRMUtils/XML/DOMInterface/DomWriter.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_Document.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_Text.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_XercesHelper.h"
#include "QRMUtils/XML/DOMInterface/internal/Guards.h"
#include "QRMUtils/XML/DOMInterface/internal/NamespaceWriter.h"
#include "QRMUtils/XML/DOMInterface/internal/Sharing.h"
#include "QRMUtils/XML/DOMInterface/internal/TextOutput.h"
#include "QRMUtils/XML/DOMInterface/internal/Walk.h"

using Bridge = QRMIDOM_XercesHelper;
using qrm::sharing;
using xercesc::DOMElement;
using xercesc::DOMNode;
using xercesc::XMLString;

std::atomic<const I18NString*> QRMIDOM_Helper::m_pXMLNS_Attr{nullptr};
QRMThreadCriticalSection QRMIDOM_Helper::m_XMLNS_Attr_Lock;

namespace {

class OstreamDomWriter final : public DomWriter
{
public:
    OstreamDomWriter(const char* encoding, std::ostream& stream) : DomWriter(encoding), m_stream(&stream) {}

    void write(const char* data, int length) override
    {
        // A tree is written in very many pieces. What std::ostream::write() looks after for each of them takes longer
        // than the piece, and mostly there is nothing to look after.
        const bool isPlain = m_stream->good() && m_stream->tie() == nullptr
                             && (m_stream->flags() & std::ios_base::unitbuf) == 0
                             && m_stream->exceptions() == std::ios_base::goodbit;
        if (!isPlain) {
            m_stream->write(data, length);
            return;
        }
        try {
            if (m_stream->rdbuf()->sputn(data, length) != length) {
                m_stream->setstate(std::ios_base::badbit);
            }
        } catch (const abi::__forced_unwind&) {
            m_stream->setstate(std::ios_base::badbit);
            throw; // the end of the thread
        } catch (...) {
            m_stream->setstate(std::ios_base::badbit);
        }
    }
    void endline() override { *m_stream << std::endl; }

private:
    std::ostream* m_stream;
};

class FileDomWriter final : public DomWriter
{
public:
    FileDomWriter(const char* encoding, std::FILE* file) : DomWriter(encoding), m_file(file)
    {
        QRM_ASSERT(file != NULL);
    }

    void write(const char* data, int length) override
    {
        std::fwrite(data, 1, static_cast<std::size_t>(length), m_file);
    }
    void endline() override { std::fwrite("\n", 1, 1, m_file); }

private:
    std::FILE* m_file;
};

/// Nothing where a caller gives null for text.
const char* orEmpty(const char* text)
{
    return text != nullptr ? text : "";
}

/// Passes blocks of 16 bytes without a special character; gives the index where the next block would start.
int plainBlocks([[maybe_unused]] const char* text, int start, [[maybe_unused]] int end)
{
    int index = start;
#if defined(__SSE2__)
    const auto has = [](const __m128i& block, char byte) {
        return _mm_cmpeq_epi8(block, _mm_set1_epi8(byte));
    };
    for (; end - index >= 16; index += 16) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + index));
        const __m128i special = _mm_or_si128(_mm_or_si128(_mm_or_si128(has(block, '<'), has(block, '>')),
                                                          _mm_or_si128(has(block, '&'), has(block, '"'))),
                                             has(block, '\''));
        if (_mm_movemask_epi8(special) != 0) {
            break;
        }
    }
#endif
    return index;
}

/// Runs the serialization of a node into the file of that name.
/// @param function the operation that callers see in the back trace
template <class Serialize>
void writeToPath(const char* path, const char* function, QRMFileLocation site, Serialize&& serialize)
{
    try {
        std::ofstream stream(orEmpty(path));
        if (stream.fail()) {
            char message[1024];
            std::snprintf(message, sizeof message,
                          "System error occured while trying to write (QRMIDOM_Helper::write): %s",
                          orEmpty(path));
            throw QRMSystemError(0, message);
        }
        serialize(stream);
    } catch (QRMThrowable& error) {
        error.addBackTrace(site, function, "QRM_RETHROW");
        throw;
    } catch (const xercesc::OutOfMemoryException&) {
        qrm::raiseXercesOutOfMemory(site);
    } catch (...) {
        throw QRMSystemError(0, "Unknown error occured while doing QRMIDOM_Helper::write");
    }
}

/// The wrapped node of an argument that must have one; the node's own accessors tell where it has not.
DOMNode* wrapped(const QRMIDOM_Node& node)
{
    static_cast<void>(node.getNodeType());
    return node;
}

/// The document that makes the nodes for a tree.
QRMIDOM_Document documentOf(const QRMIDOM_Node& node)
{
    QRMIDOM_Document owner = node.getOwnerDocument();
    if (!owner.isNull()) {
        return owner;
    }
    if (node.getNodeType() != DOMNode::DOCUMENT_NODE) {
        // A document type that is in no document yet.
        qrm::raiseDOMException(xercesc::DOMException::NOT_SUPPORTED_ERR);
    }
    return node;
}

// What elements are searched for. Strings of Xerces and the buffers of ours both end with a zero unit.

auto hasTagName(const I18NString& tagName)
{
    return [name = tagName.getExternalBuffer()](const DOMElement* element) {
        return XMLString::equals(element->getTagName(), name);
    };
}

auto hasLocalName(const I18NString& localName)
{
    return [name = localName.getExternalBuffer()](const DOMElement* element) {
        return XMLString::equals(element->getLocalName(), name);
    };
}

auto hasNamespaceURI(const I18NString& namespaceURI)
{
    return [uri = namespaceURI.getExternalBuffer()](const DOMElement* element) {
        return XMLString::equals(element->getNamespaceURI(), uri);
    };
}

auto hasAttribute(const I18NString& attrName, const I18NString& attrValue)
{
    return [name = Bridge::I18NStringToDOMString(attrName),
            value = attrValue.getExternalBuffer()](const DOMElement* element) {
        return XMLString::equals(qrm::attributeOf(element, name), value);
    };
}

template <class Visit>
void forEachText(const DOMNode* element, Visit&& visit)
{
    for (const DOMNode* child = element->getFirstChild(); child != nullptr; child = child->getNextSibling()) {
        if (child->getNodeType() == DOMNode::TEXT_NODE) {
            visit(qrm::dataOf(static_cast<const xercesc::DOMText*>(child)));
        }
    }
}

auto hasText(const I18NString& text)
{
    return [&text](const DOMElement* element) {
        const char16_t* rest = text.getExternalBuffer();
        const char16_t* const end = rest + text.length();
        bool isEqual = true;
        forEachText(element, [&](const XMLCh* piece) {
            const auto length = static_cast<std::ptrdiff_t>(XMLString::stringLen(piece));
            isEqual = isEqual && length <= end - rest && std::equal(piece, piece + length, rest);
            rest += isEqual ? length : 0;
        });
        return isEqual && rest == end;
    };
}

template <class First, class Second>
auto both(First first, Second second)
{
    return [first, second](const DOMElement* element) { return first(element) && second(element); };
}

/// A handle on what was found from the start node, which it shares the document of; the null handle for null.
QRMIDOM_Element result(const QRMIDOM_Node& start, DOMElement* found)
{
    return found == nullptr ? QRMIDOM_Element()
                            : sharing<QRMIDOM_Element>(start.getRefCountedNodeImpl(), found);
}

/// The first match below the node, null where there is none.
template <class Matches>
DOMElement* findBelow(const DOMNode* root, Matches&& matches)
{
    qrm::ElementWalk walk(root);
    DOMElement* element = walk.next();
    while (element != nullptr && !matches(element)) {
        element = walk.next();
    }
    return element;
}

template <class Matches>
QRMIDOM_Element findFirst(const QRMIDOM_Node& start, Matches&& matches)
{
    return result(start, findBelow(wrapped(start), matches));
}

/// The first match among the children, null where there is none.
template <class Matches>
DOMElement* findChild(const DOMNode* parent, Matches&& matches)
{
    for (DOMNode* child = parent->getFirstChild(); child != nullptr; child = child->getNextSibling()) {
        if (child->getNodeType() == DOMNode::ELEMENT_NODE) {
            auto* const element = static_cast<DOMElement*>(child);
            if (matches(element)) {
                return element;
            }
        }
    }
    return nullptr;
}

constexpr char16_t kSeparator = u'/';

/// Takes the next name from a path; empty at the end.
I18NString nextStep(const I18NString& path, int& position)
{
    while (path.charAt(position) == kSeparator) {
        ++position;
    }
    const int start = position;
    while (position < path.length() && path.charAt(position) != kSeparator) {
        ++position;
    }
    return path.substring(start, position - start);
}

/// The last name of a path, and the element that it is looked for in: null where there is nothing to look for.
struct LastStep
{
    QRMIDOM_Element parent;
    I18NString name;
};

LastStep lastStep(const QRMIDOM_Node& start, const I18NString& path)
{
    int end = path.length();
    while (path.charAt(end - 1) == kSeparator) {
        --end;
    }
    int begin = end;
    while (begin > 0 && path.charAt(begin - 1) != kSeparator) {
        --begin;
    }
    if (start.isNull() || begin == end) {
        return {};
    }
    const I18NString parentPath = path.substring(0, begin);
    int position = 0;
    const bool isSingle = nextStep(parentPath, position).empty();
    return {isSingle ? QRMIDOM_Element(start) : QRMIDOM_Helper::findOrCreateElement(start, parentPath),
            path.substring(begin, end - begin)};
}

/// How the name of an attribute begins that declares a prefix.
constexpr std::u16string_view kDeclarationStart = u"xmlns:";

/// Calls with the name and the value of every declaration of a prefix that the element has, until a call gives false.
template <class Visit>
void forEachDeclaration(const DOMNode* element, Visit&& visit)
{
    const xercesc::DOMNamedNodeMap* const attributes = element->getAttributes();
    const XMLSize_t count = attributes->getLength();
    for (XMLSize_t i = 0; i < count; ++i) {
        const DOMNode* const attribute = attributes->item(i);
        if (XMLString::startsWith(attribute->getNodeName(), kDeclarationStart.data())
            && !visit(attribute->getNodeName(), attribute->getNodeValue())) {
            return;
        }
    }
}

/// Calls with the node, where it is an element, and with the elements around it, until a call gives false.
template <class Visit>
void forEachElementAround(const DOMNode* node, Visit&& visit)
{
    for (; node != nullptr; node = node->getParentNode()) {
        if (node->getNodeType() == DOMNode::ELEMENT_NODE && !visit(node)) {
            return;
        }
    }
}

/// The node that a question about namespaces starts at.
const DOMNode* searchStart(const QRMIDOM_Node& searchNode)
{
    // One text for both questions, as logs have always had it.
    QRM_CHECK(searchNode != NULL,
              "QRM_ASSERT_NAMED((searchNode!=NULL), \"[KorvelHelper::GetNamespaces] being called with null "
              "searchNode.\");",
              QRM_SITE_HERE);
    return searchNode;
}

} // namespace

void QRMIDOM_Helper::write(QRMIDOM_Node node, const char* path, const char* encoding)
{
    writeToPath(path, "QRMIDOM_Helper::write", QRM_SITE_HERE,
                [&](std::ostream& stream) { write(node, stream, encoding); });
}

void QRMIDOM_Helper::write(QRMIDOM_Node node, std::ostream& stream, const char* encoding)
{
    OstreamDomWriter writer(encoding, stream);
    writer << node;
}

void QRMIDOM_Helper::write(QRMIDOM_Node node, std::FILE* file, const char* encoding)
{
    FileDomWriter writer(encoding, file);
    writer << node;
}

void QRMIDOM_Helper::write(QRMIDOM_Node node, DomWriter& writer)
{
    writer << node;
}

void QRMIDOM_Helper::writeNS(QRMIDOM_Node node, const char* path, const char* encoding)
{
    writeToPath(path, "QRMIDOM_Helper::writeNS", QRM_SITE_HERE,
                [&](std::ostream& stream) { writeNS(node, stream, encoding); });
}

void QRMIDOM_Helper::writeNS(QRMIDOM_Node node, std::ostream& stream, const char* encoding)
{
    OstreamDomWriter writer(encoding, stream);
    writeNS(node, writer);
}

void QRMIDOM_Helper::writeNS(QRMIDOM_Node node, std::FILE* file, const char* encoding)
{
    FileDomWriter writer(encoding, file);
    writeNS(node, writer);
}

void QRMIDOM_Helper::writeNS(QRMIDOM_Node node, DomWriter& writer)
{
    qrm::NamespaceWriter(writer, xmlnsName).write(wrapped(node));
}

const I18NString& QRMIDOM_Helper::xmlnsName()
{
    const I18NString* name = m_pXMLNS_Attr.load(std::memory_order_acquire);
    if (name == nullptr) {
        const QRMThreadGuard guard(m_XMLNS_Attr_Lock);
        name = m_pXMLNS_Attr.load(std::memory_order_relaxed);
        if (name == nullptr) {
            name = qrm::allocated(QRM_SITE_HERE, [] { return new (std::nothrow) I18NString("xmlns"); });
            m_pXMLNS_Attr.store(name, std::memory_order_release);
        }
    }
    return *name;
}

void QRMIDOM_Helper::write(std::ostream& stream, const I18NString& text, const char* encoding)
{
    OstreamDomWriter writer(encoding, stream);
    write(writer, text);
}

void QRMIDOM_Helper::write(std::FILE* file, const I18NString& text, const char* encoding)
{
    FileDomWriter writer(encoding, file);
    write(writer, text);
}

void QRMIDOM_Helper::write(DomWriter& writer, const I18NString& text)
{
    qrm::writeEscaped(writer, text);
}

void QRMIDOM_Helper::write(DomWriter& writer, const char* text)
{
    const char* const bytes = orEmpty(text);
    qrm::writeEscaped(writer, bytes, std::strlen(bytes));
}

void QRMIDOM_Helper::writeNoEscape(DomWriter& writer, const I18NString& text)
{
    qrm::writeRaw(writer, text);
}

void QRMIDOM_Helper::writeNoEscape(DomWriter& writer, const char* text)
{
    const char* const bytes = orEmpty(text);
    const std::size_t length = std::strlen(bytes);
    QRM_ASSERT(length <= static_cast<std::size_t>(std::numeric_limits<int>::max()));
    writer.write(bytes, static_cast<int>(length));
}

void QRMIDOM_Helper::writeNoEscape(std::ostream& stream, const I18NString& text, const char* /*encoding*/)
{
    OstreamDomWriter writer(nullptr, stream);
    writeNoEscape(writer, text);
}

void QRMIDOM_Helper::writeNoEscape(std::ostream& stream, const char* text, const char* /*encoding*/)
{
    const char* const bytes = orEmpty(text);
    stream.write(bytes, static_cast<std::streamsize>(std::strlen(bytes)));
}

void QRMIDOM_Helper::writeNoEscape(std::FILE* file, const char* text, const char* /*encoding*/)
{
    QRM_ASSERT(file != NULL);
    const char* const bytes = orEmpty(text);
    std::fwrite(bytes, 1, std::strlen(bytes), file);
}

int QRMIDOM_Helper::findSpecialChar(const char* text, int start, int end)
{
    if (text == nullptr || start >= end) {
        return -1;
    }
    for (int i = plainBlocks(text, start, end); i < end; ++i) {
        switch (text[i]) {
        case '<':
        case '>':
        case '&':
        case '\'':
        case '"': return i;
        default: break;
        }
    }
    return -1;
}

QRMIDOM_Element QRMIDOM_Helper::findFirstElement(QRMIDOM_Node start, const I18NString& tagName)
{
    return findFirst(start, hasTagName(tagName));
}

QRMIDOM_Element QRMIDOM_Helper::findElementWithAttribute(QRMIDOM_Node start, const I18NString& tagName,
                                                         const I18NString& attrName,
                                                         const I18NString& attrValue)
{
    return findFirst(start, both(hasTagName(tagName), hasAttribute(attrName, attrValue)));
}

QRMIDOM_Element QRMIDOM_Helper::findFirstElementNS(QRMIDOM_Node start, const I18NString& namespaceURI,
                                                   const I18NString& localName)
{
    return findFirst(start, both(hasLocalName(localName), hasNamespaceURI(namespaceURI)));
}

QRMIDOM_Element QRMIDOM_Helper::findFirstElementWithName(QRMIDOM_Node start, const I18NString& localName)
{
    return findFirst(start, hasLocalName(localName));
}

QRMIDOM_Element QRMIDOM_Helper::findChildElementWithText(QRMIDOM_Node start, const I18NString& tagName,
                                                         const I18NString& text)
{
    return findFirst(start, both(hasTagName(tagName), hasText(text)));
}

void QRMIDOM_Helper::findChildElementsWithAttribute(QRMIDOM_Node start, const I18NString& tagName,
                                                    const I18NString& attrName, const I18NString& attrValue,
                                                    std::vector<QRMIDOM_Node>& out)
{
    const auto matches = both(hasTagName(tagName), hasAttribute(attrName, attrValue));
    qrm::ElementWalk walk(wrapped(start));
    while (DOMElement* const element = walk.next()) {
        if (matches(element)) {
            out.push_back(sharing<QRMIDOM_Node>(start.getRefCountedNodeImpl(), element));
        }
    }
}

QRMIDOM_Element QRMIDOM_Helper::findChildElement(QRMIDOM_Node start, const I18NString& tagName)
{
    // The result takes no share of the document: callers count on the document going while they still have it.
    return start.isNull() ? nullptr : findChild(start.getDOM_NodeImpl(), hasTagName(tagName));
}

QRMIDOM_Element QRMIDOM_Helper::findChildElementWithAttribute(QRMIDOM_Node start, const I18NString& tagName,
                                                              const I18NString& attrName,
                                                              const I18NString& attrValue)
{
    return result(start,
                  findChild(wrapped(start), both(hasTagName(tagName), hasAttribute(attrName, attrValue))));
}

I18NString QRMIDOM_Helper::getElementText(QRMIDOM_Element element)
{
    I18NString text;
    getElementText(element, text);
    return text;
}

void QRMIDOM_Helper::getElementText(QRMIDOM_Element element, I18NString& text)
{
    if (!element.isNull()) {
        forEachText(element.getDOM_NodeImpl(),
                    [&text](const XMLCh* piece) { text += Bridge::DOMStringToI18NString(piece); });
    }
}

QRMIDOM_Node QRMIDOM_Helper::insertBefore(QRMIDOM_Node parent, QRMIDOM_Node refChild, QRMIDOM_Node newChild)
{
    return parent.insertBefore(documentOf(parent).importNode(newChild, 1), refChild);
}

QRMIDOM_Node QRMIDOM_Helper::appendChild(QRMIDOM_Node parent, QRMIDOM_Node newChild)
{
    return parent.appendChild(documentOf(parent).importNode(newChild, 1));
}

QRMIDOM_Element QRMIDOM_Helper::findOrCreateElement(QRMIDOM_Node start, const I18NString& path)
{
    int position = 0;
    I18NString step = nextStep(path, position);
    if (start.isNull() || step.empty()) {
        return {};
    }
    QRMIDOM_Element current = start;
    if (start.getNodeType() == DOMNode::DOCUMENT_NODE) {
        current = QRMIDOM_Document(start).getDocumentElement();
    }
    for (; !step.empty(); step = nextStep(path, position)) {
        DOMElement* const found = findBelow(wrapped(current), hasTagName(step));
        if (found != nullptr) {
            current.setDOM_NodeImpl(found);
        } else {
            const QRMIDOM_Element made = documentOf(start).createElement(step);
            current.appendChild(made);
            current = made;
        }
    }
    return current;
}

QRMIDOM_Element QRMIDOM_Helper::findOrCreateElementWithAttribute(QRMIDOM_Node start, const I18NString& path,
                                                                 const I18NString& attrName,
                                                                 const I18NString& attrValue)
{
    LastStep last = lastStep(start, path);
    if (last.parent.isNull()) {
        return {};
    }
    QRMIDOM_Element element = findChildElementWithAttribute(last.parent, last.name, attrName, attrValue);
    if (element.isNull()) {
        element = documentOf(start).createElement(last.name);
        element.setAttribute(attrName, attrValue);
        last.parent.appendChild(element);
    }
    return element;
}

QRMIDOM_Element QRMIDOM_Helper::findOrCreateElementWithText(QRMIDOM_Node start, const I18NString& path,
                                                            const I18NString& text)
{
    LastStep last = lastStep(start, path);
    if (last.parent.isNull()) {
        return {};
    }
    QRMIDOM_Element element = findChildElementWithText(last.parent, last.name, text);
    if (element.isNull()) {
        QRMIDOM_Document document = documentOf(start);
        element = document.createElement(last.name);
        element.appendChild(document.createTextNode(text));
        last.parent.appendChild(element);
    }
    return element;
}

QRMIDOM_Element QRMIDOM_Helper::findOrCreateChildElement(QRMIDOM_Element parent, const I18NString& tagName)
{
    QRMIDOM_Element element = findChildElement(parent, tagName);
    if (element.isNull()) {
        element = parent.getOwnerDocument().createElement(tagName);
        parent.appendChild(element);
    }
    return element;
}

I18NString QRMIDOM_Helper::getNamespacePrefix(QRMIDOM_Node searchNode, const I18NString& namespaceURI)
{
    I18NString prefix;
    forEachElementAround(searchStart(searchNode), [&](const DOMNode* element) {
        forEachDeclaration(element, [&](const XMLCh* name, const XMLCh* uri) {
            const bool isOther = Bridge::DOMStringToI18NString(uri) != namespaceURI;
            if (!isOther) {
                prefix = Bridge::DOMStringToI18NString(name + kDeclarationStart.length());
            }
            return isOther;
        });
        return prefix.empty();
    });
    return prefix;
}

void QRMIDOM_Helper::getNamespaces(QRMIDOM_Node searchNode, std::map<I18NString, I18NString>& namespaces)
{
    forEachElementAround(searchStart(searchNode), [&](const DOMNode* element) {
        forEachDeclaration(element, [&](const XMLCh* name, const XMLCh* uri) {
            namespaces.emplace(Bridge::DOMStringToI18NString(name), Bridge::DOMStringToI18NString(uri));
            return true;
        });
        return true;
    });
}
