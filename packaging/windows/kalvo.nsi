; The Windows installer of kalvo: the program folder in Program Files with everything the programs
; need, a Start-menu entry, an uninstaller listed under "Apps". What each user's kalvo keeps of its
; own (settings, the record archive, files that cannot lie in the program folder) is in that user's
; %LOCALAPPDATA%\kalvo and stays when the program is removed.
; makensis -DVERSION=0.1.0 -DSTAGE=folder -DOUTFILE=kalvo-0.1.0-setup.exe kalvo.nsi
; kalvo is a 64-bit program, and so is its installer (it runs where no 32-bit layer is).
Target amd64-unicode
!include "MUI2.nsh"

Name "kalvo ${VERSION}"
OutFile "${OUTFILE}"
InstallDir "$PROGRAMFILES64\kalvo"
InstallDirRegKey HKLM "Software\kalvo" "InstallDir"
RequestExecutionLevel admin
SetCompressor /SOLID lzma

!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\kalvo"

!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "German"
!insertmacro MUI_LANGUAGE "English"

Section "kalvo"
    SetShellVarContext all
    SetOutPath "$INSTDIR"
    File /r "${STAGE}\*.*"
    WriteUninstaller "$INSTDIR\uninstall.exe"
    CreateShortcut "$SMPROGRAMS\kalvo.lnk" "$INSTDIR\kalvo.exe"
    WriteRegStr HKLM "Software\kalvo" "InstallDir" "$INSTDIR"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayName" "kalvo"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\kalvo.exe"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\uninstall.exe"'
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" "NoModify" 1
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" "NoRepair" 1
SectionEnd

Section "Uninstall"
    SetShellVarContext all
    Delete "$SMPROGRAMS\kalvo.lnk"
    RMDir /r "$INSTDIR"
    DeleteRegKey HKLM "${UNINSTALL_KEY}"
    DeleteRegKey HKLM "Software\kalvo"
SectionEnd
