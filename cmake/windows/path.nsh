; The user's PATH, which may be longer than a text of NSIS: it stays in areas of the System plugin, and
; only pointers to them are in variables. $INSTDIR stands in it as one more entry, behind a semicolon.
!define QUERY 'advapi32::RegQueryValueExW(p r0, w "Path", p 0, *i .r1, p'

!macro PathFunctions un
; Opens the key as $0, and reads PATH as ";PATH;" into $3, with room for one more entry behind it. $1 is
; its type. $R0 is "read", or "absent" with $3 as ";", or "failed", with nothing opened.
Function ${un}ReadPath
  StrCpy $R0 failed
  System::Call 'advapi32::RegCreateKeyExW(p 0x80000001, w "Environment", i 0, p 0, i 0, i 0x2001F, p 0, *p .r0, p 0) i .r4'
  ${If} $4 <> 0
    Return
  ${EndIf}
  System::Call '${QUERY} 0, *i .r2) i .r4'
  ${If} $4 = 2
    StrCpy $R0 absent
    StrCpy $1 2 ; REG_EXPAND_SZ
    StrCpy $2 0
  ${ElseIf} $4 <> 0
  ${OrIf} $1 < 1
  ${OrIf} $1 > 2
    System::Call 'advapi32::RegCloseKey(p r0)'
    Return
  ${EndIf}
  IntOp $4 $2 + ${NSIS_MAX_STRLEN}
  IntOp $4 $4 * 2
  System::Call 'kernel32::LocalAlloc(i 0x40, p r4) p .r3'
  System::Call 'kernel32::lstrcpyW(p r3, w ";")'
  ${If} $R0 == failed
    IntPtrOp $5 $3 + 2
    System::Call '${QUERY} r5, *i r2) i .r4'
    ${If} $4 <> 0
      System::Call 'kernel32::LocalFree(p r3)'
      System::Call 'advapi32::RegCloseKey(p r0)'
      Return
    ${EndIf}
    StrCpy $R0 read
    System::Call 'kernel32::lstrcatW(p r3, w ";")'
  ${EndIf}
FunctionEnd

; Writes what ReadPath has read, without its first and its last semicolon, and gives it back.
Function ${un}WritePath
  System::Call 'kernel32::lstrlenW(p r3) i .r4'
  ${If} $4 <= 2
    System::Call 'advapi32::RegDeleteValueW(p r0, w "Path")'
  ${Else}
    IntOp $4 $4 - 1
    IntOp $4 $4 * 2
    IntPtrOp $5 $3 + $4
    System::Call '*$5(&i2 0)'
    IntPtrOp $5 $3 + 2
    System::Call 'advapi32::RegSetValueExW(p r0, w "Path", i 0, i r1, p r5, i r4) i .r4'
    ${If} $4 <> 0
      StrCpy $R0 failed
    ${EndIf}
  ${EndIf}
  Call ${un}GiveBackPath
  SendMessage ${HWND_BROADCAST} ${WM_SETTINGCHANGE} 0 "STR:Environment" /TIMEOUT=2000
FunctionEnd

Function ${un}GiveBackPath
  System::Call 'kernel32::LocalFree(p r3)'
  System::Call 'advapi32::RegCloseKey(p r0)'
FunctionEnd
!macroend
!insertmacro PathFunctions ""
!insertmacro PathFunctions "un."

; $R0 is "added" where it was not there before.
Function AddToPath
  Call ReadPath
  ${If} $R0 == failed
    DetailPrint "PATH can't be read."
    Return
  ${EndIf}
  System::Call 'shlwapi::StrStrIW(p r3, w ";$INSTDIR;") p .r4'
  ${If} $4 P<> 0
    Call GiveBackPath
    Return
  ${EndIf}
  StrCpy $R0 added
  System::Call 'kernel32::lstrcatW(p r3, w "$INSTDIR;")'
  Call WritePath
FunctionEnd

Function un.RemoveFromPath
  Call un.ReadPath
  ${If} $R0 == failed
    Return
  ${EndIf}
  System::Call 'shlwapi::StrStrIW(p r3, w ";$INSTDIR;") p .r4'
  ${If} $4 P= 0
    Call un.GiveBackPath
    Return
  ${EndIf}
  ; What stands behind the entry moves to its place, its semicolon first.
  StrLen $5 ";$INSTDIR"
  IntOp $5 $5 * 2
  IntPtrOp $5 $4 + $5
  System::Call 'kernel32::lstrlenW(p r5) i .r6'
  IntOp $6 $6 + 1
  IntOp $6 $6 * 2
  System::Call 'ntdll::RtlMoveMemory(p r4, p r5, p r6)'
  Call un.WritePath
FunctionEnd
