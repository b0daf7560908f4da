#include <functional>
#include <unordered_map>

#include <QRMUtils/XML/DOMInterface/QRMIDOM_Element.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_Helper.h>

#include "tools/qrmxml/Document.h"
#include "tools/qrmxml/Output.h"

namespace {

/// What to search for, as the library takes it.
struct Wanted
{
    explicit Wanted(const FindOptions& options)
        : tag(options.tag.c_str()),
          local(options.name.c_str()),
          uri(options.namespaceUri ? options.namespaceUri->c_str() : ""),
          attribute(options.attribute ? options.attribute->name.c_str() : ""),
          value(options.attribute ? options.attribute->value.c_str() : ""),
          text(options.text ? options.text->c_str() : ""),
          byTag(!options.tag.empty()),
          byUri(options.namespaceUri.has_value()),
          byAttribute(options.attribute.has_value()),
          byText(options.text.has_value())
    {
    }

    bool matches(const QRMIDOM_Element& element) const
    {
        return (byTag ? element.matchTagName(tag) : element.matchLocalName(local))
               && (!byUri || element.matchNamespaceURI(uri))
               && (!byAttribute || element.matchAttribute(attribute, value))
               && (!byText || QRMIDOM_Helper::getElementText(element) == text);
    }

    I18NString tag, local, uri, attribute, value, text;
    bool byTag, byUri, byAttribute, byText;
};

using Visit = std::function<bool(const QRMIDOM_Element&)>;

/// Visits all elements in document order, or the children of the document element, until a visit gives false.
void forEachElement(const QRMIDOM_Document& document, bool children, const Visit& visit)
{
    constexpr unsigned short kElement = 1;
    constexpr unsigned short kEntityReference = 5;
    if (children) {
        for (QRMIDOM_Node child = document.getDocumentElement().getFirstChild(); !child.isNull();
             child = child.getNextSibling()) {
            if (child.getNodeType() == kElement && !visit(child)) {
                return;
            }
        }
        return;
    }
    QRMIDOM_Node node = document;
    int depth = 0;
    while (moveOn(node, depth, node.getNodeType() != kEntityReference)) {
        if (node.getNodeType() == kElement && !visit(node)) {
            return;
        }
    }
}

/// The first match, by the library's own search where there is one for just these conditions.
QRMIDOM_Element findFirst(const QRMIDOM_Document& document, const Wanted& wanted, bool children)
{
    const QRMIDOM_Element root = document.getDocumentElement();
    if (wanted.byTag && wanted.byAttribute && !wanted.byText) {
        return children ? QRMIDOM_Helper::findChildElementWithAttribute(root, wanted.tag, wanted.attribute,
                                                                        wanted.value)
                        : QRMIDOM_Helper::findElementWithAttribute(document, wanted.tag, wanted.attribute,
                                                                   wanted.value);
    }
    if (wanted.byTag && wanted.byText && !wanted.byAttribute && !children) {
        return QRMIDOM_Helper::findChildElementWithText(document, wanted.tag, wanted.text);
    }
    if (wanted.byTag && !wanted.byText && !wanted.byAttribute) {
        return children ? QRMIDOM_Helper::findChildElement(root, wanted.tag)
                        : QRMIDOM_Helper::findFirstElement(document, wanted.tag);
    }
    if (!wanted.byTag && !wanted.byText && !wanted.byAttribute && !children) {
        return wanted.byUri ? QRMIDOM_Helper::findFirstElementNS(document, wanted.uri, wanted.local)
                            : QRMIDOM_Helper::findFirstElementWithName(document, wanted.local);
    }
    QRMIDOM_Element found;
    forEachElement(document, children, [&](const QRMIDOM_Element& element) {
        if (wanted.matches(element)) {
            found = element;
        }
        return found.isNull();
    });
    return found;
}

/// Shows elements by the path to them, for which it keeps how many of the same name each one has before it.
class Paths
{
public:
    std::string of(QRMIDOM_Node element)
    {
        std::vector<std::string> steps;
        for (; element.getNodeType() == 1; element = element.getParentNode()) {
            steps.push_back("/" + element.getNodeName().toUtf8() + "[" + std::to_string(position(element))
                            + "]");
        }
        std::string path;
        for (auto step = steps.rbegin(); step != steps.rend(); ++step) {
            path += *step;
        }
        return visible(path);
    }

private:
    int position(const QRMIDOM_Node& element)
    {
        const auto known = m_positions.find(element);
        if (known != m_positions.end()) {
            return known->second;
        }
        const I18NString name = element.getNodeName();
        int between = 1;
        for (QRMIDOM_Node before = element.getPreviousSibling(); !before.isNull();
             before = before.getPreviousSibling()) {
            if (before.getNodeType() == 1 && before.matchNodeName(name)) {
                const auto counted = m_positions.find(before);
                if (counted != m_positions.end()) {
                    between += counted->second;
                    break;
                }
                ++between;
            }
        }
        return m_positions[element] = between;
    }

    std::unordered_map<const xercesc::DOMNode*, int> m_positions;
};

} // namespace

int runFind(const FindOptions& options)
{
    const Wanted wanted(options);
    QRMIDOM_Document document;
    const int status = readDocument(options.file, options.read, document);
    if (status != kDone) {
        return status;
    }

    Output output("-");
    Paths paths;
    int found = 0;
    const auto show = [&](const QRMIDOM_Element& element) {
        ++found;
        switch (options.as) {
        case FindOptions::As::kXml: QRMIDOM_Helper::write(element, output.stream(), "UTF-8"); break;
        case FindOptions::As::kText: output.stream() << QRMIDOM_Helper::getElementText(element); break;
        case FindOptions::As::kPath: output.stream() << paths.of(element); break;
        }
        output.stream() << '\n';
    };
    if (options.all) {
        forEachElement(document, options.children, [&](const QRMIDOM_Element& element) {
            if (wanted.matches(element)) {
                show(element);
            }
            return output.stream().good();
        });
    } else {
        const QRMIDOM_Element first = findFirst(document, wanted, options.children);
        if (!first.isNull()) {
            show(first);
        }
    }
    output.commit();
    return found > 0 ? kDone : kNo;
}
