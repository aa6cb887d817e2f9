#pragma once

// The same of what works with Qt.

#include "Standard.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QList>
#include <QLocale>
#include <QObject>
#include <QSet>
#include <QString>
#include <QUrl>
#include <QVariant>
