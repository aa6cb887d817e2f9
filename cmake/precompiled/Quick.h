#pragma once

// The same of the windows and of what is compiled from their views.

#include "Qt.h"

#include <QAbstractListModel>
#include <QColor>
#include <QGuiApplication>
#include <QImage>
#include <QMimeData>
#include <QPainter>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTimer>
