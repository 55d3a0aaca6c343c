// The four kinds of update content: their file masks, announce commands and refusal texts.
#include "UpdateKinds.h"

#include <QRegularExpression>

namespace kalvo::update {

const std::array<ContentKindInfo, 4> &ContentKinds()
{
    static const std::array<ContentKindInfo, 4> kKinds = {{
        {ContentKind::System, QStringLiteral("*.hex"), "kal!upd0", link::TxtRefuseSystem, true},
        {ContentKind::Pictures, QStringLiteral("b*.p"), "kal!upd3", link::TxtRefusePictures, false},
        {ContentKind::Sequences, QStringLiteral("a*.p"), "kal!upd1", link::TxtRefuseSequences, false},
        {ContentKind::Help, QStringLiteral("h*.p"), "kal!upd2", link::TxtRefuseHelp, false},
    }};
    return kKinds;
}

const ContentKindInfo &InfoFor(ContentKind kind)
{
    return ContentKinds()[static_cast<size_t>(kind)];
}

std::optional<ContentKind> KindForFileName(const QString &fileName)
{
    for (const ContentKindInfo &info : ContentKinds()) {
        const QRegularExpression mask(QRegularExpression::wildcardToRegularExpression(info.mask),
                                      QRegularExpression::CaseInsensitiveOption);
        if (mask.match(fileName).hasMatch())
            return info.kind;
    }
    return std::nullopt;
}

} // namespace kalvo::update
