#include <charconv>
#include <string>
#include <vector>

#include <QRMUtils/XML/DOMInterface/QRMIDOM_Element.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_Helper.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_Text.h>

#include "tools/qrmxml/Document.h"
#include "tools/qrmxml/Output.h"
#include "tools/qrmxml/Save.h"

namespace {

/// A step of a path to one place: the n-th child element of that name.
struct Step
{
    I18NString name;
    int position;
};

/// The steps of a path as `find --as path` prints them, such as /library[1]/book[2]; none where it is another path.
std::vector<Step> stepsOf(const std::string& path)
{
    std::vector<Step> steps;
    for (std::size_t at = 0; at < path.size();) {
        const std::size_t open = path.find('[', at);
        const std::size_t close = path.find(']', at);
        if (path[at] != '/' || open == std::string::npos || close == std::string::npos) {
            return {};
        }
        const std::string name = path.substr(at + 1, open - at - 1);
        int position = 0;
        const char* const end = path.data() + close;
        const auto number = std::from_chars(path.data() + open + 1, end, position);
        if (name.empty() || name.find('/') != std::string::npos || number.ptr != end
            || number.ec != std::errc() || position < 1) {
            return {};
        }
        steps.push_back({name.c_str(), position});
        at = close + 1;
    }
    return steps;
}

/// The child element that the step leads to. One behind the last of its name is made.
QRMIDOM_Element childAt(QRMIDOM_Element parent, const Step& step)
{
    int count = 0;
    for (QRMIDOM_Node child = parent.getFirstChild(); !child.isNull(); child = child.getNextSibling()) {
        if (child.getNodeType() == 1 && child.matchNodeName(step.name) && ++count == step.position) {
            return child;
        }
    }
    if (step.position != count + 1) {
        throw Trouble("qrmxml", "there are only " + std::to_string(count) + " elements \""
                                    + step.name.toUtf8() + "\" where the path leads, not "
                                    + std::to_string(step.position));
    }
    return parent.appendChild(parent.getOwnerDocument().createElement(step.name));
}

/// Sets what is to be set at the one place that the path leads to.
void setAt(QRMIDOM_Element element, const std::vector<Step>& steps, const SetOptions& options)
{
    if (!element.matchNodeName(steps[0].name) || steps[0].position != 1) {
        throw Trouble("qrmxml", "the document element is \"" + element.getNodeName().toUtf8()
                                    + "\", so nothing is at " + options.path);
    }
    for (std::size_t i = 1; i < steps.size(); ++i) {
        element = childAt(element, steps[i]);
    }
    if (options.attribute) {
        element.setAttribute(options.attribute->name.c_str(), options.attribute->value.c_str());
    }
    if (options.text) {
        while (element.hasChildNodes()) {
            element.removeChild(element.getFirstChild());
        }
        element.appendChild(element.getOwnerDocument().createTextNode(options.text->c_str()));
    }
}

QRMIDOM_Element findOrCreate(const QRMIDOM_Element& root, const SetOptions& options)
{
    const I18NString path(options.path.c_str());
    if (options.attribute) {
        return QRMIDOM_Helper::findOrCreateElementWithAttribute(root, path, options.attribute->name.c_str(),
                                                                options.attribute->value.c_str());
    }
    if (options.text) {
        return QRMIDOM_Helper::findOrCreateElementWithText(root, path, options.text->c_str());
    }
    return QRMIDOM_Helper::findOrCreateElement(root, path);
}

} // namespace

int runSet(const SetOptions& options)
{
    checkSaving(options.save, options.file);
    QRMIDOM_Document document;
    const int status = readDocument(options.file, options.read, document);
    if (status != kDone) {
        return status;
    }
    try {
        const std::vector<Step> steps = stepsOf(options.path);
        if (!steps.empty()) {
            setAt(document.getDocumentElement(), steps, options);
        } else if (findOrCreate(document.getDocumentElement(), options).isNull()) {
            throw Trouble("qrmxml", "the path \"" + options.path + "\" names no element");
        }
    } catch (const QRMIDOM_DOMException& error) {
        if (error.getCode() == 5) {
            throw Trouble("qrmxml", "no element or attribute can be named like that: " + options.path
                                        + (options.attribute ? ", " + options.attribute->name : ""));
        }
        throw;
    }
    save(document, options.save, options.file);
    return kDone;
}
