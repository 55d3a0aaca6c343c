// The built-in German texts of the language table, used when "sprachen.TXT" cannot be read.
#include "TextIds.h"

namespace kalvo::shell {

const std::array<TextDefault, 61> &TextDefaults()
{
    static const std::array<TextDefault, 61> kDefaults = {{
        {TxtPortNotOpen, "port not open",
         "Die Schnittstelle ist nicht geöffnet. Bitte unter Einstellungen die Schnittstelle wählen und mit "
         "OK "
         "verbinden."},
        {TxtProtocolError, "protocol error",
         "Der Kalvomer hat den Befehl nicht angenommen (Protokollfehler)."},
        {TxtNamePrompt, "naming prompt", "Bitte den neuen Namen des Kalvomer eingeben:"},
        {TxtNameLimit, "naming limit", "höchstens 8 Zeichen"},
        {TxtNameTooLong, "name too long", "Der Name ist zu lang: erlaubt sind höchstens 8 Zeichen."},
        {TxtRefuseSystem, "refusal system", "Das Update der Systemsoftware ist nicht freigegeben."},
        {TxtRefusePictures, "refusal pictures", "Das Update der Bilder ist nicht freigegeben."},
        {TxtRefuseSequences, "refusal sequences", "Das Update der Prüfabläufe ist nicht freigegeben."},
        {TxtRefuseHelp, "refusal help", "Das Update der Hilfetexte ist nicht freigegeben."},
        {TxtModemStored, "modem stored", "Die Modemeinstellungen sind im Kalvomer gespeichert."},
        {TxtRecordNamePrompt, "record name prompt", "Name der Prüfvorschrift:"},
        {TxtDeleteDone, "delete done", "Die Prüfvorschriften im Kalvomer wurden gelöscht."},
        {TxtDeleteError, "delete error", "Die Prüfvorschriften konnten nicht gelöscht werden."},
        {TxtDeleteHoldsRecords, "delete holds records",
         "Der Speicher enthält noch Prüfprotokolle. Bitte zuerst die Protokolle auslesen und löschen."},
        {TxtUpdateDue, "update due", "Für diesen Kalvomer liegt ein neueres Update bereit."},
        {TxtConnected, "connected", "Verbunden mit"},
        {TxtMenuRecords, "menu records", "Protokolle"},
        {TxtMenuSettings, "menu settings", "Einstellungen"},
        {TxtMenuConnection, "menu connection", "Schnittstelle"},
        {TxtMenuConfig, "menu configuration", "Konfiguration"},
        {TxtMenuClock, "menu clock", "Uhr stellen"},
        {TxtMenuName, "menu name", "Kalvomer taufen"},
        {TxtMenuService, "menu service", "Service"},
        {TxtMenuLanguage, "menu language", "Sprache"},
        {TxtMenuHelp, "menu help", "Hilfe"},
        {TxtMenuHelpContents, "menu help contents", "Inhalt"},
        {TxtMenuInfo, "menu info", "Info"},
        {TxtMenuExit, "menu exit", "Beenden"},
        {TxtMenuDevelopment, "menu development", "Entwicklung"},
        {TxtButtonOk, "button ok", "OK"},
        {TxtButtonStore, "button store", "Speichern"},
        {TxtButtonCancel, "button cancel", "Abbrechen"},
        {TxtLabelPort, "label port", "Schnittstelle"},
        {TxtLabelSystem, "label system", "System"},
        {TxtLabelConfiguration, "label configuration", "Konfiguration"},
        {TxtLabelPictures, "label pictures", "Bilder"},
        {TxtLabelHelp, "label help", "Hilfe"},
        {TxtLabelSequences, "label sequences", "Abläufe"},
        {TxtLabelVersion, "label version", "Version"},
        {TxtLabelDisplay, "label display", "Anzeige des Kalvomer"},
        {TxtFrameSettings, "frame settings", "Einstellungen"},
        {TxtFrameConfig, "frame configuration", "Konfiguration des Kalvomer"},
        {TxtLabelRegister, "label register", "Register"},
        {TxtLabelBits, "label bits", "Konfigurationsbits"},
        {TxtButtonClose, "button close", "Schließen"},
        {TxtHelpWindow, "help window", "Hilfe zu kalvo"},
        {TxtServiceWindow, "service window", "Service"},
        {TxtServiceTerminal, "service terminal", "Terminal"},
        {TxtServiceClear, "service clear", "Bildschirm löschen"},
        {TxtServiceLogAscii, "service log ascii", "log ASCII"},
        {TxtServiceLogHex, "service log hex", "log Hex"},
        {TxtServiceScript, "service script", "Ablauf"},
        {TxtServiceScriptStart, "service script start", "Starten"},
        {TxtServiceScriptResult, "service script result", "Protokoll"},
        {TxtServiceAllHelp, "service all help", "alle Hilfe Texte"},
        {TxtServiceNextHelp, "service next help", "nächste Hilfe"},
        {TxtServiceHelpStop, "service help stop", "Hilfe Stop"},
        {TxtServicePrintDirect, "service print direct", "direkt drucken"},
        {TxtServiceCommand, "service command", "Befehl"},
        {TxtServiceAnswer, "service answer", "Antwort"},
        {TxtServiceView, "service view", "Ansicht"},
    }};
    return kDefaults;
}

} // namespace kalvo::shell
