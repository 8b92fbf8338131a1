; The setup program, for one user or for all. tools/build-windows makes it, with
;   VERSION, STAGE (the folder that `cmake --install` made), FILES (InstallFiles and RemoveFiles, made from it), ICON, OUTPUT.
; Silent: /S, with /CurrentUser or /AllUsers; another folder for the programs: /D=FOLDER, as the last.
Unicode true
Target amd64-unicode
ManifestDPIAware true
SetCompressor /SOLID lzma
SetDateSave off
Name "Tarvelline ${VERSION}"
OutFile "${OUTPUT}"
BrandingText "Built and tested under Wine, not yet on Windows itself"

!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\Tarvelline"
!define MULTIUSER_EXECUTIONLEVEL Highest
!define MULTIUSER_MUI
!define MULTIUSER_INSTALLMODE_COMMANDLINE
!define MULTIUSER_USE_PROGRAMFILES64
!define MULTIUSER_INSTALLMODE_INSTDIR Tarvelline
!define MULTIUSER_INSTALLMODE_INSTDIR_REGISTRY_KEY "${UNINSTALL_KEY}"
!define MULTIUSER_INSTALLMODE_INSTDIR_REGISTRY_VALUENAME InstallLocation
!define MULTIUSER_INSTALLMODE_DEFAULT_REGISTRY_KEY "${UNINSTALL_KEY}"
!define MULTIUSER_INSTALLMODE_DEFAULT_REGISTRY_VALUENAME InstallLocation
!define MULTIUSER_INSTALLMODE_FUNCTION choosePlaces
!define MULTIUSER_INSTALLMODE_UNFUNCTION un.choosePlaces
!include MultiUser.nsh
!include MUI2.nsh
!include "${FILES}"

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!define MUI_ABORTWARNING
!insertmacro MUI_PAGE_LICENSE "${STAGE}/LICENSE.txt"
!insertmacro MULTIUSER_PAGE_INSTALLMODE
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!define MUI_FINISHPAGE_RUN "$INSTDIR\tarvelline.exe"
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE English

VIProductVersion "${VERSION}.0"
VIAddVersionKey ProductName "Tarvelline"
VIAddVersionKey CompanyName "Vorntaal"
VIAddVersionKey FileDescription "Tarvelline Setup"
VIAddVersionKey FileVersion "${VERSION}"
VIAddVersionKey LegalCopyright "The Tarvelline authors, GPL-3.0-or-later"

Var modules ; where hosts look for VST3 plug-ins, and for their presets
Var presets

!macro DefineChoosePlaces prefix
    Function ${prefix}choosePlaces
        StrCpy $presets "$APPDATA\VST3 Presets"
        ${If} $MultiUser.InstallMode == AllUsers
            StrCpy $modules "$COMMONFILES64\VST3"
        ${Else}
            StrCpy $modules "$LOCALAPPDATA\Programs\Common\VST3"
        ${EndIf}
    FunctionEnd
!macroend
!insertmacro DefineChoosePlaces ""
!insertmacro DefineChoosePlaces "un."

Function .onInit
    !insertmacro MULTIUSER_INIT
FunctionEnd

Function un.onInit
    !insertmacro MULTIUSER_UNINIT
FunctionEnd

Section
    ; What an earlier version has put there goes first: it knows its own files.
    ReadRegStr $0 SHCTX "${UNINSTALL_KEY}" InstallLocation
    ${If} ${FileExists} "$0\uninstall.exe"
        ExecWait '"$0\uninstall.exe" /S /$MultiUser.InstallMode _?=$0'
        Delete "$0\uninstall.exe"
        RMDir "$0"
    ${EndIf}

    !insertmacro InstallFiles
    SetOutPath "$INSTDIR"
    WriteUninstaller "$INSTDIR\uninstall.exe"
    CreateShortCut "$SMPROGRAMS\Tarvelline.lnk" "$INSTDIR\tarvelline.exe"

    WriteRegStr SHCTX "${UNINSTALL_KEY}" DisplayName "Tarvelline"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" DisplayVersion "${VERSION}"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" DisplayIcon "$INSTDIR\tarvelline.exe"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" Publisher "Vorntaal"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" URLInfoAbout "https://vorntaal.org"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" InstallLocation "$INSTDIR"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" UninstallString '"$INSTDIR\uninstall.exe" /$MultiUser.InstallMode'
    WriteRegStr SHCTX "${UNINSTALL_KEY}" QuietUninstallString '"$INSTDIR\uninstall.exe" /S /$MultiUser.InstallMode'
    WriteRegDWORD SHCTX "${UNINSTALL_KEY}" NoModify 1
    WriteRegDWORD SHCTX "${UNINSTALL_KEY}" NoRepair 1
SectionEnd

Section Uninstall
    Delete "$SMPROGRAMS\Tarvelline.lnk"
    Delete "$INSTDIR\uninstall.exe"
    !insertmacro RemoveFiles
    ${If} $MultiUser.InstallMode == CurrentUser ; whose folders may have come with the files
        RMDir "$LOCALAPPDATA\Programs\Common"
        RMDir "$LOCALAPPDATA\Programs"
    ${EndIf}
    DeleteRegKey SHCTX "${UNINSTALL_KEY}"
SectionEnd
