// Numbers of the plug-in's resources, for the resource script and the code. Scripts of users name controls by them.
#pragma once

// NOLINTBEGIN(modernize-macro-to-enum): resource scripts know macros only
#ifndef IDC_STATIC
#define IDC_STATIC -1
#endif

#define IDD_COLORS 30202
#define IDC_ASPHALT 30223
#define IDC_GRAVEL 30224
#define IDC_YARD_PAVING 30225
#define IDC_PATH 30226
#define IDC_HEDGE 30228
#define IDC_FOREST 30229
#define IDC_GRASS 30230
#define IDC_DEFAULT_ROOF_SHADED 30232
#define IDC_DEFAULT_ROOF_SUNLIT 30233
#define IDC_SAVE_TO_FILE 30268

#define IDD_BUILDING 30298
#define IDC_FLOOR_HEIGHT 30206
#define IDC_EAVES_WIDTH 30207
#define IDC_BASE_HEIGHT 30208
#define IDC_FLOORS 30211
#define IDC_ROOF_SUNLIT 30236
#define IDC_ROOF_SHADED 30237
#define IDC_PICK_RIDGE 269
#define IDC_RIDGE_STATUS 270

#define IDD_SHADOW 30201
#define IDC_SHADOW_HATCH 30203
#define IDC_SHADOW_ANGLE 30216
#define IDC_SHADOW_LENGTH 30217
#define IDC_SHADOW_SCALE 30218
#define IDC_SHADOW_COLOR 30222

#define IDD_SYMBOL 30245
#define IDC_SYMBOL_LIST 30239
#define IDC_INSERT_SYMBOL 30254
#define IDC_BROWSE_SYMBOLS 30255
#define IDC_SYMBOL_SHADOW 30259
#define IDC_SYMBOL_FILL 30260
#define IDC_SYMBOL_DIRECTORY 30262
#define IDC_SYMBOL_SMALL 30263
#define IDC_SYMBOL_MEDIUM 30264
#define IDC_SYMBOL_LARGE 30265
#define IDC_SYMBOL_PREVIEW 30266
#define IDC_SYMBOL_NO_SIZE 30267

// The resource compiler reads these names here, the code has them from the system.
#ifdef RC_INVOKED
#define IDOK 1
#define IDCANCEL 2
#endif
// NOLINTEND(modernize-macro-to-enum)
