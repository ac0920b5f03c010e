// The module that brings the browser's engine. Loading it makes the engine's views known to QML.

#include <QtPlugin>

Q_IMPORT_PLUGIN(Lumaro_Platform_WebEnginePlugin)
