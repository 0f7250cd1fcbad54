; The installer: for this user alone, so that nobody has to be asked. tools/windows.sh calls it with SOURCE, OUTPUT and,
; where the window is there, ICON.
Unicode true
Name "Tolmex"
OutFile "${OUTPUT}"
InstallDir "$LOCALAPPDATA\Programs\Tolmex"
InstallDirRegKey HKCU "Software\Tolmex" "InstallDir"
RequestExecutionLevel user
!ifdef ICON
Icon "${ICON}"
UninstallIcon "${ICON}"
!endif
SetCompressor /SOLID lzma
!define UNINSTALL "Software\Microsoft\Windows\CurrentVersion\Uninstall\Tolmex"

!define OPENWITH "Software\Classes\Applications\tolmex-desktop.exe"

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
!ifdef ICON
  CreateShortcut "$SMPROGRAMS\Tolmex\Tolmex.lnk" "$INSTDIR\tolmex-desktop.exe"
  ; Among the programs of "Open with"; what opens drawings stays as it was.
  WriteRegStr HKCU "${OPENWITH}" "FriendlyAppName" "Tolmex"
  WriteRegStr HKCU "${OPENWITH}\SupportedTypes" ".dxf" ""
  WriteRegStr HKCU "${OPENWITH}\SupportedTypes" ".dwg" ""
  WriteRegStr HKCU "${OPENWITH}\shell\open\command" "" '"$INSTDIR\tolmex-desktop.exe" "%1"'
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
  RMDir /r "$INSTDIR\licences"
  RMDir /r "$INSTDIR\plugins"
  RMDir /r "$INSTDIR\sheets"
  RMDir /r "$INSTDIR\support"
  RMDir /r "$INSTDIR\tolmex.menu"
  RMDir /r "$INSTDIR\window"
  Delete "$INSTDIR\*.dll"
  Delete "$INSTDIR\tolmex.exe"
  Delete "$INSTDIR\tolmex-desktop.exe"
  Delete "$INSTDIR\tolmex.arx"
  Delete "$INSTDIR\qt.conf"
  Delete "$INSTDIR\README.md"
  Delete "$INSTDIR\poista.exe"
  RMDir "$INSTDIR"
  RMDir /r "$SMPROGRAMS\Tolmex"
  DeleteRegKey HKCU "Software\Tolmex"
  DeleteRegKey HKCU "${UNINSTALL}"
  DeleteRegKey HKCU "${OPENWITH}"
SectionEnd
