#include "QRMUtils/XML/DOMInterface/QRMIDOM_CharacterData.h"

#include <algorithm>

#include "QRMUtils/XML/DOMInterface/QRMIDOM_XercesHelper.h"
#include "QRMUtils/XML/DOMInterface/internal/Guards.h"
#include "QRMUtils/XML/DOMInterface/internal/Strings.h"

using Bridge = QRMIDOM_XercesHelper;
using qrm::live;
using qrm::translated;

namespace {

/// The count, ended where the text ends: Xerces adds it to the offset, and large ones wrap around.
unsigned long clipped(const xercesc::DOMCharacterData* text, unsigned long offset, unsigned long count)
{
    const unsigned long length = text->getLength();
    return std::min(count, length - std::min(offset, length));
}

} // namespace

QRMIDOM_CharacterData& QRMIDOM_CharacterData::operator=(const QRMIDOM_Node* nodePrt)
{
    QRM_ASSERT_AT(198, nodePrt == NULL);
    QRMIDOM_Node::operator=(nodePrt);
    return *this;
}

unsigned long QRMIDOM_CharacterData::getLength() const
{
    return live(dom(), QRM_SITE(74))->getLength();
}

I18NString QRMIDOM_CharacterData::getData() const
{
    return Bridge::DOMStringToI18NString(live(dom(), QRM_SITE(81))->getData());
}

void QRMIDOM_CharacterData::getData(I18NString& data) const
{
    Bridge::DOMStringToI18NString(live(dom(), QRM_SITE(206))->getData(), data);
}

I18NString QRMIDOM_CharacterData::substringData(unsigned long offset, unsigned long count) const
{
    const auto* const text = live(dom(), QRM_SITE(91));
    return translated(QRM_SITE(103), [&] {
        return Bridge::DOMStringToI18NString(text->substringData(offset, clipped(text, offset, count)));
    });
}

void QRMIDOM_CharacterData::substringData(unsigned long offset, unsigned long count, I18NString& data) const
{
    const auto* const text = live(dom(), QRM_SITE(212));
    translated(QRM_SITE(223), [&] {
        Bridge::DOMStringToI18NString(text->substringData(offset, clipped(text, offset, count)), data);
    });
}

void QRMIDOM_CharacterData::appendData(const I18NString& arg)
{
    auto* const text = live(dom(), QRM_SITE(111));
    translated(QRM_SITE(125), [&] { text->appendData(Bridge::I18NStringToDOMString(arg)); });
}

void QRMIDOM_CharacterData::insertData(unsigned long offset, const I18NString& arg)
{
    auto* const text = live(dom(), QRM_SITE(132));
    translated(QRM_SITE(146), [&] { text->insertData(offset, qrm::neverNull(arg)); });
}

void QRMIDOM_CharacterData::deleteData(unsigned long offset, unsigned long count)
{
    auto* const text = live(dom(), QRM_SITE(153));
    translated(QRM_SITE(165), [&] { text->deleteData(offset, clipped(text, offset, count)); });
}

void QRMIDOM_CharacterData::replaceData(unsigned long offset, unsigned long count, const I18NString& arg)
{
    auto* const text = live(dom(), QRM_SITE(172));
    translated(QRM_SITE(186),
               [&] { text->replaceData(offset, clipped(text, offset, count), qrm::neverNull(arg)); });
}
