#pragma once

#include <QIcon>

enum ETOOL_ICON {
    ICON_SELECT,
    ICON_RECT,
    ICON_ELLIPSE,
    ICON_LINE,
    ICON_NEW,
    ICON_OPEN,
    ICON_SAVE,
    ICON_IMPORT,
    ICON_GROUP,
    ICON_UNGROUP,
    ICON_DELETE,
    ICON_APP,
};

// The host's toolbar icons, drawn rather than shipped: the resource folder
// belongs to the plug-in.
QIcon ToolIcon(ETOOL_ICON icon);
