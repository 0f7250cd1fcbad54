; The installer: for this user alone, so that nobody has to be asked. tools/windows.sh calls it with SOURCE, OUTPUT and
; WINDOW (ON or OFF).
Unicode true
Name "Tolmex"
OutFile "${OUTPUT}"
InstallDir "$LOCALAPPDATA\Programs\Tolmex"
InstallDirRegKey HKCU "Software\Tolmex" "InstallDir"
RequestExecutionLevel user
SetCompressor /SOLID lzma
!define UNINSTALL "Software\Microsoft\Windows\CurrentVersion\Uninstall\Tolmex"

Page directory
Page instfiles
UninstPage uninstConfirm
UninstPage instfiles

LoadLanguageFile "${NSISDIR}\Contrib\Language files\Finnish.nlf"

Section
  ; What an older version had and this one has not would be loaded all the same.
  RMDir /r "$INSTDIR\plugins"
  SetOutPath "$INSTDIR"
  File /r "${SOURCE}/*.*"
  WriteUninstaller "$INSTDIR\poista.exe"
  CreateDirectory "$SMPROGRAMS\Tolmex"
!if "${WINDOW}" == "ON"
  CreateShortcut "$SMPROGRAMS\Tolmex\Tolmex.lnk" "$INSTDIR\tolmex.exe" "desktop" "" 0 SW_SHOWMINIMIZED
!endif
  CreateShortcut "$SMPROGRAMS\Tolmex\Tolmex, komentokehote.lnk" "$SYSDIR\cmd.exe" '/k set "PATH=$INSTDIR;%PATH%"'
  CreateShortcut "$SMPROGRAMS\Tolmex\Poista Tolmex.lnk" "$INSTDIR\poista.exe"
  WriteRegStr HKCU "Software\Tolmex" "InstallDir" "$INSTDIR"
  WriteRegStr HKCU "${UNINSTALL}" "DisplayName" "Tolmex"
  WriteRegStr HKCU "${UNINSTALL}" "UninstallString" '"$INSTDIR\poista.exe"'
  WriteRegDWORD HKCU "${UNINSTALL}" "NoModify" 1
  WriteRegDWORD HKCU "${UNINSTALL}" "NoRepair" 1
SectionEnd

Section "Uninstall"
  ; Only what was installed: the folder may hold drawings too.
  RMDir /r "$INSTDIR\docs"
  RMDir /r "$INSTDIR\dwg-reader"
  RMDir /r "$INSTDIR\examples"
  RMDir /r "$INSTDIR\fonts"
  RMDir /r "$INSTDIR\plugins"
  RMDir /r "$INSTDIR\support"
  RMDir /r "$INSTDIR\tolmex.menu"
  RMDir /r "$INSTDIR\window"
  Delete "$INSTDIR\*.dll"
  Delete "$INSTDIR\tolmex.exe"
  Delete "$INSTDIR\tolmex.arx"
  Delete "$INSTDIR\qt.conf"
  Delete "$INSTDIR\README.md"
  Delete "$INSTDIR\poista.exe"
  RMDir "$INSTDIR"
  RMDir /r "$SMPROGRAMS\Tolmex"
  DeleteRegKey HKCU "Software\Tolmex"
  DeleteRegKey HKCU "${UNINSTALL}"
SectionEnd
