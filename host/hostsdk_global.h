#pragma once

#include <QtCore/qglobal.h>

#if defined(HOSTSDK_LIBRARY)
#define HOSTSDK_EXPORT Q_DECL_EXPORT
#else
#define HOSTSDK_EXPORT Q_DECL_IMPORT
#endif
