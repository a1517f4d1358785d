// The world of the system that the program is built for.
#pragma once

#include <QtGlobal>

#ifdef Q_OS_WIN
#include "platform/win32/System.h"
#else
#include "platform/posix/System.h"
#endif
