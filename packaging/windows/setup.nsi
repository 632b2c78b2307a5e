; The setup program, by scripts/windows.sh: makensis -DVERSION=... -DFOLDER=... -DOUTPUT=... setup.nsi
; FOLDER is what the zip holds. /S installs or removes without a word.

Target amd64-unicode
SetCompressor /SOLID lzma
RequestExecutionLevel admin

!include MUI2.nsh
!include x64.nsh

Name "Tarvik 41 Channel"
OutFile "${OUTPUT}"
BrandingText "Tarvik 41 Channel ${VERSION}"

; The window looks for its manual here, so the place is not for the user to choose.
InstallDir "$PROGRAMFILES64\Nomvale\Tarvik 41 Series"

!define MODULE "$COMMONFILES64\VST3\Tarvik 41 Channel.vst3"
!define LISTED "Software\Microsoft\Windows\CurrentVersion\Uninstall\Tarvik 41 Channel"

!insertmacro MUI_PAGE_LICENSE "${FOLDER}/licences/tarvik41-channel.txt"
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"

!macro PREPARE
    ${IfNot} ${RunningX64}
        MessageBox MB_ICONSTOP "Tarvik 41 Channel needs a 64-bit Windows." /SD IDOK
        Abort
    ${EndIf}

    SetRegView 64
    SetShellVarContext all
!macroend

Function .onInit
    !insertmacro PREPARE
FunctionEnd

Function un.onInit
    !insertmacro PREPARE
FunctionEnd

Section
    RMDir /r "${MODULE}" ; of another version
    SetOutPath "${MODULE}"
    File /r "${FOLDER}/Tarvik 41 Channel.vst3/*"

    SetOutPath "$INSTDIR"
    File "${FOLDER}/tarvik41-channel.exe"
    File "${FOLDER}/tarvik41-render.exe"
    File "${FOLDER}/Tarvik 41 Series Manual.pdf"
    SetOutPath "$INSTDIR\licences"
    File "${FOLDER}/licences/*"

    SetOutPath "$INSTDIR" ; where the entries start their programs
    CreateDirectory "$SMPROGRAMS\Tarvik 41 Series"
    CreateShortcut "$SMPROGRAMS\Tarvik 41 Series\Tarvik 41 Channel.lnk" "$INSTDIR\tarvik41-channel.exe"
    CreateShortcut "$SMPROGRAMS\Tarvik 41 Series\Manual.lnk" "$INSTDIR\Tarvik 41 Series Manual.pdf"

    WriteUninstaller "$INSTDIR\uninstall.exe"
    WriteRegStr HKLM "${LISTED}" DisplayName "Tarvik 41 Channel"
    WriteRegStr HKLM "${LISTED}" DisplayVersion "${VERSION}"
    WriteRegStr HKLM "${LISTED}" Publisher "Nomvale"
    WriteRegStr HKLM "${LISTED}" UninstallString '"$INSTDIR\uninstall.exe"'
    WriteRegStr HKLM "${LISTED}" QuietUninstallString '"$INSTDIR\uninstall.exe" /S'
    WriteRegDWORD HKLM "${LISTED}" NoModify 1
    WriteRegDWORD HKLM "${LISTED}" NoRepair 1
SectionEnd

; The user's settings stay.
Section Uninstall
    RMDir /r "${MODULE}"
    Delete "$INSTDIR\tarvik41-channel.exe"
    Delete "$INSTDIR\tarvik41-render.exe"
    Delete "$INSTDIR\Tarvik 41 Series Manual.pdf"
    RMDir /r "$INSTDIR\licences"
    Delete "$INSTDIR\uninstall.exe"
    RMDir "$INSTDIR" ; these two only if nothing else is in them
    RMDir "$PROGRAMFILES64\Nomvale"
    RMDir /r "$SMPROGRAMS\Tarvik 41 Series"
    DeleteRegKey HKLM "${LISTED}"
SectionEnd
