#pragma once

// Loads the main window for the application's parts and gives it back its remembered size. main() and the
// window tests start the application through here, so both see the same window.

class QQmlApplicationEngine;
class QQuickWindow;
class VeltoApp;

// Null when the window could not be loaded; the engine has printed why.
QQuickWindow *loadMainWindow(QQmlApplicationEngine &engine, VeltoApp &app);
