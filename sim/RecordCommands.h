// The tester's answers about its record store, its print templates and the KYM accessory's records.
#pragma once

#include "RecordStore.h"
#include "SampleTemplates.h"

#include <array>

#include <QByteArray>
#include <optional>

namespace kalvo::sim {

// A record or template number in a command: up to four digits, blanks around them taken.
std::optional<int> RecordNumber(const QByteArray &text);

class RecordCommands {
public:
    using TemplateTexts = std::array<QByteArray, kPrintTemplates>;
    RecordCommands(const RecordStore &store, bool kymInFront, int printTemplate,
                   const TemplateTexts &templates)
        : m_store(store), m_kymInFront(kymInFront), m_printTemplate(printTemplate), m_templates(templates)
    {}

    // The whole answer of a command that streams without an echo: the listing "prx?nx" and the
    // accessory's "wer?". nullopt for any other line.
    std::optional<QByteArray> Stream(const QByteArray &lower) const;
    // Whether the line is one of the commands answered here.
    bool Handles(const QByteArray &lower) const;
    // The payload behind the echo of a handled line; nullopt when the tester refuses it.
    std::optional<QByteArray> Payload(const QByteArray &lower) const;

private:
    std::optional<QByteArray> RecordQuery(const QByteArray &argument) const;
    std::optional<QByteArray> Print(const QByteArray &argument) const;
    // "prn?k": template k's text behind a header and the mark "\v".
    std::optional<QByteArray> TemplateText(const QByteArray &argument) const;

    const RecordStore &m_store;
    bool m_kymInFront;
    int m_printTemplate;
    const TemplateTexts &m_templates;
};

} // namespace kalvo::sim
