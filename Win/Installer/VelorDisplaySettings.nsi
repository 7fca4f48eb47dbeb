; The installer of Velor Display Settings: per-machine into Program Files, a Start-menu
; shortcut, an entry in Apps & Features, a silent mode (/S) for deployment, and an uninstaller
; that removes exactly what was installed. The user's settings (HKCU\Software\Velor\OSD) stay
; unless the uninstaller is asked to remove them (its page, or /REMOVESETTINGS with /S). A
; component starts the keeper at every user's log-on (its page, or /KEEPER with /S). For device
; management, /STUDIO=<file> keeps a studio file for the machine and a log-on task that applies
; it in every user's session (velor-display-quiet apply); exit code 2 when the file is missing.
; Exit codes: 0 done, 2 the studio file is missing, 3 the program or the tool runs (silent mode, or
; the user cancelled), 4 the studio task could not be registered, 5 a keeper did not end, 6 the
; machine's folder under ProgramData is refused (a link or junction, or another account's).
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
${StrRep}

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
; Every keeper holds this one too, and ends when an installer sets the event (any session).
!define KEEPER_MUTEX "Global\VelorDisplaySettings.Keeper"
!define KEEPER_EXIT_EVENT "Global\VelorDisplaySettings.KeeperExit"
; How long keepers get to close their devices and end (in half-seconds).
!define KEEPER_WAIT 60
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
; another account's, or SYSTEM's under device management). It is changed by the command-line
; tool (--machine-path), which reads and writes it whole: NSIS's strings stop at 1,024
; characters, and a PATH read cut short and written back would lose the rest of it.
!define ENVIRONMENT_KEY "SYSTEM\CurrentControlSet\Control\Session Manager\Environment"

; XmlText OUT TEXT: TEXT as XML character data (an & in a folder's name would break the task).
!macro XmlText out text
  ${StrRep} ${out} "${text}" "&" "&amp;"
  ${StrRep} ${out} ${out} "<" "&lt;"
  ${StrRep} ${out} ${out} ">" "&gt;"
  ${StrRep} ${out} ${out} '"' "&quot;"
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

; Every keeper, in every session (another user's, or the console's while device management
; installs as SYSTEM), is asked to close its devices and end; the installer waits until they
; have. A keeper of an older version only hears WM_CLOSE in this session. In silent mode, or
; when the user cancels, a keeper that does not end ends the install with exit code 5.
!macro EndKeepers
  FindWindow $0 "${KEEPER_CLASS}"
  ${If} $0 <> 0
    SendMessage $0 ${WM_CLOSE} 0 0 /TIMEOUT=5000
  ${EndIf}
  System::Call 'kernel32::OpenEventW(i 0x00100002, i 0, w "${KEEPER_EXIT_EVENT}") p .r5'
  ${If} $5 P<> 0
    System::Call 'kernel32::SetEvent(p r5)'
  ${EndIf}
  ${Do}
    StrCpy $6 0
    ${Do}
      System::Call 'kernel32::OpenMutexW(i 0x00100000, i 0, w "${KEEPER_MUTEX}") p .r0 ?e'
      Pop $1
      ${If} $0 P= 0
      ${AndIf} $1 <> ${ERROR_ACCESS_DENIED}
        ${Break}
      ${EndIf}
      System::Call 'kernel32::CloseHandle(p r0)'
      IntOp $6 $6 + 1
      ${If} $6 >= ${KEEPER_WAIT}
        ${Break}
      ${EndIf}
      Sleep 500
    ${Loop}
    ${If} $6 < ${KEEPER_WAIT}
      ${Break}
    ${EndIf}
    MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION \
      "The keeper of ${PRODUCT} (the tray icon) does not end, in this session or another user's.$\n$\nEnd it there, then select Retry." \
      /SD IDCANCEL IDRETRY +5
    System::Call 'kernel32::ResetEvent(p r5)'
    System::Call 'kernel32::CloseHandle(p r5)'
    SetErrorLevel 5
    Quit
  ${Loop}
  ; Keepers started from now on run as usual.
  ${If} $5 P<> 0
    System::Call 'kernel32::ResetEvent(p r5)'
    System::Call 'kernel32::CloseHandle(p r5)'
  ${EndIf}
!macroend

; InstallProgramFile NAME SOURCE: a program file that something still holds open (a copy that
; did not end) is moved aside and removed at the next restart, never left old beside new ones.
!macro InstallProgramFile name source
  ${If} ${FileExists} "$INSTDIR\${name}"
    Delete "$INSTDIR\${name}"
    ${If} ${FileExists} "$INSTDIR\${name}"
      Delete "$INSTDIR\${name}.old"
      Rename "$INSTDIR\${name}" "$INSTDIR\${name}.old"
      Delete /REBOOTOK "$INSTDIR\${name}.old"
    ${EndIf}
  ${EndIf}
  File "/oname=${name}" "${source}"
!macroend

Section "Program" SecProgram
  SectionIn RO
  SetShellVarContext all
  SetRegView 64
  SetOutPath "$INSTDIR"
  !insertmacro InstallProgramFile "${EXE}" "${PROGRAM}"
  !insertmacro InstallProgramFile "${CONSOLE_EXE}" "${CONSOLE_PROGRAM}"
  !insertmacro InstallProgramFile "${QUIET_EXE}" "${QUIET_PROGRAM}"
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
  ; The folder is made, or checked, by the tool: a standard user may have made it first (owned by
  ; them, or a junction to a folder of theirs) to change the studio file after it is copied.
  nsExec::ExecToStack '"$INSTDIR\${CONSOLE_EXE}" --machine-folder "$APPDATA" "${STUDIO_FOLDER}"'
  Pop $0
  Pop $1
  ${If} $0 != 0
    DetailPrint "The studio file was not installed: $1"
    MessageBox MB_OK|MB_ICONSTOP "The studio file cannot be kept safely for the machine:$\n$\n$1" /SD IDOK
    SetErrorLevel 6
    Goto studio_done
  ${EndIf}
  CopyFiles /SILENT /FILESONLY "$StudioSource" "$APPDATA\${STUDIO_FOLDER}\${STUDIO_FILE}"
  ; The task's definition is written in the installer's own temporary folder, which only this
  ; process's account can change, and registered from there.
  InitPluginsDir
  !insertmacro XmlText $2 "$INSTDIR\${QUIET_EXE}"
  !insertmacro XmlText $3 "$APPDATA\${STUDIO_FOLDER}\${STUDIO_FILE}"
  FileOpen $0 "$PLUGINSDIR\${STUDIO_TASK_FILE}" w
  FileWriteUTF16LE /BOM $0 '<?xml version="1.0" encoding="UTF-16"?>$\r$\n'
  FileWriteUTF16LE $0 '<Task version="1.2" xmlns="http://schemas.microsoft.com/windows/2004/02/mit/task">$\r$\n'
  FileWriteUTF16LE $0 '  <RegistrationInfo><Author>${PUBLISHER}</Author><Description>Sets the Velor pen displays as the studio file says (velor-display apply).</Description></RegistrationInfo>$\r$\n'
  FileWriteUTF16LE $0 '  <Triggers><LogonTrigger><Enabled>true</Enabled><Delay>PT15S</Delay></LogonTrigger></Triggers>$\r$\n'
  FileWriteUTF16LE $0 '  <Principals><Principal id="Users"><GroupId>S-1-5-32-545</GroupId><RunLevel>LeastPrivilege</RunLevel></Principal></Principals>$\r$\n'
  FileWriteUTF16LE $0 '  <Settings><MultipleInstancesPolicy>IgnoreNew</MultipleInstancesPolicy><DisallowStartIfOnBatteries>false</DisallowStartIfOnBatteries><StopIfGoingOnBatteries>false</StopIfGoingOnBatteries><ExecutionTimeLimit>PT10M</ExecutionTimeLimit><Enabled>true</Enabled></Settings>$\r$\n'
  FileWriteUTF16LE $0 '  <Actions Context="Users"><Exec><Command>"$2"</Command><Arguments>apply "$3"</Arguments></Exec></Actions>$\r$\n'
  FileWriteUTF16LE $0 '</Task>$\r$\n'
  FileClose $0
  nsExec::ExecToLog '"$SYSDIR\schtasks.exe" /Create /F /TN "${STUDIO_TASK}" /XML "$PLUGINSDIR\${STUDIO_TASK_FILE}"'
  Pop $0
  ; A copy stays beside the studio file for the administrator to read (it is not what was registered).
  CopyFiles /SILENT "$PLUGINSDIR\${STUDIO_TASK_FILE}" "$APPDATA\${STUDIO_FOLDER}\${STUDIO_TASK_FILE}"
  ${If} $0 != 0
    DetailPrint "The log-on task could not be registered (schtasks: $0)."
    SetErrorLevel 4
  ${EndIf}
  studio_done:
SectionEnd

; Chosen on the components page, or with /PATH in silent mode; an upgrade keeps the choice.
Section /o "Add the program folder to PATH (velor-display in any console)" SecPath
  nsExec::ExecToStack '"$INSTDIR\${CONSOLE_EXE}" --machine-path add "$INSTDIR"'
  Pop $0
  Pop $1
  ${If} $0 != 0
    DetailPrint "The program folder was not added to PATH: $1"
  ${EndIf}
SectionEnd

; After the sections: it selects one of them.
Function .onInit
  SetRegView 64
  !insertmacro EndKeepers
  !insertmacro WaitWhileProgramRuns
  ReadRegStr $1 HKLM "${RUN_KEY}" "${KEEPER_VALUE}"
  ${GetParameters} $0
  ClearErrors
  ${GetOptions} $0 "/KEEPER" $2
  ${IfNot} ${Errors}
  ${OrIf} $1 != ""
    SectionSetFlags ${SecKeeper} ${SF_SELECTED}
  ${EndIf}
  ; An upgrade keeps the choice: the installed tool says whether its folder is on PATH.
  StrCpy $1 ""
  ${If} ${FileExists} "$INSTDIR\${CONSOLE_EXE}"
    nsExec::ExecToStack '"$INSTDIR\${CONSOLE_EXE}" --machine-path has "$INSTDIR"'
    Pop $2
    Pop $3
    ${If} $2 == 0
      StrCpy $1 "on PATH"
    ${EndIf}
  ${EndIf}
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
  ; The log-on entries that would start the program being removed.
  DeleteRegValue HKLM "${RUN_KEY}" "${KEEPER_VALUE}"
  DeleteRegValue HKCU "${RUN_KEY}" "${KEEPER_VALUE}"
  ; The program folder leaves the machine's PATH (only that entry), while the tool is there to do it.
  nsExec::ExecToStack '"$INSTDIR\${CONSOLE_EXE}" --machine-path remove "$INSTDIR"'
  Pop $0
  Pop $1
  ${If} $0 != 0
    DetailPrint "The program folder may still be on PATH: $1"
  ${EndIf}
  ; A file something still holds open goes at the next restart.
  Delete /REBOOTOK "$INSTDIR\${EXE}"
  Delete /REBOOTOK "$INSTDIR\${CONSOLE_EXE}"
  Delete /REBOOTOK "$INSTDIR\${QUIET_EXE}"
  Delete /REBOOTOK "$INSTDIR\${EXE}.old"
  Delete /REBOOTOK "$INSTDIR\${CONSOLE_EXE}.old"
  Delete /REBOOTOK "$INSTDIR\${QUIET_EXE}.old"
  ; The studio's log-on task and file (the machine's, not a user's setting).
  nsExec::ExecToLog '"$SYSDIR\schtasks.exe" /Delete /F /TN "${STUDIO_TASK}"'
  Pop $0
  Delete "$APPDATA\${STUDIO_FOLDER}\${STUDIO_FILE}"
  Delete "$APPDATA\${STUDIO_FOLDER}\${STUDIO_TASK_FILE}"
  RMDir "$APPDATA\${STUDIO_FOLDER}"
  RMDir "$APPDATA\Velor"
  Delete "$INSTDIR\${UNINSTALLER}"
  Delete "$INSTDIR\Help\*.html"
  RMDir "$INSTDIR\Help"
  Delete "$SMPROGRAMS\${PRODUCT}.lnk"
  ; Only emptied folders go: anything else in them is not ours.
  RMDir /REBOOTOK "$INSTDIR"
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
  !insertmacro EndKeepers
  !insertmacro WaitWhileProgramRuns
  ${GetParameters} $0
  ClearErrors
  ${GetOptions} $0 "/REMOVESETTINGS" $1
  ${IfNot} ${Errors}
    SectionSetFlags ${SecUnSettings} ${SF_SELECTED}
  ${EndIf}
FunctionEnd
