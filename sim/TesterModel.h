// What the virtual tester answers to one command line, and the memory its answers come from.
#pragma once

#include "RecordStore.h"
#include "SampleTemplates.h"
#include "TesterState.h"
#include "link/Clock.h"

#include <QByteArray>
#include <QDateTime>
#include <array>
#include <optional>

namespace kalvo::sim {

class TesterModel {
public:
    static constexpr int kVersionParts = 5;

    struct Reply {
        QByteArray answer;         // echo, payload, CR LF, DC1
        bool restartArmed = false; // "rst!0": a lone EOT restarts the tester
        QByteArray display;        // what the tester's display then mirrors to the PC, if anything
        std::optional<int> loader; // "kal!updN": the bytes that follow go to update loader N
    };

    explicit TesterModel(link::Clock &clock);

    // The answer to one command line (without its CR); carries out what the line asks for.
    Reply Answer(const QByteArray &line);
    // The tester's refusal of a line it does not understand: echo, " Protokoll .N".
    static QByteArray Refusal(const QByteArray &line);
    // A setting the tester will not take: echo, ".Nx".
    static QByteArray StoreRefusal(const QByteArray &line);
    // The prompt that answers a wake-up line.
    static QByteArray Prompt();

    // Back to the stored copy, out of configuration mode: what a restart does.
    void Restart();

    // Settings of the device itself. Language and name go into both copies.
    void setLanguage(int code);
    void setName(const QByteArray &name);
    void setKymInFront(bool on) { m_kymInFront = on; }
    bool kymInFront() const { return m_kymInFront; }
    // Test records, test specifications, the current record and the accessory's records.
    RecordStore &records() { return m_records; }
    const RecordStore &records() const { return m_records; }
    // The print template chosen in the tester, 0..4; "prn?" reports it.
    void setPrintTemplate(int number) { m_printTemplate = number; }
    int printTemplate() const { return m_printTemplate; }
    // The texts of the five print templates ("prn?k"), which "prn!k" prints with; loading a P-file
    // replaces one of 1..4. They are in flash: a restart keeps them.
    using PrintTemplateTexts = std::array<QByteArray, kPrintTemplates>;
    const PrintTemplateTexts &printTemplateTexts() const { return m_printTemplateTexts; }
    void setPrintTemplateText(int number, const QByteArray &text);
    // "dd.mm.yy hh:mm" for system, configuration, pictures, help, sequences.
    void setVersionDates(const std::array<QByteArray, kVersionParts> &dates) { m_versionDates = dates; }
    const std::array<QByteArray, kVersionParts> &versionDates() const { return m_versionDates; }
    // Version date `part` (0 system .. 4 sequences) becomes the tester's date and time now.
    void StampVersion(int part);
    void setSerialNumber(const QByteArray &serial) { m_serial = serial; }
    void setFirmware(const QByteArray &version) { m_firmware = version; }
    // The tester's clock; it runs on with the clock it was given.
    void setDateTime(const QDateTime &when);
    QDateTime dateTime() const;

    bool configurationMode() const { return m_configurationMode; }
    TesterState &working() { return m_working; }
    const TesterState &working() const { return m_working; }
    const TesterState &stored() const { return m_stored; }

private:
    // The payload after the echo; nullopt for a line the tester does not understand.
    // "prx!add " and "prx!del": the store's specifications added, its entries deleted.
    std::optional<QByteArray> StoreChange(const QByteArray &lower, const QByteArray &line);
    std::optional<QByteArray> Payload(const QByteArray &line, Reply &reply);
    std::optional<QByteArray> Query(const QByteArray &lower, const QByteArray &line);
    std::optional<QByteArray> Setting(const QByteArray &lower, const QByteArray &line, Reply &reply);
    QByteArray Identity() const;
    // "wer?W" + letter: c protective conductor, i insulation, e leakage, b touch current.
    std::optional<QByteArray> Reading(char quantity) const;
    // The remote keys and help texts: they change what the display shows.
    std::optional<QByteArray> RemoteControl(const QByteArray &lower);
    void Store() { m_stored = m_working; }

    link::Clock &m_clock;
    TesterState m_working;
    TesterState m_stored;
    bool m_configurationMode = false;
    int m_pendingCalibrationEntry = -1; // the entry whose first value the last "wer!" set
    bool m_kymInFront = false;
    RecordStore m_records;
    int m_printTemplate = 1;
    PrintTemplateTexts m_printTemplateTexts;
    QByteArray m_display; // set while a line is answered, handed out with its reply
    int m_helpText = 0;   // the help text picked, 0 for none
    bool m_helpShown = false;
    std::array<QByteArray, kVersionParts> m_versionDates{
        "17.03.09 10:42", "17.03.09 10:45", "02.02.09 08:15", "05.02.09 09:30", "20.02.09 14:05",
    };
    QByteArray m_serial = "0471 1203 5567";
    QByteArray m_firmware = "1.52";
    QDateTime m_dateBase;
    link::Duration m_dateSetAt{};
};

} // namespace kalvo::sim
