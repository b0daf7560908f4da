#ifndef QRMIDOM_HELPER_H
#define QRMIDOM_HELPER_H

#include <atomic>
#include <cstdio>
#include <iosfwd>
#include <map>
#include <vector>

#include "QRMCore/I18NString.h"
#include "QRMCore/QRMThreadCriticalSection.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_Api.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_Element.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_Node.h"

class DomWriter;

/// Static operations on trees and on text.
///
/// Encodings are named as I18NConverter takes them; null is the default, UTF-8. Conversion errors come as
/// I18NConversionError. Null text is empty text; a null FILE fails with QRMAssertError. Errors of a stream or file that
/// is written to are not looked at: ask the stream afterwards.
///
/// Names, values and texts are compared exactly, by code unit; none (null) equals the empty string. A search leaves
/// nothing behind in the document, and no operation uses more stack for a deeper tree, except those that copy nodes.
class QRMIDOM_API QRMIDOM_Helper
{
public:
    // A node with its subtree, as DomWriter::operator<< writes it.

    /// Writes to a file, which is made or emptied first: when writing fails half-way, what is there stays there. Errors
    /// while the file is written or closed are not reported. Write beside the file and rename where that matters.
    /// @throws QRMSystemError 0, "System error occured while trying to write (QRMIDOM_Helper::write): " and the path
    ///         when the file cannot be opened; 0, "Unknown error occured while doing QRMIDOM_Helper::write" for errors
    ///         that are no QRMThrowable
    /// @throws QRMOutOfMemoryError 300 when Xerces runs out of memory
    static void write(QRMIDOM_Node node, const char* path, const char* encoding);
    /// @overload
    static void write(QRMIDOM_Node node, std::ostream& stream, const char* encoding);
    /// @overload
    static void write(QRMIDOM_Node node, std::FILE* file, const char* encoding);
    /// @overload
    static void write(QRMIDOM_Node node, DomWriter& writer);

    // The same with namespace declarations: trees made by createElementNS() have none. An element gets the declaration
    // of its own namespace, `xmlns="..."` or `xmlns:prefix="..."`, when it is the first one, when its namespace is not
    // its parent's, or when it has a prefix that is not its parent's. Its own attribute for the same prefix is then left
    // out. An element with an attribute `xmlns` gets no declaration, which loses that of its prefix where it has one.
    // Prefixes that only attributes use are not declared, and an element without a namespace gets `xmlns=""`.

    /// As write() to a file.
    /// @throws QRMSystemError, QRMOutOfMemoryError as write(), which the texts name
    static void writeNS(QRMIDOM_Node node, const char* path, const char* encoding);
    /// @overload
    static void writeNS(QRMIDOM_Node node, std::ostream& stream, const char* encoding);
    /// @overload
    static void writeNS(QRMIDOM_Node node, std::FILE* file, const char* encoding);
    /// @throws QRMAssertError "QRM_ASSERT(m_nodeImpl != NULL);" for the null handle, which write() passes over
    static void writeNS(QRMIDOM_Node node, DomWriter& writer);

    // Text with the five markup characters replaced by entities, without header or line end. Output stops at the first
    // zero byte of the converted text, so encodings of two or four bytes a character are not for these.

    /// Writes the text with the five characters of markup escaped. A null encoding is UTF-8.
    static void write(std::ostream& stream, const I18NString& text, const char* encoding);
    /// @overload
    static void write(std::FILE* file, const I18NString& text, const char* encoding);
    /// Converts the text to the writer's encoding first; a character that it cannot express is written as a decimal
    /// character reference.
    static void write(DomWriter& writer, const I18NString& text);
    /// Takes the NUL-terminated bytes as they are.
    static void write(DomWriter& writer, const char* text);

    // Text as it is.

    /// Writes the text as it is.
    static void writeNoEscape(DomWriter& writer, const I18NString& text);
    /// @overload
    static void writeNoEscape(DomWriter& writer, const char* text);
    /// Converts to the default encoding, whatever encoding is named.
    static void writeNoEscape(std::ostream& stream, const I18NString& text, const char* encoding);
    /// Writes the NUL-terminated bytes, whatever encoding is named.
    static void writeNoEscape(std::ostream& stream, const char* text, const char* encoding);
    /// @overload
    static void writeNoEscape(std::FILE* file, const char* text, const char* encoding);

    /// The index of the first byte of `<`, `>`, `&`, `'` and `"` from start, below end; -1 where there is none. A zero
    /// byte does not end the search, and a negative start is the caller's promise that there is something to read.
    static int findSpecialChar(const char* text, int start, int end);

    // Searches among all elements below the start node, in document order. The start node itself is never found, nor is
    // anything inside an entity reference. They give the first match, sharing the document of the start node, or the
    // null handle; a null start throws QRMAssertError. Tag names are qualified names: "x:a" is not "a".

    /// The first element of that qualified name.
    static QRMIDOM_Element findFirstElement(QRMIDOM_Node start, const I18NString& tagName);

    /// With an attribute of this value. An absent attribute has the empty value.
    static QRMIDOM_Element findElementWithAttribute(QRMIDOM_Node start, const I18NString& tagName,
                                                    const I18NString& attrName, const I18NString& attrValue);

    /// Of this namespace, where empty means none, and local name.
    static QRMIDOM_Element findFirstElementNS(QRMIDOM_Node start, const I18NString& namespaceURI,
                                              const I18NString& localName);

    /// Of this local name, in whatever namespace. Elements made without namespaces have none.
    static QRMIDOM_Element findFirstElementWithName(QRMIDOM_Node start, const I18NString& localName);

    /// Whose own text, as getElementText() gives it, is this one. In spite of its name it searches all levels.
    static QRMIDOM_Element findChildElementWithText(QRMIDOM_Node start, const I18NString& tagName,
                                                    const I18NString& text);

    /// Appends every match to the vector, which keeps what it has. In spite of its name it searches all levels.
    static void findChildElementsWithAttribute(QRMIDOM_Node start, const I18NString& tagName,
                                               const I18NString& attrName, const I18NString& attrValue,
                                               std::vector<QRMIDOM_Node>& out);

    // Searches among the children of the start node only.

    /// A null start gives the null handle. What is found shares no document: hold another handle on the document as
    /// long as it is in use.
    static QRMIDOM_Element findChildElement(QRMIDOM_Node start, const I18NString& tagName);

    /// The first child element of that qualified name with this value of the attribute.
    static QRMIDOM_Element findChildElementWithAttribute(QRMIDOM_Node start, const I18NString& tagName,
                                                         const I18NString& attrName,
                                                         const I18NString& attrValue);

    /// The text of the element's own text nodes, one after the other, without CDATA sections, the contents of entity
    /// references, and the text of elements inside. Empty for the null handle.
    static I18NString getElementText(QRMIDOM_Element element);
    /// Appends it.
    static void getElementText(QRMIDOM_Element element, I18NString& text);

    // Copies: a deep copy of the node is made by the document of the parent and put into the tree, even where the node
    // is of that document; the node itself stays where it is.

    /// Puts the copy before a child of the parent, or at the end where that is null. Mind the order: the child comes
    /// first, other than in QRMIDOM_Node::insertBefore().
    /// @return the copy
    /// @throws QRMAssertError for a null parent or a null new child
    /// @throws QRMIDOM_DOMException 9 for a node that cannot be copied, such as a document, and as
    ///         QRMIDOM_Node::insertBefore()
    static QRMIDOM_Node insertBefore(QRMIDOM_Node parent, QRMIDOM_Node refChild, QRMIDOM_Node newChild);
    /// Puts the copy at the end.
    /// @return the copy
    /// @throws QRMAssertError, QRMIDOM_DOMException as insertBefore()
    static QRMIDOM_Node appendChild(QRMIDOM_Node parent, QRMIDOM_Node newChild);

    // Making sure that an element exists. What is missing is made without a namespace and put at the end of its parent.
    // A path is tag names with "/" between them; further separators anywhere do not matter. An empty path, one of
    // separators only, and a null start give the null handle and change nothing. Elements made before an error stay in
    // the tree.
    //
    // @throws QRMIDOM_DOMException 5 for a name that is none, 3 where the DOM allows no element, such as a second
    //         one in a document, and 7 below a read-only node

    /// Takes every step to the first element of that name anywhere below the one before. Where the start is a document
    /// the first step is below its document element, which is never found itself.
    /// @return the element of the last step
    /// @throws QRMAssertError for a document without a document element
    static QRMIDOM_Element findOrCreateElement(QRMIDOM_Node start, const I18NString& path);

    /// The last step is a child with this value of the attribute, where an absent attribute has the empty value; the
    /// steps before it are those of findOrCreateElement(). A path of a single step starts at the start node itself,
    /// also where that is a document.
    static QRMIDOM_Element findOrCreateElementWithAttribute(QRMIDOM_Node start, const I18NString& path,
                                                            const I18NString& attrName,
                                                            const I18NString& attrValue);

    /// The last step is an element with this text, as findChildElementWithText() searches it.
    static QRMIDOM_Element findOrCreateElementWithText(QRMIDOM_Node start, const I18NString& path,
                                                       const I18NString& text);

    /// A child of this name, no path. One that is found shares no document, as that of findChildElement(); one that is
    /// made does.
    /// @throws QRMAssertError for a null parent
    static QRMIDOM_Element findOrCreateChildElement(QRMIDOM_Element parent, const I18NString& tagName);

    // The namespace declarations in scope: the attributes `xmlns:...` of the node, where it is an element, and of its
    // ancestors. Neither the default namespace nor the namespaces that elements were made with count.
    //
    // @throws QRMAssertError for a null node

    /// The prefix declared for the namespace URI nearest to the node; empty where there is none. That the prefix may
    /// stand for something else again at the node is not looked at.
    static I18NString getNamespacePrefix(QRMIDOM_Node searchNode, const I18NString& namespaceURI);

    /// Adds every declaration to the map: from the name of the attribute, with its "xmlns:", to the URI. The nearest
    /// declaration of a prefix counts; what is in the map already stays.
    static void getNamespaces(QRMIDOM_Node searchNode, std::map<I18NString, I18NString>& namespaces);

private:
    static const I18NString& xmlnsName();

    // The name "xmlns" for all that is written with namespaces: made once, by whoever needs it first, and kept.
    static std::atomic<const I18NString*> m_pXMLNS_Attr;
    static QRMThreadCriticalSection m_XMLNS_Attr_Lock;
};

#endif
