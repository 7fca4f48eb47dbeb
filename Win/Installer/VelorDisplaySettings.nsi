; The installer of Velor Display Settings: per-machine into Program Files, a Start-menu
; shortcut, an entry in Apps & Features, a silent mode (/S) for deployment, and an uninstaller
; that removes exactly what was installed. The user's settings (HKCU\Software\Velor\OSD) stay
; unless the uninstaller is asked to remove them (its page, or /REMOVESETTINGS with /S). A
; component starts the keeper at every user's log-on (its page, or /KEEPER with /S). For device
; management, /STUDIO=<file> keeps a studio file for the machine and a log-on task that applies
; it in every user's session (velor-display-quiet apply); exit code 2 when the file is missing.
;
; makensis -DVERSION=6.4.3-1 -DFILE_VERSION=6.4.3.1 -DPROGRAM=<exe> -DCONSOLE_PROGRAM=<velor-display.exe>
;          -DQUIET_PROGRAM=<velor-display-quiet.exe> -DICON=<ico> -DOUTFILE=<setup.exe>
;          [-DSIGN=<command that signs the file it is given, in place>]

; The uninstaller is made while the installer is built: it is signed then, as the programs were.
!ifdef SIGN
  !uninstfinalize '"${SIGN}" "%1"'
!endif

; A 64-bit installer for the 64-bit program: it needs no 32-bit layer (nor does a check under Wine).
Target amd64-unicode
ManifestDPIAware true
ManifestSupportedOS all

!include "MUI2.nsh"
!include "LogicLib.nsh"
!include "FileFunc.nsh"
!include "WinMessages.nsh"
!include "StrFunc.nsh"
${StrStr}
${UnStrStr}
${UnStrRep}

!define PRODUCT "Velor Display Settings"
!define PUBLISHER "Velor"
!define EXE "VelorDisplaySettings.exe"
!define CONSOLE_EXE "velor-display.exe"
!define QUIET_EXE "velor-display-quiet.exe"
!define UNINSTALLER "Uninstall.exe"
!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\VelorDisplaySettings"
!define SETTINGS_KEY "Software\Velor\OSD"
; The program holds this mutex while it runs, in its session (versions before 6.4.3-1 only this).
!define RUNNING_MUTEX "VelorDisplaySettings.Running"
; The program and the command-line tool hold this one in the global namespace, seen from every
; session: another user's, and session 0 where device management runs the installer as SYSTEM.
; Opening it may be refused (another user's, with rights of its own): that too means running.
!define IN_USE_MUTEX "Global\VelorDisplaySettings.InUse"
!define ERROR_ACCESS_DENIED 5
; The keeper (the program with /tray): its window, and the log-on entry that starts it for every
; user (a user's own option in the program writes the same value under HKCU).
!define KEEPER_CLASS "VelorDisplaySettings.Keeper"
!define RUN_KEY "Software\Microsoft\Windows\CurrentVersion\Run"
!define KEEPER_VALUE "Velor Display Settings Keeper"
; The studio file of the machine (under ProgramData) and the task that applies it at log-on.
!define STUDIO_FOLDER "Velor\Display Settings"
!define STUDIO_FILE "studio.json"
!define STUDIO_TASK "Velor Display Settings Studio"
!define STUDIO_TASK_FILE "studio-task.xml"

Var StudioSource

; The machine's PATH (the installation is the machine's: an elevated installer's HKCU may be
; another account's, or SYSTEM's under device management).
!define ENVIRONMENT_KEY "SYSTEM\CurrentControlSet\Control\Session Manager\Environment"

; PathHas RESULT PATH: RESULT is not empty when PATH has the program folder as one of its entries.
!macro PathHas result path
  !ifdef __UNINSTALL__
    ${UnStrStr} ${result} ";${path};" ";$INSTDIR;"
  !else
    ${StrStr} ${result} ";${path};" ";$INSTDIR;"
  !endif
!macroend

; A PATH as long as NSIS's strings may have been cut when read: it is never written back.
!macro PathTooLong path label
  StrLen $9 "${path}"
  IntOp $8 ${NSIS_MAX_STRLEN} - 1
  IntCmp $9 $8 0 +3 0
    DetailPrint "PATH is too long to change safely; the program folder was not ${label}."
    Goto path_done
!macroend

Name "${PRODUCT}"
OutFile "${OUTFILE}"
InstallDir "$PROGRAMFILES64\Velor\Display Settings"
InstallDirRegKey HKLM "${UNINSTALL_KEY}" "InstallLocation"
RequestExecutionLevel admin
SetCompressor /SOLID lzma
BrandingText "${PRODUCT} ${VERSION}"

VIProductVersion "${FILE_VERSION}"
VIAddVersionKey "ProductName" "${PRODUCT}"
VIAddVersionKey "CompanyName" "${PUBLISHER}"
VIAddVersionKey "FileDescription" "${PRODUCT} Setup"
VIAddVersionKey "FileVersion" "${VERSION}"
VIAddVersionKey "ProductVersion" "${VERSION}"
VIAddVersionKey "LegalCopyright" "Copyright (C) 2026 ${PUBLISHER}"

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!define MUI_ABORTWARNING
!define MUI_FINISHPAGE_RUN
!define MUI_FINISHPAGE_RUN_TEXT "Start ${PRODUCT}"
!define MUI_FINISHPAGE_RUN_FUNCTION StartAsLoggedOnUser
!define MUI_COMPONENTSPAGE_NODESC

!insertmacro MUI_PAGE_COMPONENTS
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_COMPONENTS
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"

; The finish page's start: the installer runs elevated, possibly as another account (an
; administrator's, approved over the user's shoulder), and a program it starts would keep its
; window position and power-warning choice in that account's settings. Explorer, the logged-on
; user's own shell, starts it instead, unelevated, as that user. (Wine has one user and no
; elevation: nothing there can show the difference.)
Function StartAsLoggedOnUser
  Exec '"$WINDIR\explorer.exe" "$INSTDIR\${EXE}"'
FunctionEnd

; Waits for the user to close the program; in silent mode, or when the user cancels, ends
; with exit code 3 and changes nothing.
!macro WaitWhileProgramRuns
  ${Do}
    System::Call 'kernel32::OpenMutexW(i 0x00100000, i 0, w "${IN_USE_MUTEX}") p .r0 ?e'
    Pop $1
    ${If} $0 P= 0
    ${AndIf} $1 <> ${ERROR_ACCESS_DENIED}
      System::Call 'kernel32::OpenMutexW(i 0x00100000, i 0, w "${RUNNING_MUTEX}") p .r0'
    ${EndIf}
    ${If} $0 P= 0
    ${AndIf} $1 <> ${ERROR_ACCESS_DENIED}
      ${Break}
    ${EndIf}
    System::Call 'kernel32::CloseHandle(p r0)'
    MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION \
      "${PRODUCT} is running.$\n$\nClose it, then select Retry." /SD IDCANCEL IDRETRY +3
    SetErrorLevel 3
    Quit
  ${Loop}
!macroend

; The keeper holds the program file open: it is asked to end (it starts again at the next log-on).
!macro EndKeeper
  FindWindow $0 "${KEEPER_CLASS}"
  ${If} $0 <> 0
    SendMessage $0 ${WM_CLOSE} 0 0 /TIMEOUT=5000
    Sleep 1000
  ${EndIf}
!macroend

Section "Program" SecProgram
  SectionIn RO
  SetShellVarContext all
  SetRegView 64
  !insertmacro EndKeeper
  SetOutPath "$INSTDIR"
  File "/oname=${EXE}" "${PROGRAM}"
  File "/oname=${CONSOLE_EXE}" "${CONSOLE_PROGRAM}"
  File "/oname=${QUIET_EXE}" "${QUIET_PROGRAM}"
  SetOutPath "$INSTDIR\Help"
  File "${HELP}\*.html"
  SetOutPath "$INSTDIR"
  WriteUninstaller "$INSTDIR\${UNINSTALLER}"
  CreateShortCut "$SMPROGRAMS\${PRODUCT}.lnk" "$INSTDIR\${EXE}" "" "$INSTDIR\${EXE}" 0

  WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayName" "${PRODUCT}"
  WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
  WriteRegStr HKLM "${UNINSTALL_KEY}" "Publisher" "${PUBLISHER}"
  WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\${EXE},0"
  WriteRegStr HKLM "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
  WriteRegStr HKLM "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\${UNINSTALLER}"'
  WriteRegStr HKLM "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\${UNINSTALLER}" /S'
  WriteRegDWORD HKLM "${UNINSTALL_KEY}" "NoModify" 1
  WriteRegDWORD HKLM "${UNINSTALL_KEY}" "NoRepair" 1
  ${GetSize} "$INSTDIR" "/S=0K" $0 $1 $2
  WriteRegDWORD HKLM "${UNINSTALL_KEY}" "EstimatedSize" $0
SectionEnd

; Chosen on the components page, or with /KEEPER in silent mode; an upgrade keeps the choice.
Section /o "Keep display settings (start the keeper at log-on)" SecKeeper
  SetRegView 64
  WriteRegStr HKLM "${RUN_KEY}" "${KEEPER_VALUE}" '"$INSTDIR\${EXE}" /tray'
SectionEnd

; With /STUDIO=<file>: the machine's studio file, and a task that applies it as each user logs on
; (in the user's session: the displays' DDC/CI answers there). An upgrade without /STUDIO keeps both.
Section /o "-Studio file" SecStudio
  SetShellVarContext all
  CreateDirectory "$APPDATA\${STUDIO_FOLDER}"
  CopyFiles /SILENT /FILESONLY "$StudioSource" "$APPDATA\${STUDIO_FOLDER}\${STUDIO_FILE}"
  ; The task's definition stays beside the studio file, for the administrator to read.
  FileOpen $0 "$APPDATA\${STUDIO_FOLDER}\${STUDIO_TASK_FILE}" w
  FileWriteUTF16LE /BOM $0 '<?xml version="1.0" encoding="UTF-16"?>$\r$\n'
  FileWriteUTF16LE $0 '<Task version="1.2" xmlns="http://schemas.microsoft.com/windows/2004/02/mit/task">$\r$\n'
  FileWriteUTF16LE $0 '  <RegistrationInfo><Author>${PUBLISHER}</Author><Description>Sets the Velor pen displays as the studio file says (velor-display apply).</Description></RegistrationInfo>$\r$\n'
  FileWriteUTF16LE $0 '  <Triggers><LogonTrigger><Enabled>true</Enabled><Delay>PT15S</Delay></LogonTrigger></Triggers>$\r$\n'
  FileWriteUTF16LE $0 '  <Principals><Principal id="Users"><GroupId>S-1-5-32-545</GroupId><RunLevel>LeastPrivilege</RunLevel></Principal></Principals>$\r$\n'
  FileWriteUTF16LE $0 '  <Settings><MultipleInstancesPolicy>IgnoreNew</MultipleInstancesPolicy><DisallowStartIfOnBatteries>false</DisallowStartIfOnBatteries><StopIfGoingOnBatteries>false</StopIfGoingOnBatteries><ExecutionTimeLimit>PT10M</ExecutionTimeLimit><Enabled>true</Enabled></Settings>$\r$\n'
  FileWriteUTF16LE $0 '  <Actions Context="Users"><Exec><Command>"$INSTDIR\${QUIET_EXE}"</Command><Arguments>apply "$APPDATA\${STUDIO_FOLDER}\${STUDIO_FILE}"</Arguments></Exec></Actions>$\r$\n'
  FileWriteUTF16LE $0 '</Task>$\r$\n'
  FileClose $0
  nsExec::ExecToLog '"$SYSDIR\schtasks.exe" /Create /F /TN "${STUDIO_TASK}" /XML "$APPDATA\${STUDIO_FOLDER}\${STUDIO_TASK_FILE}"'
  Pop $0
  ${If} $0 != 0
    DetailPrint "The log-on task could not be registered (schtasks: $0)."
    SetErrorLevel 4
  ${EndIf}
SectionEnd

; Chosen on the components page, or with /PATH in silent mode; an upgrade keeps the choice.
Section /o "Add the program folder to PATH (velor-display in any console)" SecPath
  ReadRegStr $0 HKLM "${ENVIRONMENT_KEY}" "Path"
  !insertmacro PathTooLong $0 "added"
  !insertmacro PathHas $1 $0
  ${If} $1 == ""
    ${If} $0 == ""
      StrCpy $0 "$INSTDIR"
    ${Else}
      StrCpy $0 "$0;$INSTDIR"
    ${EndIf}
    WriteRegExpandStr HKLM "${ENVIRONMENT_KEY}" "Path" "$0"
    SendMessage ${HWND_BROADCAST} ${WM_SETTINGCHANGE} 0 "STR:Environment" /TIMEOUT=5000
  ${EndIf}
  path_done:
SectionEnd

; After the sections: it selects one of them.
Function .onInit
  SetRegView 64
  !insertmacro WaitWhileProgramRuns
  ReadRegStr $1 HKLM "${RUN_KEY}" "${KEEPER_VALUE}"
  ${GetParameters} $0
  ClearErrors
  ${GetOptions} $0 "/KEEPER" $2
  ${IfNot} ${Errors}
  ${OrIf} $1 != ""
    SectionSetFlags ${SecKeeper} ${SF_SELECTED}
  ${EndIf}
  ReadRegStr $1 HKLM "${ENVIRONMENT_KEY}" "Path"
  !insertmacro PathHas $1 $1
  ClearErrors
  ${GetOptions} $0 "/PATH" $2
  ${IfNot} ${Errors}
  ${OrIf} $1 != ""
    SectionSetFlags ${SecPath} ${SF_SELECTED}
  ${EndIf}
  ClearErrors
  ${GetOptions} $0 "/STUDIO=" $StudioSource
  ${IfNot} ${Errors}
    ${IfNot} ${FileExists} "$StudioSource"
    ${OrIf} ${FileExists} "$StudioSource\*.*"
      MessageBox MB_OK|MB_ICONSTOP "The studio file $StudioSource cannot be found." /SD IDOK
      SetErrorLevel 2
      Quit
    ${EndIf}
    SectionSetFlags ${SecStudio} ${SF_SELECTED}
  ${EndIf}
FunctionEnd


Section "un.Program" SecUnProgram
  SectionIn RO
  SetShellVarContext all
  SetRegView 64
  !insertmacro EndKeeper
  ; The log-on entries that would start the program being removed.
  DeleteRegValue HKLM "${RUN_KEY}" "${KEEPER_VALUE}"
  DeleteRegValue HKCU "${RUN_KEY}" "${KEEPER_VALUE}"
  Delete "$INSTDIR\${EXE}"
  Delete "$INSTDIR\${CONSOLE_EXE}"
  Delete "$INSTDIR\${QUIET_EXE}"
  ; The studio's log-on task and file (the machine's, not a user's setting).
  nsExec::ExecToLog '"$SYSDIR\schtasks.exe" /Delete /F /TN "${STUDIO_TASK}"'
  Pop $0
  Delete "$APPDATA\${STUDIO_FOLDER}\${STUDIO_FILE}"
  Delete "$APPDATA\${STUDIO_FOLDER}\${STUDIO_TASK_FILE}"
  RMDir "$APPDATA\${STUDIO_FOLDER}"
  RMDir "$APPDATA\Velor"
  ; The program folder leaves the machine's PATH (only that entry).
  ReadRegStr $0 HKLM "${ENVIRONMENT_KEY}" "Path"
  !insertmacro PathTooLong $0 "removed"
  !insertmacro PathHas $1 $0
  ${If} $1 != ""
    ${UnStrRep} $0 ";$0;" ";$INSTDIR;" ";"
    StrCpy $0 $0 -1 1  ; the two added semicolons
    WriteRegExpandStr HKLM "${ENVIRONMENT_KEY}" "Path" "$0"
    SendMessage ${HWND_BROADCAST} ${WM_SETTINGCHANGE} 0 "STR:Environment" /TIMEOUT=5000
  ${EndIf}
  path_done:
  Delete "$INSTDIR\${UNINSTALLER}"
  Delete "$INSTDIR\Help\*.html"
  RMDir "$INSTDIR\Help"
  Delete "$SMPROGRAMS\${PRODUCT}.lnk"
  ; Only emptied folders go: anything else in them is not ours.
  RMDir "$INSTDIR"
  RMDir "$PROGRAMFILES64\Velor"
  DeleteRegKey HKLM "${UNINSTALL_KEY}"
SectionEnd

Section /o "un.Also remove my settings" SecUnSettings
  DeleteRegKey HKCU "${SETTINGS_KEY}"
  DeleteRegKey /ifempty HKCU "Software\Velor"
  ; The files the program and the command-line tool keep for this user: revert notes, kept
  ; profiles, profiles per application, the quiet tool's log; the demo's values; the cache.
  SetShellVarContext current
  RMDir /r "$APPDATA\velor-display-settings"
  RMDir /r "$APPDATA\Velor\Display Settings Demo"
  RMDir "$APPDATA\Velor"
  RMDir /r "$LOCALAPPDATA\Velor Display Settings"
SectionEnd

; After the sections: it selects one of them.
Function un.onInit
  SetRegView 64
  !insertmacro WaitWhileProgramRuns
  ${GetParameters} $0
  ClearErrors
  ${GetOptions} $0 "/REMOVESETTINGS" $1
  ${IfNot} ${Errors}
    SectionSetFlags ${SecUnSettings} ${SF_SELECTED}
  ${EndIf}
FunctionEnd
