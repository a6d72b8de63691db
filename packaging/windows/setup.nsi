; The set-up program for one user, without administrator's rights. `makensis` is given VERSION, FOLDER (what is
; installed), ICON and OUTPUT.
; For 64-bit Windows, as the program is.
Target amd64-unicode
Unicode true
SetCompressor /SOLID lzma
RequestExecutionLevel user
ManifestDPIAware true

!include "MUI2.nsh"
!include "FileFunc.nsh"

Name "Voxmate"
OutFile "${OUTPUT}"
InstallDir "$LOCALAPPDATA\Programs\Voxmate"
InstallDirRegKey HKCU "Software\Voxmate\Setup" "Folder"
VIProductVersion "${VERSION}.0"
VIAddVersionKey "ProductName" "Voxmate"
VIAddVersionKey "ProductVersion" "${VERSION}"
VIAddVersionKey "FileVersion" "${VERSION}"
VIAddVersionKey "FileDescription" "Voxmate set-up"
VIAddVersionKey "LegalCopyright" "GPL-3.0-or-later"

!define ENTRY "Software\Microsoft\Windows\CurrentVersion\Uninstall\Voxmate"
!define RUN "Software\Microsoft\Windows\CurrentVersion\Run"
!define CLASSES "Software\Classes"

!define MUI_ABORTWARNING
!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!insertmacro MUI_PAGE_WELCOME
!insertmacro MUI_PAGE_LICENSE "${FOLDER}/LICENSE.txt"
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_COMPONENTS
!insertmacro MUI_PAGE_INSTFILES
!define MUI_FINISHPAGE_RUN "$INSTDIR\voxmate.exe"
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"

; The program must not run while its file is replaced or removed: it holds the file open.
!macro WaitForEnd UN
Function ${UN}WaitForEnd
  ${DoWhile} ${FileExists} "$INSTDIR\voxmate.exe"
    ClearErrors
    FileOpen $0 "$INSTDIR\voxmate.exe" a
    ${IfNot} ${Errors}
      FileClose $0
      Return
    ${EndIf}
    MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION "Voxmate is running. Please end it first." /SD IDCANCEL IDRETRY +2
    Abort
  ${Loop}
FunctionEnd
!macroend
!insertmacro WaitForEnd ""
!insertmacro WaitForEnd "un."

Section "Voxmate" Program
  SectionIn RO
  Call WaitForEnd
  SetOutPath "$INSTDIR"
  ; What an older version had and this one has not goes first.
  RMDir /r "$INSTDIR\share"
  RMDir /r "$INSTDIR\espeak-ng-data"
  File /r "${FOLDER}/*"
  WriteUninstaller "$INSTDIR\uninstall.exe"
  CreateShortcut "$SMPROGRAMS\Voxmate.lnk" "$INSTDIR\voxmate.exe"

  WriteRegStr HKCU "Software\Voxmate\Setup" "Folder" "$INSTDIR"
  WriteRegStr HKCU "${ENTRY}" "DisplayName" "Voxmate"
  WriteRegStr HKCU "${ENTRY}" "DisplayVersion" "${VERSION}"
  WriteRegStr HKCU "${ENTRY}" "DisplayIcon" "$INSTDIR\voxmate.exe"
  WriteRegStr HKCU "${ENTRY}" "InstallLocation" "$INSTDIR"
  WriteRegStr HKCU "${ENTRY}" "UninstallString" '"$INSTDIR\uninstall.exe"'
  WriteRegStr HKCU "${ENTRY}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
  WriteRegDWORD HKCU "${ENTRY}" "NoModify" 1
  WriteRegDWORD HKCU "${ENTRY}" "NoRepair" 1
  ${GetSize} "$INSTDIR" "/S=0K" $0 $1 $2
  IntFmt $0 "0x%08X" $0
  WriteRegDWORD HKCU "${ENTRY}" "EstimatedSize" "$0"
SectionEnd

Section "Open character files (.acs) with Voxmate" Characters
  WriteRegStr HKCU "${CLASSES}\Voxmate.Character" "" "Voxmate character"
  WriteRegStr HKCU "${CLASSES}\Voxmate.Character\DefaultIcon" "" "$INSTDIR\voxmate.exe,0"
  WriteRegStr HKCU "${CLASSES}\Voxmate.Character\shell\open\command" "" '"$INSTDIR\voxmate.exe" "%1"'
  WriteRegStr HKCU "${CLASSES}\.acs" "" "Voxmate.Character"
  System::Call 'shell32::SHChangeNotify(i 0x08000000, i 0, p 0, p 0)'
SectionEnd

Section /o "Start Voxmate when I log in" LogIn
  ; As the program's own switch does.
  WriteRegStr HKCU "${RUN}" "Voxmate" '"$INSTDIR\voxmate.exe" --quiet'
SectionEnd

!insertmacro MUI_FUNCTION_DESCRIPTION_BEGIN
  !insertmacro MUI_DESCRIPTION_TEXT ${Program} "The program, its characters and its voices."
  !insertmacro MUI_DESCRIPTION_TEXT ${Characters} "A double click on a character file offers to add it."
  !insertmacro MUI_DESCRIPTION_TEXT ${LogIn} "Quietly, without its window. Can be switched in the program, too."
!insertmacro MUI_FUNCTION_DESCRIPTION_END

Function .onInit
  ${GetParameters} $0
  ClearErrors
  ${GetOptions} $0 "/LOGIN" $1
  ${IfNot} ${Errors}
    SectionSetFlags ${LogIn} ${SF_SELECTED}
  ${EndIf}
FunctionEnd

; Settings, reminders and characters of the user's stay: they are in other places.
Section "Uninstall"
  Call un.WaitForEnd
  RMDir /r "$INSTDIR\share"
  RMDir /r "$INSTDIR\espeak-ng-data"
  Delete "$INSTDIR\*.dll"
  Delete "$INSTDIR\voxmate.exe"
  Delete "$INSTDIR\LICENSE.txt"
  Delete "$INSTDIR\CHANGELOG.txt"
  Delete "$INSTDIR\uninstall.exe"
  RMDir "$INSTDIR"
  Delete "$SMPROGRAMS\Voxmate.lnk"
  DeleteRegKey HKCU "${ENTRY}"
  DeleteRegKey HKCU "Software\Voxmate\Setup"
  DeleteRegValue HKCU "${RUN}" "Voxmate"
  DeleteRegKey HKCU "${CLASSES}\Voxmate.Character"
  ReadRegStr $0 HKCU "${CLASSES}\.acs" ""
  ${If} $0 == "Voxmate.Character"
    DeleteRegKey HKCU "${CLASSES}\.acs"
  ${EndIf}
SectionEnd
