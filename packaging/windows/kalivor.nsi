; The installer, made by script/release/package-windows, which names
;   VERSION    of the program
;   TREE       the folder that holds what is installed
;   REMOVE     the file with the commands that remove exactly that
;   SIZE_KIB   what it takes on the disk
;   PICTURE    what stands at the left of the first and the last page
;   RESULT     the installer
; It installs for one user, who needs no rights of an administrator. /S installs and removes without a window; the
; exit status is 2 when a program of KALIVOR is running.
Unicode true
Target amd64-unicode
ManifestDPIAware true
ManifestSupportedOS Win10
RequestExecutionLevel user
SetCompressor /SOLID lzma

!include LogicLib.nsh
!include MUI2.nsh
!include WinVer.nsh

!define UNINSTALLER "$INSTDIR\Deinstallieren.exe"
!define MENU "$SMPROGRAMS\KALIVOR"
!define LISTED "Software\Microsoft\Windows\CurrentVersion\Uninstall\KALIVOR"
!define TYPE "KALIVOR.Wertedatei"
!define RUNNING 2

Name "KALIVOR"
OutFile "${RESULT}"
InstallDir "$LOCALAPPDATA\Programs\KALIVOR"
; An update goes where the program is.
InstallDirRegKey HKCU "${LISTED}" InstallLocation
BrandingText "KALIVOR ${VERSION}"
ShowInstDetails nevershow
ShowUninstDetails nevershow

VIProductVersion "${VERSION}.0"
VIAddVersionKey /LANG=1031 CompanyName "Die KALIVOR-Autoren"
VIAddVersionKey /LANG=1031 FileDescription "KALIVOR – Installation"
VIAddVersionKey /LANG=1031 FileVersion "${VERSION}"
VIAddVersionKey /LANG=1031 LegalCopyright "© 2026 Die KALIVOR-Autoren, MIT-Lizenz"
VIAddVersionKey /LANG=1031 ProductName "KALIVOR"
VIAddVersionKey /LANG=1031 ProductVersion "${VERSION}"

!define MUI_ICON "${__FILEDIR__}/kalivor.ico"
!define MUI_UNICON "${MUI_ICON}"
!define MUI_WELCOMEFINISHPAGE_BITMAP "${PICTURE}"
!define MUI_WELCOMEPAGE_TITLE "KALIVOR ${VERSION} installieren"
!define MUI_WELCOMEPAGE_TEXT "KALIVOR wird für den angemeldeten Benutzer installiert; Administratorrechte sind nicht \
nötig. Eine ältere Fassung wird ersetzt. Einstellungen und eigene Dateien bleiben, wie sie sind.$\r$\n$\r$\nOrdner: \
$INSTDIR"
!define MUI_FINISHPAGE_TITLE "KALIVOR ist installiert"
!define MUI_FINISHPAGE_TEXT "Im Startmenü stehen das Programm, eine Vorführung ohne Regler und das Handbuch."
!define MUI_FINISHPAGE_RUN "$INSTDIR\kalivor.exe"
!define MUI_FINISHPAGE_RUN_TEXT "KALIVOR starten"
!define MUI_FINISHPAGE_SHOWREADME "$INSTDIR\handbuch\index.html"
!define MUI_FINISHPAGE_SHOWREADME_TEXT "Handbuch öffnen"
!define MUI_FINISHPAGE_SHOWREADME_NOTCHECKED
!insertmacro MUI_PAGE_WELCOME
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE German

; Asks to close the programs until none of them runs: a running one cannot be written.
!macro WaitForEnd prefix
  Function ${prefix}EndOf
    Exch $0
    ${Do}
      ${IfNot} ${FileExists} "$INSTDIR\$0"
        ${ExitDo}
      ${EndIf}
      ClearErrors
      FileOpen $1 "$INSTDIR\$0" a
      ${IfNot} ${Errors}
        FileClose $1
        ${ExitDo}
      ${EndIf}
      MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION "$0 läuft noch.$\r$\n$\r$\nBitte das Programm beenden und dann \
auf „Wiederholen“ klicken." /SD IDCANCEL IDRETRY again
      SetErrorLevel ${RUNNING}
      Quit
      again:
    ${Loop}
    Pop $0
  FunctionEnd

  Function ${prefix}WaitForEnd
    Push kalivor.exe
    Call ${prefix}EndOf
    Push kalivor-cli.exe
    Call ${prefix}EndOf
    Push kalivor-sim.exe
    Call ${prefix}EndOf
  FunctionEnd
!macroend
!insertmacro WaitForEnd ""
!insertmacro WaitForEnd "un."

; Windows shows the icons of files anew.
!macro TellOfTypes
  System::Call 'shell32::SHChangeNotify(i 0x08000000, i 0, p 0, p 0)'
!macroend

Function .onInit
  ${IfNot} ${AtLeastWin10}
    MessageBox MB_OK|MB_ICONSTOP "KALIVOR braucht Windows 10 oder neuer." /SD IDOK
    Quit
  ${EndIf}
FunctionEnd

Section
  Call WaitForEnd
  ; What an older version has installed, and this one does not, is not to stay.
  ${If} ${FileExists} "${UNINSTALLER}"
    ExecWait '"${UNINSTALLER}" /S _?=$INSTDIR' $0
    ${If} $0 <> 0
      MessageBox MB_OK|MB_ICONSTOP "Die ältere Fassung lässt sich nicht ersetzen." /SD IDOK
      SetErrorLevel $0
      Quit
    ${EndIf}
  ${EndIf}

  SetOutPath $INSTDIR
  File /r "${TREE}/*"
  WriteUninstaller "${UNINSTALLER}"

  CreateDirectory "${MENU}"
  CreateShortcut "${MENU}\KALIVOR.lnk" "$INSTDIR\kalivor.exe"
  CreateShortcut "${MENU}\KALIVOR ohne Regler ausprobieren.lnk" "$INSTDIR\kalivor.exe" --demo
  CreateShortcut "${MENU}\KALIVOR-Handbuch.lnk" "$INSTDIR\handbuch\index.html"
  CreateShortcut "${MENU}\KALIVOR deinstallieren.lnk" "${UNINSTALLER}"

  WriteRegStr HKCU "Software\Classes\${TYPE}" "" "KALIVOR-Wertedatei"
  WriteRegStr HKCU "Software\Classes\${TYPE}\DefaultIcon" "" '"$INSTDIR\kalivor.exe",0'
  WriteRegStr HKCU "Software\Classes\${TYPE}\shell\open" FriendlyAppName KALIVOR
  WriteRegStr HKCU "Software\Classes\${TYPE}\shell\open\command" "" '"$INSTDIR\kalivor.exe" "%1"'
  WriteRegStr HKCU "Software\Classes\.qpf" "" "${TYPE}"
  WriteRegStr HKCU "Software\Classes\.qpf\OpenWithProgids" "${TYPE}" ""
  !insertmacro TellOfTypes

  WriteRegStr HKCU "${LISTED}" DisplayName KALIVOR
  WriteRegStr HKCU "${LISTED}" DisplayVersion "${VERSION}"
  WriteRegStr HKCU "${LISTED}" Publisher "Die KALIVOR-Autoren"
  WriteRegStr HKCU "${LISTED}" DisplayIcon "$INSTDIR\kalivor.exe"
  WriteRegStr HKCU "${LISTED}" InstallLocation $INSTDIR
  WriteRegStr HKCU "${LISTED}" UninstallString '"${UNINSTALLER}"'
  WriteRegStr HKCU "${LISTED}" QuietUninstallString '"${UNINSTALLER}" /S'
  WriteRegDWORD HKCU "${LISTED}" EstimatedSize ${SIZE_KIB}
  WriteRegDWORD HKCU "${LISTED}" NoModify 1
  WriteRegDWORD HKCU "${LISTED}" NoRepair 1
SectionEnd

Section Uninstall
  Call un.WaitForEnd
  ; Exactly the files that were installed; a folder stays as long as the user has something in it.
  !include "${REMOVE}"
  Delete "${UNINSTALLER}"
  RMDir $INSTDIR

  Delete "${MENU}\KALIVOR.lnk"
  Delete "${MENU}\KALIVOR ohne Regler ausprobieren.lnk"
  Delete "${MENU}\KALIVOR-Handbuch.lnk"
  Delete "${MENU}\KALIVOR deinstallieren.lnk"
  RMDir "${MENU}"

  DeleteRegKey HKCU "Software\Classes\${TYPE}"
  DeleteRegValue HKCU "Software\Classes\.qpf\OpenWithProgids" "${TYPE}"
  DeleteRegKey /ifempty HKCU "Software\Classes\.qpf\OpenWithProgids"
  ; Another program may have taken over the type since.
  ReadRegStr $0 HKCU "Software\Classes\.qpf" ""
  ${If} $0 == "${TYPE}"
    DeleteRegValue HKCU "Software\Classes\.qpf" ""
  ${EndIf}
  DeleteRegKey /ifempty HKCU "Software\Classes\.qpf"
  !insertmacro TellOfTypes
  DeleteRegKey HKCU "${LISTED}"
SectionEnd
