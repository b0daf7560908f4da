#include <QRMUtils/XML/DOMInterface/QRMIDOM_Attr.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_NamedNodeMap.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_Parser.h>
#include <benchmark/benchmark.h>

#include "bench/documents.h"
#include "bench/peers.h"

namespace {

using documents::Sample;

/// Visits the node's subtree in document order, along links.
template <class Node, class IsNull, class Visit>
void walk(const Node& root, IsNull&& isNull, Visit&& visit)
{
    Node node = root;
    visit(node);
    for (int depth = 0;;) {
        Node next = node->getFirstChild();
        if (!isNull(next)) {
            ++depth;
        } else {
            while (depth > 0) {
                next = node->getNextSibling();
                if (!isNull(next)) {
                    break;
                }
                node = node->getParentNode();
                --depth;
            }
            if (depth == 0) {
                return;
            }
        }
        node = next;
        visit(node);
    }
}

/// Reads a string without copying it, as a caller who compares or counts does.
std::size_t touch(const XMLCh* text)
{
    std::size_t length = 0;
    if (text != nullptr) {
        while (text[length] != 0) {
            ++length;
        }
    }
    return length;
}

std::size_t touch(const I18NString& text)
{
    return static_cast<std::size_t>(text.length());
}

template <class Visit>
void rawWalk(benchmark::State& state, const Sample& sample, Visit&& visit)
{
    const peers::Document document = peers::Parser().parse(sample.text);
    for (auto _ : state) {
        std::size_t total = 0;
        walk<xercesc::DOMNode*>(
            document.get(), [](xercesc::DOMNode* node) { return node == nullptr; },
            [&](xercesc::DOMNode* node) { total += visit(node); });
        benchmark::DoNotOptimize(total);
    }
}

template <class Visit>
void handleWalk(benchmark::State& state, const Sample& sample, Visit&& visit)
{
    QRMIDOM_Parser parser;
    QRMIDOM_Document document;
    parser.parse(sample.text.data(), static_cast<int>(sample.text.size()), document);
    for (auto _ : state) {
        std::size_t total = 0;
        walk<QRMIDOM_Node>(
            document, [](const QRMIDOM_Node& node) { return node.isNull(); },
            [&](const QRMIDOM_Node& node) { total += visit(node); });
        benchmark::DoNotOptimize(total);
    }
}

void rawLinks(benchmark::State& state, const Sample& sample)
{
    rawWalk(state, sample,
            [](const xercesc::DOMNode* node) { return static_cast<std::size_t>(node->getNodeType()); });
}

void handleLinks(benchmark::State& state, const Sample& sample)
{
    handleWalk(state, sample, [](const QRMIDOM_Node& node) { return std::size_t{node.getNodeType()}; });
}

void rawStrings(benchmark::State& state, const Sample& sample)
{
    rawWalk(state, sample, [](const xercesc::DOMNode* node) {
        std::size_t total = touch(node->getNodeName()) + touch(node->getNodeValue());
        if (node->getNodeType() == xercesc::DOMNode::ELEMENT_NODE) {
            const xercesc::DOMNamedNodeMap* const attributes = node->getAttributes();
            const XMLSize_t count = attributes->getLength();
            for (XMLSize_t i = 0; i < count; ++i) {
                const xercesc::DOMNode* const attribute = attributes->item(i);
                total += touch(attribute->getNodeName()) + touch(attribute->getNodeValue());
            }
        }
        return total;
    });
}

void fillStrings(benchmark::State& state, const Sample& sample)
{
    I18NString text;
    handleWalk(state, sample, [&text](const QRMIDOM_Node& node) {
        node.getNodeName(text);
        std::size_t total = touch(text);
        node.getNodeValue(text);
        total += touch(text);
        if (node.getNodeType() == xercesc::DOMNode::ELEMENT_NODE) {
            const QRMIDOM_NamedNodeMap attributes = node.getAttributes();
            const unsigned long count = attributes.getLength();
            for (unsigned long i = 0; i < count; ++i) {
                const QRMIDOM_Node attribute = attributes.item(i);
                attribute.getNodeName(text);
                total += touch(text);
                attribute.getNodeValue(text);
                total += touch(text);
            }
        }
        return total;
    });
}

void valueStrings(benchmark::State& state, const Sample& sample)
{
    handleWalk(state, sample, [](const QRMIDOM_Node& node) {
        std::size_t total = touch(node.getNodeName()) + touch(node.getNodeValue());
        if (node.getNodeType() == xercesc::DOMNode::ELEMENT_NODE) {
            const QRMIDOM_NamedNodeMap attributes = node.getAttributes();
            const unsigned long count = attributes.getLength();
            for (unsigned long i = 0; i < count; ++i) {
                const QRMIDOM_Node attribute = attributes.item(i);
                total += touch(attribute.getNodeName()) + touch(attribute.getNodeValue());
            }
        }
        return total;
    });
}

const bool registered = [] {
    for (const Sample& sample : documents::all()) {
        const auto add = [&sample](const char* side, void (*run)(benchmark::State&, const Sample&)) {
            benchmark::RegisterBenchmark(("walk/" + std::string(side) + "/" + sample.name).c_str(), run,
                                         std::cref(sample))
                ->Unit(benchmark::kMillisecond);
        };
        add("raw_links", rawLinks);
        add("links", handleLinks);
        add("raw_strings", rawStrings);
        add("fill", fillStrings);
        add("value", valueStrings);
    }
    return true;
}();

} // namespace
