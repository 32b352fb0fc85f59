#pragma once

#include <functional>

class QApplication;
class QQmlApplicationEngine;

/// Called when the first document is loaded, before the event loop runs.
using ViewerHook = std::function<void(QQmlApplicationEngine &engine, QApplication &application)>;

/// The whole program: start-up, event loop, shutdown. Returns the process's exit code, -1 where the first
/// document can't be created. Makes and destroys the application object, so there must be none.
int runViewer(int argc, char **argv, const ViewerHook &hook = {});

/// What has to be settled before there is an application object.
void prepareProcess();

/// Names, version, icon and font of the application object.
void setIdentity(QApplication &application);

class CameraListener;

/// Publishes to the documents what they reach by name. `Tools` becomes a child of the application.
void setContextProperties(
    QQmlApplicationEngine &engine, QApplication &application, CameraListener &listener, bool advanced);
