; The installer for 64-bit Windows: makensis -DVERSION=1.0.0 -DFOLDER=... -DLISTS=... -DOUTPUT=...
;   FOLDER  what is installed
;   LISTS   a folder with uninstall.nsh: two macros that remove the files and the folders of FOLDER
; For the user who runs it: no administrator is needed. Options: /S asks nothing, /PATH puts the program
; on the user's PATH, /D=FOLDER, which comes last and without quotes, says where.
!define ENTRY "Software\Microsoft\Windows\CurrentVersion\Uninstall\Orvane"
Unicode true
Target amd64-unicode
ManifestSupportedOS all
RequestExecutionLevel user
; A file that cannot be written ends the installation.
AllowSkipFiles off
SetCompressor /SOLID lzma
Name "Orvane"
OutFile "${OUTPUT}"
InstallDir "$LOCALAPPDATA\Programs\Orvane"
InstallDirRegKey HKCU "${ENTRY}" InstallLocation
VIProductVersion "${VERSION}.0"
VIFileVersion "${VERSION}.0"
VIAddVersionKey ProductName "Orvane"
VIAddVersionKey ProductVersion "${VERSION}"
VIAddVersionKey FileVersion "${VERSION}"
VIAddVersionKey FileDescription "Installs Orvane"
VIAddVersionKey LegalCopyright "the Orvane authors"

!include MUI2.nsh
!include FileFunc.nsh
!include LogicLib.nsh
!include WinMessages.nsh
!include path.nsh
!include "${LISTS}/uninstall.nsh"
!define MUI_COMPONENTSPAGE_NODESC
!insertmacro MUI_PAGE_COMPONENTS
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE English

Section "Orvane" Program
  SectionIn RO
  ; An older one leaves first, with the files that it alone has.
  ReadRegStr $0 HKCU "${ENTRY}" InstallLocation
  ${If} $0 != ""
  ${AndIf} ${FileExists} "$0\uninstall.exe"
    ExecWait '"$0\uninstall.exe" /S _?=$0' $1
    ${If} $1 <> 0
      MessageBox MB_OK|MB_ICONSTOP "The Orvane in $0 can't be removed: is it in use?" /SD IDOK
      SetErrorLevel 1
      Quit
    ${EndIf}
    Delete "$0\uninstall.exe"
    RMDir "$0"
  ${EndIf}
  SetOutPath "$INSTDIR"
  File /r "${FOLDER}/*"
  WriteUninstaller "$INSTDIR\uninstall.exe"
  WriteRegStr HKCU "${ENTRY}" DisplayName "Orvane"
  WriteRegStr HKCU "${ENTRY}" DisplayVersion "${VERSION}"
  WriteRegStr HKCU "${ENTRY}" Publisher "the Orvane authors"
  WriteRegStr HKCU "${ENTRY}" InstallLocation "$INSTDIR"
  WriteRegStr HKCU "${ENTRY}" UninstallString '"$INSTDIR\uninstall.exe"'
  WriteRegStr HKCU "${ENTRY}" QuietUninstallString '"$INSTDIR\uninstall.exe" /S'
  WriteRegDWORD HKCU "${ENTRY}" NoModify 1
  WriteRegDWORD HKCU "${ENTRY}" NoRepair 1
  SectionGetSize ${Program} $0
  WriteRegDWORD HKCU "${ENTRY}" EstimatedSize $0
SectionEnd

Section /o "Program on PATH" OnPath
  Call AddToPath
  ${If} $R0 == added
    WriteRegDWORD HKCU "${ENTRY}" OnPath 1
  ${EndIf}
SectionEnd

Function .onInit
  ReadRegDWORD $0 HKCU "${ENTRY}" OnPath
  ${GetParameters} $1
  ClearErrors
  ${GetOptions} $1 "/PATH" $2
  ${IfNot} ${Errors}
  ${OrIf} $0 = 1
    SectionSetFlags ${OnPath} ${SF_SELECTED}
  ${EndIf}
FunctionEnd

Section Uninstall
  ClearErrors
  !insertmacro DeleteFiles
  ${If} ${Errors}
    MessageBox MB_OK|MB_ICONSTOP "Not all of Orvane can be removed: is it in use?" /SD IDOK
    SetErrorLevel 1
    Quit
  ${EndIf}
  ReadRegDWORD $0 HKCU "${ENTRY}" OnPath
  ${If} $0 = 1
    Call un.RemoveFromPath
  ${EndIf}
  !insertmacro RemoveFolders
  DeleteRegKey HKCU "${ENTRY}"
  Delete "$INSTDIR\uninstall.exe"
  RMDir "$INSTDIR"
SectionEnd
