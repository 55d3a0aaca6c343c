// The rows of the language table that the program uses, with the built-in German text of each.
#pragma once

#include <array>

namespace kalvo::link {

// Row numbers of "sprachen.TXT"; row 0 names the columns.
enum TextId : int {
    // Messages
    TxtPortNotOpen = 1,
    TxtProtocolError = 2,
    TxtNamePrompt = 3,
    TxtNameLimit = 4,
    TxtNameTooLong = 5,
    TxtRefuseSystem = 6,
    TxtRefusePictures = 7,
    TxtRefuseSequences = 8,
    TxtRefuseHelp = 9,
    TxtModemStored = 10,
    TxtRecordNamePrompt = 11,
    TxtDeleteDone = 12,
    TxtDeleteError = 13,
    TxtDeleteHoldsRecords = 14,
    TxtUpdateDue = 15,
    TxtConnected = 16,
    TxtMenuRecords = 17,
    TxtMenuWithDesignation = 18,
    TxtMenuQuillbank = 19,
    // Main window
    TxtMenuSettings = 20,
    TxtMenuConnection = 21,
    TxtMenuConfig = 22,
    TxtMenuClock = 23,
    TxtMenuName = 24,
    TxtMenuService = 25,
    TxtMenuLanguage = 26,
    TxtMenuHelp = 27,
    TxtMenuHelpContents = 28,
    TxtMenuInfo = 29,
    TxtMenuExit = 30,
    TxtMenuDevelopment = 31,
    TxtButtonOk = 32,
    TxtButtonStore = 33,
    TxtButtonCancel = 34,
    TxtLabelPort = 35,
    TxtLabelSystem = 36,
    TxtLabelConfiguration = 37,
    TxtLabelPictures = 38,
    TxtLabelHelp = 39,
    TxtLabelSequences = 40,
    TxtLabelVersion = 41,
    TxtLabelDisplay = 42,
    TxtFrameSettings = 43,
    TxtFrameConfig = 44,
    TxtLabelRegister = 45,
    TxtLabelBits = 46,
    TxtButtonClose = 47,
    TxtHelpWindow = 48,
    // Service window
    TxtServiceWindow = 50,
    TxtServiceTerminal = 51,
    TxtServiceClear = 52,
    TxtServiceLogAscii = 53,
    TxtServiceLogHex = 54,
    TxtServiceScript = 55,
    TxtServiceScriptStart = 56,
    TxtServiceScriptResult = 57,
    TxtServiceAllHelp = 58,
    TxtServiceNextHelp = 59,
    TxtServiceHelpStop = 60,
    TxtServicePrintDirect = 61,
    TxtServiceCommand = 62,
    TxtServiceAnswer = 63,
    TxtServiceView = 64,
    // Configuration, limits, calibration, modem
    TxtMenuRestoreCalibration = 65,
    TxtMenuLimits = 66,
    TxtMenuLimitShortCircuit = 67,
    TxtMenuLimitReferenceVoltage = 68,
    TxtMenuLimitHighVoltageTime = 69,
    TxtMenuModem = 70,
    TxtLabelTelephone1 = 71,
    TxtLabelTelephone2 = 72,
    TxtLabelModemInit = 73,
    TxtServiceLoadVariables = 74,
    TxtServiceDumpConfiguration = 75,
    TxtServiceStoreConfiguration = 76,
    TxtServiceBackupCalibration = 77,
    TxtServiceVariables = 78,
    TxtServiceResetD3 = 79,
    TxtLimitOutOfRange = 80,
    TxtLimitWriteClamped = 81,
    // The test-specification database and the record archive
    TxtMenuSpecifications = 82,
    TxtMenuArchive = 83,
};

struct TextDefault {
    TextId id;
    const char *key;    // column 0 of the row
    const char *german; // used when "sprachen.TXT" cannot be read
};

// Every row the program uses, in row order.
const std::array<TextDefault, 82> &TextDefaults();

} // namespace kalvo::link
