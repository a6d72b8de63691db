// The system's own header, and the only place that includes it.
#pragma once

// Before it, because it defines macros by names that these declare.
#include "platform/FileSystem.h"
#include "platform/Process.h"
#include "platform/SettingsStore.h"

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef UNICODE
#define UNICODE
#endif
#include <windows.h>

#undef CopyFile
#undef DeleteFile
#undef MoveFile
#undef ERROR_SUCCESS
#undef ERROR_FILE_NOT_FOUND
#undef ERROR_ACCESS_DENIED
#undef ERROR_INVALID_HANDLE
#undef ERROR_MORE_DATA
#undef REG_SZ
#undef REG_BINARY
#undef REG_DWORD
#undef KEY_READ
#undef KEY_WRITE
