; The installer. For one user and without an administrator's rights, since the program keeps its
; settings in the folder that it is started in: its own.
; Defined by the call: VERSION, FOLDER (build folder), PROJECT, OUTPUT.

Target amd64-unicode
!include MUI2.nsh

!define KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\Tavorin"

Name "Tavorin ${VERSION}"
OutFile "${OUTPUT}"
InstallDir "$LOCALAPPDATA\Programs\Tavorin"
InstallDirRegKey HKCU "${KEY}" "InstallLocation"
RequestExecutionLevel user
SetCompressor /SOLID lzma
ManifestDPIAware true
BrandingText " "

VIProductVersion "${VERSION}.0"
VIAddVersionKey "ProductName" "Tavorin"
VIAddVersionKey "ProductVersion" "${VERSION}"
VIAddVersionKey "FileVersion" "${VERSION}"
VIAddVersionKey "FileDescription" "Tavorin setup"
VIAddVersionKey "CompanyName" "The Tavorin founders"
VIAddVersionKey "LegalCopyright" "(c) 2026 The Tavorin founders"

!define MUI_ICON "${PROJECT}/resources/pic/logo.ico"
!define MUI_UNICON "${PROJECT}/resources/pic/logo.ico"
!define MUI_ABORTWARNING
!define MUI_FINISHPAGE_RUN
!define MUI_FINISHPAGE_RUN_FUNCTION startProgram
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_COMPONENTS
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "SimpChinese"
!insertmacro MUI_LANGUAGE "English"

LangString program ${LANG_SIMPCHINESE} "程序"
LangString program ${LANG_ENGLISH} "Program"
LangString desktopLink ${LANG_SIMPCHINESE} "桌面快捷方式"
LangString desktopLink ${LANG_ENGLISH} "Shortcut on the desktop"
LangString demo ${LANG_SIMPCHINESE} "Tavorin 演示"
LangString demo ${LANG_ENGLISH} "Tavorin demo"
LangString dropSettings ${LANG_SIMPCHINESE} "是否同时删除设置和标定数据？"
LangString dropSettings ${LANG_ENGLISH} "Remove the settings and calibrations as well?"

Section $(program) sectionProgram
    SectionIn RO
    SetOutPath $INSTDIR
    File /r /x config.ini "${FOLDER}/deploy/*"
    ; Settings of an earlier version stay.
    SetOverwrite off
    File "${FOLDER}/deploy/config.ini"
    SetOverwrite on

    ; The folder in force here becomes the one that the shortcut starts the program in.
    CreateShortcut "$SMPROGRAMS\Tavorin.lnk" "$INSTDIR\tavorin.exe"
    CreateShortcut "$SMPROGRAMS\$(demo).lnk" "$INSTDIR\tavorin_demo.exe"

    WriteUninstaller "$INSTDIR\uninstall.exe"
    WriteRegStr HKCU "${KEY}" "DisplayName" "Tavorin"
    WriteRegStr HKCU "${KEY}" "DisplayVersion" "${VERSION}"
    WriteRegStr HKCU "${KEY}" "DisplayIcon" "$INSTDIR\tavorin.exe"
    WriteRegStr HKCU "${KEY}" "Publisher" "The Tavorin founders"
    WriteRegStr HKCU "${KEY}" "InstallLocation" "$INSTDIR"
    WriteRegStr HKCU "${KEY}" "UninstallString" '"$INSTDIR\uninstall.exe"'
    WriteRegStr HKCU "${KEY}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
    WriteRegDWORD HKCU "${KEY}" "NoModify" 1
    WriteRegDWORD HKCU "${KEY}" "NoRepair" 1
SectionEnd

Section $(desktopLink) sectionDesktop
    CreateShortcut "$DESKTOP\Tavorin.lnk" "$INSTDIR\tavorin.exe"
SectionEnd

Function startProgram
    SetOutPath $INSTDIR
    Exec '"$INSTDIR\tavorin.exe"'
FunctionEnd

Section Uninstall
    !include "${FOLDER}/uninstall.nsh"
    ; Pictures and lists that were saved here stay, and so do the settings unless he says otherwise.
    MessageBox MB_YESNO|MB_DEFBUTTON2 $(dropSettings) /SD IDNO IDNO kept
    Delete "$INSTDIR\config.ini"
    Delete "$INSTDIR\calibration.ini"
    Delete "$INSTDIR\corss.ini"
kept:
    Delete "$INSTDIR\uninstall.exe"
    RMDir "$INSTDIR"
    Delete "$SMPROGRAMS\Tavorin.lnk"
    Delete "$SMPROGRAMS\Tavorin 演示.lnk"
    Delete "$SMPROGRAMS\Tavorin demo.lnk"
    Delete "$DESKTOP\Tavorin.lnk"
    DeleteRegKey HKCU "${KEY}"
SectionEnd
