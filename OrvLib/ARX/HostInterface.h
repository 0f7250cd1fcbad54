// Every header of the host interface that the plug-in uses. Nothing else includes host headers, so a header that a host
// release names otherwise is mended here alone.
#pragma once

// Windows' headers define min and max as macros unless this is there.
#ifndef NOMINMAX
#define NOMINMAX
#endif

#include <acadstrc.h>
#include <acarray.h>
#include <accmd.h>
#include <acdbads.h>
#include <acdocman.h>
#include <aced.h>
#include <acedCmdNF.h>
#include <acedads.h>
#include <acedinpt.h>
#include <acestext.h>
#include <acui.h>
#include <acutads.h>
#include <acutmem.h>
#include <adesk.h>
#include <adscodes.h>
#include <adslib.h>
#include <adui.h>
#include <afxdlgs.h>
#include <afxwin.h>
#include <axlock.h>
#include <dbapserv.h>
#include <dbdict.h>
#include <dbents.h>
#include <dbgroup.h>
#include <dbhatch.h>
#include <dbmain.h>
#include <dbpl.h>
#include <dbregion.h>
#include <dbsymtb.h>
#include <dbxrecrd.h>
#include <fileapi.h>
#include <geassign.h>
#include <rxdlinkr.h>
#include <rxmfcapi.h>
#include <rxregsvc.h>
#include <share.h>
#include <shlobj.h>
#include <sorttab.h>
#include <tchar.h>
