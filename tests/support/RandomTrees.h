#ifndef QRM_TESTS_RANDOMTREES_H
#define QRM_TESTS_RANDOMTREES_H

#include <random>
#include <vector>

#include "tests/support/TestDocument.h"

/// Trees of elements with and without namespaces, attributes, texts and everything that may stand between them. Names,
/// values and texts are few, so that much is the same in many places. A prefix stands for the same namespace wherever it
/// occurs, and no namespace is used with a prefix here and without one there.
class RandomNamespaceTrees
{
public:
    explicit RandomNamespaceTrees(unsigned seed) : m_random(seed) {}

    QRMIDOM_Document next()
    {
        QRMIDOM_Document document =
            documentOf("<!DOCTYPE r [<!ENTITY e '<a i=\"1\">x</a>'><!ATTLIST b d CDATA 'default'>]><r/>");
        document.removeChild(document.getDocumentElement());
        elements = {element(document)};
        document.appendChild(elements[0]);
        for (unsigned step = below(50); step > 0; --step) {
            QRMIDOM_Element parent = any();
            switch (below(10)) {
            case 0:
            case 1: parent.appendChild(document.createTextNode(oneOf({u"x", u"y", u"", u"xy"}))); break;
            case 2: parent.appendChild(document.createCDATASection(oneOf({u"x", u"y"}))); break;
            case 3: parent.appendChild(document.createComment("x")); break;
            case 4: parent.appendChild(document.createEntityReference("e")); break;
            case 5: parent.setAttribute(oneOf({u"i", u"j"}), oneOf({u"1", u"2", u""})); break;
            default:
                elements.push_back(element(document));
                parent.appendChild(elements.back());
                break;
            }
        }
        return document;
    }

    unsigned below(unsigned limit) { return static_cast<unsigned>(m_random() % limit); }

    I18NString oneOf(const std::vector<const char16_t*>& choices)
    {
        return choices[below(static_cast<unsigned>(choices.size()))];
    }

    /// One of the elements of the last tree.
    QRMIDOM_Element any() { return elements[below(static_cast<unsigned>(elements.size()))]; }

    /// The elements of the last tree; entity references have more.
    std::vector<QRMIDOM_Element> elements;

private:
    QRMIDOM_Element element(QRMIDOM_Document& document)
    {
        const I18NString local = oneOf({u"a", u"b", u"c"});
        QRMIDOM_Element made;
        switch (below(6)) {
        case 0: made = document.createElement(local); break;
        case 1: made = document.createElementNS("", local); break;
        case 2: made = document.createElementNS("urn:d", local); break;
        case 3: made = document.createElementNS("urn:e", local); break;
        case 4:
            made = document.createElementNS("urn:p", I18NString("p:") + local);
            made.setAttributeNS("urn:p", "p:i", oneOf({u"1", u"2"}));
            break;
        default: made = document.createElementNS("urn:q", I18NString("q:") + local); break;
        }
        return made;
    }

    std::mt19937 m_random;
};

#endif
